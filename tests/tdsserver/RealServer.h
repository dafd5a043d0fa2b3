#pragma once
#include <memory>
#include <string>

namespace selfreport {
class Connection;
}

namespace selfreport::tds {

/// A database of its own on the server that SELFREPORT_TEST_SERVER names, with the suite's tables and
/// procedure from sql/sqlserver; dropped at the end. The variable holds a connection string without a
/// database, of a user who may create some.
class RealServer {
public:
    /// Whether the variable is set.
    static bool isThere();

    /// @throws DatabaseError
    RealServer();
    ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;

    std::string connectionString() const;

private:
    std::string m_name;
};

/// Runs a script of sql/sqlserver, batch by batch.
void runServerScript(Connection& connection, const std::string& name);

} // namespace selfreport::tds
