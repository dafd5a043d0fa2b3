#include "fetch/ledger_fetch.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/ledger_companion.h"
#include "tests/tdsserver/RealServer.h"

#include <gtest/gtest.h>
#include <set>

namespace selfreport {
namespace {

class ServerInstallation : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!tds::RealServer::isThere())
            GTEST_SKIP() << "SELFREPORT_TEST_SERVER names no server";
        m_server.emplace();
        m_connection = openConnection(m_server->connectionString());
    }

    std::string text(const std::string& sql)
    {
        const Recordset rows = m_connection->query(sql);
        return rows.isEmpty() ? "none" : rows.text(0, "f");
    }

    std::optional<tds::RealServer> m_server;
    std::unique_ptr<Connection> m_connection;
};

TEST_F(ServerInstallation, AgainKeepsRowsAndRights)
{
    m_connection->execute("delete from tblSelfReportFieldKey where fKey in ('3','14')");
    m_connection->execute("insert into tblSelfReportFieldKey values(3,'98','自定义')");
    m_connection->execute("insert into tblCurrency values(1,'RMB','人民币')");
    const std::string object = text("select object_id('sp_GS_AcctProc') as f"); // rights hang on the object
    for (const char* script :
         {"tables.sql", "indexes.sql", "sp_GS_SelfReportAmount.sql", "sp_GS_SelfReportAmounts.sql",
          "sp_GS_AcctProc.sql", "sp_GS_VoucherProc.sql", "field_keys.sql"})
        EXPECT_NO_THROW(tds::runServerScript(*m_connection, script)) << script;
    EXPECT_EQ(text("select object_id('sp_GS_AcctProc') as f"), object);
    EXPECT_EQ(text("select count(*) as f from tblSelfReportFieldKey"), "15");
    EXPECT_EQ(text("select fKeyName as f from tblSelfReportFieldKey where fKey='98'"), "自定义");
    EXPECT_EQ(text("select fname as f from tblCurrency"), "人民币");
}

TEST_F(ServerInstallation, AForeignProcedureIsReplacedOnlyWhenTold)
{
    const auto installed = [&] { return text("exec sp_GS_AcctProc '','','','','',''"); };
    m_connection->execute("drop procedure sp_GS_AcctProc");
    m_connection->execute(
        "create procedure sp_GS_AcctProc @strSql varchar(2000),@strField varchar(100),@currenct "
        "varchar(50),@fYear varchar(10),@fPeriod1 varchar(10),@fPeriod2 varchar(10) as select "
        "'the suite''s' as f");
    try {
        tds::runServerScript(*m_connection, "sp_GS_AcctProc.sql");
        ADD_FAILURE() << "replaced without being told";
    } catch (const DatabaseError& error) {
        EXPECT_NE(error.description.find("不是本模块的过程"), std::string::npos) << error.description;
    }
    EXPECT_EQ(installed(), "the suite's");
    m_connection->execute("create table #replaceAcctProc(yes int)");
    tds::runServerScript(*m_connection, "sp_GS_AcctProc.sql");
    EXPECT_EQ(m_connection
                  ->query("select 1 as f from sys.sql_modules where object_id=object_id('sp_GS_AcctProc') "
                          "and definition like '%self-report ledger procedure%'")
                  .rowCount(),
              1U);
}

/// The companion of our procedure does not speak for another one, not even in a session that used it before.
TEST_F(ServerInstallation, ManyCallsGoToTheProcedureThatIsInstalled)
{
    m_connection->execute("insert into tblAccount(fitemid,fNumber,fName) values(1,'1001','现金')");
    m_connection->execute("insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fEndBal) "
                          "values(1,0,2025,1,1,5)");
    const std::vector<ProcedureCall> calls(
        callsBeforeCompanion,
        ledgerProcedureCall({"1001", "2", "", "", "", ""}, ledgerQuery(parseAccountExpression("1001"), {})));
    const auto amounts = [&] {
        std::set<double> given;
        for (const ProcedureResult& result : m_connection->callProcedures(calls))
            given.insert(ledgerAmount(result).value_or(-1));
        return given;
    };
    EXPECT_EQ(amounts(), std::set<double>{5});
    m_connection->execute("update tblAccountBal set fEndBal=6");
    EXPECT_EQ(amounts(), std::set<double>{6});
    const std::string head =
        " procedure sp_GS_AcctProc @strSql varchar(2000),@strField varchar(100),@currenct "
        "varchar(50),@fYear varchar(10),@fPeriod1 varchar(10),@fPeriod2 varchar(10) as ";
    m_connection->execute("drop procedure sp_GS_AcctProc");
    m_connection->execute("create" + head + "begin select 7 as f return 1 end");
    EXPECT_EQ(amounts(), std::set<double>{7});
    m_connection->execute("drop procedure sp_GS_AcctProc");
    m_connection->execute("create" + head +
                          "begin -- self-report ledger procedure, version 3\n select 8 as f return 1 end");
    EXPECT_EQ(amounts(), std::set<double>{8}) << "of another version";
}

} // namespace
} // namespace selfreport
