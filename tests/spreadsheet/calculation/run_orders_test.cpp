#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <random>

using namespace spreadsheet;

namespace {

void type(Sheet& sheet, const char* cell, const std::string& formula)
{
    const auto problem = sheet.setFormula(*parseCellName(cell), formula);
    EXPECT_FALSE(problem) << formula << ": " << problem.reason();
}

std::string shown(const Sheet& sheet, const char* cell)
{
    return sheet.displayText(*parseCellName(cell));
}

} // namespace

TEST(RunOrders, ChainsOfAHundredThousandCells)
{
    constexpr int rows = 100'000;
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({1, 1}, 1);
    type(sheet, "A2", "A1+1");
    demand(sheet.fillDown({1, 2, 1, rows}));
    sheet.setNumber({2, rows}, 1); // column B runs upward
    type(sheet, "B1", "B2+1");
    demand(sheet.fillDown({2, 1, 2, rows - 1}));
    workbook.recalculate();
    EXPECT_EQ(sheet.value({1, rows}), Value(1.0 * rows));
    EXPECT_EQ(sheet.value({2, 1}), Value(1.0 * rows));
    sheet.setNumber({1, 1}, 11);
    sheet.setNumber({2, rows}, 11);
    workbook.recalculateChanged();
    EXPECT_EQ(sheet.value({1, rows}), Value(rows + 10.0));
    EXPECT_EQ(sheet.value({2, 1}), Value(rows + 10.0));
}

