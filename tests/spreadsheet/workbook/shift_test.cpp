#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <functional>
#include <gtest/gtest.h>
#include <limits>

using namespace spreadsheet;

namespace {

using Edit = std::function<Refusal(Sheet&)>;

const Edit rowAt3 = [](Sheet& sheet) { return sheet.insertRows(3, 1); };
const Edit twoRowsAt3 = [](Sheet& sheet) { return sheet.insertRows(3, 2); };
const Edit withoutRows3To4 = [](Sheet& sheet) { return sheet.deleteRows(3, 2); };
const Edit columnAtC = [](Sheet& sheet) { return sheet.insertColumns(3, 1); };
const Edit withoutColumnB = [](Sheet& sheet) { return sheet.deleteColumns(2, 1); };

} // namespace

TEST(Shift, ReferencesFollowTheirCells)
{
    struct Case {
        const char* what;
        const char*
            formula; ///< in E10 of the sheet, and in E10 of another one with the sheet's name before it
        const Edit& edit;
        const char* expected;
    };
    const Case cases[] = {
        {"above the place", "A2+1", rowAt3, "A2+1"},
        {"at the place", "A3", rowAt3, "A4"},
        {"fixed and small letters", "$a$3 * b3", rowAt3, "$a$4 * b4"},
        {"range around the place grows", "SUM(A1:A9)", twoRowsAt3, "SUM(A1:A11)"},
        {"range that begins there moves", "SUM(A3:B4)", rowAt3, "SUM(A4:B5)"},
        {"range that ends above stays", "SUM(A1:A2)", rowAt3, "SUM(A1:A2)"},
        {"typed from below to above", "SUM(B9:A1)", rowAt3, "SUM(B10:A1)"},
        {"whole columns know no rows", "SUM(A:B)", rowAt3, "SUM(A:B)"},
        {"whole rows move", "SUM(2:5)", rowAt3, "SUM(2:6)"},
        {"the last row is cut off", "SUM(A1:A1048576)", rowAt3, "SUM(A1:A1048576)"},
        {"a single last row is lost", "A1048576", rowAt3, "#REF!"},
        {"the only cell is deleted", "A3+A5", withoutRows3To4, "#REF!+A3"},
        {"range loses its middle", "SUM(A1:A9)", withoutRows3To4, "SUM(A1:A7)"},
        {"range loses its head", "SUM(A4:A9)", withoutRows3To4, "SUM(A3:A7)"},
        {"range loses its tail", "SUM(A1:A3)", withoutRows3To4, "SUM(A1:A2)"},
        {"range is deleted whole", "SUM(A3:B4,A1)", withoutRows3To4, "SUM(#REF!,A1)"},
        {"columns move", "C1+B1+$D1", columnAtC, "D1+B1+$E1"},
        {"range of columns grows", "SUM(A1:D1)", columnAtC, "SUM(A1:E1)"},
        {"column is deleted", "B1+C1", withoutColumnB, "#REF!+B1"},
        {"whole columns shrink", "SUM(A:C)", withoutColumnB, "SUM(A:B)"},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        demand(workbook.addSheet("其他"));
        workbook.setUndoEnabled(true);
        Sheet& sheet = workbook.sheet(1);
        Sheet& other = workbook.sheet(2);
        ASSERT_FALSE(sheet.setFormula({5, 10}, c.formula)) << c.what;
        ASSERT_FALSE(other.setFormula({5, 10}, std::string("SUM(Sheet1!A3)+") + c.formula));
        ASSERT_FALSE(c.edit(sheet)) << c.what;
        std::string found;
        for (int row = 1; row <= 12; ++row) {
            for (int column = 1; column <= 6; ++column)
                found += sheet.formula({column, row});
        }
        EXPECT_EQ(found, c.expected) << c.what;
        EXPECT_TRUE(other.formula({5, 10}).ends_with(c.formula))
            << c.what << ": the other sheet's own cells stay";
        workbook.undo();
        EXPECT_EQ(sheet.formula({5, 10}), c.formula) << c.what << ", undone";
        workbook.redo();
        workbook.undo();
        EXPECT_EQ(sheet.formula({5, 10}), c.formula) << c.what << ", redone and undone";
    }
}

