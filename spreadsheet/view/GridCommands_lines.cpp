// Commands on whole rows and columns.
#include "spreadsheet/view/commands/page_breaks.h"
#include "spreadsheet/view/GridCommands.h"
#include "spreadsheet/view/needed_size.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <algorithm>

namespace spreadsheet {

// Commands on rows and columns are the same command with another axis, and what they refuse is told the same
// way. The names that menus and keys use are one line each.

namespace {

/// Lines that autofit measures at most; beyond the data they are empty anyway.
constexpr int maxMeasuredLines = 20'000;

bool coversAll(const std::vector<LineRange>& lines, int count)
{
    return lines.size() == 1 && lines[0].first == 1 && lines[0].last >= count;
}

const char* autofitLabel(Axis axis)
{
    return axis == Axis::rows ? "最适合的行高" : "最适合的列宽";
}

int lastDataLine(const Sheet& sheet, Axis axis)
{
    return axis == Axis::rows ? sheet.lastDataRow() : sheet.lastDataColumn();
}

/// A row follows its texts from now on, unless the sheet's usual height is more than they need.
void fitLine(Workbook& book, Sheet& sheet, Axis axis, int line)
{
    const int size = axis == Axis::rows ? neededRowHeight(sheet, line) : neededColumnWidth(sheet, line);
    if (axis == Axis::rows && size >= sheet.settings().rows.defaultSize)
        freeRows(book, sheet, {{line, line}});
    else
        resizeLines(book, sheet, axis, {{line, line}}, size);
}

} // namespace

/// Runs a command on the selected lines; what it refuses is told.
void GridCommands::changeLines(LineCommand command, Axis axis)
{
    if (m_control.refuseInRun() || !m_control.entry().commit())
        return;
    Sheet& shown = m_control.cells().shownSheet();
    if (m_control.refuse(command(m_control.cells().workbook(), shown, axis,
                                 linesOf(m_control.cursor().selection(), axis))))
        return;
    const CellRange first = m_control.cursor().firstRange();
    const SheetSettings& settings = shown.settings();
    if (first.right > settings.columnCount || first.bottom > settings.rowCount)
        m_control.cursor().setActiveCell(std::min(first.left, settings.columnCount),
                                         std::min(first.top, settings.rowCount));
    m_control.afterEdit();
    Q_EMIT m_control.viewChanged();
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

void GridCommands::insertRows()
{
    changeLines(insertSelected, Axis::rows);
}

void GridCommands::insertColumns()
{
    changeLines(insertSelected, Axis::columns);
}

void GridCommands::deleteRows()
{
    changeLines(deleteLines, Axis::rows);
}

void GridCommands::deleteColumns()
{
    changeLines(deleteLines, Axis::columns);
}

void GridCommands::hideRows()
{
    changeLines(hideLines, Axis::rows);
}

void GridCommands::hideColumns()
{
    changeLines(hideLines, Axis::columns);
}

void GridCommands::showRows()
{
    changeLines(showSelected, Axis::rows);
}

void GridCommands::showColumns()
{
    changeLines(showSelected, Axis::columns);
}

void GridCommands::autofit(Axis axis)
{
    changeLines(
        [axis](Workbook& book, Sheet& sheet, Axis, const std::vector<LineRange>& lines) -> Refusal {
            const UndoStep step(book, autofitLabel(axis));
            int measured = 0;
            for (const LineRange& range : lines) {
                for (int line = range.first; line <= std::min(range.last, lastDataLine(sheet, axis));
                     ++line) {
                    if (++measured > maxMeasuredLines)
                        return "选定的行太多，只调整了前 20,000 行";
                    fitLine(book, sheet, axis, line);
                }
            }
            return {};
        },
        axis);
}

void GridCommands::autofitRows()
{
    autofit(Axis::rows);
}

void GridCommands::autofitColumns()
{
    autofit(Axis::columns);
}

void GridCommands::freezeHere()
{
    changeLines(
        [this](Workbook& book, Sheet& sheet, Axis, const std::vector<LineRange>&) -> Refusal {
            const CellAddress cell = m_control.cursor().activeCell();
            const SheetSettings& settings = sheet.settings();
            const CellGeometry& geometry = m_view.geometry();
            // More than the window holds is not seen to be frozen, and freed from anywhere.
            const bool again =
                (settings.frozenRows == cell.row - 1 && settings.frozenColumns == cell.column - 1) ||
                !geometry.holdsFrozen(settings.frozenRows, settings.frozenColumns);
            if (!again && !geometry.holdsFrozen(cell.row - 1, cell.column - 1))
                return "要冻结的行或列比窗口还大，其余部分将无法显示。请选定靠近左上角的单元格";
            freezeAt(book, sheet, again ? CellAddress{1, 1} : cell);
            return {};
        },
        Axis::rows);
}

std::vector<LineRange> GridCommands::linesWith(Axis axis, int line) const
{
    const SheetSettings& settings = m_view.sheet().settings();
    const bool rows = axis == Axis::rows;
    std::vector<CellRange> whole;
    for (const CellRange& range : m_control.cursor().selection()) {
        const bool isWhole = rows ? range.left == 1 && range.right >= settings.columnCount
                                  : range.top == 1 && range.bottom >= settings.rowCount;
        if (isWhole)
            whole.push_back(range);
    }
    const auto holds = [&](const CellRange& range) {
        return rows ? line >= range.top && line <= range.bottom : line >= range.left && line <= range.right;
    };
    if (std::ranges::any_of(whole, holds))
        return linesOf(whole, axis);
    return {{line, line}};
}

void GridCommands::resizeLinesTo(Axis axis, int line, int twips)
{
    Workbook& book = m_control.cells().workbook();
    Sheet& sheet = m_control.cells().shownSheet();
    if (twips > 0)
        resizeLines(book, sheet, axis, linesWith(axis, line), std::min(twips, maxLineSize));
    else if (m_control.refuse(hideLines(book, sheet, axis, linesWith(axis, line))))
        return;
    m_control.showChanges();
}

void GridCommands::autofitLine(Axis axis, int line)
{
    if (m_control.refuseInRun() || !m_control.entry().commitHere())
        return;
    Workbook& book = m_control.cells().workbook();
    Sheet& sheet = m_control.cells().shownSheet();
    const UndoStep step(book, autofitLabel(axis));
    const int last = std::max(lastDataLine(sheet, axis), line);
    for (const LineRange& lines : linesWith(axis, line))
        for (int each = lines.first; each <= std::min(lines.last, last); ++each)
            fitLine(book, sheet, axis, each);
    m_control.showChanges();
}

void GridCommands::movePageBreak(Axis axis, int from, int to)
{
    spreadsheet::movePageBreak(m_control.cells().workbook(), m_control.cells().shownSheet(), axis, from, to);
    m_control.showChanges();
}

void GridCommands::movePageBreakHere(Axis axis, int lines)
{
    if (m_control.refuseInRun() || !m_control.entry().commitHere())
        return;
    const bool rows = axis == Axis::rows;
    const CellAddress cell = m_control.cursor().activeCell();
    const int line = rows ? cell.row : cell.column;
    const int mark = pageMarkAt(m_view.sheet(), axis, line);
    if (mark == 0) {
        m_control.refuse(rows ? "活动单元格的行上没有分页符" : "活动单元格的列上没有分页符");
        return;
    }
    const AxisPositions& shown = rows ? m_view.geometry().rows() : m_view.geometry().columns();
    const int to = shown.moved(line, lines);
    movePageBreak(axis, mark, to);
    m_control.cursor().setActiveCell(rows ? cell.column : to, rows ? to : cell.row);
}

} // namespace spreadsheet
