// Commands on whole rows and columns.
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Lines that autofit measures at most; beyond the data they are empty anyway.
constexpr int maxMeasuredLines = 20'000;

bool coversAll(const std::vector<LineRange>& lines, int count)
{
    return lines.size() == 1 && lines[0].first == 1 && lines[0].last >= count;
}

} // namespace

/// Runs a command on the selected lines; what it refuses is told.
void SpreadsheetControl::changeLines(LineCommand command, bool rows)
{
    if (refuseInRun() || !commitEdit())
        return;
    Sheet& shown = workbook().sheet(activeSheet());
    const Axis axis = rows ? Axis::rows : Axis::columns;
    if (refuse(command(workbook(), shown, axis, linesOf(selection(), axis))))
        return;
    const CellRange first = firstRange();
    const SheetSettings& settings = shown.settings();
    if (first.right > settings.columnCount || first.bottom > settings.rowCount)
        setActiveCell(std::min(first.left, settings.columnCount), std::min(first.top, settings.rowCount));
    afterEdit();
    Q_EMIT viewChanged();
}

static Refusal insertSelected(Workbook& workbook, Sheet& sheet, Axis axis,
                              const std::vector<LineRange>& lines)
{
    const SheetSettings& settings = sheet.settings();
    if (coversAll(lines, axis == Axis::rows ? settings.rowCount : settings.columnCount))
        return axis == Axis::rows ? "请先选定要在其前面插入的行" : "请先选定要在其前面插入的列";
    return insertLines(workbook, sheet, axis, lines);
}

static Refusal showSelected(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines)
{
    showLines(workbook, sheet, axis, lines);
    return {};
}

void SpreadsheetControl::insertRows()
{
    changeLines(insertSelected, true);
}

void SpreadsheetControl::insertColumns()
{
    changeLines(insertSelected, false);
}

void SpreadsheetControl::deleteRows()
{
    changeLines(deleteLines, true);
}

void SpreadsheetControl::deleteColumns()
{
    changeLines(deleteLines, false);
}

void SpreadsheetControl::hideRows()
{
    changeLines(hideLines, true);
}

void SpreadsheetControl::hideColumns()
{
    changeLines(hideLines, false);
}

void SpreadsheetControl::showRows()
{
    changeLines(showSelected, true);
}

void SpreadsheetControl::showColumns()
{
    changeLines(showSelected, false);
}

void SpreadsheetControl::autofit(bool rows)
{
    changeLines(
        [this, rows](Workbook& book, Sheet& sheet, Axis axis,
                     const std::vector<LineRange>& lines) -> Refusal {
            const int last = rows ? sheet.lastDataRow() : sheet.lastDataColumn();
            const UndoStep step(book, rows ? "最适合的行高" : "最适合的列宽");
            int measured = 0;
            for (const LineRange& range : lines) {
                for (int line = range.first; line <= std::min(range.last, last); ++line) {
                    if (++measured > maxMeasuredLines)
                        return "选定的行太多，只调整了前 20,000 行";
                    resizeLines(book, sheet, axis, {{line, line}},
                                rows ? neededRowHeight(line) : neededColumnWidth(line));
                }
            }
            return {};
        },
        rows);
}

void SpreadsheetControl::autofitRows()
{
    autofit(true);
}

void SpreadsheetControl::autofitColumns()
{
    autofit(false);
}

void SpreadsheetControl::freezeHere()
{
    changeLines(
        [this](Workbook& book, Sheet& sheet, Axis, const std::vector<LineRange>&) -> Refusal {
            const CellAddress cell = activeCell();
            const SheetSettings& settings = sheet.settings();
            const bool again =
                settings.frozenRows == cell.row - 1 && settings.frozenColumns == cell.column - 1;
            freezeAt(book, sheet, again ? CellAddress{1, 1} : cell);
            return {};
        },
        true);
}

} // namespace spreadsheet