TEST(Shift, FilledFormulasAreCutWhereTheirReferencesCross)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    demand(sheet.setFormula({2, 2}, "A1+SUM(A$1:A2)"));
    demand(sheet.fillDown({2, 2, 2, 8}));
    ASSERT_FALSE(sheet.insertRows(5, 2));
    const char* const expected[] = {"A1+SUM(A$1:A2)", "A2+SUM(A$1:A3)", "A3+SUM(A$1:A4)", "", "",
                                    "A4+SUM(A$1:A7)", "A7+SUM(A$1:A8)", "A8+SUM(A$1:A9)"};
    for (int row = 2; row <= 9; ++row)
        EXPECT_EQ(sheet.formula({2, row}), expected[row - 2]) << row;
    ASSERT_FALSE(sheet.deleteRows(4, 4));
    EXPECT_EQ(sheet.formula({2, 3}), "A2+SUM(A$1:A3)");
    EXPECT_EQ(sheet.formula({2, 4}), "#REF!+SUM(A$1:A4)");
    EXPECT_EQ(sheet.formula({2, 5}), "A4+SUM(A$1:A5)");
}

TEST(Shift, SettingsMoveAlong)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.addSpan({1, 2, 2, 4});
    sheet.addSpan({1, 6, 3, 6});
    sheet.addSpan({1, maxRows - 1, 1, maxRows});
    demand(sheet.setArrayFormula({4, 7, 4, 8}, "{1;2}"));
    sheet.changeSettings([](SheetSettings& settings) {
        settings.rows.sizes[5] = 900;
        settings.rows.hidden[6] = true;
        settings.rows.sizes[maxRows] = 100;
        settings.print.titleTop = 2;
        settings.print.titleBottom = 3;
        settings.print.rowBreaks = {{2, true}, {5, true}};
        settings.print.titleLeft = settings.print.titleRight = 2;
        settings.print.area = {{1, 2, 4, 8}, {2, 10, 2, 12}};
    });
    ASSERT_FALSE(sheet.insertRows(3, 1));
    const SheetSettings& settings = sheet.settings();
    EXPECT_EQ(settings.spans[0], (CellRange{1, 2, 2, 5})) << "grows around the place";
    EXPECT_EQ(settings.spans[1], (CellRange{1, 7, 3, 7}));
    EXPECT_EQ(settings.spans.size(), 2u) << "one row is left of the last span, which makes none";
    EXPECT_EQ(settings.arrays[0], (CellRange{4, 8, 4, 9}));
    EXPECT_EQ(settings.rows.size(6), 900);
    EXPECT_EQ(settings.rows.size(7), 0);
    EXPECT_FALSE(settings.rows.sizes.contains(maxRows + 1));
    EXPECT_EQ(settings.print.titleBottom, 4);
    EXPECT_EQ(settings.print.titleLeft, 2) << "columns stay";
    EXPECT_EQ(settings.print.area, (std::vector<CellRange>{{1, 2, 4, 9}, {2, 11, 2, 13}}));
    EXPECT_EQ(settings.print.rowBreaks, (std::map<int, bool>{{2, true}, {6, true}}));
    EXPECT_EQ(settings.rowCount, 501);
    demand(sheet.deleteRows(1000, 5));
    EXPECT_EQ(settings.rowCount, 501) << "nothing of the sheet was removed";
    demand(sheet.deleteColumns(2, 1));
    EXPECT_EQ(settings.print.titleLeft + settings.print.titleRight, 0);
    EXPECT_EQ(settings.print.area, (std::vector<CellRange>{{1, 2, 3, 9}})) << "one went with its column";
}

/// What stands in the frozen part, the heading of the table say, goes on standing there.
TEST(Shift, FrozenRowsAndColumnsStayFrozen)
{
    const struct {
        Edit edit;
        int rows, columns; // frozen after it, of three rows and two columns
    } cases[] = {{[](Sheet& s) { return s.insertRows(1, 2); }, 5, 2},
                 {[](Sheet& s) { return s.insertRows(3, 1); }, 4, 2},
                 {[](Sheet& s) { return s.insertRows(4, 1); }, 3, 2},
                 {[](Sheet& s) { return s.deleteRows(2, 1); }, 2, 2},
                 {[](Sheet& s) { return s.deleteRows(3, 5); }, 2, 2},
                 {[](Sheet& s) { return s.deleteRows(1, 3); }, 0, 2},
                 {[](Sheet& s) { return s.insertColumns(2, 1); }, 3, 3},
                 {[](Sheet& s) { return s.deleteColumns(1, 2); }, 3, 0}};
    for (const auto& [edit, rows, columns] : cases) {
        Workbook workbook;
        workbook.setUndoEnabled(true);
        Sheet& sheet = workbook.sheet(1);
        sheet.changeSettings([](SheetSettings& settings) {
            settings.frozenRows = 3;
            settings.frozenColumns = 2;
        });
        ASSERT_FALSE(edit(sheet));
        EXPECT_EQ(sheet.settings().frozenRows, rows);
        EXPECT_EQ(sheet.settings().frozenColumns, columns);
        workbook.undo();
        EXPECT_EQ(sheet.settings().frozenRows, 3);
        EXPECT_EQ(sheet.settings().frozenColumns, 2);
    }
}

