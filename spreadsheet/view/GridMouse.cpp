#include "spreadsheet/view/GridMouse.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/print/CellBehaviour.h"
#include "spreadsheet/view/commands/fill.h"
#include "spreadsheet/view/commands/page_breaks.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QMouseEvent>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace spreadsheet {

// What a movement of the mouse means is settled when the button goes down and holds until it is let go,
// however far it goes and whatever comes under it: that is the one state kept here. Selecting beyond the
// edge goes on by a timer, because a mouse that rests outside sends nothing.

namespace {

constexpr int edgeReach = 4;  // pixels on either side of a heading's edge where it can be dragged
constexpr int breakReach = 2; // … of a page break
constexpr int scrollInterval = 50;

int buttonNumber(Qt::MouseButton button)
{
    return button == Qt::LeftButton ? 1 : button == Qt::RightButton ? 2 : 4;
}

/// The first cell of a row or column from `from` on that is none of a merged one which begins elsewhere.
CellAddress firstWithin(const Sheet& sheet, const CellRange& line, CellAddress from)
{
    const auto beginning = [&sheet](CellAddress cell) {
        const CellRange extent = sheet.extent(cell);
        return CellAddress{extent.left, extent.top};
    };
    const bool isRow = line.rows() == 1;
    for (CellAddress cell = from; line.contains(cell); ++(isRow ? cell.column : cell.row)) {
        if (line.contains(beginning(cell)))
            return beginning(cell);
    }
    return beginning(from);
}

} // namespace

GridMouse::GridMouse(SpreadsheetControl& control, SheetView& view)
    : m_control(control)
    , m_view(view)
{
}

GridMouse::Place GridMouse::placeOf(QPoint point) const
{
    using Kind = Place::Kind;
    const SheetView& view = m_view;
    const CellGeometry& geometry = view.geometry();
    const QRect area = geometry.cellArea();
    const bool inColumnHeading = point.y() < geometry.headingHeight();
    const bool inRowHeading = point.x() < geometry.headingWidth();
    if (inColumnHeading && inRowHeading)
        return {Kind::corner, {0, 0}, 0};
    if (inColumnHeading) {
        if (const int column = edgeAt(point.x(), false))
            return {Kind::columnEdge, {column, 0}, column};
        return point.x() > area.right() ? Place{Kind::beyond, {-1, 0}, 0}
                                        : Place{Kind::columnHeading, {geometry.columnAt(point.x()), 0}, 0};
    }
    if (inRowHeading) {
        if (const int row = edgeAt(point.y(), true))
            return {Kind::rowEdge, {0, row}, row};
        return point.y() > area.bottom() ? Place{Kind::beyond, {0, -1}, 0}
                                         : Place{Kind::rowHeading, {0, geometry.rowAt(point.y())}, 0};
    }
    if (!area.contains(point))
        return {Kind::beyond, {-1, -1}, 0};
    const CellAddress cell = geometry.nearestCell(point);
    if (m_control.mode() != GridMode::edit || !m_control.offersCommands() || m_control.entry().isOpen())
        return {Kind::cells, cell, 0};
    if (view.fillHandle().adjusted(-2, -2, 2, 2).contains(point))
        return {Kind::fillHandle, cell, 0};
    if (const int row = breakAt(point.y(), true))
        return {Kind::rowBreak, cell, row};
    if (const int column = breakAt(point.x(), false))
        return {Kind::columnBreak, cell, column};
    return {Kind::cells, cell, 0};
}

/// The mark of a page that begins by hand and lies at a place of the cells; 0: none does.
int GridMouse::breakAt(int position, bool rows) const
{
    const CellGeometry& geometry = m_view.geometry();
    const Axis axis = rows ? Axis::rows : Axis::columns;
    for (const PageTrack& track : rows ? geometry.rowTracks() : geometry.columnTracks())
        if (std::abs(track.start - 1 - position) <= breakReach)
            if (const int mark = pageMarkAt(m_view.sheet(), axis, track.index))
                return mark;
    return 0;
}

/// The line in sight whose beginning is nearest.
int GridMouse::nearestStart(int position, bool rows) const
{
    const CellGeometry& geometry = m_view.geometry();
    const auto tracks = rows ? geometry.rowTracks() : geometry.columnTracks();
    const auto nearest = std::ranges::min_element(
        tracks, {}, [position](const PageTrack& track) { return std::abs(track.start - position); });
    return nearest == tracks.end() ? 0 : nearest->index;
}

