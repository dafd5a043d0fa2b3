// Times commands on many cells, and weighs what the cells' looks take in memory.
#include "bench/bench_table.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QApplication>

#include <stdexcept>

using namespace spreadsheet;

namespace {

constexpr int rows = 100'000, columns = 10, formats = 200;

void fillNumbers(Sheet& sheet, int lastColumn, int lastRow)
{
    for (int column = 1; column <= lastColumn; ++column)
        for (int row = 1; row <= lastRow; ++row)
            sheet.setNumber({column, row}, row * 1.25 + column);
}

void require(bool holds, const char* what)
{
    if (!holds)
        throw std::runtime_error(what);
}

/// Bold on the selection, as from the menu, and its undo; each with the picture on screen.
void benchBold(BenchTable& table, const std::string& what, const CellRange& selected, int formatsThere = 1)
{
    SpreadsheetControl grid;
    grid.cells().workbook().setUndoEnabled(false);
    demand(grid.cells().setRowCount(rows));
    fillNumbers(grid.cells().sheet(), 20, 5000);
    for (int row = 1; row <= 5000 && formatsThere > 1; ++row)
        for (int column = 1; column <= 20; ++column)
            grid.cells().changeStyle({column, row, column, row}, [&](CellStyle& style) {
                style.foreground = static_cast<Colour>((row + column) % formatsThere);
            });
    grid.cells().workbook().setUndoEnabled(true);
    grid.resize(1200, 700);
    grid.show();
    grid.cursor().select(selected);
    QCoreApplication::processEvents();
    const CellAddress corner{selected.right, selected.bottom};
    const auto bold = [&] { return grid.cells().sheet().style(corner).font.bold; };
    const auto once = [&] {
        selfreport::toggleBold(grid);
        grid.repaint();
    };
    const auto back = [&] {
        grid.commands().undo();
        grid.repaint();
    };
    table.row(what,
              1e3 * bestSeconds(
                        5, [&] { require(!bold(), "bold"); },
                        [&] {
                            once();
                            require(bold(), "plain");
                            back();
                        }),
              50, "ms");
    require(!bold(), "not undone");
}

std::size_t bytesOf(const Sheet& sheet)
{
    std::size_t sum = 0;
    for (int column = 1; column <= sheet.storedColumns(); ++column)
        sum += sheet.column(column)->bytes();
    return sum;
}

/// Bytes a cell that the looks add to the values. `formatOf` gives each cell one of the formats.
void weighFormats(BenchTable& table, const std::string& what, int (*formatOf)(int column, int row))
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    fillNumbers(sheet, columns, rows);
    const std::size_t before = bytesOf(sheet);
    for (int column = 1; column <= columns; ++column)
        for (int row = 1; row <= rows; ++row) {
            CellStyle style;
            style.foreground = static_cast<Colour>(formatOf(column, row));
            sheet.setStyle({column, row}, style);
        }
    for (int column = 1; column <= columns; ++column)
        for (int row = 1; row <= rows; row += 997)
            require(sheet.style({column, row}).foreground == static_cast<Colour>(formatOf(column, row)),
                    "another format");
    const double added = static_cast<double>(bytesOf(sheet) - before);
    table.row(what, added / (double(rows) * columns), 2, "B");
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    BenchTable table("formatting");
    benchBold(table, "bold on 100,000 selected cells, painted, and undone", {1, 1, 20, 5000});
    benchBold(table, "the same on cells of 200 formats in turn", {1, 1, 20, 5000}, formats);
    benchBold(table, "the same on 100,000 empty cells", {1, 10'001, 20, 15'000});
    benchBold(table, "the same on 50 whole columns of 100,000 rows", {1, 1, 50, rows});
    benchBold(table, "the same on 1,000 whole rows", {1, 1, 50, 1000});
    weighFormats(table, "looks of 1,000,000 cells, 200 formats in turn, bytes a cell",
                 [](int column, int row) { return (row + column) % formats; });
    weighFormats(table, "the same, formats by stretches of 500 rows",
                 [](int column, int row) { return (row / 500 + column * 20) % formats; });
    return table.finish();
}