TEST(Shift, RefusedEditsChangeNothing)
{
    struct Case {
        const char* what;
        Edit edit;
    };
    const Case cases[] = {
        {"row 0", [](Sheet& s) { return s.insertRows(0, 1); }},
        {"none", [](Sheet& s) { return s.insertRows(1, 0); }},
        {"negative", [](Sheet& s) { return s.insertRows(1, -1); }},
        {"far too many", [](Sheet& s) { return s.insertRows(1, std::numeric_limits<int>::max()); }},
        {"data would be lost", [](Sheet& s) { return s.insertRows(2, 1); }},
        {"data would be lost to the right", [](Sheet& s) { return s.insertColumns(2, 1); }},
        {"through an array formula", [](Sheet& s) { return s.deleteRows(4, 1); }},
        {"into an array formula", [](Sheet& s) { return s.insertColumns(4, 1); }},
        {"part of an array formula is copied over",
         [](Sheet& s) {
             return s.copyCells({1, 1, 1, 1}, s, {3, 3});
         }},
        {"part of an array formula is moved",
         [](Sheet& s) {
             return s.moveCells({3, 3, 3, 3}, s, {1, 9});
         }},
        {"copied off the sheet",
         [](Sheet& s) {
             return s.copyCells({1, 1, 2, 2}, s, {maxColumns, 1});
         }},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        sheet.setNumber({1, maxRows}, 1);
        sheet.setNumber({maxColumns, 1}, 1);
        demand(sheet.setArrayFormula({3, 3, 4, 4}, "{1,2;3,4}"));
        workbook.setUndoEnabled(true);
        const auto problem = c.edit(sheet);
        EXPECT_TRUE(problem) << c.what;
        EXPECT_FALSE(workbook.canUndo()) << c.what;
    }
}

TEST(CopyAndMove, ReferencesShiftOrFollow)
{
    Workbook workbook;
    demand(workbook.addSheet("二"));
    Sheet& sheet = workbook.sheet(1);
    Sheet& other = workbook.sheet(2);
    demand(sheet.setFormula({2, 2}, "A1+$A$1+A$1"));
    ASSERT_FALSE(sheet.copyCells({2, 2, 2, 2}, sheet, {3, 4}));
    EXPECT_EQ(sheet.formula({3, 4}), "B3+$A$1+B$1");
    ASSERT_FALSE(sheet.copyCells({2, 2, 2, 2}, other, {1, 1}));
    EXPECT_EQ(other.formula({1, 1}), "#REF!+$A$1+#REF!") << "left of the sheet";

    demand(other.setFormula({5, 5}, "Sheet1!B2+SUM(Sheet1!A1:B2)"));
    demand(sheet.setFormula({6, 6}, "B2*2"));
    ASSERT_FALSE(sheet.moveCells({2, 2, 2, 2}, other, {4, 4}));
    EXPECT_EQ(other.formula({4, 4}), "Sheet1!A1+Sheet1!$A$1+Sheet1!A$1") << "it means the same cells";
    EXPECT_EQ(other.formula({5, 5}), "二!D4+SUM(Sheet1!A1:B2)") << "a range that holds more stays";
    EXPECT_EQ(sheet.formula({6, 6}), "二!D4*2");

    demand(sheet.setArrayFormula({1, 10, 1, 12}, "{1;2;3}"));
    ASSERT_FALSE(sheet.moveCells({1, 10, 1, 12}, sheet, {1, 11})) << "onto an overlapping place";
    EXPECT_EQ(sheet.arrayRange({1, 13}), (CellRange{1, 11, 1, 13}));
    EXPECT_FALSE(sheet.hasFormula({1, 10}));
}

