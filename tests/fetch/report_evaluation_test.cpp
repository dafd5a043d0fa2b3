#include "fetch/ReportEvaluation.h"

#include "fetch/report_functions.h"
#include "spreadsheet/files/content/content.h"
#include "state/mdlMain.h"
#include "state/shared_state.h"
#include "tests/fetch/names_in.h"
#include "tests/fetch/TestLedger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace selfreport {
namespace {

using spreadsheet::CellAddress;
using spreadsheet::CellType;
using spreadsheet::Sheet;
using spreadsheet::Workbook;

std::string closing(const std::string& account)
{
    return "Acct(\"" + account + "\" ,\"2\" , \"\", \"2025\",\"1\",\"2\")";
}

/// Puts formulas into column A from row 1 on.
void fill(Sheet& sheet, const std::vector<std::string>& formulas)
{
    int row = 0;
    for (const std::string& formula : formulas) {
        const auto problem = sheet.setFormula({1, ++row}, formula);
        EXPECT_FALSE(problem) << formula << ": " << problem.reason();
    }
}

std::vector<std::string> shown(const Sheet& sheet)
{
    std::vector<std::string> texts;
    for (int row = 1; row <= sheet.lastDataRow(); ++row)
        texts.push_back(sheet.displayText({1, row}));
    return texts;
}

std::vector<std::byte> contentOf(const std::vector<std::string>& formulas)
{
    Workbook workbook;
    fill(workbook.sheet(1), formulas);
    return spreadsheet::saveContent(workbook);
}

const std::vector<std::string> mixedFormulas{
    closing("1001"),
    closing("1001"), // equal fetches
    "acct(\"1002\",\"2\",\"\",\"2025\",\"1\",\"2\")",
    "ACCT(\"1122|客户|001\",\"2\",\"RMB\",\"0\",\"0\",\"0\")",
    closing("1001") + "+" + closing("1002"),
    closing("没有"),
    closing(""),
    "Acct(\"1001\",\"2\",\"\",\"x\",\"1\",\"2\")", // no whole number: nothing is handed back
    "IF(A1>0," + closing("2001") + ",0)",
    "Acct(TEXT(1000+1,\"0\"),\"2\",\"\",\"\",\"\",\"\")",
    "REF_F(\"甲表\" ,\"A1\" , \"1\")",
    "REF_F(\"乙表\" ,\"A2\" , \"\")",
    "REF_F(\"没有\" ,\"A1\" , \"\")",
    "SUM(A1:A5,A11)",
};

TEST(Evaluation, SharedAndSingleFetchesGiveTheSame)
{
    const test::TestLedger ledger;
    ledger.addReport(1, "甲表", contentOf({closing("1122"), closing("1002")}));
    ledger.addReport(2, "乙表", contentOf({closing("2001"), closing("1002")}));

    std::vector<std::string> texts[2];
    std::vector<CellDiagnostic> diagnostics[2];
    for (const bool shared : {false, true}) {
        Workbook workbook;
        fill(workbook.sheet(1), mixedFormulas);
        ReportEvaluation evaluation(workbook, sharedContext.database);
        evaluation.addSelfFunction();
        evaluation.setFetchesShared(shared);
        evaluation.recalculate();
        texts[shared] = shown(workbook.sheet(1));
        diagnostics[shared] = evaluation.diagnostics();
        EXPECT_FALSE(gCnn);
    }
    EXPECT_EQ(texts[0], texts[1]);
    EXPECT_EQ(diagnostics[0], diagnostics[1]);
    EXPECT_THAT(texts[0],
                testing::ElementsAre("100.25", "100.25", "2000.50", "120.00", "2100.75", "0.00", "0.00",
                                     "#VALUE!", "700.00", "100.25", "300.00", "2000.50", "", testing::_));
}

TEST(Evaluation, WithoutSharingEachCellMakesItsOwnFetch)
{
    const test::TestLedger ledger;
    Workbook workbook;
    fill(workbook.sheet(1), std::vector<std::string>(20, closing("1001")));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.setFetchesShared(false);
    const DatabaseCounters before = databaseCounters();
    evaluation.recalculate();
    const DatabaseCounters after = databaseCounters();
    EXPECT_EQ(after.procedureCalls - before.procedureCalls, 20);
    EXPECT_EQ(after.opens - before.opens, 20);
    EXPECT_EQ(after.closes - before.closes, 20);
}

TEST(Evaluation, SharingFetchesEachDistinctCallOnceARecalculation)
{
    const test::TestLedger ledger;
    Workbook workbook;
    std::vector<std::string> formulas(50, closing("1001"));
    formulas.resize(100, closing("1002"));
    fill(workbook.sheet(1), formulas);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    for (int recalculation = 0; recalculation < 2; ++recalculation) { // every one starts afresh
        const DatabaseCounters before = databaseCounters();
        evaluation.recalculate();
        EXPECT_EQ(databaseCounters().procedureCalls - before.procedureCalls, 2);
        EXPECT_EQ(databaseCounters().opens - before.opens, 1);
    }
    ledger.run("update tblAccountBal set fEndBal=7 where faccountid=1");
    evaluation.recalculate();
    EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "7.00");
}

