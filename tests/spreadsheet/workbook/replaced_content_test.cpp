// A content that replaces another within an undo step.
#include "spreadsheet/formula/FormulaPool.h"
#include "tests/spreadsheet/functions/FormulaSheet.h"

#include <sstream>

using namespace spreadsheet;

namespace {

/// What a user can see of a workbook, and what its formulas give when they are computed anew.
std::string everything(Workbook& workbook)
{
    workbook.recalculate();
    std::ostringstream told;
    told << workbook.activeSheet() << workbook.names().size() << '\n';
    for (int index = 1; index <= workbook.sheetCount(); ++index) {
        const Sheet& sheet = workbook.sheet(index);
        told << sheet.name() << ' ' << sheet.settings().columns.size(1) << '\n';
        for (int row = 1; row <= 4; ++row)
            for (int column = 1; column <= 3; ++column)
                told << sheet.formula({column, row}) << '=' << valueText(sheet.value({column, row}))
                     << sheet.style({column, row}).font.bold << '|';
    }
    return told.str();
}

/// Formulas over two sheets, a name, a registered function, looks and sizes; sheet ids are those of `other`.
void fill(Workbook& workbook, double number, const char* second)
{
    workbook.registerFunction("Twice", 1, [](FunctionCall& call) {
        call.setResult(2.0 * static_cast<double>(call.parameterInteger(1)));
    });
    workbook.sheet(1).setNumber({1, 1}, number);
    demand(workbook.addSheet(second));
    demand(workbook.defineName("基数", "Sheet1!$A$1"));
    demand(workbook.sheet(2).setFormula({2, 1}, "Twice(基数)+Sheet1!A1"));
    workbook.sheet(1).restyle({1, 1, 1, 1}, [&](CellStyle& style) { style.font.bold = number > 5; });
    workbook.sheet(1).changeSettings(
        [&](SheetSettings& settings) { settings.columns.sizes[1] = static_cast<int>(100 * number); });
    workbook.setActiveSheet(number > 5 ? 2 : 1);
}

} // namespace

TEST(ReplacedContent, ComesBackWithItsHistory)
{
    Workbook workbook;
    fill(workbook, 7, "一月");
    workbook.setUndoEnabled(true);
    std::vector<std::string> states{everything(workbook)};
    std::vector<std::uint64_t> designs{workbook.designRevision()};
    const auto stepDone = [&] {
        states.push_back(everything(workbook));
        designs.push_back(workbook.designRevision());
    };
    workbook.sheet(1).setNumber({1, 1}, 8);
    stepDone();
    {
        const UndoStep step(workbook, "引入");
        demand(workbook.renameSheet(1, "改名")); // of the former content
        workbook.sheet(1).setNumber({1, 2}, 1);
        Workbook fresh;
        fill(fresh, 3, "二月");
        workbook.replaceContent(std::move(fresh));
        workbook.sheet(2).setNumber({3, 3}, 33); // of the new one
        demand(workbook.addSheet("三月"));
    }
    stepDone();
    demand(workbook.sheet(2).setFormula({1, 4}, "SUM(C3,Sheet1!A1)"));
    stepDone();
    demand(workbook.removeSheet(1));
    stepDone();

    for (int round = 0; round < 2; ++round) {
        for (std::size_t state = states.size() - 1; state-- > 0;) {
            workbook.undo();
            EXPECT_EQ(everything(workbook), states[state]) << round;
            EXPECT_EQ(workbook.designRevision(), designs[state]) << round << ' ' << state;
        }
        EXPECT_FALSE(workbook.canUndo());
        for (std::size_t state = 1; state < states.size(); ++state) {
            workbook.redo();
            EXPECT_EQ(everything(workbook), states[state]) << round;
            EXPECT_EQ(workbook.designRevision(), designs[state]) << round << ' ' << state;
        }
        EXPECT_FALSE(workbook.canRedo());
    }
}

TEST(ReplacedContent, IsTakenBackWithARefusedStep)
{
    Workbook workbook;
    fill(workbook, 7, "一月");
    workbook.setUndoEnabled(true);
    const std::string before = everything(workbook);
    {
        UndoStep step(workbook, "引入");
        workbook.replaceContent(Workbook());
        step.takeBack();
        workbook.sheet(2).setNumber({3, 3}, 1);
    }
    workbook.undo();
    EXPECT_EQ(everything(workbook), before);
    EXPECT_FALSE(workbook.canUndo());
}

TEST(ReplacedContent, OutsideAStepEndsTheHistory)
{
    Workbook workbook;
    workbook.setUndoEnabled(true);
    workbook.sheet(1).setNumber({1, 1}, 1);
    workbook.replaceContent(Workbook());
    EXPECT_FALSE(workbook.canUndo());
    workbook.sheet(1).setNumber({1, 1}, 2);
    workbook.undo();
    EXPECT_TRUE(workbook.sheet(1).value({1, 1}).isEmpty());
}
