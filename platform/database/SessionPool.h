#pragma once
#include <atomic>
#include <chrono>
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
    using Clock = std::chrono::steady_clock;

    static SessionPool& instance();

    struct Taken {
        std::unique_ptr<Session> session; ///< null: there is none
        bool hasAnswered = false;         ///< the server has just given a sign of life
    };
    /// An idle session. One that lay idle for more than ten seconds, or whose last use met a failure, is
    /// asked for a sign of life; those that give none are dropped on the way.
    Taken take(const std::string& connectionString);

    /// Keeps the session if it can be brought into its first state, else closes it.
    /// @param hasFailed  something failed on it
    void giveBack(const std::string& connectionString, std::unique_ptr<Session> session, bool hasFailed);

    void clear();

    /// The time by which it is counted how long a session lies idle.
    std::atomic<Clock::time_point (*)()> now = &Clock::now;

private:
    struct Idle {
        std::unique_ptr<Session> session;
        Clock::time_point since; ///< the clock's beginning: it is asked in any case
    };
    SessionPool() = default;
    Idle takeAny(const std::string& connectionString);
    void drop(const std::string& connectionString);

    std::mutex m_mutex;
    std::map<std::string, std::vector<Idle>> m_idle;
};

} // namespace selfreport
