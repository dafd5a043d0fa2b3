#include "platform/database/Connection.h"

#include "tests/platform/database/database_folder.h"
#include "tests/tdsserver/TdsServer.h"

namespace selfreport {
namespace {

using testing::DatabaseFolder;

ProcedureCall amountOf(const std::string& account, const std::string& year = "2025")
{
    ProcedureCall call{"sp_GS_AcctProc", {}};
    call.append(
            "strSql", 2000,
            " from tblAccountBal as a left outer join tblAccount as b on a.faccountid=b.fitemid  where  1=1  "
            " and (b.fNumber='" +
                account + "')")
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

} // namespace
} // namespace selfreport
