// A fetch that failed is told from one that found nothing.
#include "fetch/ReportEvaluation.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/files/content/content.h"
#include "tests/fetch/names_in.h"
#include "tests/fetch/TestLedger.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::CallPlace;
using spreadsheet::Workbook;
using testing::HasSubstr;

std::string closing(const std::string& account, const std::string& type = "2")
{
    return "Acct(\"" + account + "\" ,\"" + type + "\" , \"\", \"2025\",\"1\",\"2\")";
}

std::string reference(const std::string& report, const std::string& cell)
{
    return "REF_F(\"" + report + "\" ,\"" + cell + "\" , \"\")";
}

/// A1 an amount, A2 twice that, A3 nothing to do with it, A4 a sum by text, B1 an account that there is not.
std::vector<std::byte> referencedReport()
{
    Workbook report;
    report.registerFunction("Acct", 6, [](spreadsheet::FunctionCall& call) { call.decline(); });
    spreadsheet::demand(report.sheet(1).setFormula({1, 1}, closing("1001")));
    spreadsheet::demand(report.sheet(1).setFormula({1, 2}, "A1*2"));
    spreadsheet::demand(report.sheet(1).setFormula({1, 3}, "1+1"));
    spreadsheet::demand(report.sheet(1).setFormula({1, 4}, "INDIRECT(\"A1\")"));
    spreadsheet::demand(report.sheet(1).setFormula({2, 1}, closing("9999")));
    return spreadsheet::saveContent(report);
}

struct Evaluated {
    explicit Evaluated(bool shared = true)
        : evaluation(workbook, sharedContext.database)
    {
        evaluation.addSelfFunction();
        evaluation.setFetchesShared(shared);
    }
    std::string failed() const { return failedFetchesText(evaluation.diagnostics()); }

    Workbook workbook;
    ReportEvaluation evaluation;
};

TEST(FailedFetches, AreToldFromThoseThatFoundNothing)
{
    const std::string tooLong = closing(std::string(2500, '1'));
    const struct {
        std::string broken, formula;
        bool fails;
        std::string reason; ///< part of it; "" for a good fetch
    } cases[] = {
        {"", closing("1001"), false, ""},
        {"", closing("9999"), false, "不存在"},
        {"", closing("1001", "99"), false, "取数类型"},
        {"", closing("1122|没有|001"), false, "偏大"},
        {"delete from tblAccountBal", closing("1001"), false, "没有科目"},
        {"drop table tblAccountBal", closing("1001"), true, "tblAccountBal"},
        {"drop table tblAccountBal", closing("9999"), true, "tblAccountBal"},
        {"drop table tblSelfReportFieldKey", closing("1001"), true, "tblSelfReportFieldKey"},
        {"drop table tblItemClass", closing("1122|客户|001"), true, "客户"},
        {"insert into tblSelfReportFieldKey values(77,'77','新')", closing("1001", "77"), true,
         "没有给出有效"},
        {"insert into tblSelfReportFieldKey values(77,'77','新')", closing("9999", "77"), false, "不存在"},
        {"", tooLong, true, "过长"},
        {"", reference("引用", "A1"), false, ""},
        {"", reference("引用", "B1"), false, "不存在"},
        {"", reference("没有", "A1"), false, "没有名为"},
        {"", reference("引用", "Z9"), false, "为空"},
        {"drop table tblAccountBal", reference("引用", "A1"), true, "tblAccountBal"},
        {"drop table tblAccountBal", reference("引用", "A2"), true, "tblAccountBal"},
        {"drop table tblAccountBal", reference("引用", "A3"), false, ""},
        {"drop table tblAccountBal", reference("引用", "A4"), true, "tblAccountBal"},
        {"update tblCWSelfReport set fFileContent=x'0102'", reference("引用", "A1"), true, "引用"},
        {"update tblCWSelfReport set fFileContent=null", reference("引用", "A1"), true, "引用"},
        {"drop table tblCWSelfReport", reference("引用", "A1"), true, "tblCWSelfReport"},
    };
    for (const auto& c : cases) {
        const test::TestLedger ledger;
        ledger.addReport(5, "引用", referencedReport());
        if (!c.broken.empty())
            ledger.run(c.broken);
        for (const bool shared : {true, false}) {
            SCOPED_TRACE(c.broken + " " + c.formula.substr(0, 60) + (shared ? " shared" : " alone"));
            Evaluated report(shared);
            spreadsheet::demand(report.workbook.sheet(1).setFormula({1, 1}, c.formula));
            report.evaluation.recalculate();
            EXPECT_EQ(report.failed(), c.fails ? "1 处取数失败，数字不可用" : "");
            ASSERT_EQ(report.evaluation.diagnostics().empty(), c.reason.empty());
            if (!c.reason.empty()) {
                EXPECT_TRUE(test::namesIn(report.evaluation.diagnostics()[0].reason, c.reason))
                    << report.evaluation.diagnostics()[0].reason;
            }
        }
    }
}

TEST(FailedFetches, ADatabaseThatCannotBeOpenedFailsAllOfThem)
{
    const test::TestLedger ledger;
    gConnString = "Provider=SQLite;Data Source=/nowhere/x.db";
    for (const bool shared : {true, false}) {
        Evaluated report(shared);
        spreadsheet::demand(
            report.workbook.sheet(1).setFormula({1, 1}, closing("1001") + "+" + closing("1002")));
        spreadsheet::demand(report.workbook.sheet(1).setFormula({1, 2}, reference("引用", "A1")));
        report.evaluation.recalculate();
        EXPECT_EQ(report.failed(), "2 处取数失败，数字不可用"); // cells, not calls
        EXPECT_EQ(report.workbook.sheet(1).displayText({1, 1}), "0.00");
    }
}

