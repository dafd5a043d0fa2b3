// Times commands on large sheets against their bounds.
#include "bench/bench_table.h"
#include "spreadsheet/view/commands/find_replace.h"
#include "spreadsheet/view/commands/paste.h"
#include "spreadsheet/view/commands/selection_figures.h"
#include "spreadsheet/view/commands/sort_block.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QGuiApplication>
#include <QMimeData>

#include <stdexcept>

using namespace spreadsheet;

namespace {

constexpr int pastedRows = 10'000;
constexpr int pastedColumns = 10;

/// Amounts, dates as numbers, texts, and a column of formulas.
void fillSheet(Sheet& sheet, int columns, int rows)
{
    for (int column = 1; column <= columns; ++column) {
        for (int row = 1; row <= rows; ++row) {
            if (column % 3 == 0)
                sheet.setText({column, row}, "科目" + std::to_string(row % 997));
            else
                sheet.setNumber({column, row}, row * 1.37 + column);
        }
    }
    demand(sheet.setFormula({columns, 1}, "A1*2+B1"));
    demand(sheet.fillDown({columns, 1, columns, rows}));
}

void pasteOnce(Workbook& workbook, const QMimeData& data)
{
    const auto content = readClipboard(workbook, data);
    const auto& offered = std::get<ClipboardContent>(content);
    const auto plan = planPaste(workbook.sheet(1), offered, {1, 1, 1, 1});
    if (paste(workbook, workbook.sheet(1), offered, std::get<PastePlan>(plan)))
        throw std::runtime_error("the paste was refused");
    workbook.recalculateChanged();
    if (workbook.sheet(1).lastDataRow() != pastedRows || workbook.sheet(1).lastDataColumn() != pastedColumns)
        throw std::runtime_error("the paste lacks cells");
}

void benchPaste(BenchTable& table, const std::string& what, const QMimeData& data)
{
    std::unique_ptr<Workbook> workbook;
    const auto fresh = [&] {
        workbook = std::make_unique<Workbook>();
        workbook->setUndoEnabled(true);
    };
    table.row(what, bestSeconds(3, fresh, [&] { pasteOnce(*workbook, data); }), 0.5, "s");
    table.row("   and undone",
              bestSeconds(
                  1, [] {}, [&] { workbook->undo(); }),
              0.5, "s");
}

void benchClipboard(BenchTable& table)
{
    Workbook workbook;
    fillSheet(workbook.sheet(1), pastedColumns, pastedRows);
    workbook.recalculate();
    Copied copied;
    const auto copy = [&] {
        copied = std::move(std::get<Copied>(
            copyToClipboard(workbook, workbook.sheet(1), {1, 1, pastedColumns, pastedRows})));
    };
    table.row("copy 100,000 cells (own form, text and HTML)",
              bestSeconds(
                  3, [] {}, copy),
              0.5, "s");
    QMimeData text, html;
    text.setText(copied.data->text());
    html.setHtml(copied.data->html());
    benchPaste(table, "paste 100,000 cells of ours, read and recalculated", *copied.data);
    benchPaste(table, "paste 100,000 cells of tab-separated text", text);
    benchPaste(table, "paste 100,000 cells of an HTML table", html);
}

void benchLargeSheet(BenchTable& table)
{
    Workbook workbook;
    workbook.setUndoEnabled(true);
    Sheet& sheet = workbook.sheet(1);
    fillSheet(sheet, 10, 100'000);
    workbook.recalculate();
    std::size_t found = 0;
    const auto find = [&](const Search& search) {
        return bestSeconds(
            3, [] {}, [&] { found += findAll(sheet, search).size(); });
    };
    table.row("find a text in 1,000,000 cells", find({"科目996"}), 0.3, "s");
    table.row("find a figure in 1,000,000 cells, as shown", find({"4711.5", {}, SearchIn::values}), 0.3, "s");
    table.row("find with wildcards in 1,000,000 cells", find({"科*99", {false, false, true}}), 0.3, "s");
    table.row("find in formulas and values of 1,000,000 cells", find({"a99999"}), 0.3, "s");
    table.row("count, sum and average of 1,000,000 cells",
              bestSeconds(
                  3, [] {},
                  [&] {
                      found += selectionFigures(sheet, {{1, 1, 10, 100'000}}).numbers > 0;
                  }),
              0.02, "s");
    table.row("sort 100,000 rows of 10 columns",
              bestSeconds(
                  1, [] {},
                  [&] {
                      demand(sortBlock(workbook, sheet, {1, 1, 10, 100'000}, {{3}, {1, true}}, false));
                  }),
              2, "s");
    std::printf("(%zu found)\n", found);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    BenchTable table("commands");
    benchClipboard(table);
    benchLargeSheet(table);
    return table.finish();
}
