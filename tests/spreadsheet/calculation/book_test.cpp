#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/functions/FunctionTable.h"

#include <gtest/gtest.h>

using namespace spreadsheet;

namespace {

void put(BookSheet& sheet, CellAddress cell, Value value)
{
    const Column::Place place = sheet.writableColumn(cell.column).writable(cell.row);
    place.block.setValue(place.index, std::move(value));
}

void putFormula(Book& book, BookSheet& sheet, CellAddress cell, std::string_view text)
{
    const auto sheetId = [&](std::string_view name) {
        const int index = book.sheetIndex(name);
        return index == 0 ? 0 : book.sheet(index).id;
    };
    const auto number = book.formulas.intern(text, cell, sheetId);
    ASSERT_TRUE(std::holds_alternative<std::uint32_t>(number)) << text;
    const Column::Place place = sheet.writableColumn(cell.column).writable(cell.row);
    place.block.setFormula(place.index, std::get<std::uint32_t>(number));
}

} // namespace

TEST(Book, IsComputedWithoutAWorkbook)
{
    Book book(findFunction);
    book.sheets = {std::make_shared<BookSheet>(7, "Data"), std::make_shared<BookSheet>(3, "Sums")};
    BookSheet& data = book.sheet(1);
    BookSheet& sums = book.sheet(2);
    for (int row = 1; row <= 3; ++row)
        put(data, {1, row}, Value(row * 10.0));
    putFormula(book, sums, {2, 1}, "SUM(Data!A1:A3)");
    putFormula(book, sums, {2, 2}, "B1*2");

    Recalculation recalculation(book);
    EXPECT_EQ(recalculation.all().evaluatedCells, 2U);
    EXPECT_EQ(sums.value({2, 2}), Value(120.0));

    put(data, {1, 3}, Value(40.0));
    recalculation.noteChanged(data.id, 1, 3, 3);
    std::swap(book.sheets[0], book.sheets[1]); // formulas mean sheets by their id
    recalculation.noteMoved();
    EXPECT_EQ(recalculation.changed().evaluatedCells, 2U);
    EXPECT_EQ(sums.value({2, 1}), Value(70.0));
    EXPECT_EQ(sums.value({2, 2}), Value(140.0));
}
