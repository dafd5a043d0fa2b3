#include "fetch/ledger_fetch.h"

#include "state/fetch_procedures.h"
#include "state/mdlMain.h"
#include "tests/fetch/TestLedger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

LedgerArguments closing(const std::string& account, const std::string& type = "2")
{
    return {account, type, "", "2025", "1", "2"};
}

struct Expected {
    const char* what;
    LedgerArguments arguments;
    std::optional<double> amount;
};

const std::vector<Expected>& fetches()
{
    static const std::vector<Expected> cases{
        {"one account", closing("1001"), 100.25},
        {"pattern", closing("100*"), 2100.75},
        {"range", closing("1001:1122"), 2400.75},
        {"a third piece of a range is not used", closing("1001:1002:2001"), 2100.75},
        {"credit account", closing("2001"), 700},
        {"opening of the first period", closing("1001", "1"), 50.25},
        {"items", closing("1122|客户|001"), 120},
        {"item pattern", closing("1122|客户|00*"), 300},
        {"item range without account", closing("|客户|001:002"), 300},
        {"class without codes counts every combination", closing("1122|客户"), 300},
        {"unknown class narrows nothing", closing("1122|没有|001"), 300},
        {"two classes narrow each other", closing("1122|客户|001|部门|01"), std::nullopt},
        {"table that is no plain name", closing("1122|坏表|001"), 300},
        {"year with blanks", {"1001", "2", "", " 2025 ", " 1 ", " 2 "}, 100.25},
        {"nothing given means latest year and last period", {"1001", "2", "", "", "", ""}, 100.25},
        {"currency", {"1001", "3", "RMB", "2025", "1", "2"}, 50},
        {"unknown account", closing("9999"), std::nullopt},
        {"unknown type", closing("1001", "99"), std::nullopt},
        {"unknown currency", {"1001", "2", "XXX", "2025", "1", "2"}, std::nullopt},
        {"no such year", {"1001", "2", "", "1999", "1", "2"}, std::nullopt},
        {"apostrophe", closing("10'01"), std::nullopt},
        {"apostrophe in a class", closing("1122|客'户|001"), 300},
        {"typographic apostrophe", closing("10’01"), std::nullopt},
    };
    return cases;
}