TEST(Evaluation, ReferencedReportIsEvaluatedOnceARecalculation)
{
    const test::TestLedger ledger;
    ledger.addReport(1, "甲表",
                     contentOf(std::vector<std::string>{closing("1001"), closing("1002"), closing("1122")}));
    Workbook workbook;
    std::vector<std::string> formulas;
    for (int i = 0; i < 60; ++i)
        formulas.push_back("REF_F(\"甲表\" ,\"A" + std::to_string(i % 3 + 1) + "\" , \"1\")");
    fill(workbook.sheet(1), formulas);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    const DatabaseCounters before = databaseCounters();
    evaluation.recalculate();
    EXPECT_EQ(databaseCounters().procedureCalls - before.procedureCalls, 3);
    EXPECT_EQ(workbook.sheet(1).displayText({1, 60}), "300.00");
}

TEST(Evaluation, ReferencesAndWhatTheyShow)
{
    const test::TestLedger ledger;
    {
        Workbook referenced;
        fill(referenced.sheet(1),
             {closing("1001"), "REF_F(\"乙表\" ,\"A1\" , \"\")", "1234.5*2", "A2+1", "1/0", "IFERROR(A4,5)",
              "\"REF_F(\"&NoSuch(1)", "MyREF_F(1)", "1+ref_f (\"乙表\",\"A1\",\"\")"});
        demand(referenced.addSheet("第二页"));
        referenced.sheet(2).setText({27, 3}, "文字");
        referenced.sheet(2).setText({1, 5}, "ABC5");
        referenced.setActiveSheet(2);
        ledger.addReport(1, "甲'表", spreadsheet::saveContent(referenced));
    }
    ledger.addReport(2, "自己", contentOf({"REF_F(\"自己\" ,\"A1\" , \"\")", closing("1002")}));
    ledger.addReport(3, "坏表", std::vector<std::byte>(40, std::byte{'x'}));
    ledger.addReport(4, "空表", {});
    ledger.addReport(5, "丙’表＇", contentOf({closing("2001")}));
    struct Case {
        const char* formula;
        const char* text;
        const char* reason; ///< part of it; "" for none
    };
    const Case cases[] = {
        {R"(REF_F("甲'表" ,"A1" , "1"))", "100.25", ""},
        {R"(REF_F("丙’表＇" ,"A1" , "1"))", "700.00", ""},
        {R"(REF_F("丙'表'" ,"A1" , "1"))", "", "没有名为“丙'表'”的报表"},
        {R"(REF_F("甲'表" ,"a1" , "1"))", "100.25", ""},
        {R"(ref_f("甲'表" ,"1A" , "1"))", "100.25", ""},
        {R"(REF_F("甲'表" ,"A2" , "1"))", "#NAME?", "A2本身要取别的报表的数"}, // not evaluated there
        {R"(REF_F("甲'表" ,"A4" , "1"))", "#NAME?", "A4本身要取别的报表的数"},
        {R"(REF_F("甲'表" ,"A5" , "1"))", "#DIV/0!", "A5是错误值#DIV/0!"},
        {R"(REF_F("甲'表" ,"A6" , "1"))", "5", ""},
        {R"(REF_F("甲'表" ,"A7" , "1"))", "#NAME?", "A7是错误值#NAME?"},
        {R"(REF_F("甲'表" ,"A8" , "1"))", "#NAME?", "A8是错误值#NAME?"},
        {R"(REF_F("甲'表" ,"A9" , "1"))", "#NAME?", "A9本身要取别的报表的数"},
        {R"(REF_F("甲'表" ,"A3" , "1"))", "2469", ""},
        {R"(REF_F("甲'表" ,"AA3" , "2"))", "文字", ""},
        {R"(REF_F("甲'表" ,"AA3" , ""))", "文字", ""}, // the sheet that it opens on
        {R"(REF_F("甲'表" ,"ABC5" , ""))", "ABC5", "第1列"},
        {R"(REF_F("甲'表" ,"A1" , "9"))", "", "标签"},
        {R"(REF_F("甲'表" ,"A0" , ""))", "", "为空"},
        {R"(REF_F("甲'表" ,"A9999999" , ""))", "", "为空"},
        {R"(REF_F("甲'表" ,"A" , ""))", "", "没有行号"},
        {R"(REF_F("没有" ,"A1" , ""))", "", "没有名为“没有”的报表"},
        {R"(REF_F("坏表" ,"A1" , ""))", "", "内容"},
        {R"(REF_F("空表" ,"A1" , ""))", "", "内容"},
        {R"(REF_F("自己" ,"A1" , ""))", "#NAME?", "A1本身要取别的报表的数"},
        {R"(REF_F("自己" ,"A2" , ""))", "2000.50", ""},
    };
    for (const Case& c : cases) {
        for (const bool shared : {false, true}) {
            Workbook workbook;
            fill(workbook.sheet(1), {c.formula});
            ReportEvaluation evaluation(workbook, sharedContext.database);
            evaluation.addSelfFunction();
            evaluation.setFetchesShared(shared);
            evaluation.recalculate();
            EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), c.text) << c.formula;
            const auto& diagnostics = evaluation.diagnostics();
            ASSERT_EQ(diagnostics.empty(), std::string(c.reason).empty()) << c.formula;
            const std::string reason = diagnostics.empty() ? std::string() : diagnostics[0].reason;
            EXPECT_THAT(reason, testing::HasSubstr(c.reason)) << c.formula;
        }
    }
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST(Evaluation, LostReportTableLeavesReferencesEmpty)
{
    test::TestLedger ledger;
    ledger.run("drop table tblCWSelfReport");
    for (const bool shared : {false, true}) {
        Workbook workbook;
        fill(workbook.sheet(1), {R"(REF_F("甲表" ,"A1" , ""))", closing("1001")});
        ReportEvaluation evaluation(workbook, sharedContext.database);
        evaluation.addSelfFunction();
        evaluation.setFetchesShared(shared);
        evaluation.recalculate();
        EXPECT_THAT(shown(workbook.sheet(1)), testing::ElementsAre("", "100.25"));
        ASSERT_EQ(evaluation.diagnostics().size(), 1U);
        EXPECT_TRUE(test::namesIn(evaluation.diagnostics()[0].reason, "tblCWSelfReport"));
        EXPECT_FALSE(gCnn);
    }
}

TEST(Evaluation, ReferencedTextCountsAsItsNumberInSums)
{
    const test::TestLedger ledger;
    ledger.addReport(1, "甲表", contentOf({closing("1001"), closing("1002")}));
    Workbook workbook;
    fill(workbook.sheet(1),
         {R"(REF_F("甲表" ,"A1" , ""))", R"(REF_F("甲表" ,"A2" , ""))", "SUM(A1:A2)", "A1+1"});
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    EXPECT_EQ(workbook.sheet(1).displayText({1, 3}), "2100.75");
    EXPECT_EQ(workbook.sheet(1).displayText({1, 4}), "101.25");
}

TEST(Evaluation, AcctCellsTakeTheNumberTypeWithTwoDecimals)
{
    const test::TestLedger ledger;
    Workbook workbook;
    demand(workbook.addSheet("第二页"));
    fill(workbook.sheet(2), {closing("1002"), "1+1"});
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    EXPECT_EQ(workbook.sheet(2).style({1, 1}).type, CellType::number);
    EXPECT_EQ(workbook.sheet(2).style({1, 1}).decimals, 2);
    EXPECT_EQ(workbook.sheet(2).style({1, 2}).type, CellType::edit);
    EXPECT_EQ(workbook.sheet(1).style({1, 1}).type, CellType::edit); // same place on the active sheet
}

TEST(Evaluation, ShownFormulasAndBackOnEverySheet)
{
    const test::TestLedger ledger;
    Workbook workbook;
    demand(workbook.addSheet("第二页"));
    for (int index : {1, 2})
        fill(workbook.sheet(index), {closing("1001"), "A1*2", "\"文字\""});
    workbook.sheet(1).setNumber({2, 1}, 5);
    spreadsheet::CellStyle percent;
    percent.type = CellType::percent;
    workbook.sheet(1).setStyle({1, 2}, percent);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    const std::vector<std::string> data[] = {shown(workbook.sheet(1)), shown(workbook.sheet(2))};

    evaluation.showFormulas();
    evaluation.showFormulas(); // a second time must not take the plain text type for the cell's own
    const std::int64_t calls = databaseCounters().procedureCalls;
    evaluation.recalculate(); // leaves the texts on screen
    EXPECT_EQ(databaseCounters().procedureCalls, calls);
    for (int index : {1, 2})
        EXPECT_THAT(shown(workbook.sheet(index)), testing::ElementsAre(closing("1001"), "A1*2", "\"文字\""));
    EXPECT_EQ(workbook.sheet(1).displayText({2, 1}), "5");
    EXPECT_EQ(workbook.sheet(1).tag({1, 2}).view(), "14");
    EXPECT_EQ(workbook.sheet(1).style({1, 2}).type, CellType::edit);

    evaluation.showData();
    EXPECT_EQ(shown(workbook.sheet(1)), data[0]);
    EXPECT_EQ(shown(workbook.sheet(2)), data[1]);
    EXPECT_EQ(workbook.sheet(1).style({1, 2}).type, CellType::percent);
}

TEST(Evaluation, RunRestoresTheTypesOfAReportSavedWithItsFormulasShown)
{
    const test::TestLedger ledger;
    std::vector<std::byte> content;
    {
        Workbook workbook;
        fill(workbook.sheet(1), {closing("1001")});
        ReportEvaluation evaluation(workbook, sharedContext.database);
        evaluation.addSelfFunction();
        evaluation.recalculate();
        evaluation.showFormulas();
        demand(workbook.sheet(1).setFormula({1, 2}, "1/4"));
        workbook.sheet(1).setTag({1, 2}, "我的标记"); // no type code: the type stays
        content = spreadsheet::saveContent(workbook);
    }
    Workbook workbook;
    spreadsheet::loadContent(workbook, content);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), closing("1001")); // opening computes nothing
    const std::int64_t calls = databaseCounters().procedureCalls;
    evaluation.startRun();
    EXPECT_EQ(databaseCounters().procedureCalls, calls + 1);
    EXPECT_EQ(workbook.sheet(1).style({1, 1}).type, CellType::number);
    EXPECT_THAT(shown(workbook.sheet(1)), testing::ElementsAre("100.25", "0.25"));
}

TEST(Evaluation, AFormulaChangedWhereFormulasCameShownKeepsItsType)
{
    const test::TestLedger ledger;
    Workbook workbook;
    {
        Workbook design;
        fill(design.sheet(1), {closing("1001"), "1/4"});
        spreadsheet::CellStyle percent;
        percent.type = CellType::percent;
        design.sheet(1).setStyle({1, 2}, percent);
        ReportEvaluation evaluation(design, sharedContext.database);
        evaluation.showFormulas();
        spreadsheet::loadContent(workbook, spreadsheet::saveContent(design));
    }
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    demand(workbook.sheet(1).setFormula({1, 2}, "1/5"));
    evaluation.showFormulas();
    evaluation.showData();
    EXPECT_EQ(workbook.sheet(1).displayText({1, 2}), "20.00%");
}

TEST(Evaluation, AFailureInTheCallbackIsTold)
{
    const test::TestLedger ledger;
    ASSERT_TRUE(openDB());
    Workbook workbook;
    RunRecord record(workbook);
    const spreadsheet::FunctionCall call("REF_F", {1, 2, 3}, {});
    guardedCall(call, sharedContext.database, record, [] { throw std::runtime_error("读取参数失败"); });
    EXPECT_FALSE(gCnn);
    EXPECT_EQ(ledger.boxes.said,
              (std::vector<RecordingDialogs::Said>{{Icon::critical, "测试账套", "读取参数失败"}}));
}

TEST(Evaluation, EveryCellWithoutAValueHasItsReason)
{
    const test::TestLedger ledger;
    struct Case {
        const char* formula;
        const char* reason;
    };
    const Case cases[] = {
        {R"(Acct("9999" ,"2" , "", "2025","1","2"))", "科目“9999”不存在"},
        {R"(Acct("90:99" ,"2" , "", "2025","1","2"))", "科目“90:99”不存在"},
        {R"(Acct("1122:1001" ,"2" , "", "2025","1","2"))", "科目“1122:1001”不存在，区间的起点大于终点"},
        {R"(Acct("1122｜客户" ,"2" , "", "2025","1","2"))",
         "科目“1122｜客户”不存在，“｜”是全角字符，应为半角的“|”"},
        {R"(Acct("1122|客户|99*～" ,"2" , "", "2025","1","2"))",
         "“客户”中没有项目“99*～”，“～”是全角字符，应为半角的“~”"},
        {R"(Acct("1001" ,"99" , "", "2025","1","2"))", "取数类型“99”不存在"},
        {R"(Acct("1001" ,"2" , "XXX", "2025","1","2"))", "货币“XXX”不存在"},
        {R"(Acct("1001" ,"2" , "", "1999","1","2"))", "总账在1999年1至2期没有科目“1001”的数据"},
        {R"(Acct("" ,"2" , "", "2025","1","2"))", "没有给出科目"},
        {R"(Acct("1122|客户|999" ,"2" , "", "2025","1","2"))", "“客户”中没有项目“999”"},
        {R"(Acct("1122|没有|001" ,"2" , "", "2025","1","2"))",
         "项目类别“没有”不存在，该条件未计入，取数范围偏大"}, // has a value all the same
        {R"(Acct("1001" ,"2" , "", "x","1","2"))", "第4个参数不是整数"},
        {R"(Acct(1/0 ,"2" , "", "2025","1","2"))", "第1个参数有错误"},
        {R"(Acct("1001" ,"2" , "", "12345678901","1","2"))", "fYear"},
    };
    Workbook workbook;
    std::vector<std::string> formulas{closing("1001")}; // the first row is well
    for (const Case& c : cases)
        formulas.emplace_back(c.formula);
    fill(workbook.sheet(1), formulas);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    ASSERT_EQ(evaluation.diagnostics().size(), std::size(cases));
    int row = 1;
    for (const Case& c : cases) {
        const CellDiagnostic diagnostic = evaluation.diagnostics()[static_cast<std::size_t>(row - 1)];
        EXPECT_EQ(diagnostic.place, (spreadsheet::CallPlace{1, 1, ++row}));
        EXPECT_THAT(diagnostic.reason, testing::HasSubstr(c.reason)) << c.formula;
    }
}

TEST(Evaluation, IncrementalRecalculationKeepsOtherCellsReasons)
{
    const test::TestLedger ledger;
    Workbook workbook;
    fill(workbook.sheet(1), {closing("9998"), "Acct(B1,\"2\",\"\",\"2025\",\"1\",\"2\")"});
    workbook.sheet(1).setText({2, 1}, "9999");
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate();
    EXPECT_EQ(evaluation.diagnostics().size(), 2U);
    workbook.sheet(1).setText({2, 1}, "1001");
    evaluation.recalculateChanged();
    ASSERT_EQ(evaluation.diagnostics().size(), 1U);
    EXPECT_EQ(evaluation.diagnostics()[0].place.row, 1);
    workbook.sheet(1).clearContents({1, 1, 1, 1});
    evaluation.recalculateChanged();
    EXPECT_TRUE(evaluation.diagnostics().empty());
}

TEST(Evaluation, LostDatabaseIsToldOnceAndShowsZero)
{
    test::TestLedger ledger;
    Workbook workbook;
    fill(workbook.sheet(1), {closing("1001"), closing("1002"), "REF_F(\"甲表\" ,\"A1\" , \"\")"});
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    gConnString = "Provider=SQLite;Data Source=/nowhere/x.db";
    for (const bool shared : {false, true}) {
        ledger.boxes.said.clear();
        evaluation.setFetchesShared(shared);
        evaluation.recalculate();
        EXPECT_THAT(shown(workbook.sheet(1)), testing::ElementsAre("0.00", "0.00", ""));
        EXPECT_EQ(ledger.boxes.said.size(), 1U);
        EXPECT_EQ(evaluation.diagnostics().size(), 3U);
    }
}

} // namespace
} // namespace selfreport
