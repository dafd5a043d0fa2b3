#include "spreadsheet/workbook/cell_borders.h"

#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

constexpr BorderLine line{LineStyle::thick, 0x112233}, other{LineStyle::dot, 0};

struct CellBorders : testing::Test {
    CellBorders()
    {
        sheet.changeSettings([](SheetSettings& settings) { settings.rowCount = maxRows; });
        workbook.setUndoEnabled(true);
    }
    /// The sides of a cell that have a line: "ltrb", "-" for none.
    std::string sidesOf(int column, int row)
    {
        const CellStyle& style = sheet.style({column, row});
        std::string text;
        for (const auto& [letter, side] :
             {std::pair('l', style.left), {'t', style.top}, {'r', style.right}, {'b', style.bottom}})
            text += side.style == LineStyle::none ? '-' : letter;
        return text;
    }
    /// Lines above B2, B3 and so on, "a" for `line` and "b" for `other`.
    void drawEdges(std::string_view edges)
    {
        int row = 2;
        for (const char edge : edges) {
            if (edge != '-')
                drawBorders(workbook, sheet, {2, row, 2, row},
                            {{}, {}, edge == 'a' ? line : other, {}, {}, {}});
            ++row;
        }
        ASSERT_EQ(this->edges(static_cast<int>(edges.size())), edges);
    }
    std::string edges(int count)
    {
        std::string text;
        for (int row = 2; row <= count + 1; ++row) {
            const BorderLine &above = sheet.style({2, row - 1}).bottom, &below = sheet.style({2, row}).top;
            text += below == line || above == line ? 'a' : below == other || above == other ? 'b' : '-';
        }
        return text;
    }
    std::size_t storedCells()
    {
        std::size_t count = 0;
        for (int column = 1; column <= sheet.storedColumns(); ++column)
            for (const Column::Slot& slot : sheet.column(column)->slots())
                count += static_cast<std::size_t>(slot.block->count());
        return count;
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

/// Of a million rows: the ends alone, where the outline is another than the inside.
TEST_F(CellBorders, WholeLinesKeepTheirLinesByRowOrColumn)
{
    const CellRange twoColumns{3, 1, 4, maxRows}, twoRows{1, 5, 50, 6}, all{1, 1, 50, maxRows};
    struct Cell {
        CellAddress cell;
        const char* sides;
    };
    const struct {
        const char* what;
        CellRange range;
        BorderLines lines;
        std::size_t mostCells;
        std::vector<Cell> cells;
    } cases[] = {
        {"columns, all",
         twoColumns,
         BorderLines::all(line),
         0,
         {{{2, 700}, "--r-"}, {{3, 1}, "ltrb"}, {{4, 900'000}, "ltrb"}, {{5, 900'000}, "l---"}}},
        {"columns, outline",
         twoColumns,
         BorderLines::outline(line),
         8,
         {{{2, 700}, "--r-"}, {{3, 1}, "lt--"}, {{3, 9}, "l---"}, {{4, maxRows}, "--rb"}, {{5, 9}, "l---"}}},
        {"columns, inside",
         twoColumns,
         BorderLines::inside(line),
         8,
         {{{2, 9}, "----"}, {{3, 1}, "--rb"}, {{3, 9}, "-trb"}, {{4, maxRows}, "lt--"}, {{5, 9}, "----"}}},
        {"rows, outline",
         twoRows,
         BorderLines::outline(line),
         8,
         {{{9, 4}, "---b"}, {{1, 5}, "lt--"}, {{9, 5}, "-t--"}, {{50, 6}, "--rb"}, {{9, 7}, "-t--"}}},
        {"rows, inside",
         twoRows,
         BorderLines::inside(line),
         8,
         {{{9, 4}, "----"}, {{1, 5}, "--rb"}, {{9, 5}, "l-rb"}, {{50, 6}, "lt--"}}},
        {"the sheet, outline",
         all,
         BorderLines::outline(line),
         200,
         {{{1, 1}, "lt--"}, {{1, 9}, "l---"}, {{9, 9}, "----"}, {{50, maxRows}, "--rb"}}},
        {"the sheet, all", all, BorderLines::all(line), 0, {{{1, 1}, "ltrb"}, {{50, 9}, "ltrb"}}},
    };
    for (const auto& [what, range, lines, mostCells, cells] : cases) {
        drawBorders(workbook, sheet, range, lines);
        for (const Cell& expected : cells)
            EXPECT_EQ(sidesOf(expected.cell.column, expected.cell.row), expected.sides)
                << what << " " << cellName(expected.cell);
        EXPECT_LE(storedCells(), mostCells) << what;
        workbook.undo(); // one step
        EXPECT_FALSE(workbook.canUndo()) << what;
        EXPECT_EQ(sidesOf(3, 9) + sidesOf(9, 5) + sidesOf(2, 700), "------------") << what;
    }
}

TEST_F(CellBorders, ALineAcrossKeepsAllElseOfRowsAndColumns)
{
    sheet.restyle({1, 5, 50, 5}, [](CellStyle& style) { style.font.bold = true; });
    sheet.restyle({3, 1, 3, maxRows}, [](CellStyle& style) { style.locked = true; });
    drawBorders(workbook, sheet, {2, 1, 2, maxRows}, BorderLines::outline(line));
    drawBorders(workbook, sheet, {7, 5, 7, 5}, BorderLines::all(other));
    EXPECT_EQ(sidesOf(3, 5), "l---") << "where the row crosses";
    EXPECT_TRUE(sheet.style({3, 5}).font.bold && sheet.style({3, 5}).locked);
    EXPECT_TRUE(sheet.style({3, 800'000}).locked);
    EXPECT_EQ(sheet.style({8, 5}).left, other);
    EXPECT_TRUE(sheet.style({8, 5}).font.bold);
    EXPECT_FALSE(sheet.style({8, 6}).font.bold);
}

/// B2:B5 with a line where a letter stands, before a row is inserted at the fourth and after.
TEST_F(CellBorders, AnEdgeStaysWithItsLineWhenRowsComeBetween)
{
    const struct {
        const char *what, *before, *after; ///< from above B2 to below B5 (B6)
    } cases[] = {
        {"all ruled", "aaaaa", "aaaaaa"},
        {"under a heading with a frame", "-aa--", "-aa---"},
        {"over a total with two lines", "--ab-", "---ab-"},
        {"under the last row", "aaa--", "aaa---"},
        {"over the first row", "--aaa", "---aaa"},
        {"under a heading, other lines within the table", "-aabb", "-aa-bb"},
        {"nobody's", "--a--", "--aa--"},
        {"none", "aa-aa", "aa--aa"},
    };
    for (const auto& [what, before, after] : cases) {
        drawEdges(before);
        ASSERT_FALSE(sheet.insertRows(4, 1));
        partSharedEdge(workbook, sheet, {1, 4, 50, 4});
        EXPECT_EQ(edges(6), after) << what;
        while (workbook.canUndo())
            workbook.undo();
    }
}

/// Likewise, before the third row and the fourth are deleted.
TEST_F(CellBorders, LinesOfDeletedRowsGoWithThem)
{
    const struct {
        const char *what, *before, *after; ///< from above B2 to below B6 (B4)
    } cases[] = {
        {"all ruled", "aaaaaa", "aaaa"},
        {"with a frame of their own", "-a-a--", "----"},
        {"a total with two lines", "-a-b--", "----"},
        {"the last of a table", "aaaa--", "aa--"},
        {"the first of a table", "-aaaaa", "-aaa"},
        {"below a heading with a frame", "aa----", "aa--"},
        {"above one", "---aa-", "-aa-"},
        {"nobody's", "-a----", "-a--"},
        {"lines within them alone", "--a---", "----"},
    };
    for (const auto& [what, before, after] : cases) {
        drawEdges(before);
        takeSharedEdges(workbook, sheet, {1, 3, sheet.settings().columnCount, 4});
        ASSERT_FALSE(sheet.deleteRows(3, 2));
        EXPECT_EQ(edges(4), after) << what;
        while (workbook.canUndo())
            workbook.undo();
    }
}

/// Of three cells two are ends; the one between them stands for what a longer line has within.
TEST_F(CellBorders, ShortColumnsAndRowsHaveAnOutline)
{
    sheet.changeSettings([](SheetSettings& settings) { settings.rowCount = settings.columnCount = 3; });
    drawBorders(workbook, sheet, {2, 1, 2, 3}, BorderLines::outline(line));
    EXPECT_EQ(sidesOf(2, 1) + " " + sidesOf(2, 2) + " " + sidesOf(2, 3), "ltr- l-r- l-rb");
    workbook.undo();
    drawBorders(workbook, sheet, {1, 2, 3, 2}, BorderLines::outline(line));
    EXPECT_EQ(sidesOf(1, 2) + " " + sidesOf(2, 2) + " " + sidesOf(3, 2), "lt-b -t-b -trb");
}

/// Cells get looks of their own, as by a paste, and then bring their sides to what is beside them.
TEST_F(CellBorders, WhatCellsBringIsShownOnBothSides)
{
    struct Look {
        CellRange range;
        BorderLine left, right;
    };
    const BorderLine none{};
    const struct {
        const char* what;
        CellRange brought;
        std::vector<Look> looks;
        std::vector<std::pair<CellAddress, const char*>> sides;
    } cases[] = {
        {"one cell", {2, 2, 2, 2}, {{{2, 2, 2, 2}, line, line}}, {{{1, 2}, "--r-"}, {{3, 2}, "l---"}}},
        {"one without, beside one with lines",
         {2, 2, 2, 2},
         {{{3, 2, 3, 2}, line, line}},
         {{{3, 2}, "--r-"}}},
        {"a whole column, at one row",
         {5, 1, 5, maxRows},
         {{{5, 7, 5, 7}, line, none}},
         {{{4, 7}, "--r-"}, {{5, 7}, "l---"}, {{4, 8}, "----"}, {{5, 8}, "----"}}},
        {"a whole column, but for one row, in two lines",
         {5, 1, 5, maxRows},
         {{{5, 1, 5, maxRows}, line, none}, {{5, 7, 5, 7}, none, none}, {{5, 9, 5, 9}, other, none}},
         {{{4, 6}, "--r-"}, {{5, 6}, "l---"}, {{4, 7}, "----"}, {{5, 7}, "----"}, {{4, 9}, "--r-"}}},
        {"at the sheet's edge", {1, 2, 1, 2}, {{{1, 2, 1, 2}, line, none}}, {{{1, 2}, "l---"}}},
    };
    for (const auto& [what, brought, looks, sides] : cases) {
        for (const Look& look : looks)
            sheet.restyle(look.range,
                          [&](CellStyle& style) { style.left = look.left, style.right = look.right; });
        bringSides(workbook, sheet, brought);
        for (const auto& [cell, expected] : sides)
            EXPECT_EQ(sidesOf(cell.column, cell.row), expected) << what << " " << cellName(cell);
        EXPECT_EQ(sheet.style({4, 9}).right, sheet.style({5, 9}).left) << what;
        while (workbook.canUndo())
            workbook.undo();
    }
}

/// Cut from a row that is ruled as a whole, a cell takes along what it shares with others, but not what the
/// row has at the sheet's edge.
TEST_F(CellBorders, NothingIsSharedBeyondTheSheet)
{
    sheet.restyle({1, 5, sheet.settings().columnCount, 5},
                  [](CellStyle& style) { style.left = style.right = line; });
    SharedLines(workbook, sheet, {1, 5, 1, 5}).clear(workbook, sheet, std::nullopt);
    EXPECT_EQ(sidesOf(1, 5) + sidesOf(2, 5), "l-----r-");
}

/// A span from B2 to C4. What its cells show at its outline, clockwise from the top left.
TEST_F(CellBorders, ASpanHasOneOutline)
{
    const CellRange span{2, 2, 3, 4};
    sheet.addSpan(span);
    const auto shown = [&] {
        const CellStyle& first = sheet.style({2, 2});
        std::string text;
        const auto add = [&](int column, int row, BorderLine CellStyle::*side) {
            text +=
                spanLine(sheet.style({column, row}).*side, first.*side).style == LineStyle::none ? '-' : '#';
        };
        for (const int column : {2, 3})
            add(column, 2, &CellStyle::top);
        for (const int row : {2, 3, 4})
            add(3, row, &CellStyle::right);
        for (const int column : {3, 2})
            add(column, 4, &CellStyle::bottom);
        for (const int row : {4, 3, 2})
            add(2, row, &CellStyle::left);
        return text;
    };
    const BorderLine none{};
    const struct {
        const char* what;
        CellRange range;
        BorderLines lines;
        const char* shown;
    } steps[] = {
        {"left of each cell", span, {line, {}, {}, {}, line, {}}, "-------###"},
        {"all", span, BorderLines::all(line), "##########"},
        {"inside", span, BorderLines::inside(none), "##########"},
        {"none on the right, from one neighbour", {4, 3, 4, 3}, {none, {}, {}, {}, {}, {}}, "###-######"},
        {"none on the left, beside the first cell", {1, 2, 1, 2}, {{}, none, {}, {}, {}, {}}, "###-#####-"},
        {"none between the rows of a column", {3, 1, 3, maxRows}, {{}, {}, {}, {}, {}, none}, "#-#-#-###-"},
        {"a line around a cell above", {3, 1, 3, 1}, BorderLines::outline(line), "###-#-###-"},
        {"none", span, BorderLines::all(none), "----------"},
        {"a line beside the first cell alone", {1, 2, 1, 2}, BorderLines::all(line), "---------#"},
    };
    for (const auto& [what, range, lines, expected] : steps) {
        drawBorders(workbook, sheet, range, lines);
        EXPECT_EQ(shown(), expected) << what;
    }
    EXPECT_EQ(sidesOf(1, 2) + sidesOf(1, 3), "ltrb-t--");
}

} // namespace
} // namespace spreadsheet
