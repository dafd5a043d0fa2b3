// Vouchers through both bodies of sp_GS_VoucherProc; the server's only where there is one.
#include "fetch/voucher_fetch.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "tests/own_files.h"
#include "tests/tdsserver/RealServer.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using State = VoucherPage::State;

/// 6001 (credit) with 600101; 1122 by customer and department. Worked out by hand.
constexpr const char* rows[] = {
    "insert into tblAccount values(1,'1122','应收账款',0,1,1,1)",
    "insert into tblAccount values(2,'6001','主营业务收入',0,1,0,-1)",
    "insert into tblAccount values(3,'600101','甲类',2,2,1,-1)",
    "insert into tblAccount values(4,'4103','本年利润',0,1,1,-1)",
    "insert into tblCurrency values(1,'RMB','人民币')",
    "insert into tblCurrency values(2,'USD','美元')",
    "insert into tblItemClass values(1,'客户','tblCustomer')",
    "insert into tblItemClass values(2,'部门','tblDepartment')",
    "insert into tblCustomer values(501,'001','甲公司')",
    "insert into tblCustomer values(502,'002','乙公司')",
    "insert into tblDepartment values(601,'01','销售部')",
    "insert into tblItemDetailV values(71,1,501)",
    "insert into tblItemDetailV values(72,1,502)",
    "insert into tblItemDetailV values(72,2,601)",
    "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid) values(1,0,2025,3,1)",
    "insert into tblVoucher values(1,2025,2,'2025-02-10','记-1','销售',0)",
    "insert into tblVoucherEntry values(1,1,1,71,1,113,113,0,0,0,0)",
    "insert into tblVoucherEntry values(1,2,3,0,1,0,0,113,113,0,4)",
    "insert into tblVoucher values(2,2025,2,'2025-02-09','记-2','外销 ''甲''',0)",
    "insert into tblVoucherEntry values(2,1,1,72,2,10,71,0,0,0,0)",
    "insert into tblVoucherEntry values(2,2,3,0,2,0,0,10,71,0,1)",
    "insert into tblVoucher values(3,2025,3,'2025-03-31','记-1','结转损益',1)",
    "insert into tblVoucherEntry values(3,1,3,0,1,184,184,0,0,0,0)",
    "insert into tblVoucherEntry values(3,2,4,0,1,0,0,184,184,0,0)",
};

void store(Connection& connection)
{
    for (const char* row : rows)
        connection.execute(row);
}

class VoucherFetch : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        if (GetParam() && !tds::RealServer::isThere())
            GTEST_SKIP() << "SELFREPORT_TEST_SERVER names no server";
        if (GetParam()) {
            m_server.emplace();
            connection = openConnection(m_server->connectionString());
        } else {
            m_file = test::ownFile("vouchers.db").string();
            std::filesystem::remove(m_file);
            createDatabase(m_file);
            connection = openConnection("Provider=SQLite;Data Source=" + m_file);
        }
    }
    void TearDown() override
    {
        connection.reset();
        closeIdleSessions();
        if (!m_file.empty())
            std::filesystem::remove(m_file);
    }

    std::unique_ptr<Connection> connection;

private:
    std::optional<tds::RealServer> m_server;
    std::string m_file;
};
INSTANTIATE_TEST_SUITE_P(Bodies, VoucherFetch, ::testing::Values(false, true),
                         [](const auto& served) { return served.param ? "Server" : "Embedded"; });

/// Numbers of the lines and the totals: "记-2/1 记-1/1 | 184 0 | 0 0".
std::string outcome(const VoucherPage& page)
{
    if (page.state != State::read)
        return page.state == State::none ? "none" : page.reason;
    std::string text;
    for (const VoucherLine& line : page.lines)
        text += line.number + "/" + std::to_string(line.line) + " ";
    const auto pair = [](double debit, double credit) {
        return numberText(debit) + " " + numberText(credit);
    };
    return text + "| " + pair(page.total.debit, page.total.credit) + " | " +
           pair(page.carried.debit, page.carried.credit);
}