/// Interest, repayment and balance read each other: the balance of the row above, the interest beside.
TEST(RunOrders, LoanScheduleGoesRowByRow)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({4, 1}, 100'000);
    type(sheet, "B2", "D1*0.005");
    type(sheet, "C2", "1000-B2");
    type(sheet, "D2", "D1-C2");
    demand(sheet.fillDown({2, 2, 4, 121}));
    workbook.recalculate();
    double balance = 100'000;
    for (int row = 2; row <= 121; ++row) {
        balance -= 1000 - balance * 0.005;
        ASSERT_NEAR(sheet.value({4, row}).number(), balance, 1e-7) << row;
    }
    sheet.setNumber({4, 1}, 50'000);
    EXPECT_EQ(workbook.recalculateChanged().evaluatedCells, 360u);
    EXPECT_NEAR(sheet.value({3, 2}).number(), 750, 1e-9);
}

TEST(RunOrders, CirclesAreReportedAndBrokenOnesComputed)
{
    struct Case {
        const char* what;
        std::vector<std::pair<const char*, const char*>> formulas;
        std::size_t circular;
    };
    const Case cases[] = {
        {"itself", {{"A1", "A1+1"}}, 1},
        {"two cells", {{"A1", "B1"}, {"B1", "A1"}}, 2},
        {"through a range", {{"A1", "SUM(A1:B3)"}}, 1},
        {"through a longer way", {{"A1", "B9"}, {"B9", "C3+1"}, {"C3", "SUM(A1:A5)"}}, 3},
        {"beside what its text names", {{"A1", "INDIRECT(\"B1\")+SUM(A1:A2)*0"}, {"B1", "1"}}, 1},
        {"a branch that is taken", {{"A1", "IF(B1=0,A1,1)"}}, 1},
        {"crossing runs without a circle", {{"A1", "B2"}, {"A2", "1"}, {"B1", "A2"}, {"B2", "B1"}}, 0},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        for (const auto& [cell, formula] : c.formulas)
            type(sheet, cell, formula);
        type(sheet, "E1", "A1+1");
        const RecalculationReport report = workbook.recalculate();
        EXPECT_EQ(report.circular.size(), c.circular) << c.what;
        if (c.circular == 0)
            continue;
        EXPECT_EQ(shown(sheet, "A1"), "#REF!") << c.what;
        EXPECT_EQ(shown(sheet, "E1"), "#REF!") << c.what;
        sheet.setNumber({1, 1}, 5);
        EXPECT_TRUE(workbook.recalculateChanged().circular.empty()) << c.what;
        EXPECT_EQ(shown(sheet, "E1"), "6") << c.what;
    }
}

TEST(RunOrders, CirclesAreOnlyWhereSomethingIsRead)
{
    struct Case {
        const char* formula; ///< in A1
        const char* value;   ///< "" for a circle
    };
    const Case cases[] = {
        {"IF(B1=0,5,A1+1)", "5"},
        {"IF(B1=1,5,A1+1)", ""},
        {"IF(B1=0,IF(B1=1,A1,6),A1)", "6"},
        {"IFERROR(7,A1)", "7"},
        {"IFERROR(1/B1,A1)", ""},
        {"CHOOSE(2,A1,8)", "8"},
        {"IFS(B1=1,A1,TRUE,9)", "9"},
        {"IFS(TRUE,3,A1=0,4)", "3"},
        {"SWITCH(B1,1,A1,0,4,A1)", "4"},
        {"SWITCH(5,1,2,SUM(A1:A3))", ""},
        {"SUMPRODUCT(IF(B1:B3=0,1,A1))", ""}, // each element may choose
        {"AREAS((A1:A3,B1))+AREAS(A1)", "3"},
        {"IF(ISFORMULA(A1),2,3)", "2"},
        {"CELL(\"row\",A1)+CELL(\"col\",A1:B2)", "2"},
        {"CELL(\"contents\",A1)", ""},
        {"CELL(IF(B1=0,\"row\",\"\"),A1)", ""}, // who knows what it tells
        {"ROW(A1:A3)+COLUMN(A1)+ROWS(A1:A3)+COLUMNS(A1:B3)", "7"},
        {"IF(ISREF(A1),SHEET(A1),9)", "1"},
        {"LEN(FORMULATEXT(A1))", "21"},
        {"SUM(OFFSET(A1,1,1))+COLUMNS(OFFSET(A1,0,0,1,3))", "23"},
        {"ROWS(Own)+AREAS(Own)", "3"},
        {"SUM(Own)", ""},
        {"SUMIF(B1:B2,20,A1)", ""}, // as far as B1:B2 reaches
        {"SUMIF(B3:B4,20,C1)", "0"},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        demand(workbook.defineName("Own", "=Sheet1!$A$1:$A$2"));
        sheet.setNumber({2, 2}, 20);
        type(sheet, "A1", c.formula);
        const RecalculationReport report = workbook.recalculate();
        EXPECT_EQ(report.circular.size(), *c.value ? 0U : 1U) << c.formula;
        EXPECT_EQ(shown(sheet, "A1"), *c.value ? c.value : "#REF!") << c.formula;
    }
}

TEST(RunOrders, WhatIsComputedShowsItsValueAgain)
{
    for (const char* formula : {"IF(B1=0,5,A1+1)", "B1+5"}) { // the first one by itself, as part of a circle
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        type(sheet, "A1", formula);
        workbook.recalculate();
        sheet.setShownText({1, 1}, "旧");
        workbook.recalculate();
        EXPECT_EQ(sheet.shownText({1, 1}).view(), "") << formula;
    }
}

/// The third argument names one cell and is read as far as the first one reaches.
TEST(RunOrders, WhatIsReadBesideTheNamedCellCounts)
{
    for (const char* formula : {"SUMIF(A1:A3,1,B1)", "AVERAGEIF(A1:A3,1,B1)*3"}) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        for (int row = 1; row <= 3; ++row)
            sheet.setNumber({1, row}, 1);
        type(sheet, "B3", "D1*2");
        type(sheet, "C1", formula);
        workbook.recalculate();
        sheet.setNumber({4, 1}, 21);
        sheet.setNumber({2, 2}, 5);
        workbook.recalculateChanged();
        EXPECT_EQ(shown(sheet, "C1"), formula[0] == 'S' ? "47" : "70.5") << formula;
    }
}

