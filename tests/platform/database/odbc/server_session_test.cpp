#include "platform/database/Connection.h"

#include "platform/database/dialect/connection_string.h"
#include "platform/database/odbc/odbc_string.h"
#include "platform/database/odbc/odbc_text.h"
#include "tests/platform/database/database_folder.h"
#include "tests/platform/database/PoolTime.h"
#include "tests/tdsserver/TdsServer.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sqlext.h>
#include <sqlucode.h>

namespace selfreport {
namespace {

using testing::DatabaseFolder;
using namespace std::chrono_literals;

ProcedureCall amountOf(const std::string& account, const std::string& year = "2025")
{
    ProcedureCall call{"sp_GS_AcctProc", {}};
    call.append("strSql", 2000, testing::ledgerFrom + " where  1=1   and (b.fNumber='" + account + "')")
        .append("strField", 100, "2")
        .append("currenct", 50, "")
        .append("fYear", 10, year)
        .append("fPeriod1", 10, "")
        .append("fPeriod2", 10, "");
    return call;
}

/// Accounts 1000 to 1199 with a closing balance of their number and 25 cents.
void fillAccounts(Connection& connection)
{
    Transaction transaction(connection);
    for (std::int64_t account = 1000; account < 1200; ++account) {
        connection.execute("insert into tblAccount(fitemid,fNumber,fName) values(?,?,'库存现金')",
                           {account, std::to_string(account)});
        connection.execute(
            "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fEndBal) "
            "values(?,0,2025,1,1,?)",
            {account, static_cast<double>(account) + 0.25});
    }
    transaction.commit();
}

TEST(ServerSession, AsksAndCallsOneByOneAndInBatches)
{
    const DatabaseFolder folder;
    fillAccounts(*folder.create());
    tds::TdsServer server(folder.file());
    const auto connection = openConnection(server.connectionString());
    EXPECT_EQ(connection->query("select fName from tblAccount where fNumber='1001'").text(0, "fname"),
              "库存现金");

    const ProcedureResult alone = connection->call(amountOf("1001"));
    EXPECT_EQ(alone.returnValue, 1) << (alone.error ? alone.error->description : "");
    ASSERT_TRUE(alone.rows);
    EXPECT_EQ(alone.rows->number(0, "f"), 1001.25);

    std::vector<ProcedureCall> calls;
    for (int account = 1000; account < 1200; ++account)
        calls.push_back(amountOf(std::to_string(account), account == 1100 ? "20x5" : "2025"));
    connection->callProcedures(std::span(calls).first(50)); // the session knows what the server has
    server.journal.clear();
    const auto results = connection->callProcedures(calls);
    for (std::size_t at = 0; at < results.size(); ++at) {
        if (at == 100) {
            ASSERT_TRUE(results[at].error);
            EXPECT_EQ(results[at].error->number, 245);
            continue;
        }
        EXPECT_EQ(results[at].returnValue, 1) << at;
        ASSERT_TRUE(results[at].rows) << at;
        EXPECT_EQ(results[at].rows->number(0, "f"), 1000.25 + static_cast<double>(at));
    }
    EXPECT_LE(server.journal.requests().size(), 3U);
}

TEST(ServerSession, APreparedStatementRunsAgainWithOtherValues)
{
    const DatabaseFolder folder;
    fillAccounts(*folder.create());
    tds::TdsServer server(folder.file());
    SQLHENV environment = SQL_NULL_HENV;
    SQLHDBC connection = SQL_NULL_HDBC;
    SQLHSTMT statement = SQL_NULL_HSTMT;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    auto target = odbcText(odbcTarget(parseConnectionString(server.connectionString())).connectionString);
    ASSERT_TRUE(SQL_SUCCEEDED(SQLDriverConnectW(connection, nullptr, target.data(),
                                                static_cast<SQLSMALLINT>(target.size()), nullptr, 0, nullptr,
                                                SQL_DRIVER_NOPROMPT)));
    SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
    auto sql = odbcText("select fNumber from tblAccount where fitemid=?");
    SQLBIGINT id = 0;
    SQLLEN size = 0;
    SQLPrepareW(statement, sql.data(), static_cast<SQLINTEGER>(sql.size()));
    SQLBindParameter(statement, 1, SQL_PARAM_INPUT, SQL_C_SBIGINT, SQL_BIGINT, 19, 0, &id, 0, &size);
    for (id = 1003; id < 1006; ++id) {
        EXPECT_TRUE(SQL_SUCCEEDED(SQLExecute(statement))) << id;
        SQLBIGINT number = 0;
        EXPECT_TRUE(SQL_SUCCEEDED(SQLFetch(statement))) << id;
        SQLGetData(statement, 1, SQL_C_SBIGINT, &number, sizeof number, &size);
        EXPECT_EQ(number, id);
        while (SQL_SUCCEEDED(SQLMoreResults(statement))) { // the statement's handle comes last
        }
        SQLFreeStmt(statement, SQL_CLOSE);
    }
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    SQLDisconnect(connection);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
}

/// Batches of a script: what stands between the lines "go".
std::vector<std::string> batchesOf(const std::string& name)
{
    std::ifstream script(std::filesystem::path(TEST_DATA_FOLDER) / "../../sql/sqlserver" / name);
    std::vector<std::string> batches(1);
    for (std::string line; std::getline(script, line);) {
        if (line == "go")
            batches.emplace_back();
        else
            batches.back() += line + "\n";
    }
    std::erase(batches, "");
    return batches;
}

TEST(ServerSession, TheScriptsCanBeInstalledTwice)
{
    const DatabaseFolder folder;
    folder.create()->execute("create table only_ours(a integer)");
    {
        const SqliteDatabase database(folder.file());
        const Recordset tables =
            database.prepare("select name from sqlite_schema where type='table' and name<>'only_ours'")
                .rows();
        for (std::size_t row = 0; row < tables.rowCount(); ++row)
            database.run("drop table " + tables.text(row, "name"));
    }
    tds::TdsServer server(folder.file());
    const auto connection = openConnection(server.connectionString());
    for (int installation = 0; installation < 2; ++installation)
        for (const char* script : {"tables.sql", "field_keys.sql"})
            for (const std::string& batch : batchesOf(script))
                EXPECT_NO_THROW(connection->execute(batch)) << script << ": " << batch.substr(0, 200);
    EXPECT_EQ(connection->query("select * from tblSelfReportFieldKey").rowCount(), 14U);
    EXPECT_EQ(connection->query("select name from sqlite_schema where type='table'").rowCount(), 19U);
    EXPECT_THROW(connection->execute("create table tblAccount(fitemid int)"), DatabaseError)
        << "without its guard a second installation would fail";
}

/// Puts an error of the server's between the tokens, before number `at` from the end.
tds::Fault errorAt(tds::Step step, std::size_t fromEnd)
{
    return {step,
            tds::Cut::none,
            tds::Ending::closed,
            [fromEnd](tds::Reply& reply) {
                tds::Reply error;
                error.error(8134, "遇到以零作除数错误。");
                const auto at = std::min(fromEnd, reply.tokens.size() - 1); // behind the columns
                reply.tokens.insert(reply.tokens.end() - static_cast<std::ptrdiff_t>(at),
                                    error.tokens.front());
            },
            {}};
}

TEST(ServerSession, AnErrorBetweenTheRowsIsNoShorterResult)
{
    const DatabaseFolder folder;
    fillAccounts(*folder.create());
    tds::TdsServer server(folder.file());
    const auto connection = openConnection(server.connectionString());
    for (const std::size_t fromEnd :
         {1U, 2U, 100U, 200U, 201U}) { // behind the last row, ..., before the first
        server.faults.order(errorAt(tds::Step::batch, fromEnd));
        try {
            connection->query("select * from tblAccount");
            ADD_FAILURE() << fromEnd;
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.number, 8134) << fromEnd;
            EXPECT_NE(error.description.find("遇到以零作除数错误。"), std::string::npos) << error.description;
        }
        EXPECT_EQ(connection->query("select * from tblAccount").rowCount(), 200U) << fromEnd;
    }
    server.faults.order(errorAt(tds::Step::procedure, 3)); // before the row
    const ProcedureResult failed = connection->call(amountOf("1001"));
    ASSERT_TRUE(failed.error);
    EXPECT_EQ(failed.error->number, 8134);
    EXPECT_EQ(failed.returnValue, -1);
    EXPECT_EQ(connection->call(amountOf("1001")).returnValue, 1);
}

TEST(ServerSession, AnErrorInsideABatchOfCallsSpoilsNoOther)
{
    const DatabaseFolder folder;
    fillAccounts(*folder.create());
    tds::TdsServer server(folder.file());
    const auto connection = openConnection(server.connectionString());
    std::vector<ProcedureCall> calls;
    for (int account = 1000; account < 1020; ++account)
        calls.push_back(amountOf(std::to_string(account)));
    for (std::size_t fromEnd = 1; fromEnd < 200; ++fromEnd) { // at every token of the reply
        server.faults.order(errorAt(tds::Step::batch, fromEnd));
        const auto results = connection->callProcedures(calls);
        ASSERT_EQ(results.size(), calls.size());
        for (std::size_t at = 0; at < results.size(); ++at) {
            ASSERT_TRUE(results[at].rows && results[at].rows->rowCount() == 1) << fromEnd << " " << at;
            EXPECT_EQ(results[at].rows->number(0, "f"), 1000.25 + static_cast<double>(at)) << fromEnd;
        }
    }
}

TEST(ServerSession, SessionsThatWereDroppedWhileIdleAreReplacedUnseen)
{
    const DatabaseFolder folder;
    fillAccounts(*folder.create());
    tds::TdsServer server(folder.file());
    const std::string connectionString = server.connectionString();
    const std::function<void(Connection&)> works[] = {
        [](Connection& connection) {
            EXPECT_EQ(connection.query("select * from tblAccount").rowCount(), 200U);
        },
        [](Connection& connection) { EXPECT_EQ(connection.call(amountOf("1001")).returnValue, 1); },
        [](Connection& connection) {
            EXPECT_EQ(connection.execute("update tblAccount set fName=? where fNumber='1001'", {"新"}), 1);
        },
        [](Connection& connection) {
            Transaction transaction(connection);
            EXPECT_EQ(connection.execute("delete from tblAccount where fNumber='1199'"), 1);
        },
    };
    for (const auto& work : works) {
        openConnection(connectionString); // to lie in the pool
        server.dropConnections();
        work(*openConnection(connectionString));
    }
    EXPECT_EQ(server.journal.logins().size(), 1 + std::size(works));
}

TEST(ServerSession, AnIdleSessionThatNobodyAnswersIsReplaced)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    const std::string connectionString = server.connectionString();
    openConnection(connectionString);
    server.faults.order({tds::Step::batch, tds::Cut::beforeReply, tds::Ending::silent, {}, {}});
    const test::PoolTime later(11s);
    EXPECT_EQ(openConnection(connectionString)->query("select 7 as n").integer(0, "n"), 7);
}

