#pragma once
#include "tests/tdsserver/faults.h"
#include "tests/tdsserver/Journal.h"
#include "tests/tdsserver/Ledger.h"
#include "tests/tdsserver/Socket.h"

#include <atomic>
#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace selfreport::tds {

class ClientSession;

/// A database server on a free port of this machine that speaks TDS 7.4 to the real driver, in threads of the
/// test's own process, so that a test can order faults and look at what was sent.
///
/// Its data is an SQLite file behind the embedded provider's rewriter, its procedure the embedded one. It has
/// no encryption, no integrated login, no cursors, no several requests at a time, no isolation but SQLite's,
/// and of T-SQL only what BatchRunner.h names. Texts beyond a column's size are kept, not refused.
class TdsServer {
public:
    static constexpr const char* user = "王会计";
    static constexpr const char* password = "密码 p;w";

    /// @param file  the database that clients know as "cw"
    explicit TdsServer(const std::string& file);
    ~TdsServer();
    TdsServer(const TdsServer&) = delete;
    TdsServer& operator=(const TdsServer&) = delete;

    /// Opens "cw" through the driver. @param more  further "key=value;" pairs; of equal keys the last counts
    std::string connectionString(const std::string& more = "") const;

    int port() const { return m_listener.port(); }

    /// Drops all connections that stand now, without a word.
    void dropConnections();

    FaultPlan faults;
    Journal journal;
    std::atomic<std::chrono::microseconds> replyDelay{std::chrono::microseconds(0)};
    std::atomic<int> codePage = 936; ///< that the catalogue gives for every text

private:
    friend class ClientSession;
    struct Served {
        std::unique_ptr<ClientSession> session;
        std::thread thread;
    };
    void acceptConnections();

    const std::string m_file;
    Socket m_listener;
    std::mutex m_mutex;
    std::list<Served> m_served;
    std::thread m_accepting;
};

} // namespace selfreport::tds
