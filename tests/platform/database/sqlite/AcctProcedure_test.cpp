#include "platform/database/sqlite/AcctProcedure.h"

#include "tests/platform/database/database_folder.h"

namespace selfreport {
namespace {

using testing::DatabaseFolder;

const std::string withItems = " left outer join tblItemDetailV as c on c.fdetailId=a.fDetailId  ";
const std::string allRows = " where  1=1  ";
const std::string itemRows = " where a.fDetailId<>0 ";

std::string account(const std::string& code)
{
    return testing::ledgerFrom + allRows + " and (b.fNumber='" + code + "')";
}

std::string items(const std::string& accountCondition, const std::string& conditions)
{
    return testing::ledgerFrom + withItems + itemRows + accountCondition + conditions;
}

std::string customer(const std::string& condition)
{
    return " and c.fitemid in ( select fitemid from tblCustomer  where 1=1  and (" + condition + " ))";
}

std::string department(const std::string& condition)
{
    return " and c.fitemid in ( select fitemid from tblDepartment  where 1=1  and (" + condition + " ))";
}

ProcedureCall acctCall(const std::string& sql, const std::string& key, const std::string& currency = "",
                       const std::string& year = "", const std::string& first = "",
                       const std::string& last = "")
{
    ProcedureCall call{"sp_GS_AcctProc", {}};
    call.append("strSql", 2000, sql).append("strField", 100, key).append("currenct", 50, currency);
    call.append("fYear", 10, year).append("fPeriod1", 10, first).append("fPeriod2", 10, last);
    return call;
}

/// A ledger of a few rows, worked out by hand.
///
/// 1001 cash with 100101 and 100102; 1122 receivables by customer and department; 2202 payables; 6601 costs.
/// Periods 1 and 2 of 2009; one row of 2008. Currency 1 is RMB, 2 is USD.
class AcctProcedureTest : public ::testing::Test {
protected:
    AcctProcedureTest()
        : m_connection(m_folder.create())
    {
        Transaction transaction(*m_connection);
        for (const char* sql : {
                 "insert into tblAccount values(1,'1001','库存现金',0,1,0,1)",
                 "insert into tblAccount values(2,'100101','人民币',1,2,1,1)",
                 "insert into tblAccount values(3,'100102','美元',1,2,1,1)",
                 "insert into tblAccount values(4,'1122','应收账款',0,1,1,1)",
                 "insert into tblAccount values(5,'2202','应付账款',0,1,1,-1)",
                 "insert into tblAccount values(6,'6601','销售费用',0,1,1,1)",
                 "insert into tblCurrency values(1,'RMB','人民币')",
                 "insert into tblCurrency values(2,'USD','美元')",
                 "insert into tblCustomer values(501,'001','甲公司')",
                 "insert into tblCustomer values(502,'002','乙公司')",
                 "insert into tblCustomer values(503,'01A','丙公司')",
                 "insert into tblDepartment values(601,'01','销售部')",
                 "insert into tblDepartment values(602,'02','市场部')",
                 "insert into tblItemDetailV values(71,1,501)",
                 "insert into tblItemDetailV values(71,2,601)",
                 "insert into tblItemDetailV values(72,1,502)",
                 "insert into tblItemDetailV values(72,2,601)",
                 "insert into tblItemDetailV values(73,1,501)",
                 "insert into tblItemDetailV values(73,2,602)",
                 "insert into tblItemDetailV values(74,1,503)",
             })
            m_connection->execute(sql);
        fillCash();
        fillReceivables();
        fillOthers();
        transaction.commit();
    }

    // account, combination, year, period, currency, then opening, debit, credit, year to date, closing;
    // original before base
    void balance(const std::string& values)
    {
        m_connection->execute("insert into tblAccountBal values(" + values + ")");
    }

    void fillCash()
    {
        balance("2,0,2009,1,1, 100,100, 50,50, 30,30, 50,50, 30,30, 120,120");
        balance("2,0,2009,2,1, 120,120, 10.1,10.1, 0,0, 60.1,60.1, 30,30, 130.1,130.1");
        balance("3,0,2009,1,2, 10,68, 5,34, 0,0, 5,34, 0,0, 15,102");
        balance("3,0,2009,2,2, 15,102, 0,0, 5,34, 5,34, 5,34, 10,68");
        balance("1,0,2009,1,1, 100,100, 50,50, 30,30, 50,50, 30,30, 120,120");
        balance("1,0,2009,1,2, 10,68, 5,34, 0,0, 5,34, 0,0, 15,102");
        balance("1,0,2009,2,1, 120,120, 10.1,10.1, 0,0, 60.1,60.1, 30,30, 130.1,130.1");
        balance("1,0,2009,2,2, 15,102, 0,0, 5,34, 5,34, 5,34, 10,68");
        balance("1,0,2008,12,1, 0,0, 100,100, 0,0, 100,100, 0,0, 100,100");
    }