TEST(Names, FollowTheirCells)
{
    struct Case {
        const char* what;
        const char* meaning;
        Edit edit;
        const char* expected; ///< what SUM(名) adds afterwards: row numbers stand in column A
    };
    const Case cases[] = {
        {"rows above", "Sheet1!$A$3", rowAt3, "3"},
        {"range typed from below to above loses its upper end", "Sheet1!$A$9:$A$3", withoutRows3To4, "35"},
        {"range typed from below to above loses its lower end", "Sheet1!$A$4:$A$1", withoutRows3To4, "3"},
        {"deleted whole", "Sheet1!$A$3:$A$4", withoutRows3To4, "#REF!"},
        {"whole column and a deleted row", "Sheet1!$A:$A", withoutRows3To4, "48"},
        {"moved", "Sheet1!$A$3:$A$4",
         [](Sheet& s) {
             return s.moveCells({1, 3, 1, 4}, s, {7, 20});
         },
         "7"},
        {"moved in part", "Sheet1!$A$3:$A$4",
         [](Sheet& s) {
             return s.moveCells({1, 3, 1, 3}, s, {7, 20});
         },
         "4"},
    };
    for (const Case& c : cases) {
        Workbook workbook;
        demand(workbook.addSheet("另"));
        Sheet& sheet = workbook.sheet(1);
        for (int row = 1; row <= 10; ++row)
            sheet.setNumber({1, row}, row);
        ASSERT_FALSE(workbook.defineName("名", c.meaning)) << c.what;
        demand(workbook.sheet(2).setFormula({1, 1}, "SUM(名)"));
        workbook.recalculate();
        const std::string before = workbook.sheet(2).displayText({1, 1});
        workbook.setUndoEnabled(true);
        ASSERT_FALSE(c.edit(sheet)) << c.what;
        workbook.recalculateChanged();
        EXPECT_EQ(workbook.sheet(2).displayText({1, 1}), c.expected) << c.what;
        workbook.undo();
        EXPECT_EQ(workbook.sheet(2).displayText({1, 1}), before) << c.what << ", undone";
        workbook.redo();
        EXPECT_EQ(workbook.sheet(2).displayText({1, 1}), c.expected) << c.what << ", redone";
    }
}

TEST(ThreeDimensional, EndsGoOnWithTheirNeighboursAndEditsOfOneSheetLeaveThem)
{
    Workbook workbook;
    for (const char* name : {"二", "三 三", "四"})
        demand(workbook.addSheet(name));
    for (int sheet = 1; sheet <= 4; ++sheet)
        workbook.sheet(sheet).setNumber({1, 1}, sheet);
    demand(workbook.sheet(4).setFormula({2, 2}, "SUM('Sheet1:三 三'!A1)"));
    workbook.setUndoEnabled(true);
    workbook.recalculate();
    const auto state = [&] {
        const Sheet& last = workbook.sheet(workbook.sheetCount());
        return last.formula({2, 2}) + " " + last.displayText({2, 2});
    };
    EXPECT_EQ(state(), "SUM('Sheet1:三 三'!A1) 6");
    demand(workbook.sheet(1).insertRows(1, 1));
    workbook.recalculateChanged();
    EXPECT_EQ(state(), "SUM('Sheet1:三 三'!A1) 5");
    workbook.undo();
    demand(workbook.removeSheet(1));
    workbook.recalculateChanged();
    EXPECT_EQ(state(), "SUM('二:三 三'!A1) 5");
    demand(workbook.removeSheet(2));
    workbook.recalculateChanged();
    EXPECT_EQ(state(), "SUM('二'!A1) 2");
    demand(workbook.removeSheet(1));
    workbook.recalculateChanged();
    EXPECT_EQ(state(), "SUM(#REF!) #REF!");
    for (int step = 0; step < 3; ++step)
        workbook.undo();
    EXPECT_EQ(state(), "SUM('Sheet1:三 三'!A1) 6");
}