/// Two columns that read each other in every row, one way or the other as a switch says.
TEST(RunOrders, WhatReadsWhomMayChange)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    type(sheet, "A1", "IF(C$1=1,B1,ROW())");
    type(sheet, "B1", "IF(C$1=0,A1*10,IF(C$1=1,7,A1))");
    type(sheet, "D1", "IF(C$1<2,SUM(A1:B1),SUM(D2:D3))");
    demand(sheet.fillDown({1, 1, 2, 300}));
    demand(sheet.fillDown({4, 1, 4, 300}));
    const struct {
        double choice;
        const char* row3; ///< A3 B3 D3
        std::size_t circular;
    } steps[] = {{0, "3 30 33", 0}, {3, "3 3 0", 0}, {0, "3 30 33", 0}, {1, "7 7 14", 0}};
    for (const auto& step : steps) {
        sheet.setNumber({3, 1}, step.choice);
        const RecalculationReport report = workbook.recalculateChanged();
        EXPECT_EQ(report.circular.size(), step.circular) << step.choice;
        EXPECT_EQ(shown(sheet, "A3") + " " + shown(sheet, "B3") + " " + shown(sheet, "D3"), step.row3)
            << step.choice;
    }
    type(sheet, "A3", "IF(C1=9,0,B3)");
    EXPECT_TRUE(workbook.recalculateChanged().circular.empty());
    sheet.setNumber({3, 1}, 3);
    EXPECT_EQ(workbook.recalculateChanged().circular.size(), 2U); // only the third row
    EXPECT_EQ(shown(sheet, "A3") + shown(sheet, "B3") + shown(sheet, "B4"), "#REF!#REF!4");
}

TEST(RunOrders, ACallIsMadeOnceThoughItsCellWaits)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    int calls = 0;
    workbook.registerFunction("Amount", 1, [&](FunctionCall& call) {
        ++calls;
        call.setResult(static_cast<double>(call.parameterInteger(1)) * 100);
    });
    type(sheet, "A1", "Amount(2)+IF(B1>0,C1,A1)");
    type(sheet, "B1", "IF(TRUE,3,A1)");
    type(sheet, "C1", "IF(FALSE,A1,4)");
    EXPECT_TRUE(workbook.recalculate().circular.empty());
    EXPECT_EQ(shown(sheet, "A1"), "204");
    EXPECT_EQ(calls, 1);
}

TEST(RunOrders, RangesHearOfChangesAtTheirEdges)
{
    struct Case {
        const char* formula; ///< in D10, filled down to D12
        int changed;         ///< row of column A
        const char* shown;   ///< D10 D11 D12 after the cell became 100; all are 1 before
    };
    const Case cases[] = {
        {"SUM(A$1:A10)", 10, "109 110 111"}, {"SUM(A$1:A10)", 12, "10 11 111"},
        {"SUM(A$1:A10)", 13, "10 11 12"},    {"SUM(A8:A10)", 8, "102 3 3"},
        {"SUM(A8:A10)", 12, "3 3 102"},      {"SUM(A8:A10)", 7, "3 3 3"},
        {"SUM(A10:A$12)", 10, "102 2 1"},    {"SUM($A$5:$A$6)", 6, "101 101 101"},
        {"SUM(A10:A8)", 9, "102 102 3"},     {"SUM(A:A)", 20, "119 119 119"},
        {"SUM(20:20)", 20, "100 119 19"},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        for (int row = 1; row <= 20; ++row)
            sheet.setNumber({1, row}, 1);
        if (std::string(c.formula) == "SUM(20:20)") { // rows move with the cell: 20:20, 21:21, 22:22
            sheet.setNumber({1, 21}, 119);
            sheet.setNumber({1, 22}, 19);
        }
        type(sheet, "D10", c.formula);
        demand(sheet.fillDown({4, 10, 4, 12}));
        workbook.recalculate();
        sheet.setNumber({1, c.changed}, 100);
        workbook.recalculateChanged();
        EXPECT_EQ(shown(sheet, "D10") + " " + shown(sheet, "D11") + " " + shown(sheet, "D12"), c.shown)
            << c.formula << " at A" << c.changed;
    }
}

TEST(RunOrders, WhatShowsOnlyWhileRunningIsComputedAgain)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    type(sheet, "A1", "INDIRECT(\"B\"&C1)+OFFSET(B1,4,0)");
    sheet.setNumber({3, 1}, 9);
    type(sheet, "B9", "B5*2");
    type(sheet, "B5", "C1+1");
    workbook.recalculate();
    EXPECT_EQ(shown(sheet, "A1"), "30");
    sheet.setNumber({3, 1}, 5);
    workbook.recalculateChanged();
    EXPECT_EQ(shown(sheet, "A1"), "12");
}

