#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

constexpr Colour red = 0xFF0000;

void makeBold(CellStyle& style)
{
    style.font.bold = true;
}

void makeRed(CellStyle& style)
{
    style.background = red;
}

/// "B": bold, "R": red, "-": neither, of the cells A1:C3 and of D4, which no command of these tests means.
std::string looks(const Sheet& sheet)
{
    std::string text;
    for (int row = 1; row <= 4; ++row) {
        for (int column = 1; column <= 4; ++column) {
            const CellStyle& style = sheet.style({column, row});
            const bool isRed = style.background == red;
            text += style.font.bold ? (isRed ? "X" : "B") : isRed ? "R" : "-";
        }
        text += " ";
    }
    return text;
}

TEST(Restyle, LooksOfRowsColumnsAndCellsAddUp)
{
    const CellRange column{2, 1, 2, 500}, row{1, 2, 50, 2}, cell{2, 2, 2, 2}, all{1, 1, 50, 500};
    const struct {
        const char* what;
        std::vector<std::pair<CellRange, void (*)(CellStyle&)>> steps;
        const char* looks;
    } cases[] = {
        {"column", {{column, makeBold}}, "-B-- -B-- -B-- -B-- "},
        {"row", {{row, makeBold}}, "---- BBBB ---- ---- "},
        {"column, then row", {{column, makeBold}, {row, makeRed}}, "-B-- RXRR -B-- -B-- "},
        {"row, then column", {{row, makeRed}, {column, makeBold}}, "-B-- RXRR -B-- -B-- "},
        {"cell, then column", {{cell, makeRed}, {column, makeBold}}, "-B-- -X-- -B-- -B-- "},
        {"column, then cell", {{column, makeBold}, {cell, makeRed}}, "-B-- -X-- -B-- -B-- "},
        {"row, then all", {{row, makeRed}, {all, makeBold}}, "BBBB XXXX BBBB BBBB "},
        {"all, then row", {{all, makeBold}, {row, makeRed}}, "BBBB XXXX BBBB BBBB "},
        {"column, row, cell, all",
         {{column, makeBold}, {row, makeBold}, {cell, makeRed}, {all, makeRed}},
         "RXRR XXXX RXRR RXRR "},
    };
    for (const auto& [what, steps, expected] : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        workbook.setUndoEnabled(true);
        for (const auto& [range, change] : steps)
            sheet.restyle(range, change);
        EXPECT_EQ(looks(sheet), expected) << what;
        for (std::size_t i = 0; i < steps.size(); ++i)
            workbook.undo();
        EXPECT_EQ(looks(sheet), "---- ---- ---- ---- ") << what << ": one undo step each";
        EXPECT_FALSE(workbook.canUndo()) << what;
    }
}

TEST(Restyle, WholeLinesTakeNoCells)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.changeSettings([](SheetSettings& settings) { settings.rowCount = maxRows; });
    sheet.setNumber({2, 5}, 1);
    sheet.restyle({2, 1, 4, maxRows}, makeBold);
    EXPECT_EQ(sheet.storedColumns(), 2);
    EXPECT_EQ(sheet.column(2)->slots().size(), 1u);
    EXPECT_TRUE(sheet.style({2, 5}).font.bold);
    sheet.setText({3, 900'000}, "新");
    EXPECT_TRUE(sheet.style({3, 900'000}).font.bold) << "what is typed later";
    EXPECT_FALSE(sheet.insertRows(6, 2));
    EXPECT_TRUE(sheet.style({2, 6}).font.bold) << "inserted rows";
    EXPECT_FALSE(sheet.insertColumns(3, 1));
    EXPECT_FALSE(sheet.style({3, 1}).font.bold);
    EXPECT_TRUE(sheet.style({5, 1}).font.bold);
}

TEST(Spans, OfOneCellStandUntilTheyAreTakenAway)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.addSpan({2, 2, 2, 2});
    EXPECT_EQ(sheet.spanAt({2, 2}), (CellRange{2, 2, 2, 2}));
    EXPECT_FALSE(sheet.insertRows(1, 1));
    EXPECT_EQ(sheet.spanAt({2, 3}), (CellRange{2, 3, 2, 3}));
    sheet.addSpan({4, 1, 4, 2});
    EXPECT_FALSE(sheet.deleteRows(1, 1));
    EXPECT_EQ(sheet.settings().spans, (std::vector{CellRange{2, 2, 2, 2}}))
        << "what is left of two cells is no span";
    sheet.removeSpans({1, 1, 9, 9});
    EXPECT_TRUE(sheet.settings().spans.empty());
}

/// Lists and captions, also those of whole columns, go where their cells go.
TEST(CellLists, FollowTheirCells)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.restyle({1, 1, 1, 9}, [](CellStyle& style) { style.type = CellType::dropDown; });
    sheet.restyle({2, 1, 2, 9}, [](CellStyle& style) { style.type = CellType::button; });
    sheet.changeSettings([](SheetSettings& settings) {
        settings.dropDowns.insert_or_assign({1, 0}, DropDownEntries({"列"}));
        settings.dropDowns.insert_or_assign({1, 2}, DropDownEntries({"甲", "乙"}));
        settings.captions[{2, 2}] = "计算";
        settings.notes[{2, 2}] = "批注";
    });
    const auto shows = [&sheet](int column, int row) {
        const auto* entries = sheet.dropDownEntries({column, row});
        const std::string* caption = sheet.buttonCaption({column, row});
        return (entries ? entries->front() : "-") + "," + (caption ? *caption : "-");
    };
    EXPECT_EQ(shows(1, 1), "列,-");
    EXPECT_EQ(shows(1, 2), "甲,-");
    EXPECT_FALSE(sheet.copyCells({1, 1, 2, 2}, sheet, {5, 5}));
    EXPECT_EQ(shows(5, 5), "列,-");
    EXPECT_EQ(shows(5, 6), "甲,-");
    EXPECT_EQ(shows(6, 6), "-,计算");
    EXPECT_FALSE(sheet.fillDown({5, 6, 6, 8}));
    EXPECT_EQ(shows(5, 8), "甲,-");
    EXPECT_EQ(shows(6, 8), "-,计算");
    EXPECT_FALSE(sheet.moveCells({1, 2, 2, 2}, sheet, {8, 8}));
    EXPECT_EQ(shows(8, 8), "甲,-");
    EXPECT_EQ(shows(9, 8), "-,计算");
    EXPECT_EQ(shows(2, 2), "-,-");
    EXPECT_EQ(sheet.settings().notes, (std::map<CellAddress, std::string>{{{9, 8}, "批注"}}));
    EXPECT_FALSE(sheet.insertRows(1, 1));
    EXPECT_EQ(shows(8, 9), "甲,-");
    EXPECT_EQ(shows(9, 9), "-,计算");
}

} // namespace
} // namespace spreadsheet
