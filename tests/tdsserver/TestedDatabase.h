#pragma once
#include <memory>
#include <string>

namespace selfreport::tds {

class TdsServer;

/// Whether the test program runs for the server's provider: SELFREPORT_TEST_PROVIDER=server in its
/// environment. Tests of the embedded database's own ways leave themselves out then.
bool testsRunOnServer();

/// A database file as the provider under test reaches it: straight, or through the driver and a server.
class TestedDatabase {
public:
    explicit TestedDatabase(std::string file);
    ~TestedDatabase();

    std::string connectionString() const;
    std::string embeddedConnectionString() const { return "Provider=SQLite;Data Source=" + m_file; }

private:
    std::string m_file;
    std::unique_ptr<TdsServer> m_server; ///< none for the embedded provider
};

} // namespace selfreport::tds
