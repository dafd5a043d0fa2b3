#pragma once
#include <memory>
#include <string>
#include <vector>

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
    /// The one that the tests of a program take over from each other.
    static RealServer& ofProgram();

    /// @throws DatabaseError
    RealServer();
    ~RealServer();
    RealServer(const RealServer&) = delete;
    RealServer& operator=(const RealServer&) = delete;

    std::string connectionString() const;

    /// A connection for what tests prepare, apart from the pool that they look at.
    Connection& direct();

    /// Makes it as it was installed, whatever a test has done to it.
    void restore();

    /// Ends all sessions in it but that of direct(), as an administrator does.
    void endOtherSessions();

private:
    struct Object {
        std::string name, type, id, parent; ///< a table that was dropped and made again has another id
        bool operator==(const Object&) const = default;
    };
    std::vector<Object> objects();
    void dropChanged(const std::vector<Object>& now);
    void install();
    void restoreUnlessLocked();

    std::string m_name;
    std::vector<Object> m_objects; ///< as they were installed
    std::unique_ptr<Connection> m_direct;
};

/// Runs a script of sql/sqlserver, batch by batch.
void runServerScript(Connection& connection, const std::string& name);

} // namespace selfreport::tds
