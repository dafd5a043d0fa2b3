#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

constexpr int rows = 300;

/// Runs of every kind: block by block, row by row, cell by cell, an array, a circle.
void fill(Workbook& workbook)
{
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= rows; ++row) {
        const std::string at = std::to_string(row);
        const std::string above = std::to_string(row - 1);
        sheet.setNumber({1, row}, row);
        demand(sheet.setFormula({2, row}, "A" + at + "*2"));
        demand(sheet.setFormula({3, row}, row == 1 ? "A1" : "C" + above + "+B" + at));
        demand(sheet.setFormula({4, row}, row % 2 ? "C" + at + "&\"x\"" : "D" + above + "&LEN(C" + at + ")"));
    }
    demand(sheet.setFormula({5, 1}, "E2+A1"));
    demand(sheet.setFormula({5, 2}, "E1"));
    demand(sheet.setArrayFormula({6, 1, 6, 3}, "A1:A3+C300"));
    demand(sheet.setFormula({7, 1}, "INDIRECT(\"C\"&300)+F1"));
}

std::vector<Value> valuesOf(const Workbook& workbook)
{
    std::vector<Value> values;
    for (int column = 1; column <= 7; ++column)
        for (int row = 1; row <= rows; ++row)
            values.push_back(workbook.sheet(1).value({column, row}));
    return values;
}

TEST(RecalculationPause, StoppedAnywhereItKeepsAllValuesAndWhatIsToBeComputed)
{
    const std::pair<const char*, RecalculationReport (Workbook::*)()> kinds[] = {
        {"changes", &Workbook::recalculateChanged}, {"everything", &Workbook::recalculate}};
    for (const auto& [what, recalculate] : kinds) {
        Workbook workbook;
        fill(workbook);
        workbook.recalculate();
        workbook.sheet(1).setNumber({1, 1}, 1000);
        const std::vector<Value> before = valuesOf(workbook);
        int stops = 0;
        for (;; ++stops) {
            workbook.setPauseHook([left = stops]() mutable { return left-- == 0; });
            if (!(workbook.*recalculate)().stopped)
                break;
            ASSERT_EQ(valuesOf(workbook), before) << what << ", question " << stops;
            ASSERT_LT(stops, 1000) << what;
        }
        EXPECT_GT(stops, 5) << what;
        Workbook fresh;
        fill(fresh);
        fresh.sheet(1).setNumber({1, 1}, 1000);
        fresh.recalculate();
        EXPECT_EQ(valuesOf(workbook), valuesOf(fresh)) << what;
    }
}

TEST(RecalculationPause, LongWorkWithinACellCanBeStopped)
{
    const char* const formulas[] = {"SUM((A1:A100000+1)*2)", "SUM(-A1:A100000)", "SUM(SEQUENCE(300,300))",
                                    "SUM(COUNTIF(A1:A300,A1:A300))"};
    for (const char* formula : formulas) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        demand(sheet.setArrayFormula({2, 1, 2, 1}, formula));
        workbook.recalculate();
        const Value complete = sheet.value({2, 1});
        demand(sheet.setArrayFormula({2, 1, 2, 1}, std::string(formula) + "+1"));
        int questions = 0;
        for (;; ++questions) {
            workbook.setPauseHook([left = questions]() mutable { return left-- == 0; });
            if (!workbook.recalculate().stopped)
                break;
            ASSERT_EQ(sheet.value({2, 1}), complete) << formula << ", question " << questions;
        }
        EXPECT_GT(questions, 1) << formula << " is asked before the cell only";
        EXPECT_EQ(sheet.value({2, 1}), Value(complete.number() + 1)) << formula;
    }
}

TEST(Effort, ACellThatMakesTooMuchIsGivenUp)
{
    Workbook workbook;
    Effort effort([] { return false; });
    const EvaluationPlace place{workbook.book(), 1, {1, 1}, nullptr, &effort};
    auto texts = std::make_shared<Array>(2, 1);
    texts->at(0, 0) = texts->at(1, 0) = Value::text(std::string(32'000, 'x'));
    const Operand longTexts{std::shared_ptr<const Array>(texts)};
    const auto joined = [&] { return applyToArrays(Op::concatenate, longTexts, Value(1.0), place); };
    EXPECT_TRUE(effort.spend(Effort::maxElements - 10'000)) << "texts weigh 4,001 each";
    EXPECT_TRUE(joined().isArray());
    EXPECT_FALSE(joined().isArray());
    EXPECT_FALSE(effort.spend(1));
    effort.beginCell();
    EXPECT_TRUE(joined().isArray());
}

TEST(RecalculationPause, ShownTextsAndNumberTypesWaitForTheEnd)
{
    Workbook workbook;
    workbook.registerFunction("F", 0, [](FunctionCall& call) {
        call.requestNumberType(2);
        call.setResult(7.0);
    });
    Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= rows; ++row) {
        demand(sheet.setFormula({1, row}, "F()"));
        sheet.setShownText({1, row}, "F()");
    }
    workbook.setPauseHook([asked = 0]() mutable { return ++asked == 3; });
    EXPECT_TRUE(workbook.recalculate().stopped);
    EXPECT_EQ(sheet.displayText({1, 1}), "F()");
    EXPECT_EQ(sheet.style({1, 1}).type, CellStyle().type);
    workbook.setPauseHook({});
    EXPECT_FALSE(workbook.recalculate().stopped);
    EXPECT_EQ(sheet.displayText({1, 1}), "7.00");
}

} // namespace
} // namespace spreadsheet