/// The line whose end lies at a place of the headings; 0: none does.
int GridMouse::edgeAt(int position, bool rows) const
{
    const CellGeometry& geometry = m_view.geometry();
    const auto tracks = rows ? geometry.rowTracks() : geometry.columnTracks();
    const AxisPositions& axis = rows ? geometry.rows() : geometry.columns();
    for (const PageTrack& track : tracks) {
        if (std::abs(track.end() - position) > edgeReach ||
            (track.size <= edgeReach && position < track.end()))
            continue;
        // From behind the edge hidden lines are drawn out again.
        const bool hiddenBehind = track.index < axis.count() && axis.size(track.index + 1) == 0;
        if (hiddenBehind && position >= track.end()) {
            const int next = axis.shown(track.index + 1, 1);
            return next == 0 ? axis.count() : next - 1;
        }
        return track.index;
    }
    return 0;
}

void GridMouse::showCursor(const Place& place) const
{
    using Kind = Place::Kind;
    switch (place.kind) {
    case Kind::columnEdge:
    case Kind::columnBreak:
        m_control.setCursor(Qt::SplitHCursor);
        break;
    case Kind::rowEdge:
    case Kind::rowBreak:
        m_control.setCursor(Qt::SplitVCursor);
        break;
    case Kind::fillHandle:
        m_control.setCursor(Qt::CrossCursor);
        break;
    default:
        m_control.unsetCursor();
    }
}

void GridMouse::press(const QMouseEvent& event)
{
    using Kind = Place::Kind;
    const QPoint point = event.position().toPoint();
    const Place place = placeOf(point);
    m_pressed = place;
    m_pressedAt = m_last = point;
    Q_EMIT m_control.mouseDown(buttonNumber(event.button()), place.cell.column, place.cell.row);
    const bool isInside = QRect(QPoint(), m_view.geometry().area()).contains(point); // not between the bars
    if (event.button() == Qt::RightButton && isInside &&
        (!m_control.movesByRightButton() || moveToPlace(place)))
        Q_EMIT m_control.contextMenuWanted(event.globalPosition().toPoint(), place.cell.column,
                                           place.cell.row);
    if (event.button() != Qt::LeftButton || place.kind == Kind::beyond)
        return;
    const bool pointable = place.kind != Kind::corner && place.kind != Kind::beyond;
    if (pointable && m_control.entry().takesReference()) {
        m_doing = Doing::pointing;
        m_pressed.cell = m_view.geometry().nearestCell(point);
        pointTo(point, false);
        return;
    }
    if (!m_control.entry().commitHere())
        return;
    if (place.kind == Kind::columnEdge || place.kind == Kind::rowEdge) {
        if (m_control.mode() == GridMode::edit)
            m_doing = place.kind == Kind::rowEdge ? Doing::resizingRow : Doing::resizingColumn;
    } else if (place.kind == Kind::fillHandle) {
        m_doing = Doing::filling;
        m_filled = m_control.cursor().firstRange();
    } else if (place.kind == Kind::rowBreak || place.kind == Kind::columnBreak) {
        m_doing = place.kind == Kind::rowBreak ? Doing::movingRowBreak : Doing::movingColumnBreak;
    } else if (place.kind == Kind::cells) {
        pressCell(place, event);
    } else {
        pressHeading(place, event.modifiers());
    }
}

void GridMouse::pressCell(const Place& place, const QMouseEvent& event)
{
    const bool extend = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool add = event.modifiers().testFlag(Qt::ControlModifier);
    m_control.cursor().forgetTab();
    if (add && !extend) {
        if (!m_control.cursor().enter(place.cell, [&](Selection& selection, const Sheet& sheet) {
                selection.addRange(sheet, place.cell);
            }))
            return;
    } else if (!m_control.cursor().moveTo(place.cell, extend)) {
        return;
    }
    m_doing = Doing::cells;
    if (!add && !extend && actOn(place.cell, event.position().toPoint()))
        return;
}

