#include "spreadsheet/view/commands/fill.h"
#include "spreadsheet/view/commands/go_to.h"
#include "spreadsheet/view/commands/selection_figures.h"
#include "spreadsheet/view/commands/sort_block.h"
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {

namespace {

struct SheetCommands : testing::Test {
    SheetCommands() { workbook.setUndoEnabled(true); }
    /// Displayed texts of a column, joined by blanks.
    std::string column(int column, int first, int last)
    {
        workbook.recalculateChanged();
        std::string texts;
        for (int row = first; row <= last; ++row)
            texts += sheet.displayText({column, row}) + (row < last ? " " : "");
        return texts;
    }
    void setColumn(int column, const std::vector<std::string>& texts)
    {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            const CellAddress cell{column, static_cast<int>(i) + 1};
            if (texts[i].starts_with('='))
                ASSERT_FALSE(sheet.setFormula(cell, texts[i]));
            else if (texts[i].find_first_not_of("0123456789.-") == std::string::npos && !texts[i].empty())
                sheet.setNumber(cell, std::stod(texts[i]));
            else if (!texts[i].empty())
                sheet.setText(cell, texts[i]);
        }
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

} // namespace

TEST_F(SheetCommands, SortOrdersKindsAndKeepsEqualRowsInOrder)
{
    setColumn(1, {"张", "", "10", "李", "9", "B", "a", "10"});
    setColumn(2, {"1", "2", "3", "4", "5", "6", "7", "8"});
    ASSERT_FALSE(sortBlock(workbook, sheet, {1, 1, 2, 8}, {{1}}, false));
    EXPECT_EQ(column(1, 1, 8), "9 10 10 a B 李 张 ");
    EXPECT_EQ(column(2, 1, 8), "5 3 8 7 6 4 1 2");
    ASSERT_FALSE(sortBlock(workbook, sheet, {1, 1, 2, 8}, {{1, true}, {2, true}}, false));
    EXPECT_EQ(column(1, 1, 8), "张 李 B a 10 10 9 ");
    EXPECT_EQ(column(2, 1, 8), "1 4 6 7 8 3 5 2");
    workbook.undo();
    EXPECT_EQ(column(2, 1, 8), "5 3 8 7 6 4 1 2");
    ASSERT_FALSE(sortBlock(workbook, sheet, {1, 1, 2, 8}, {{2}}, true));
    EXPECT_EQ(column(2, 1, 8), "5 1 2 3 4 6 7 8") << "the header row stays";
}

TEST_F(SheetCommands, SortedFormulasKeepMeaningTheirOwnRow)
{
    setColumn(1, {"3", "1", "2"});
    setColumn(2, {"=A1*10+$D$1", "=A2*10+$D$1", "=A3*10+$D$1"});
    sheet.setNumber({4, 1}, 5);
    sheet.restyle({1, 1, 1, 1}, [](CellStyle& style) { style.font.bold = true; });
    ASSERT_FALSE(sortBlock(workbook, sheet, {1, 1, 2, 3}, {{1}}, false));
    EXPECT_EQ(column(2, 1, 3), "15 25 35");
    EXPECT_EQ(sheet.formula({2, 3}), "A3*10+$D$1");
    EXPECT_TRUE(sheet.style({1, 3}).font.bold);
    sheet.addSpan({1, 2, 2, 2});
    EXPECT_TRUE(sortBlock(workbook, sheet, {1, 1, 2, 3}, {{1, true}}, false));
    EXPECT_EQ(column(2, 1, 3), "15 25 35");
}

/// Each edge is drawn on both of its sides, so lines that went along would come to stand apart.
TEST_F(SheetCommands, SortedRowsLeaveTheLinesOfTheTableWhereTheyAre)
{
    setColumn(1, {"名称", "3", "1", "2"});
    sheet.restyle({1, 2, 1, 2}, [](CellStyle& style) { style.font.bold = true; });
    drawBorders(workbook, sheet, {1, 1, 1, 1}, BorderLines::outline({LineStyle::thick, 0}));
    drawBorders(workbook, sheet, {1, 1, 1, 4}, BorderLines::inside({LineStyle::fineSolid, 0}));
    drawBorders(workbook, sheet, {1, 1, 1, 1}, {{}, {}, {}, BorderLine{LineStyle::thick, 0}, {}, {}});
    ASSERT_FALSE(sortBlock(workbook, sheet, {1, 1, 1, 4}, {{1}}, true));
    EXPECT_EQ(column(1, 1, 4), "名称 1 2 3");
    EXPECT_TRUE(sheet.style({1, 4}).font.bold && !sheet.style({1, 2}).font.bold);
    EXPECT_EQ(sheet.style({1, 2}).top.style, LineStyle::thick);
    EXPECT_EQ(sheet.style({1, 4}).top.style, LineStyle::fineSolid);
    EXPECT_EQ(sheet.style({1, 4}).bottom.style, LineStyle::none);
}

TEST_F(SheetCommands, TheBlockAroundACellEndsAtEmptyRowsAndColumns)
{
    setColumn(2, {"", "x", "1", "2", "", "far"});
    setColumn(3, {"", "y", "", "3"});
    EXPECT_EQ(blockAround(sheet, {2, 3}), (CellRange{2, 2, 3, 4}));
    EXPECT_EQ(blockAround(sheet, {8, 20}), (CellRange{8, 20, 8, 20}));
}

TEST_F(SheetCommands, FillGoesOnWithValuesFormulasLooksAndSpans)
{
    setColumn(1, {"1", "3"});
    setColumn(2, {"=A1*2", "x"});
    sheet.restyle({1, 1, 1, 1}, [](CellStyle& style) { style.font.bold = true; });
    ASSERT_FALSE(fillFromBlock(workbook, sheet, {1, 1, 2, 2}, {1, 1, 2, 6}, true));
    EXPECT_EQ(column(1, 1, 6), "1 3 5 7 9 11");
    EXPECT_EQ(column(2, 1, 6), "2 x 10 x 18 x");
    EXPECT_TRUE(sheet.style({1, 5}).font.bold && !sheet.style({1, 6}).font.bold);
    ASSERT_FALSE(fillFromBlock(workbook, sheet, {1, 1, 1, 2}, {1, 1, 1, 4}, false));
    EXPECT_EQ(column(1, 1, 6), "1 3 1 3 9 11");
    sheet.addSpan({4, 10, 4, 11});
    sheet.setText({4, 10}, "一月");
    ASSERT_FALSE(fillFromBlock(workbook, sheet, {4, 10, 4, 11}, {4, 6, 4, 11}, false));
    EXPECT_EQ(sheet.extent({4, 7}), (CellRange{4, 6, 4, 7}));
    EXPECT_EQ(sheet.displayText({4, 8}), "一月");
    ASSERT_FALSE(fillFromBlock(workbook, sheet, {1, 1, 1, 1}, {1, 1, 3, 1}, true));
    EXPECT_EQ(sheet.displayText({3, 1}), "1");
    EXPECT_TRUE(fillFromBlock(workbook, sheet, {5, 10, 5, 10}, {4, 10, 5, 10}, true))
        << "half of a merged cell";
    EXPECT_EQ(fillGoal({2, 2, 3, 3}, {5, 9}), (CellRange{2, 2, 3, 9}));
    EXPECT_EQ(fillGoal({2, 2, 3, 3}, {1, 3}), (CellRange{1, 2, 3, 3}));
}

TEST_F(SheetCommands, RowsAndColumnsChangeTogetherOrNotAtAll)
{
    setColumn(1, {"1", "2", "3", "4", "5", "6"});
    const auto lines = linesOf({{1, 5, 1, 5}, {2, 2, 3, 3}, {1, 3, 1, 3}}, Axis::rows);
    EXPECT_EQ(lines, (std::vector<LineRange>{{2, 3}, {5, 5}}));
    ASSERT_FALSE(insertLines(workbook, sheet, Axis::rows, lines));
    EXPECT_EQ(column(1, 1, 9), "1   2 3 4  5 6");
    workbook.undo();
    ASSERT_FALSE(deleteLines(workbook, sheet, Axis::rows, lines));
    EXPECT_EQ(column(1, 1, 3), "1 4 6");
    workbook.undo();
    ASSERT_FALSE(sheet.setArrayFormula({3, 1, 3, 3}, "A1:A3"));
    EXPECT_TRUE(deleteLines(workbook, sheet, Axis::rows, {{3, 3}, {6, 6}}));
    EXPECT_TRUE(insertLines(workbook, sheet, Axis::rows, {{3, 3}, {6, 6}}));
    EXPECT_TRUE(clearRanges(workbook, sheet, {{1, 6, 1, 6}, {3, 1, 3, 2}}));
    EXPECT_EQ(column(1, 1, 6), "1 2 3 4 5 6");
    EXPECT_TRUE(deleteLines(workbook, sheet, Axis::columns, {{1, 50}}));
}

TEST_F(SheetCommands, HiddenLinesShowAgainFromTheirNeighbours)
{
    ASSERT_FALSE(hideLines(workbook, sheet, Axis::rows, {{2, 4}, {7, 7}}));
    EXPECT_EQ(sheet.settings().rows.size(3), 0);
    showLines(workbook, sheet, Axis::rows, {{1, 5}});
    EXPECT_EQ(sheet.settings().rows.hidden.size(), 1U);
    resizeLines(workbook, sheet, Axis::columns, {{1, 2}}, 1'000'000);
    EXPECT_EQ(sheet.settings().columns.size(2), maxLineSize);
    resizeLines(workbook, sheet, Axis::columns, {{1, 1}}, 0);
    EXPECT_EQ(sheet.settings().columns.size(1), 0);
    showLines(workbook, sheet, Axis::columns, {{2, 2}});
    EXPECT_EQ(sheet.settings().columns.size(1), maxLineSize) << "with the width it had";
    EXPECT_TRUE(hideLines(workbook, sheet, Axis::columns, {{1, 50}}));
    freezeAt(workbook, sheet, {2, 3});
    EXPECT_EQ(sheet.settings().frozenRows, 2);
    workbook.undo();
    EXPECT_EQ(sheet.settings().frozenRows, 0);
}

TEST_F(SheetCommands, FiguresCountOverlapsOnceAndCancelExactly)
{
    setColumn(1, {"1e", "0.1", "0.2", "-0.3", "x", ""});
    sheet.setNumber({2, 2}, 1e15);
    sheet.setNumber({2, 3}, -1e15);
    const SelectionFigures figures =
        selectionFigures(sheet, {{1, 1, 2, 4}, {1, 3, 1, maxRows}, {2, 2, 2, 2}});
    EXPECT_EQ(figures.filled, 7);
    EXPECT_EQ(figures.numbers, 5);
    EXPECT_EQ(figures.sum, 0);
    EXPECT_EQ(figures.average(), 0.0);
    EXPECT_FALSE(selectionFigures(sheet, {{3, 1, 9, 9}}).average());
}

TEST_F(SheetCommands, TheNameBoxReadsPlaces)
{
    ASSERT_FALSE(workbook.addSheet("一月"));
    ASSERT_FALSE(workbook.defineName("税率", "一月!$B$1"));
    ASSERT_FALSE(workbook.defineName("合计", "SUM(一月!$B$1:$B$3)"));
    struct Case {
        const char* text;
        int sheet; ///< 0: no place
        CellRange range;
    };
    const Case cases[] = {
        {" b12 ", 1, {2, 12, 2, 12}},
        {"$C$9:B2", 1, {2, 2, 3, 9}},
        {"一月!C3", 2, {3, 3, 3, 3}},
        {"C:D", 1, {3, 1, 4, 500}},
        {"2:3", 1, {1, 2, 50, 3}},
        {"税率", 2, {2, 1, 2, 1}},
        {"Ｃ３：ｄ４", 1, {3, 3, 4, 4}}, // as a Chinese input method writes it
        {"一月！Ｃ３", 2, {3, 3, 3, 3}},
        {"合计", 0, {}},
        {"二月!A1", 0, {}},
        {"A501", 0, {}},
        {"A1+1", 0, {}},
        {"", 0, {}},
        {"B", 0, {}},
    };
    for (const Case& c : cases) {
        const auto place = placeOfText(workbook, c.text, 1);
        ASSERT_EQ(place.has_value(), c.sheet != 0) << c.text;
        if (!place)
            continue;
        EXPECT_EQ(place->sheet, c.sheet) << c.text;
        EXPECT_EQ(place->range, c.range) << c.text;
    }
}

/// A heading over merged columns must not go with the first of them.
TEST_F(SheetCommands, WhatAMergedAreaShowsOutlivesItsFirstLines)
{
    const struct {
        const char* what;
        CellRange span;
        Axis axis;
        std::vector<LineRange> lines;
        CellRange left; ///< of the span, one cell if it is none
        const char* reader;
    } cases[] = {
        {"first column", {1, 1, 4, 1}, Axis::columns, {{1, 1}}, {1, 1, 3, 1}, "A1&\"!\""},
        {"two of three rows", {2, 3, 2, 5}, Axis::rows, {{3, 4}}, {2, 3, 2, 3}, "B3&\"!\""},
        {"also what stands above", {2, 3, 3, 6}, Axis::rows, {{2, 4}}, {2, 2, 3, 3}, "B2&\"!\""},
        {"the middle", {1, 1, 4, 1}, Axis::columns, {{2, 3}}, {1, 1, 2, 1}, "A1&\"!\""},
        {"first and last", {1, 1, 4, 1}, Axis::columns, {{1, 1}, {4, 4}}, {1, 1, 2, 1}, "A1&\"!\""},
    };
    for (const auto& [what, span, axis, lines, left, reader] : cases) {
        Workbook book;
        book.setUndoEnabled(true);
        Sheet& edited = book.sheet(1);
        const CellAddress first{span.left, span.top};
        edited.setText(first, "资产负债表");
        edited.restyle({first.column, first.row, first.column, first.row},
                       [](CellStyle& style) { style.font.bold = true; });
        edited.addSpan(span);
        demand(book.addSheet("其他"));
        ASSERT_FALSE(book.sheet(2).setFormula({1, 1}, "Sheet1!" + cellName(first) + "&\"!\""));
        ASSERT_FALSE(deleteLines(book, edited, axis, lines)) << what;
        const CellAddress now{left.left, left.top};
        EXPECT_EQ(edited.displayText(now), "资产负债表") << what;
        EXPECT_TRUE(edited.style(now).font.bold) << what;
        EXPECT_EQ(edited.extent(now), left) << what;
        EXPECT_EQ(edited.settings().spans.size(), left.isOneCell() ? 0U : 1U) << what;
        EXPECT_EQ(book.sheet(2).formula({1, 1}), std::string("Sheet1!") + reader) << what;
        book.undo();
        EXPECT_EQ(edited.displayText(first), "资产负债表") << what;
        EXPECT_EQ(edited.extent(first), span) << what;
    }
    Workbook book; // nothing of the area stays
    Sheet& edited = book.sheet(1);
    edited.setText({1, 1}, "标题");
    edited.addSpan({1, 1, 2, 1});
    edited.setText({3, 1}, "旁边");
    ASSERT_FALSE(deleteLines(book, edited, Axis::columns, {{1, 2}}));
    EXPECT_EQ(edited.displayText({1, 1}), "旁边");
    EXPECT_TRUE(edited.settings().spans.empty());
}

} // namespace spreadsheet
