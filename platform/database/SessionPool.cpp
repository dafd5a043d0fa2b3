#include "platform/database/SessionPool.h"

#include "platform/database/session/Session.h"

namespace selfreport {

namespace {

// One recalculation nests two connections at most; more idle sessions only tie up the server.
constexpr std::size_t mostIdlePerString = 4;

// A server or a firewall ends what lies idle longer, often without a word.
constexpr std::chrono::seconds trustedFor(10);

} // namespace

SessionPool& SessionPool::instance()
{
    // Never destroyed: a host may release its last connection after our statics are gone.
    static auto* pool = new SessionPool;
    return *pool;
}

SessionPool::Idle SessionPool::takeAny(const std::string& connectionString)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_idle.find(connectionString);
    if (found == m_idle.end() || found->second.empty())
        return {};
    Idle idle = std::move(found->second.back());
    found->second.pop_back();
    return idle;
}

void SessionPool::drop(const std::string& connectionString)
{
    std::vector<Idle> dropped; // declared before the lock: it ends them without it
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_idle.find(connectionString); found != m_idle.end())
        dropped.swap(found->second);
}

SessionPool::Taken SessionPool::take(const std::string& connectionString)
{
    for (Idle idle = takeAny(connectionString); idle.session; idle = takeAny(connectionString)) {
        if (!idle.session->looksAlive())
            continue;
        if (now.load()() - trustedFor <= idle.since)
            return {std::move(idle.session), false};
        if (idle.session->answers())
            return {std::move(idle.session), true};
        drop(connectionString); // those that lie there longer are no better
    }
    return {};
}

void SessionPool::giveBack(const std::string& connectionString, std::unique_ptr<Session> session,
                           bool hasFailed)
{
    if (!session->resetForReuse())
        return;
    const auto since = hasFailed ? Clock::time_point() : now.load()();
    const std::lock_guard lock(m_mutex);
    auto& idle = m_idle[connectionString];
    if (idle.size() < mostIdlePerString)
        idle.push_back({std::move(session), since});
}

void SessionPool::clear()
{
    const std::lock_guard lock(m_mutex);
    m_idle.clear();
}

} // namespace selfreport
