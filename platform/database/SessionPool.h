#pragma once
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace selfreport {

class Session;

/// Idle physical sessions by connection string. Safe from any thread.
class SessionPool {
public:
    static SessionPool& instance();

    /// An idle session that looks alive. Null if there is none; dead ones are dropped on the way.
    std::unique_ptr<Session> take(const std::string& connectionString);

    /// Keeps the session if it can be brought into its first state, else closes it.
    void giveBack(const std::string& connectionString, std::unique_ptr<Session> session);

    void clear();

private:
    SessionPool() = default;
    std::unique_ptr<Session> takeAny(const std::string& connectionString);

    std::mutex m_mutex;
    std::map<std::string, std::vector<std::unique_ptr<Session>>> m_idle;
};

} // namespace selfreport
