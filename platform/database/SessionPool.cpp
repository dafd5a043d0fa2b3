#include "platform/database/SessionPool.h"

#include "platform/database/session/Session.h"

namespace selfreport {

namespace {

// One recalculation nests two connections at most; more idle sessions only tie up the server.
constexpr std::size_t mostIdlePerString = 4;

} // namespace

SessionPool& SessionPool::instance()
{
    // Never destroyed: a host may release its last connection after our statics are gone.
    static auto* pool = new SessionPool;
    return *pool;
}

std::unique_ptr<Session> SessionPool::takeAny(const std::string& connectionString)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_idle.find(connectionString);
    if (found == m_idle.end() || found->second.empty())
        return nullptr;
    auto session = std::move(found->second.back());
    found->second.pop_back();
    return session;
}

std::unique_ptr<Session> SessionPool::take(const std::string& connectionString)
{
    for (auto session = takeAny(connectionString); session; session = takeAny(connectionString))
        if (session->looksAlive())
            return session;
    return nullptr;
}

void SessionPool::giveBack(const std::string& connectionString, std::unique_ptr<Session> session)
{
    if (!session->resetForReuse())
        return;
    const std::lock_guard lock(m_mutex);
    auto& idle = m_idle[connectionString];
    if (idle.size() < mostIdlePerString)
        idle.push_back(std::move(session));
}

void SessionPool::clear()
{
    const std::lock_guard lock(m_mutex);
    m_idle.clear();
}

} // namespace selfreport
