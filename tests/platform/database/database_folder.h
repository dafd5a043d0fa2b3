#pragma once
#include "platform/database/Connection.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "tests/tdsserver/TestedDatabase.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <unistd.h>

namespace selfreport::testing {

/// How the text of a ledger fetch begins.
inline const std::string ledgerFrom =
    " from tblAccountBal as a left outer join tblAccount as b on a.faccountid=b.fitemid "
    " left outer join tblQtyBalance as d on (a.fAccountId=d.fAccountId and a.fYear=d.fYear and "
    " a.fPeriod=d.fPeriod and a.fDetailId=d.fDetailid and a.fCurrencyid=d.fCurrencyid ) "
    " left outer join tblProfitAndLoss as e on (a.fAccountId=e.fAccountId and a.fYear=e.fYear and "
    " a.fPeriod=e.fPeriod and a.fDetailId=e.fDetailid and a.fCurrencyid=e.fCurrencyid ) ";

/// A folder of its own for one test, removed afterwards.
class DatabaseFolder {
public:
    DatabaseFolder()
    {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        m_path =
            std::filesystem::path(::testing::TempDir()) /
            ("selfreport-" + std::to_string(getpid()) + "-" + test->test_suite_name() + "-" + test->name());
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~DatabaseFolder()
    {
        if (tds::road() != tds::Road::realServer) // where the next test goes on with them
            closeIdleSessions();
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }
    DatabaseFolder(const DatabaseFolder&) = delete;
    DatabaseFolder& operator=(const DatabaseFolder&) = delete;

    std::string file(const std::string& name = "ledger.db") const { return (m_path / name).string(); }
    std::string connectionString(const std::string& name = "ledger.db") const
    {
        return "Provider=SQLite;Data Source=" + file(name);
    }
    /// The same database through the provider under test.
    std::string testedConnectionString(const std::string& name = "ledger.db") const
    {
        return m_tested.try_emplace(name, file(name)).first->second.connectionString();
    }

    /// A new database with all tables, open.
    std::unique_ptr<Connection> create(const std::string& name = "ledger.db") const
    {
        createDatabase(file(name));
        return openConnection(connectionString(name));
    }
    std::unique_ptr<Connection> createTested(const std::string& name = "ledger.db") const
    {
        createDatabase(file(name));
        return openConnection(testedConnectionString(name));
    }

private:
    std::filesystem::path m_path;
    mutable std::map<std::string, tds::TestedDatabase> m_tested;
};

} // namespace selfreport::testing