/// The right button means what is selected, or else what it is over. False if something holds the cursor.
bool GridMouse::moveToPlace(const Place& place)
{
    using Kind = Place::Kind;
    if (place.kind == Kind::beyond || place.kind == Kind::fillHandle || m_control.entry().takesReference())
        return true;
    const SheetSettings& settings = m_view.sheet().settings();
    const CellAddress cell = place.cell; // row 0 or column 0 in headings
    const CellRange meant{std::max(cell.column, 1), std::max(cell.row, 1),
                          cell.column == 0 ? settings.columnCount : cell.column,
                          cell.row == 0 ? settings.rowCount : cell.row};
    const auto holds = [&](const CellRange& range) { return range.contains(meant); };
    if (std::ranges::any_of(m_control.cursor().selection(), holds))
        return true;
    m_control.cursor().forgetTab();
    if (cell.column > 0 && cell.row > 0)
        return m_control.cursor().moveTo(cell);
    if (!m_control.entry().commitHere())
        return false;
    return cell.column == 0 && cell.row == 0 ? selectAll() : selectLine(cell, false);
}

/// Cells of some types do something when they are clicked. True if it was one of them.
bool GridMouse::actOn(CellAddress clicked, QPoint point)
{
    using Press = CellBehaviour::Press;
    const Sheet& sheet = m_view.sheet();
    const CellRange extent = sheet.extent(clicked);
    const CellAddress cell{extent.left, extent.top};
    const Press press = behaviourOf(sheet.style(cell).type)
                            .press(m_view.geometry().visibleRect(extent), point, m_view.geometry().twip());
    if (press == Press::holds) {
        m_doing = Doing::holding;
        m_view.setPressed(cell);
    } else if (press == Press::acts) {
        m_doing = Doing::nothing;
        m_control.actions().act(cell);
    }
    return press != Press::goesOn;
}

void GridMouse::pressHeading(const Place& place, Qt::KeyboardModifiers modifiers)
{
    using Kind = Place::Kind;
    if (place.kind == Kind::corner) {
        selectAll();
        return;
    }
    m_doing = place.kind == Kind::rowHeading ? Doing::rows : Doing::columns;
    if (modifiers.testFlag(Qt::ShiftModifier))
        dragTo(m_last);
    else if (!selectLine(place.cell, modifiers.testFlag(Qt::ControlModifier)))
        m_doing = Doing::nothing;
}

bool GridMouse::selectAll()
{
    const SheetSettings& settings = m_view.sheet().settings();
    const CellRange all{1, 1, settings.columnCount, settings.rowCount};
    m_control.cursor().changeSelection(
        [&](Selection& selection, const Sheet&) { selection.setRange(all, selection.active()); });
    return true;
}

/// The row or column of a heading; the cursor goes to a cell of it that is in sight.
bool GridMouse::selectLine(CellAddress heading, bool add)
{
    const Sheet& sheet = m_view.sheet();
    const SheetSettings& settings = sheet.settings();
    const CellGeometry& geometry = m_view.geometry();
    const bool isRow = heading.column == 0;
    const CellAddress topLeft = geometry.topLeft();
    const CellAddress inSight =
        isRow ? CellAddress{geometry.frozenColumns() > 0 ? 1 : topLeft.column, heading.row}
              : CellAddress{heading.column, geometry.frozenRows() > 0 ? 1 : topLeft.row};
    const CellRange line = isRow ? CellRange{1, inSight.row, settings.columnCount, inSight.row}
                                 : CellRange{inSight.column, 1, inSight.column, settings.rowCount};
    const CellAddress cell = firstWithin(sheet, line, inSight);
    return m_control.cursor().enter(
        cell, [&](Selection& selection, const Sheet&) { selection.setRange(line, cell, add); });
}

void GridMouse::move(const QMouseEvent& event)
{
    const QPoint point = event.position().toPoint();
    if (m_doing == Doing::nothing) {
        showCursor(placeOf(point));
        return;
    }
    m_last = point;
    if (m_doing == Doing::resizingRow || m_doing == Doing::resizingColumn) {
        showGuide(point);
    } else {
        dragTo(point);
        scrollIfOutside(point);
    }
}

