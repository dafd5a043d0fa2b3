#pragma once
#include "tests/tdsserver/Socket.h"

#include <atomic>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>

namespace selfreport::tds {

/// Stands on a port of its own between the driver and a real server and passes on what both say, so that a
/// test can do something at a certain request.
class Relay {
public:
    enum class Moment {
        asked,   ///< the request has not reached the server
        answered ///< the server has begun to answer it, and nothing of that has reached the driver
    };

    /// @param connectionString  of the server, "Data Source=127.0.0.1,port"
    explicit Relay(const std::string& connectionString);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// The given string with this relay as its server.
    std::string connectionString() const;

    /// Counts requests from 0 again, greetings and logins among them but no cancellations, and acts once at
    /// the request of a number; at none below 1.
    void actAt(int request, Moment moment, std::function<void()> act);
    int requests() const { return m_requests; }
    int cancellations() const { return m_cancellations; } ///< that the driver has sent so far

    /// While it is set, what the server says stays here.
    std::atomic<bool> isSilent = false;

private:
    struct Passed {
        Socket client, server;
        std::thread up, down;
        std::atomic<int> request = 0; ///< its last one
    };
    void acceptConnections();
    void passUp(Passed& passed);
    void passDown(Passed& passed);
    void seePacket(Passed& passed, const std::string& packet);
    void reach(int request, Moment moment);

    const std::string m_given;
    Socket m_listener;
    std::mutex m_mutex;
    std::list<Passed> m_passed;
    std::function<void()> m_act;
    int m_actsAt = 0;
    Moment m_moment = Moment::asked;
    std::atomic<int> m_requests = 0, m_cancellations = 0;
    std::atomic<bool> m_ends = false;
    std::thread m_accepting;
};

} // namespace selfreport::tds