TEST(UndoJournal, CountsTextsAndRemovedSheetsAndStaysWithinItsBound)
{
    Workbook workbook;
    demand(workbook.addSheet("big"));
    for (int row = 1; row <= 1000; ++row)
        workbook.sheet(2).setText({1, row}, std::string(10'000, static_cast<char>('a' + row % 26)) +
                                                std::to_string(row));
    workbook.setUndoEnabled(true);
    demand(workbook.removeSheet(2));
    EXPECT_GT(workbook.journal().bytes(), 10'000'000u);
    workbook.undo();
    EXPECT_LT(workbook.journal().bytes(), 100'000u) << "the sheet stands in the workbook again";
    for (int round = 0; round < 60; ++round) {
        for (int row = 1; row <= 500; ++row)
            workbook.sheet(1).setText({1, row}, std::string(20'000, 'x') + std::to_string(round * 500 + row));
    }
    EXPECT_LE(workbook.journal().bytes(), UndoJournal::maxBytes);
    EXPECT_TRUE(workbook.canUndo());
}

/// Undone, steps weigh what they would bring back. Those before them were within the bound and stay.
TEST(UndoJournal, RedoingTakesNoFormerStepAway)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.setTag({1, 1}, std::string(1'000'000, 'x'));
    demand(sheet.fillDown({1, 1, 1, 140}));
    workbook.setUndoEnabled(true);
    sheet.setNumber({9, 1}, 7);
    for (const int column : {2, 3, 4})
        demand(sheet.copyCells({1, 1, 1, 140}, sheet, {column, 1}));
    for (int step = 0; step < 3; ++step)
        workbook.undo();
    ASSERT_GT(workbook.journal().bytes(), UndoJournal::maxBytes);
    workbook.redo();
    workbook.undo();
    workbook.undo();
    EXPECT_TRUE(sheet.value({9, 1}).isEmpty());
}

TEST(UndoJournal, TellsTheEndOfEachStepThatMayHaveChangedSomething)
{
    const struct {
        bool canUndo, changes;
        int told;
    } cases[] = {{true, true, 1}, {true, false, 0}, {false, true, 1}, {false, false, 1}};
    for (const auto& [canUndo, changes, told] : cases) {
        Workbook workbook;
        workbook.setUndoEnabled(canUndo);
        int ends = 0;
        workbook.setStepEndHook([&ends] { ++ends; });
        {
            const UndoStep step(workbook, "两次");
            for (int row = 1; changes && row <= 2; ++row)
                workbook.sheet(1).setNumber({1, row}, 1);
            EXPECT_EQ(ends, 0);
        }
        EXPECT_EQ(ends, told) << canUndo << changes;
    }
}

/// Who keeps something by its place follows it there and back.
TEST(Shift, MovesAreToldAndToldBack)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    SheetCell kept{sheet.id(), {5, 5}};
    workbook.journal().setMoveHook([&](const CellMove& move) { kept = move.placeOf(kept).value_or(kept); });
    workbook.setUndoEnabled(true);
    demand(twoRowsAt3(sheet));
    EXPECT_EQ(kept.cell, (CellAddress{5, 7}));
    demand(columnAtC(sheet));
    EXPECT_EQ(kept.cell, (CellAddress{6, 7}));
    workbook.undo();
    EXPECT_EQ(kept.cell, (CellAddress{5, 7}));
    workbook.undo();
    EXPECT_EQ(kept.cell, (CellAddress{5, 5}));
    workbook.redo();
    EXPECT_EQ(kept.cell, (CellAddress{5, 7}));
}

TEST(Shift, CellsThatAreRemovedOrPushedOffHaveNoPlace)
{
    const struct {
        const char* what;
        AxisShift shift;
        CellAddress cell;
        std::optional<CellAddress> place;
    } cases[] = {
        {"before the removed rows", {true, 3, 0, 2}, {5, 2}, CellAddress{5, 2}},
        {"the first of them", {true, 3, 0, 2}, {5, 3}, {}},
        {"the last of them", {true, 3, 0, 2}, {5, 4}, {}},
        {"behind them", {true, 3, 0, 2}, {5, 5}, CellAddress{5, 3}},
        {"the last row", {true, 3, 2, 0}, {5, maxRows}, {}},
        {"one that comes to be the last", {true, 3, 2, 0}, {5, maxRows - 2}, CellAddress{5, maxRows}},
        {"a removed column", {false, 3, 0, 1}, {3, 5}, {}},
        {"the last column", {false, 3, 1, 0}, {maxColumns, 5}, {}},
    };
    for (const auto& c : cases) {
        const auto place = CellMove::ofShift(7, c.shift).placeOf({7, c.cell});
        EXPECT_EQ(place, c.place ? std::optional(SheetCell{7, *c.place}) : std::nullopt) << c.what;
        EXPECT_EQ(CellMove::ofShift(7, c.shift).placeOf({8, c.cell}), (SheetCell{8, c.cell})) << c.what;
    }
}

/// The values of the first row (column) take its place, and cells of it can be edited.
TEST(Fill, ArrayFormulasThatLieWhollyBelowGiveWay)
{
    for (const bool down : {true, false}) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        sheet.setNumber({1, 1}, 7);
        demand(sheet.setArrayFormula(down ? CellRange{1, 2, 1, 3} : CellRange{2, 1, 3, 1}, "1+1"));
        demand(down ? sheet.fillDown({1, 1, 1, 3}) : sheet.fillRight({1, 1, 3, 1}));
        const CellAddress last = down ? CellAddress{1, 3} : CellAddress{3, 1};
        EXPECT_EQ(sheet.value(last), Value(7.0)) << down;
        EXPECT_EQ(sheet.arrayRange(last), std::nullopt) << down;
        EXPECT_FALSE(sheet.setFormula(last, "2")) << down;
    }
}