TEST(ServerSession, ABatchThatRanOutOfTimeIsTheAnswerOfAllItsCalls)
{
    const DatabaseFolder folder;
    fillAccounts(*folder.create());
    tds::TdsServer server(folder.file());
    const std::vector<ProcedureCall> calls(273, amountOf("1001"));       // two round trips
    for (const auto ending : {tds::Ending::held, tds::Ending::silent}) { // acknowledges the end, or does not
        const auto connection = openConnection(server.connectionString("Command Timeout=1"));
        for (int time = 0; time < 2; ++time) // the session knows what the server has
            connection->callProcedures(std::span(calls).first(200));
        server.faults.order({tds::Step::batch, tds::Cut::beforeReply, ending, {}, {}});
        server.journal.clear();
        const auto start = std::chrono::steady_clock::now();
        const auto results = connection->callProcedures(calls);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
        const std::size_t outOfTime = ending == tds::Ending::held ? 200 : 273;
        ASSERT_EQ(results.size(), 273U);
        for (std::size_t at = 0; at < results.size(); ++at)
            EXPECT_EQ(results[at].error && results[at].error->isTimeOut, at < outOfTime) << at;
        EXPECT_LE(server.journal.requests().size(), 3U) << "two batches and what ended the first";
    }
}

TEST(ServerSession, WrongNameOrPasswordAndWrongDatabaseAreToldApart)
{
    const DatabaseFolder folder;
    folder.create();
    tds::TdsServer server(folder.file());
    const struct {
        const char* more;
        std::int32_t number;
    } cases[] = {
        {"Password=falsch", loginRejected},
        {"User ID=nobody", loginRejected},
        {"Initial Catalog=nowhere", unspecifiedError},
    };
    for (const auto& c : cases) {
        try {
            openConnection(server.connectionString(c.more));
            ADD_FAILURE() << c.more;
        } catch (const DatabaseError& error) {
            EXPECT_EQ(error.number, c.number) << c.more << error.description;
        }
    }
}

} // namespace
} // namespace selfreport