TEST_P(VoucherFetch, GivesTheLinesThatTheArgumentsMean)
{
    EXPECT_EQ(outcome(fetchVouchers(*connection, {"1122", "", "", "2025", "1", "3"})), "none")
        << "a ledger without vouchers";
    store(*connection);
    struct Case {
        const char* what;
        VoucherArguments asked;
        const char* wanted;
    };
    const Case cases[] = {
        {"by date, then voucher", {"1122", "", "", "2025", "1", "3"}, "记-2/1 记-1/1 | 184 0 | 0 0"},
        {"accounts below, one carried over",
         {"6001", "", "", "2025", "1", "3"},
         "记-2/2 记-1/2 记-1/1 | 184 184 | 184 0"},
        {"periods", {"6001", "", "", "2025", "3", "3"}, "记-1/1 | 184 0 | 184 0"},
        {"blank periods: to the last with balances",
         {"6001", "", "", "", "", ""},
         "记-2/2 记-1/2 记-1/1 | 184 184 | 184 0"},
        {"another year", {"6001", "", "", "2024", "1", "12"}, "| 0 0 | 0 0"},
        {"a currency", {"1122", "", " usd ", "2025", "1", "3"}, "记-2/1 | 71 0 | 0 0"},
        {"no such currency", {"1122", "", "EUR", "2025", "1", "3"}, "none"},
        {"no such account", {"9999", "", "", "2025", "1", "3"}, "| 0 0 | 0 0"},
        {"an account is no pattern", {"112_", "", "", "2025", "1", "3"}, "| 0 0 | 0 0"},
        {"an item", {"1122", "客户|001", "", "2025", "1", "3"}, "记-1/1 | 113 0 | 0 0"},
        {"two classes", {"1122", "客户|00*|部门|01", "", "2025", "1", "3"}, "记-2/1 | 71 0 | 0 0"},
        {"a range", {"1122", "客户|002:009", "", "2025", "1", "3"}, "记-2/1 | 71 0 | 0 0"},
        {"a class without codes wants items", {"6001", "客户|", "", "2025", "1", "3"}, "| 0 0 | 0 0"},
        {"an unknown class narrows nothing",
         {"1122", "无此类|1", "", "2025", "1", "3"},
         "记-2/1 记-1/1 | 184 0 | 0 0"},
        {"a quote is a code", {"1122", "客户|0' or '1'='1", "", "2025", "1", "3"}, "| 0 0 | 0 0"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(outcome(fetchVouchers(*connection, c.asked)), c.wanted) << c.what;
    const VoucherPage first = fetchVouchers(*connection, {"1122", "", "", "2025", "1", "3"});
    ASSERT_EQ(first.lines.size(), 2U);
    EXPECT_EQ(first.count, 2);
    EXPECT_EQ(first.lines[0].date, "2025-02-09");
    EXPECT_EQ(first.lines[0].text, "外销 '甲'");
    EXPECT_EQ(first.lines[0].currency, "USD");
    EXPECT_EQ(first.lines[0].amounts.debitFor, 10);
    EXPECT_EQ(first.total.debitFor, 123);
    EXPECT_EQ(fetchVouchers(*connection, {"6001", "", "", "2025", "1", "3"}).total.creditQuantity, 5);
}

TEST_P(VoucherFetch, PagesGoOnWhereTheLastEnded)
{
    store(*connection);
    std::string values;
    for (int line = 1; line <= 450; ++line)
        values += (line > 1 ? ",(" : "(") + std::string("9,") + std::to_string(line) + ",1,71,1,1,1,0,0,0,0)";
    connection->execute("insert into tblVoucher values(9,2025,1,'2025-01-05','记-9','多行',0)");
    connection->execute("insert into tblVoucherEntry values" + values);
    const VoucherArguments asked{"1122", "", "", "2025", "1", "1"};
    std::size_t sizes[4] = {};
    for (int page = 1; page <= 4; ++page) {
        const VoucherPage read = fetchVouchers(*connection, asked, page);
        sizes[page - 1] = read.lines.size();
        EXPECT_EQ(read.count, 450);
        EXPECT_EQ(read.total.debit, 450);
        if (!read.lines.empty()) {
            EXPECT_EQ(read.lines.front().line, (page - 1) * 200 + 1);
        }
    }
    EXPECT_EQ(std::to_string(sizes[0]) + " " + std::to_string(sizes[1]) + " " + std::to_string(sizes[2]) +
                  " " + std::to_string(sizes[3]),
              "200 200 50 0");
}

TEST_P(VoucherFetch, AMissingProcedureIsToldApart)
{
    if (!GetParam())
        GTEST_SKIP() << "the embedded database always has it";
    store(*connection);
    connection->execute("drop procedure sp_GS_VoucherProc");
    EXPECT_EQ(fetchVouchers(*connection, {"1122", "", "", "2025", "1", "3"}).state, State::noProcedure);
    connection->execute("create procedure sp_GS_VoucherProc @account varchar(50),@items varchar(2000),@fYear "
                        "varchar(10),@fPeriod1 varchar(10),@fPeriod2 varchar(10),@currenct varchar(50),@page "
                        "varchar(10) as begin select 1 as a select 2 as b return 1 end");
    EXPECT_EQ(fetchVouchers(*connection, {"1122", "", "", "2025", "1", "3"}).state, State::failed)
        << "another procedure of that name";
}

} // namespace
} // namespace selfreport