void GridMouse::dragTo(QPoint point)
{
    const CellAddress cell = m_view.geometry().nearestCell(point);
    switch (m_doing) {
    case Doing::cells:
        m_control.cursor().changeSelection(
            [&](Selection& s, const Sheet& sheet) { s.extendTo(sheet, cell); });
        break;
    case Doing::rows:
        m_control.cursor().changeSelection(
            [&](Selection& s, const Sheet& sheet) { s.extendRows(sheet, cell.row); });
        break;
    case Doing::columns:
        m_control.cursor().changeSelection(
            [&](Selection& s, const Sheet& sheet) { s.extendColumns(sheet, cell.column); });
        break;
    case Doing::filling:
        m_filled = fillGoal(m_control.cursor().firstRange(), cell);
        m_view.changeOverlays([&](CellOverlays& overlays) { overlays.fillGoal = m_filled; });
        break;
    case Doing::pointing:
        if (m_control.entry().isOpen())
            pointTo(point, true);
        break;
    case Doing::movingRowBreak:
    case Doing::movingColumnBreak:
        showBreakGoal(point);
        break;
    case Doing::holding:
        m_view.setPressed(m_view.sheet().extent(m_pressed.cell).contains(cell)
                              ? std::optional(m_control.cursor().activeCell())
                              : std::nullopt);
        break;
    default:
        break;
    }
}

bool GridMouse::pointsAtRows() const
{
    using Kind = Place::Kind;
    return m_doing == Doing::pointing &&
           (m_pressed.kind == Kind::rowHeading || m_pressed.kind == Kind::rowEdge);
}

/// Up and down count only.
bool GridMouse::isAlongRows() const
{
    return m_doing == Doing::rows || m_doing == Doing::movingRowBreak || pointsAtRows();
}

bool GridMouse::isAlongColumns() const
{
    return m_doing == Doing::columns || m_doing == Doing::movingColumnBreak || pointsAtColumns();
}

bool GridMouse::pointsAtColumns() const
{
    using Kind = Place::Kind;
    return m_doing == Doing::pointing &&
           (m_pressed.kind == Kind::columnHeading || m_pressed.kind == Kind::columnEdge);
}

/// Points at the cells, rows or columns from where the button went down to here.
void GridMouse::pointTo(QPoint point, bool goesOn)
{
    const Sheet& sheet = m_view.sheet();
    const SheetSettings& settings = sheet.settings();
    const CellAddress to = m_view.geometry().nearestCell(point);
    const CellAddress from = m_pressed.cell;
    CellRange range;
    if (pointsAtColumns()) {
        const auto [first, last] = std::minmax(from.column, goesOn ? to.column : from.column);
        range = {first, 1, last, settings.rowCount};
    } else if (pointsAtRows()) {
        const auto [first, last] = std::minmax(from.row, goesOn ? to.row : from.row);
        range = {1, first, settings.columnCount, last};
    } else {
        range = withWholeSpans(sheet, rangeBetween(from, goesOn ? to : from));
    }
    m_control.entry().pointAt(range, goesOn);
}

void GridMouse::scrollIfOutside(QPoint point)
{
    const QRect area = m_view.geometry().scrolledArea();
    const bool alongRows = isAlongRows();
    const bool alongColumns = isAlongColumns();
    const bool outside = alongRows      ? point.y() > area.bottom() || point.y() < area.top()
                         : alongColumns ? point.x() > area.right() || point.x() < area.left()
                                        : !area.contains(point);
    if (m_doing == Doing::holding || !outside)
        m_scroll.stop();
    else if (!m_scroll.isActive())
        m_scroll.start(scrollInterval, this);
}

void GridMouse::timerEvent(QTimerEvent*)
{
    const CellGeometry& geometry = m_view.geometry();
    const QRect area = geometry.scrolledArea();
    CellAddress topLeft = geometry.topLeft();
    // The farther outside, the faster.
    const auto steps = [](int position, int first, int last) {
        const int outside = position > last ? position - last : position < first ? position - first : 0;
        return outside == 0 ? 0 : outside / 40 + (outside > 0 ? 1 : -1);
    };
    const int down = isAlongColumns() ? 0 : steps(m_last.y(), area.top(), area.bottom());
    const int across = isAlongRows() ? 0 : steps(m_last.x(), area.left(), area.right());
    const CellAddress last = geometry.lastTopLeft();
    if (down != 0)
        topLeft.row = std::min(geometry.rows().moved(topLeft.row, down), last.row);
    if (across != 0)
        topLeft.column = std::min(geometry.columns().moved(topLeft.column, across), last.column);
    m_control.cursor().setTopLeftCell(topLeft);
    dragTo(m_last);
}

void GridMouse::showGuide(QPoint point)
{
    m_view.changeOverlays([&](CellOverlays& overlays) {
        if (m_doing == Doing::resizingRow)
            overlays.guideDown = point.y();
        else
            overlays.guideAcross = point.x();
    });
}