    void fillReceivables()
    {
        balance("4,0,2009,2,1, 0,0, 1000,1000, 300,300, 1000,1000, 300,300, 700,700");
        balance("4,71,2009,2,1, 0,0, 600,600, 0,0, 600,600, 0,0, 600,600");
        balance("4,72,2009,2,1, 0,0, 0,0, 300,300, 0,0, 300,300, -300,-300");
        balance("4,73,2009,2,1, 0,0, 150,150, 0,0, 150,150, 0,0, 150,150");
        balance("4,74,2009,2,1, 0,0, 250,250, 0,0, 250,250, 0,0, 250,250");
    }

    void fillOthers()
    {
        balance("5,0,2009,1,1, -80,-80, 0,0, 20,20, 0,0, 20,20, -100,-100");
        balance("5,0,2009,2,1, -100,-100, 0,0, 0,0, 0,0, 20,20, -100,-100");
        balance("6,0,2009,1,1, 0,0, 40,40, 40,40, 40,40, 40,40, 0,0");
        m_connection->execute("insert into tblProfitAndLoss values(6,0,2009,1,1,40,40,40,40)");
        m_connection->execute("insert into tblQtyBalance values(2,0,2009,1,1, 3,1.5,0.5,1.5,0.5,4)");
    }

    /// The sum of column f, "none" without rows, or the return value and error.
    std::string fetched(const ProcedureCall& call)
    {
        const ProcedureResult result = m_connection->call(call);
        if (result.error)
            return "error " + result.error->description;
        if (result.returnValue != 1 || !result.rows)
            return "returned " + std::to_string(result.returnValue);
        if (result.rows->isEmpty())
            return "none";
        double sum = 0;
        for (std::size_t row = 0; row < result.rows->rowCount(); ++row)
            sum += result.rows->number(row, "F");
        return numberText(sum);
    }

