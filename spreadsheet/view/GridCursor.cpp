#include "spreadsheet/view/GridCursor.h"

#include "spreadsheet/view/commands/fill.h"
#include "spreadsheet/view/commands/go_to.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <algorithm>

namespace spreadsheet {

// Handlers of leaveCell may hold a move up, show a message, or change the sheet under it. So every way of
// moving goes through one place, which asks before anything moves, looks anew at what is there afterwards,
// and then moves cursor, selection and view together.

GridCursor::GridCursor(SpreadsheetControl& control, SheetView& view)
    : m_control(control)
    , m_view(view)
{
}

CellAddress GridCursor::activeCell() const
{
    return m_view.selection().active();
}

const std::vector<CellRange>& GridCursor::selection() const
{
    return m_view.selection().ranges();
}

bool GridCursor::isBlockSelected() const
{
    return m_view.selection().isBlock(m_view.sheet());
}

CellRange GridCursor::selectedBlock() const
{
    return m_view.selection().bounds();
}

SelectionFigures GridCursor::selectionFigures() const
{
    return spreadsheet::selectionFigures(m_view.sheet(), selection());
}

void GridCursor::changeSelection(const std::function<void(Selection&, const Sheet&)>& change)
{
    m_view.changeSelection(change);
    Q_EMIT m_control.selectionChanged();
    m_control.tellInputMethod();
}

void GridCursor::setActiveCell(int column, int row)
{
    const SheetSettings& settings = m_view.sheet().settings();
    if (column < 1 || row < 1 || column > settings.columnCount || row > settings.rowCount)
        return;
    changeSelection([&](Selection& s, const Sheet& sheet) { s.setActive(sheet, {column, row}); });
    bringIntoSight(activeCell());
}

void GridCursor::select(const CellRange& range)
{
    const SheetSettings& settings = m_view.sheet().settings();
    const CellRange whole{1, 1, settings.columnCount, settings.rowCount};
    if (!whole.contains(range) || range.right < range.left || range.bottom < range.top)
        return;
    changeSelection([&](Selection& s, const Sheet& sheet) { s.setBlock(sheet, range); });
    bringIntoSight(activeCell());
}

void GridCursor::selectAround()
{
    const CellRange block = blockAround(m_view.sheet(), activeCell());
    changeSelection(
        [&](Selection& s, const Sheet& sheet) { s.setRange(withWholeSpans(sheet, block), s.active()); });
}

void GridCursor::selectActiveCell()
{
    changeSelection([](Selection& s, const Sheet& sheet) { s.setActive(sheet, s.active()); });
}

bool GridCursor::leave(int newColumn, int newRow)
{
    bool cancel = false;
    const CellAddress from = activeCell();
    Q_EMIT m_control.leaveCell(from.column, from.row, newColumn, newRow, cancel);
    return !cancel;
}

bool GridCursor::enter(CellAddress cell, const std::function<void(Selection&, const Sheet&)>& change)
{
    if (!m_control.entry().commitHere())
        return false;
    const CellRange extent = m_view.sheet().extent(cell);
    const CellAddress goal{extent.left, extent.top};
    if (goal != activeCell() && !leave(goal.column, goal.row))
        return false;
    m_control.showChanges(); // a listener may have changed cells, and even taken some away
    const SheetSettings& settings = m_view.sheet().settings();
    if (goal.column > settings.columnCount || goal.row > settings.rowCount)
        return false;
    changeSelection(change);
    bringIntoSight(cell);
    return true;
}

bool GridCursor::moveTo(CellAddress cell, bool extend)
{
    if (!extend)
        return enter(cell, [&](Selection& s, const Sheet& sheet) { s.setActive(sheet, cell); });
    if (!m_control.entry().commitHere())
        return false;
    changeSelection([&](Selection& s, const Sheet& sheet) { s.extendTo(sheet, cell); });
    bringIntoSight(cell);
    return true;
}

bool GridCursor::showRange(int sheet, const CellRange& range)
{
    if (!m_control.entry().commit())
        return false;
    showSheet(sheet);
    const CellAddress first{range.left, range.top};
    const auto withinSheet = [&range](const Sheet& shown) {
        const SheetSettings& settings = shown.settings();
        return CellRange{range.left, range.top, std::min(range.right, settings.columnCount),
                         std::min(range.bottom, settings.rowCount)};
    };
    return sheet == m_control.cells().activeSheet() && withinSheet(m_view.sheet()).contains(first) &&
           enter(first, [&](Selection& s, const Sheet& shown) { s.setBlock(shown, withinSheet(shown)); });
}

void GridCursor::showSheet(int index)
{
    if (index == m_control.cells().activeSheet() || index < 1 || index > m_control.cells().sheetCount())
        return;
    GridEntry& entry = m_control.entry();
    if (entry.takesReference())
        entry.pointAtSheet(index);
    else if (entry.commit() && leave(-1, -1))
        m_control.cells().setActiveSheet(index);
    m_control.restoreTabs();
}

Refusal GridCursor::goTo(const QString& text)
{
    const CellOperations& cells = m_control.cells();
    const auto place = placeOfText(cells.workbook(), text.toStdString(), cells.activeSheet());
    if (!place)
        return "没有这个位置: " + text.toStdString();
    return showRange(place->sheet, place->range) ? Refusal() : "请先完成或取消正在输入的内容";
}

// --- what is in sight

CellAddress GridCursor::topLeftCell() const
{
    return m_view.geometry().topLeft();
}

void GridCursor::setTopLeftCell(CellAddress cell)
{
    if (m_view.scrollTo(cell))
        m_control.placesChanged();
    else
        m_control.fitScrollBars(); // one may stand at a hidden line
}

/// The top left cell with which a cell is in sight, as near to the present one as can be.
static CellAddress topLeftShowing(const CellGeometry& geometry, CellAddress cell)
{
    CellAddress topLeft = geometry.topLeft();
    // Towards the end: as little as brings the line's end into sight.
    const auto lineFor = [](const AxisPositions& axis, int line, int frozen, int first, int room) {
        if (line <= frozen)
            return first;
        if (line < first)
            return line;
        int top = first;
        if (axis.end(line) - axis.start(first) > room) {
            const std::int64_t start = std::max<std::int64_t>(axis.end(line) - room, 0);
            top = axis.indexAt(start);
            if (axis.start(top) < start)
                top = axis.moved(top, 1);
        }
        return std::min(top, line);
    };
    const QRect room = geometry.scrolledArea();
    const QRect area(QPoint(room.topLeft()),
                     QPoint(geometry.area().width() - 1, geometry.area().height() - 1));
    topLeft.row = lineFor(geometry.rows(), cell.row, geometry.frozenRows(), topLeft.row, area.height());
    topLeft.column =
        lineFor(geometry.columns(), cell.column, geometry.frozenColumns(), topLeft.column, area.width());
    return topLeft;
}

void GridCursor::bringIntoSight(CellAddress cell)
{
    constexpr int mostSteps = 3; // rows that come into sight may turn out to be taller
    for (int step = 0; step < mostSteps; ++step) {
        const CellGeometry& geometry = m_view.geometry();
        if (geometry.scrolledArea().isEmpty())
            return; // not laid out yet
        const CellAddress topLeft = topLeftShowing(geometry, cell);
        if (topLeft == geometry.topLeft())
            return;
        setTopLeftCell(topLeft);
    }
}

} // namespace spreadsheet