/// Five seconds for each of them would be minutes for a sheet.
TEST(FailedFetches, OfALockedLedgerAreWaitedForTogether)
{
    if (tds::road() != tds::Road::embedded)
        GTEST_SKIP() << "a server's locks are waited for by itself";
    const test::TestLedger ledger;
    Evaluated report;
    spreadsheet::Sheet& sheet = report.workbook.sheet(1);
    constexpr int cells = 5;
    for (int row = 1; row <= cells; ++row) {
        spreadsheet::demand(sheet.setFormula({1, row}, closing("100" + std::to_string(row))));
        spreadsheet::demand(sheet.setFormula({2, row}, reference("报表" + std::to_string(row), "A1")));
    }
    report.evaluation.recalculate(); // leaves a session open
    const SqliteDatabase other(ledger.file());
    other.run("begin exclusive");
    const auto begin = std::chrono::steady_clock::now();
    report.evaluation.recalculate();
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(waited.count(), 4 * 5) << "for reports and ledger, and a session to each";
    EXPECT_EQ(report.failed(), std::to_string(2 * cells) + " 处取数失败，数字不可用");
    for (const CellDiagnostic& diagnostic : report.evaluation.diagnostics())
        EXPECT_THAT(diagnostic.reason, HasSubstr("数据库正被其他程序占用")) << diagnostic.reason;
    other.run("commit");
    report.evaluation.recalculate();
    EXPECT_EQ(report.failed(), "");
}

TEST(FailedFetches, StandUntilTheirCellsAreFetchedAgainWhereverTheyMove)
{
    const test::TestLedger ledger;
    Evaluated report;
    spreadsheet::Sheet& sheet = report.workbook.sheet(1);
    spreadsheet::demand(sheet.setFormula({1, 1}, closing("1001")));
    spreadsheet::demand(sheet.setFormula({1, 2}, "Acct(B2,\"2\",\"\",\"2025\",\"1\",\"2\")"));
    spreadsheet::demand(sheet.setFormula({1, 3}, closing("1002")));
    sheet.setText({2, 2}, "1001");
    report.evaluation.recalculate();
    EXPECT_EQ(report.failed(), "");

    ledger.database().rename("tblAccountBal", "gone"); // in the middle of the work
    sheet.setText({2, 2}, "1002");
    report.evaluation.recalculateChanged();
    EXPECT_EQ(report.failed(), "1 处取数失败，数字不可用");
    sheet.setText({5, 5}, "x");
    report.evaluation.recalculateChanged();
    ASSERT_TRUE(firstFailed(report.evaluation.diagnostics()));
    EXPECT_EQ(firstFailed(report.evaluation.diagnostics())->place, (CallPlace{1, 1, 2}));

    ASSERT_FALSE(sheet.insertRows(1, 1));
    report.evaluation.recalculateChanged();
    ASSERT_TRUE(firstFailed(report.evaluation.diagnostics()));
    bool isAtItsPlace = false;
    for (const CellDiagnostic& diagnostic : report.evaluation.diagnostics())
        isAtItsPlace = isAtItsPlace || (diagnostic.hasFailed() && diagnostic.place == CallPlace{1, 1, 3});
    EXPECT_TRUE(isAtItsPlace);

    ledger.database().rename("gone", "tblAccountBal");
    report.evaluation.recalculate();
    EXPECT_EQ(report.failed(), "");
    EXPECT_EQ(sheet.value({1, 3}), spreadsheet::Value(2000.5));
}

TEST(FailedFetches, WhatACellIsComputedFromIsFoundThroughOthers)
{
    Workbook workbook;
    spreadsheet::demand(workbook.addSheet("表2"));
    spreadsheet::Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= 5; ++row)
        spreadsheet::demand(sheet.setFormula({1, row}, std::to_string(row) + "*2"));
    spreadsheet::demand(sheet.setFormula({2, 1}, "SUM(A1:A3)"));
    spreadsheet::demand(sheet.setFormula({3, 1}, "IF(B1>0,1,2)"));
    spreadsheet::demand(sheet.setFormula({4, 1}, "A4+A5"));
    spreadsheet::demand(sheet.setFormula({5, 1}, "OFFSET(D1,0,0)"));
    spreadsheet::demand(workbook.sheet(2).setFormula({1, 1}, "Sheet1!C1"));
    const auto reads = [&](CallPlace cell, CallPlace source) {
        return workbook.recalculation().isComputedFrom(cell, source);
    };
    EXPECT_TRUE(reads({1, 2, 1}, {1, 1, 3}));
    EXPECT_FALSE(reads({1, 2, 1}, {1, 1, 4}));
    EXPECT_TRUE(reads({2, 1, 1}, {1, 1, 1}));
    EXPECT_FALSE(reads({2, 1, 1}, {1, 1, 5}));
    EXPECT_TRUE(reads({1, 4, 1}, {1, 1, 5}));
    EXPECT_TRUE(reads({1, 5, 1}, {1, 1, 1})); // may read anything
    workbook.recalculate();
    EXPECT_EQ(sheet.displayText({2, 1}), "12");
}

} // namespace
} // namespace selfreport
