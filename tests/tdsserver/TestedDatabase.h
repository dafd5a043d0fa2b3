#pragma once
#include "platform/database/Connection.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace selfreport::tds {

class RealServer;
class TdsServer;

/// How a test program reaches its databases.
enum class Road {
    embedded,   ///< straight
    testServer, ///< through the driver and TdsServer: SELFREPORT_TEST_PROVIDER=server in its environment
    realServer  ///< through the driver and the server that SELFREPORT_TEST_SERVER names
};
Road road();

/// A database as the provider under test reaches it: a file, or the program's one on a server, which each
/// takes over as it was installed. What tests prepare goes past the provider where it can.
class TestedDatabase {
public:
    explicit TestedDatabase(std::string file);
    ~TestedDatabase();
    TestedDatabase(const TestedDatabase&) = delete;
    TestedDatabase& operator=(const TestedDatabase&) = delete;

    std::string connectionString() const;
    std::string embeddedConnectionString() const { return "Provider=SQLite;Data Source=" + m_file; }

    /// Runs a statement in words that all understand; of the embedded database's own, x'00' is one for bytes.
    void run(const std::string& sql, std::span<const SqlValue> values = {}) const;
    /// What stands in it, binary columns too.
    Recordset query(const std::string& sql) const;

    void rename(const std::string& table, const std::string& name) const;
    /// From now on each insert or delete fails with a text, until it is allowed again.
    void refuse(const std::string& event, const std::string& table, const std::string& text) const;
    void allow(const std::string& event, const std::string& table) const;
    void dropPrimaryKey(const std::string& table) const;
    /// From now on whoever reads the table waits for minutes, until it is quick again.
    void makeEndless(const std::string& table) const;
    void makeQuick(const std::string& table) const;

private:
    std::string m_file;
    std::unique_ptr<TdsServer> m_server; ///< only on its road
    RealServer* m_real = nullptr;
};

/// A query that counts for minutes: "select count(*) …".
std::string_view endlessQuery();

} // namespace selfreport::tds