/// A line where the page would begin.
void GridMouse::showBreakGoal(QPoint point)
{
    const bool rows = m_doing == Doing::movingRowBreak;
    const int goal = nearestStart(rows ? point.y() : point.x(), rows);
    const CellGeometry& geometry = m_view.geometry();
    for (const PageTrack& track : rows ? geometry.rowTracks() : geometry.columnTracks())
        if (track.index == goal)
            m_view.changeOverlays([&](CellOverlays& overlays) {
                (rows ? overlays.guideDown : overlays.guideAcross) = track.start - 1;
            });
}

void GridMouse::release(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return;
    m_scroll.stop();
    const Doing done = std::exchange(m_doing, Doing::nothing);
    const QPoint point = event.position().toPoint();
    if (done == Doing::resizingRow || done == Doing::resizingColumn) {
        hideMarks();
        endResize(point);
    } else if (done == Doing::filling) {
        hideMarks();
        endFill(!event.modifiers().testFlag(Qt::ControlModifier));
    } else if (done == Doing::movingRowBreak || done == Doing::movingColumnBreak) {
        hideMarks();
        const bool rows = done == Doing::movingRowBreak;
        if (point != m_pressedAt)
            m_control.commands().movePageBreak(rows ? Axis::rows : Axis::columns, m_pressed.line,
                                               nearestStart(rows ? point.y() : point.x(), rows));
    } else if (done == Doing::holding) {
        m_view.setPressed(std::nullopt);
        const CellAddress cell = m_control.cursor().activeCell();
        const CellRange extent = m_view.sheet().extent(cell);
        if (m_view.geometry().visibleRect(extent).contains(point))
            m_control.actions().act(cell);
    }
}

bool GridMouse::cancel()
{
    if (m_doing != Doing::filling && m_doing != Doing::resizingRow && m_doing != Doing::resizingColumn &&
        !movesBreak())
        return false;
    m_doing = Doing::nothing;
    m_scroll.stop();
    hideMarks();
    return true;
}

/// Of what the mouse was about to fill, resize or move.
void GridMouse::hideMarks()
{
    m_view.changeOverlays([](CellOverlays& overlays) {
        overlays.fillGoal.reset();
        overlays.guideDown.reset();
        overlays.guideAcross.reset();
    });
}

void GridMouse::endResize(QPoint point)
{
    const bool rows = m_pressed.kind == Place::Kind::rowEdge;
    const CellGeometry& geometry = m_view.geometry();
    const int moved = rows ? point.y() - m_pressedAt.y() : point.x() - m_pressedAt.x();
    const int size = (rows ? geometry.rows() : geometry.columns()).size(m_pressed.line);
    if (moved != 0)
        m_control.commands().resizeLinesTo(
            rows ? Axis::rows : Axis::columns, m_pressed.line,
            static_cast<int>(std::lround(std::max(size + moved, 0) / geometry.twip())));
}

void GridMouse::endFill(bool asSeries)
{
    if (m_filled != m_control.cursor().firstRange())
        m_control.commands().fillTo(m_filled, asSeries);
}

/// Down to where the table goes on the left or on the right, over empty cells only.
void GridMouse::fillBesides()
{
    const CellRange source = m_control.cursor().firstRange();
    const CellRange goal = fillGoalBesides(m_view.sheet(), source);
    if (goal != source)
        m_control.commands().fillTo(goal, true);
}

void GridMouse::doubleClick(const QMouseEvent& event)
{
    using Kind = Place::Kind;
    const Place place = placeOf(event.position().toPoint());
    if (event.button() != Qt::LeftButton)
        return;
    if (place.kind == Kind::rowEdge || place.kind == Kind::columnEdge) {
        m_control.commands().autofitLine(place.kind == Kind::rowEdge ? Axis::rows : Axis::columns,
                                         place.line);
        return;
    }
    if (place.kind == Kind::fillHandle) {
        fillBesides();
        return;
    }
    if (place.kind != Kind::cells)
        return;
    if (cellTypeRow(m_view.sheet().style(place.cell).type).isControl)
        press(event); // a quick second click
    else if (m_view.sheet().extent(m_control.cursor().activeCell()).contains(place.cell))
        m_control.entry().begin(EditStart::keep);
}

} // namespace spreadsheet