TEST(LedgerFetch, OneCallAndOneConnectionForEachFetch)
{
    const test::TestLedger ledger;
    for (const Expected& c : fetches()) {
        const DatabaseCounters before = databaseCounters();
        EXPECT_EQ(changeAcctInfo(c.arguments).amount, c.amount) << c.what;
        const DatabaseCounters after = databaseCounters();
        EXPECT_EQ(after.procedureCalls - before.procedureCalls, 1) << c.what;
        EXPECT_EQ(after.opens - before.opens, 1) << c.what;
        EXPECT_EQ(after.closes - before.closes, 1) << c.what;
        EXPECT_FALSE(gCnn) << c.what;
    }
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST(LedgerFetch, ManyAtOnceGiveTheSame)
{
    const test::TestLedger ledger;
    std::vector<LedgerArguments> all;
    for (const Expected& c : fetches())
        all.push_back(c.arguments);
    const std::int64_t batches = databaseCounters().batches;
    const auto answers = fetchLedger(*openConnection(gConnString), all);
    EXPECT_EQ(databaseCounters().batches, batches + 1);
    ASSERT_EQ(answers.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        ASSERT_TRUE(answers[i]) << fetches()[i].what;
        EXPECT_EQ(answers[i]->amount, fetches()[i].amount) << fetches()[i].what;
    }
}

TEST(LedgerFetch, EmptyAccountCallsNothingAndLeavesTheConnectionOpen)
{
    const test::TestLedger ledger;
    const std::int64_t calls = databaseCounters().procedureCalls;
    EXPECT_FALSE(changeAcctInfo(closing("")).amount);
    EXPECT_EQ(databaseCounters().procedureCalls, calls);
    EXPECT_TRUE(gCnn);
    closeDB();
}

TEST(LedgerFetch, TextThatDoesNotFitItsParameterFailsTheCall)
{
    const test::TestLedger ledger;
    // FROM and WHERE take over 400 of the 2000; a Chinese character counts two.
    const LedgerAnswer tooLong = changeAcctInfo(closing(std::string(1600, '1')));
    EXPECT_FALSE(tooLong.amount);
    EXPECT_NE(tooLong.failure.find("strSql"), std::string::npos) << tooLong.failure;
    std::string wide;
    for (int i = 0; i < 800; ++i)
        wide += "科";
    EXPECT_NE(changeAcctInfo(closing(wide)).failure, "");
    EXPECT_EQ(changeAcctInfo(closing(std::string(1000, '1'))).failure, "");
    EXPECT_NE(changeAcctInfo({"1001", "2", "", "12345678901", "", ""}).failure, "");
}

TEST(LedgerFetch, StepThatFailsIsLeftOutAndTheConnectionIsClosed)
{
    struct Case {
        const char* lost; ///< table that is gone
        std::optional<double> amount;
    };
    const Case cases[] = {
        {"tblItemClass", 300}, // the class is not found: no condition
        {"tblCustomer", std::nullopt},
        {"tblAccountBal", std::nullopt},
        {"tblSelfReportFieldKey", std::nullopt},
    };
    for (const Case& c : cases) {
        test::TestLedger ledger;
        ledger.run(std::string("drop table ") + c.lost);
        const LedgerAnswer answer = changeAcctInfo(closing("1122|客户|001"));
        EXPECT_EQ(answer.amount, c.amount) << c.lost;
        EXPECT_NE(answer.failure, "") << c.lost;
        EXPECT_FALSE(gCnn) << c.lost;
        EXPECT_TRUE(ledger.boxes.said.empty()) << c.lost;
    }
}

TEST(LedgerFetch, ParametersInTheProceduresOrder)
{
    const ProcedureCall call = ledgerProcedureCall({"1001", "2", "RMB", " 2009 ", "", "3"}, "from");
    EXPECT_EQ(call.procedure, "sp_GS_AcctProc");
    struct Row {
        const char* name;
        std::size_t size;
        const char* value;
    };
    const Row rows[] = {{"strSql", 2000, "from"}, {"strField", 100, "2"}, {"currenct", 50, "RMB"},
                        {"fYear", 10, "2009"},    {"fPeriod1", 10, ""},   {"fPeriod2", 10, "3"}};
    ASSERT_EQ(call.parameters.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(call.parameters[i].name, rows[i].name);
        EXPECT_EQ(call.parameters[i].size, rows[i].size) << rows[i].name;
        EXPECT_EQ(call.parameters[i].value, rows[i].value) << rows[i].name;
    }
}

ProcedureResult resultOf(std::int64_t returned, const std::vector<Recordset::Cell>& amounts,
                         const std::string& column = "f")
{
    ProcedureResult result;
    result.returnValue = returned;
    result.rows = Recordset({column});
    for (const Recordset::Cell& amount : amounts)
        result.rows->appendRow({amount});
    return result;
}

TEST(LedgerFetch, SumOfTheRowsThatCanBeRead)
{
    struct Case {
        const char* what;
        ProcedureResult result;
        std::optional<double> amount;
    };
    ProcedureResult noColumns;
    noColumns.returnValue = 1;
    noColumns.rows = Recordset();
    ProcedureResult noRows;
    noRows.returnValue = 1;
    const Case cases[] = {
        {"null adds nothing", resultOf(1, {10.0, 2.5, std::monostate()}), 12.5},
        {"texts by their prefix", resultOf(1, {std::string(" 3.5x"), std::string("abc"), std::int64_t{4}}),
         7.5},
        {"rows without the column add nothing", resultOf(1, {1.0}, "g"), 0},
        {"no row", resultOf(1, {}), std::nullopt},
        {"return value 0", resultOf(0, {1.0}), std::nullopt},
        {"return value never set", resultOf(-1, {1.0}), std::nullopt},
        {"row set without columns", noColumns, std::nullopt},
        {"no row set", noRows, std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ledgerAmount(c.result), c.amount) << c.what;
}

TEST(LedgerFetch, DatabaseThatCannotBeOpenedIsToldOnceARecalculation)
{
    test::TestLedger ledger;
    gConnString = "Provider=SQLite;Data Source=/nowhere/at all.db";
    {
        const RecalculationUnderWay underWay(sharedContext.database);
        const std::int64_t opens = databaseCounters().opens;
        for (int i = 0; i < 3; ++i)
            EXPECT_FALSE(changeAcctInfo(closing("1001")).amount);
        EXPECT_EQ(databaseCounters().opens, opens);
        EXPECT_EQ(ledger.boxes.said.size(), 1U);
    }
    EXPECT_FALSE(changeAcctInfo(closing("1001")).amount); // a new try, a new box
    const RecordingDialogs::Said box{Icon::critical, "测试账套", "数据库文件不存在或读取错误!"};
    EXPECT_THAT(ledger.boxes.said, testing::ElementsAre(box, box));
}

} // namespace
} // namespace selfreport