TEST(RunOrders, APlaceIsNoValue)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= 4; ++row)
        sheet.setNumber({2, row}, row);
    type(sheet, "A1", "ROW(A1)*10+COLUMN(A1)");
    demand(sheet.fillDown({1, 1, 1, 3}));
    type(sheet, "B5", "SUM(B1:OFFSET(B5,-1,0))"); // totals that grow with the rows above them
    type(sheet, "C5", "SUM(C1:INDEX(C:C,ROW()-1))+ROWS(C1:C5)");
    type(sheet, "D1", "ROW(D1)+D1");
    type(sheet, "E1", "ROW(B4)");
    workbook.recalculate();
    EXPECT_EQ(shown(sheet, "A1") + " " + shown(sheet, "A3"), "11 31");
    EXPECT_EQ(shown(sheet, "B5") + " " + shown(sheet, "C5"), "10 5");
    EXPECT_EQ(shown(sheet, "D1"), "#REF!"); // its own value as well
    demand(sheet.insertRows(2, 1));
    sheet.setNumber({2, 2}, 100);
    workbook.recalculateChanged();
    EXPECT_EQ(shown(sheet, "A4") + " " + shown(sheet, "B6") + " " + shown(sheet, "E1"), "41 110 5");
}

/// 3,000 rows with everything that sends a block to the stack machine, most of it at the blocks' edges.
TEST(RunOrders, BlocksEqualTheStackMachine)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    std::mt19937 random(3);
    for (int row = 1; row <= 3000; ++row) {
        sheet.setNumber({1, row}, static_cast<int>(random() % 1000) / 8.0);
        if (random() % 10 != 0)
            sheet.setNumber({2, row}, static_cast<int>(random() % 1000) / 4.0 + 1);
    }
    for (const int row : {511, 512, 513, 1023, 1024, 1025, 1536, 2048, 3000}) {
        sheet.setText({1, row}, row % 2 ? "7" : "文字");
        sheet.setNumber({2, row - 300}, 0);
    }
    sheet.setValue({1, 1300}, Value::boolean(true));
    sheet.setValue({1, 1301}, CellError::na);
    sheet.setNumber({1, 1900}, 1e308);
    const char* const formulas[] = {"A1*2+B1", "A1/B1", "-A1%-B$7", "A1*1E10/B1", "A1", "B1-B1*0.1-B1*0.9"};
    int column = 3;
    for (const char* formula : formulas) {
        ASSERT_FALSE(sheet.setFormula({column, 1}, formula));
        demand(sheet.fillDown({column, 1, column, 3000}));
        ++column;
    }
    workbook.recalculate();
    Evaluator evaluator(workbook.book());
    for (int at = 3; at < column; ++at) {
        for (int row = 1; row <= 3000; ++row) {
            const Formula& formula = workbook.formulas()[sheet.column(at)->formula(row)];
            ASSERT_EQ(evaluator.cellValueOf(formula, {workbook.book(), 1, {at, row}}), sheet.value({at, row}))
                << cellName({at, row}) << " " << sheet.formula({at, row});
        }
    }
    EXPECT_EQ(sheet.displayText({4, 212}), "#DIV/0!");
}

TEST(RunOrders, AmountsThatCancelEndInZero)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= 3000; ++row)
        sheet.setNumber({1, row}, (row % 2 ? 1 : -1) * (0.1 + (row - 1) / 2 * 0.7));
    type(sheet, "B1", "SUM(A1:A3000)");
    type(sheet, "B2", "0.5-0.4-0.1");
    type(sheet, "B3", "IF(0.1+0.2=0.3,\"平\",\"不平\")");
    workbook.recalculate();
    EXPECT_EQ(sheet.value({2, 1}), Value(0.0));
    EXPECT_EQ(sheet.value({2, 2}), Value(0.0));
    EXPECT_EQ(shown(sheet, "B3"), "平");
}