    DatabaseFolder m_folder;
    std::unique_ptr<Connection> m_connection;
};

struct Fetch {
    const char* what;
    ProcedureCall call;
    const char* expected;
};

TEST_F(AcctProcedureTest, EachKindReadsItsPeriodsAndSign)
{
    const Fetch cases[] = {
        {"opening of the first period", acctCall(account("100101"), "1", "", "2009", "1", "2"), "100"},
        {"closing of the last period", acctCall(account("100101"), "2", "", "2009", "1", "2"), "130.1"},
        {"debits of the range", acctCall(account("100101"), "3", "", "2009", "1", "2"), "60.1"},
        {"credits of the range", acctCall(account("100102"), "4", "", "2009", "1", "2"), "34"},
        {"debits to date of the last", acctCall(account("100102"), "5", "", "2009", "2", "2"), "34"},
        {"credits to date", acctCall(account("2202"), "6", "", "2009", "1", "1"), "20"},
        {"profit and loss", acctCall(account("6601"), "7", "", "2009", "1", "1"), "40"},
        {"profit and loss to date", acctCall(account("6601"), "8", "", "2009", "1", "1"), "40"},
        {"opening quantity", acctCall(account("100101"), "9", "", "2009", "1", "1"), "3"},
        {"closing quantity", acctCall(account("100101"), "10", "", "2009", "1", "1"), "4"},
        {"quantity in", acctCall(account("100101"), "11", "", "2009", "1", "1"), "1.5"},
        {"quantity out", acctCall(account("100101"), "12", "", "2009", "1", "2"), "0.5"},
        {"no quantities kept", acctCall(account("1122"), "10", "", "2009", "2", "2"), "none"},
        {"credit accounts are positive", acctCall(account("2202"), "2", "", "2009", "1", "1"), "100"},
        {"stands on the debit side", acctCall(account("1122"), "13", "", "2009", "2", "2"), "700"},
        {"not on the credit side", acctCall(account("1122"), "14", "", "2009", "2", "2"), "0"},
        {"credit side of payables", acctCall(account("2202"), "14", "", "2009", "1", "1"), "100"},
        {"key in full width", acctCall(account("2202"), "１４ ", "", "2009", "1", "1"), "100"},
        {"no movement is a figure", acctCall(account("2202"), "4", "", "2009", "2", "2"), "0"},
        {"no row is none", acctCall(account("2202"), "4", "", "2009", "3", "3"), "none"},
        {"unknown key", acctCall(account("2202"), "15", "", "2009", "1", "1"), "returned 0"},
        {"key with a tail", acctCall(account("2202"), "1x", "", "2009", "1", "1"), "returned 0"},
    };
    for (const Fetch& c : cases)
        EXPECT_EQ(fetched(c.call), c.expected) << c.what;
}

TEST_F(AcctProcedureTest, CurrencyYearAndPeriodsHaveDefaults)
{
    const Fetch cases[] = {
        {"all currencies in base", acctCall(account("1001"), "2", "", "2009", "", "1"), "222"},
        {"one currency in original amounts", acctCall(account("1001"), "2", "USD", "2009", "", "1"), "15"},
        {"currency in other letter case", acctCall(account("1001"), "2", "usd ", "2009", "", "1"), "15"},
        {"unknown currency", acctCall(account("1001"), "2", "EUR", "2009", "", "1"), "returned 0"},
        {"latest year, last period with balances", acctCall(account("1001"), "2"), "198.1"},
        {"first period is 1", acctCall(account("1001"), "1"), "168"},
        {"last period of an earlier year", acctCall(account("1001"), "2", "", "2008"), "100"},
        {"a year without balances", acctCall(account("1001"), "2", "", "1999"), "none"},
        {"periods the wrong way round", acctCall(account("1001"), "3", "", "2009", "2", "1"), "none"},
        {"no number as year", acctCall(account("1001"), "2", "", "2009年"),
         "error 存储过程 sp_GS_AcctProc 的参数 fYear 不是整数: 2009年"},
        {"no account", acctCall(account("9999"), "2"), "none"},
    };
    for (const Fetch& c : cases)
        EXPECT_EQ(fetched(c.call), c.expected) << c.what;
}

/// The ledger's latest year and periods are those of the ledger as each wave of calls finds it.
TEST_F(AcctProcedureTest, BlankYearsAndPeriodsFollowTheLedger)
{
    const std::vector<ProcedureCall> calls{acctCall(account("1001"), "2"),
                                           acctCall(account("1001"), "2", "", "2008"),
                                           acctCall(account("1001"), "2")};
    const auto amounts = [&] {
        std::string all;
        for (const ProcedureResult& result : m_connection->callProcedures(calls)) {
            double sum = 0;
            for (std::size_t row = 0; row < result.rows->rowCount(); ++row)
                sum += result.rows->number(row, "f");
            all += numberText(sum) + " ";
        }
        return all;
    };
    EXPECT_EQ(amounts(), "198.1 100 198.1 ");
    balance("1,0,2009,3,1, 0,0, 0,0, 0,0, 0,0, 0,0, 7,7");
    EXPECT_EQ(amounts(), "7 100 7 ");
    balance("1,0,2010,1,1, 0,0, 0,0, 0,0, 0,0, 0,0, 5,5");
    EXPECT_EQ(amounts(), "5 100 5 ");
}

TEST_F(AcctProcedureTest, AmountsAreTheNearestToTheirFen)
{
    balance("6,0,2010,1,1, 0,0, 0,0.1, 0,0, 0,0, 0,0, 0,0");
    balance("6,0,2010,2,1, 0,0, 0,0.2, 0,0, 0,0, 0,0, 0,0");
    EXPECT_EQ(fetched(acctCall(account("6601"), "3", "", "2010", "1", "2")), "0.3");
    for (const char* amount : {"1234567890123.67", "12345678901234.67", "-12345678901234.67",
                               "99999999999999.98", "123456789012345.67"}) {
        m_connection->execute("delete from tblAccountBal where faccountid=6 and fYear=2011");
        balance("6,0,2011,1,1, 0,0, 0,0, 0,0, 0,0, 0,0, 0," + std::string(amount));
        EXPECT_EQ(fetched(acctCall(account("6601"), "2", "", "2011", "1", "1")), amount);
    }
}

TEST_F(AcctProcedureTest, EveryAmountCountsOnce)
{
    const auto range = [](const std::string& first, const std::string& last) {
        return testing::ledgerFrom + allRows + " and (b.fNumber>='" + first + "' and b.fNumber<='" + last +
               "')";
    };
    const auto pattern = [](const std::string& like) {
        return testing::ledgerFrom + allRows + " and (b.fNumber like '" + like + "')";
    };
    const Fetch cases[] = {
        {"a range leaves out children of matched parents", acctCall(range("1001", "1002"), "2"), "198.1"},
        {"a range of children only", acctCall(range("100101", "100199"), "2"), "198.1"},
        {"a range whose parent lies outside", acctCall(range("100102", "1122"), "2"), "768"},
        {"a pattern of one level", acctCall(pattern("1001__"), "2"), "198.1"},
        {"a pattern over all lengths", acctCall(pattern("1%"), "2"), "898.1"},
        {"a set", acctCall(pattern("100[1-9]"), "2"), "198.1"},
        {"a pattern without literal prefix", acctCall(pattern("_122"), "2"), "700"},
        {"two dialects of width and case", acctCall(pattern("１００１__"), "2"), "198.1"},
        {"no condition counts the top level",
         acctCall(testing::ledgerFrom + allRows, "3", "", "2009", "2", "2"), "1010.1"},
    };
    for (const Fetch& c : cases)
        EXPECT_EQ(fetched(c.call), c.expected) << c.what;
}

TEST_F(AcctProcedureTest, ItemConditionsNarrowEachOther)
{
    const std::string receivables = " and (b.fNumber='1122')";
    const Fetch cases[] = {
        {"one item", acctCall(items(receivables, customer("fNumber='001'")), "3"), "750"},
        {"a range of items", acctCall(items(receivables, customer("fNumber>='001' and fNumber<='002'")), "2"),
         "450"},
        {"a pattern of items", acctCall(items(receivables, customer("fNumber like '00_'")), "2"), "450"},
        {"a letter in the other case", acctCall(items(receivables, customer("fNumber='01a'")), "2"), "250"},
        {"two classes",
         acctCall(items(receivables, customer("fNumber='001'") + department("fNumber='02'")), "2"), "150"},
        {"two classes that do not meet",
         acctCall(items(receivables, customer("fNumber='002'") + department("fNumber='02'")), "2"), "none"},
        {"unknown class: each combination once", acctCall(items(receivables, ""), "2"), "700"},
        {"without an account", acctCall(items("", department("fNumber='01'")), "3"), "600"},
        {"combinations in debit", acctCall(items(receivables, ""), "13"), "1000"},
        {"combinations in credit", acctCall(items(receivables, ""), "14"), "300"},
    };
    for (const Fetch& c : cases)
        EXPECT_EQ(fetched(c.call), c.expected) << c.what;
}

TEST_F(AcctProcedureTest, RefusedTextsFailTheirCallOnly)
{
    const std::string huge = account(std::string(2000, '1'));
    const std::vector<ProcedureCall> calls{
        acctCall("select 1", "2"),
        acctCall(account("1001"), "2"),
        acctCall(testing::ledgerFrom + allRows + " and (b.fNumber='1001", "2"),
        acctCall(huge, "2"),
        acctCall(testing::ledgerFrom + allRows + " and b.nosuch=1", "2"),
        acctCall(account("1001' or '1'='1"), "2"),
        acctCall(account("1001") + " or 1=1", "2"),
        acctCall(account("1001") + "; delete from tblAccountBal", "2"),
        acctCall(testing::ledgerFrom + allRows + customer("fNumber='001'"), "2"),
        acctCall(
            items("", " and c.fitemid in ( select fitemid from tbl Customer  where 1=1  and (fNumber='1' ))"),
            "2"),
        {"sp_other", {}},
        {"sp_GS_AcctProc", {}},
    };
    const auto results = m_connection->callProcedures(calls);
    ASSERT_EQ(results.size(), calls.size());
    for (std::size_t at = 0; at < results.size(); ++at) {
        EXPECT_EQ(results[at].error.has_value(), at != 1) << at;
        EXPECT_EQ(results[at].returnValue, at == 1 ? 1 : -1) << at;
    }
    EXPECT_NE(results[3].error->description.find("strSql"), std::string::npos);
}

TEST_F(AcctProcedureTest, LiftedStatementsGiveWhatTheFinalTextGives)
{
    const SqliteDatabase raw(m_folder.file());
    const std::vector<ProcedureCall> calls{
        acctCall(account("1001"), "2", "USD", "2009", "1", "2"),
        acctCall(account("10''01"), "2"),
        acctCall(items("", customer("fNumber like '0%'")), "3", "", "2009", "1", "2"),
    };
    for (const ProcedureCall& call : calls) {
        const auto sql = finalAcctSql(raw, call);
        ASSERT_TRUE(sql);
        const Recordset rows = raw.prepare(*sql).rows();
        EXPECT_EQ(fetched(call), rows.isEmpty() ? "none" : rows.text(0, "f")) << *sql;
    }
}

} // namespace
} // namespace selfreport
