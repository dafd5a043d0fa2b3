// Keys that move and select. docs/keys.md lists all for users.
#include "spreadsheet/view/entry_keys.h"
#include "spreadsheet/view/GridCursor.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QKeyEvent>

#include <algorithm>

namespace spreadsheet {

namespace {

bool withShift(const QKeyEvent& event)
{
    return event.modifiers().testFlag(Qt::ShiftModifier);
}

std::optional<Direction> arrowOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return Direction::left;
    case Qt::Key_Right:
        return Direction::right;
    case Qt::Key_Up:
        return Direction::up;
    case Qt::Key_Down:
        return Direction::down;
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<CellAddress> GridCursor::keyTarget(int key, Qt::KeyboardModifiers held, CellAddress from) const
{
    const Sheet& sheet = m_view.sheet();
    const CellGeometry& geometry = m_view.geometry();
    const Qt::KeyboardModifiers modifiers = chord(held);
    if (const auto arrow = arrowOf(key)) {
        if (modifiers == Qt::ControlModifier)
            return dataEdge(sheet, geometry, from, *arrow);
        return modifiers == Qt::NoModifier ? std::optional(neighbour(sheet, geometry, from, *arrow))
                                           : std::nullopt;
    }
    const bool plain = modifiers == Qt::NoModifier;
    const bool control = modifiers == Qt::ControlModifier;
    const bool alternate = modifiers == Qt::AltModifier;
    const int firstColumn = std::max(geometry.columns().shown(1, 1), 1);
    switch (key) {
    case Qt::Key_Home:
        if (control)
            return CellAddress{firstColumn, std::max(geometry.rows().shown(1, 1), 1)};
        return plain ? std::optional(CellAddress{firstColumn, from.row}) : std::nullopt;
    case Qt::Key_End:
        if (control)
            return lastDataCell(sheet);
        return plain ? std::optional(CellAddress{lastDataCell(sheet).column, from.row}) : std::nullopt;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const int screens = key == Qt::Key_PageDown ? 1 : -1;
        if (alternate)
            return pageRight(geometry, from, screens);
        return plain ? std::optional(pageDown(geometry, from, screens)) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

bool GridCursor::pressKey(const QKeyEvent& event)
{
    return moveByKey(event) || stepByKey(event) || selectByKey(event);
}

bool GridCursor::moveByKey(const QKeyEvent& event)
{
    const bool extend = withShift(event);
    CellAddress from = extend ? m_view.selection().moving() : activeCell();
    const auto arrow = arrowOf(event.key());
    const bool alongRow = arrow == Direction::left || arrow == Direction::right;
    const CellAddress corner = from;
    if (extend && arrow && chord(event.modifiers()) == Qt::ControlModifier)
        (alongRow ? from.row : from.column) =
            alongRow ? activeCell().row : activeCell().column; // its data count
    auto target = keyTarget(event.key(), event.modifiers(), from);
    if (!target)
        return false;
    if (from != corner)
        (alongRow ? target->row : target->column) = alongRow ? corner.row : corner.column;
    m_tabColumn = 0;
    const bool isPage = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
    const CellAddress topLeft = topLeftCell();
    if (!moveTo(*target, extend))
        return true;
    if (event.key() == Qt::Key_Home && chord(event.modifiers()) == Qt::ControlModifier)
        setTopLeftCell({1, 1}); // a frozen cell is in sight anyway
    if (!isPage)
        return true;
    turnPage(topLeft, event.key() == Qt::Key_PageDown ? 1 : -1, chord(event.modifiers()) == Qt::AltModifier);
    bringIntoSight(*target);
    return true;
}

/// The cursor stays where it was on the page.
void GridCursor::turnPage(CellAddress from, int screens, bool across)
{
    const CellGeometry& geometry = m_view.geometry();
    const CellAddress last = geometry.lastTopLeft();
    const CellAddress turned =
        across ? pageRight(geometry, from, screens) : pageDown(geometry, from, screens);
    setTopLeftCell({std::min(turned.column, std::max(last.column, from.column)),
                    std::min(turned.row, std::max(last.row, from.row))});
}

/// Tab and Enter: to the next cell, within what is selected if that is a block.
bool GridCursor::stepByKey(const QKeyEvent& event)
{
    const bool isTab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if ((!isTab && !isEnter) || chord(event.modifiers()) != Qt::NoModifier)
        return false;
    const int step = withShift(event) || event.key() == Qt::Key_Backtab ? -1 : 1;
    const Sheet& sheet = m_view.sheet();
    const CellGeometry& geometry = m_view.geometry();
    if (isBlockSelected()) {
        const CellAddress next = nextSelected(sheet, geometry, selection(), activeCell(),
                                              isTab ? StepOrder::alongRows : StepOrder::downColumns, step);
        enter(next, [&](Selection& s, const Sheet&) { s.activateWithin(next); });
        return true;
    }
    const CellAddress from = activeCell();
    if (isTab) {
        const int began = m_tabColumn == 0 ? from.column : m_tabColumn;
        moveTo(neighbour(sheet, geometry, from, step > 0 ? Direction::right : Direction::left));
        m_tabColumn = began;
        return true;
    }
    CellAddress goal = neighbour(sheet, geometry, from, step > 0 ? Direction::down : Direction::up);
    if (m_tabColumn != 0)
        goal.column = m_tabColumn;
    m_tabColumn = 0;
    moveTo(goal);
    return true;
}

bool GridCursor::selectByKey(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = chord(event.modifiers());
    const SheetSettings& settings = m_view.sheet().settings();
    const CellRange range = selection().back();
    const auto choose = [this](const CellRange& chosen) {
        changeSelection([&](Selection& s, const Sheet&) { s.setRange(chosen, s.active()); });
        return true;
    };
    if (event.key() == Qt::Key_A && modifiers == Qt::ControlModifier)
        return choose({1, 1, settings.columnCount, settings.rowCount});
    if (event.key() == Qt::Key_Space && modifiers == Qt::ControlModifier)
        return choose({range.left, 1, range.right, settings.rowCount});
    if (event.key() == Qt::Key_Space && modifiers == Qt::NoModifier && withShift(event))
        return choose({1, range.top, settings.columnCount, range.bottom});
    const bool isPage = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
    if (isPage && modifiers == Qt::ControlModifier) {
        showSheet(m_control.cells().activeSheet() + (event.key() == Qt::Key_PageDown ? 1 : -1));
        return true;
    }
    return false;
}

} // namespace spreadsheet
