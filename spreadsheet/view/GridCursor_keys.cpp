// Keys of the control. docs/keys.md lists them for users.
#include "spreadsheet/view/entry_keys.h"
#include "spreadsheet/view/GridMouse.h"
#include "spreadsheet/view/key_moves.h"
#include "spreadsheet/view/reference_text.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/view/tool_tip.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace spreadsheet {

namespace {

/// Shift and keypad told apart from the rest.
Qt::KeyboardModifiers chord(const QKeyEvent& event)
{
    return event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
}

bool withShift(const QKeyEvent& event)
{
    return event.modifiers().testFlag(Qt::ShiftModifier);
}

struct CommandKey {
    int key;
    Qt::KeyboardModifiers modifiers; ///< all of them, Shift too
    void (SpreadsheetControl::*command)();
};

constexpr Qt::KeyboardModifiers none = Qt::NoModifier, ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier,
                                alt = Qt::AltModifier;

const std::array commandKeys{
    CommandKey{Qt::Key_Z, ctrl, &SpreadsheetControl::undo},
    CommandKey{Qt::Key_Z, ctrl | shift, &SpreadsheetControl::redo},
    CommandKey{Qt::Key_Y, ctrl, &SpreadsheetControl::redo},
    CommandKey{Qt::Key_X, ctrl, &SpreadsheetControl::cut},
    CommandKey{Qt::Key_Delete, shift, &SpreadsheetControl::cut},
    CommandKey{Qt::Key_C, ctrl, &SpreadsheetControl::copy},
    CommandKey{Qt::Key_Insert, ctrl, &SpreadsheetControl::copy},
    CommandKey{Qt::Key_V, ctrl, &SpreadsheetControl::paste},
    CommandKey{Qt::Key_Insert, shift, &SpreadsheetControl::paste},
    CommandKey{Qt::Key_V, ctrl | shift, &SpreadsheetControl::pasteValues},
    CommandKey{Qt::Key_Delete, none, &SpreadsheetControl::clear},
    CommandKey{Qt::Key_D, ctrl, &SpreadsheetControl::fillDown},
    CommandKey{Qt::Key_R, ctrl, &SpreadsheetControl::fillRight},
    CommandKey{Qt::Key_9, ctrl, &SpreadsheetControl::hideRows},
    CommandKey{Qt::Key_0, ctrl, &SpreadsheetControl::hideColumns},
    CommandKey{Qt::Key_ParenLeft, ctrl | shift, &SpreadsheetControl::showRows},
    CommandKey{Qt::Key_ParenRight, ctrl | shift, &SpreadsheetControl::showColumns},
    CommandKey{Qt::Key_Down, alt, &SpreadsheetControl::openDropDown},
    CommandKey{Qt::Key_Equal, alt, &SpreadsheetControl::sumHere},
    CommandKey{Qt::Key_F11, shift, &SpreadsheetControl::addSheet},
    CommandKey{Qt::Key_Asterisk, ctrl | shift, &SpreadsheetControl::selectAround},
    CommandKey{Qt::Key_Backspace, shift, &SpreadsheetControl::selectActiveCell},
    CommandKey{Qt::Key_Backspace, ctrl, &SpreadsheetControl::showActiveCell},
};

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

void SpreadsheetControl::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
    Q_EMIT keyDown(event);
    if (event->isAccepted())
        return;
    if (belongsToWindow(*event))
        return;
    if (moveByKey(*event) || stepByKey(*event) || selectByKey(*event) || commandByKey(*event) ||
        actByKey(*event))
        event->accept();
}

std::optional<CellAddress> SpreadsheetControl::keyTarget(const QKeyEvent& event, CellAddress from) const
{
    const Sheet& sheet = m_view->sheet();
    const CellGeometry& geometry = m_view->geometry();
    const Qt::KeyboardModifiers modifiers = chord(event);
    if (const auto arrow = arrowOf(event.key())) {
        if (modifiers == Qt::ControlModifier)
            return dataEdge(sheet, geometry, from, *arrow);
        return modifiers == Qt::NoModifier ? std::optional(neighbour(sheet, geometry, from, *arrow))
                                           : std::nullopt;
    }
    const bool plain = modifiers == Qt::NoModifier;
    const bool control = modifiers == Qt::ControlModifier;
    const bool alternate = modifiers == Qt::AltModifier;
    const int firstColumn = std::max(geometry.columns().shown(1, 1), 1);
    switch (event.key()) {
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
        const int screens = event.key() == Qt::Key_PageDown ? 1 : -1;
        if (alternate)
            return pageRight(geometry, from, screens);
        return plain ? std::optional(pageDown(geometry, from, screens)) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

bool SpreadsheetControl::moveByKey(const QKeyEvent& event)
{
    const bool extend = withShift(event);
    CellAddress from = extend ? m_view->selection().moving() : activeCell();
    const auto arrow = arrowOf(event.key());
    const bool alongRow = arrow == Direction::left || arrow == Direction::right;
    const CellAddress corner = from;
    if (extend && arrow && chord(event) == Qt::ControlModifier)
        (alongRow ? from.row : from.column) =
            alongRow ? activeCell().row : activeCell().column; // its data count
    auto target = keyTarget(event, from);
    if (!target)
        return false;
    if (from != corner)
        (alongRow ? target->row : target->column) = alongRow ? corner.row : corner.column;
    m_tabColumn = 0;
    const bool isPage = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
    const CellAddress topLeft = topLeftCell();
    if (!moveTo(*target, extend) || !isPage)
        return true;
    // The page turns with the cursor staying where it was on it.
    const CellGeometry& geometry = m_view->geometry();
    const CellAddress last = geometry.lastTopLeft();
    const int screens = event.key() == Qt::Key_PageDown ? 1 : -1;
    const bool across = chord(event) == Qt::AltModifier;
    const CellAddress turned =
        across ? pageRight(geometry, topLeft, screens) : pageDown(geometry, topLeft, screens);
    scrollTo({std::min(turned.column, std::max(last.column, topLeft.column)),
              std::min(turned.row, std::max(last.row, topLeft.row))});
    bringIntoSight(*target);
    return true;
}

/// Tab and Enter: to the next cell, within what is selected if that is a block.
bool SpreadsheetControl::stepByKey(const QKeyEvent& event)
{
    const bool isTab = event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab;
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if ((!isTab && !isEnter) || chord(event) != Qt::NoModifier)
        return false;
    const int step = withShift(event) || event.key() == Qt::Key_Backtab ? -1 : 1;
    const Sheet& sheet = m_view->sheet();
    const CellGeometry& geometry = m_view->geometry();
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

bool SpreadsheetControl::selectByKey(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = chord(event);
    const SheetSettings& settings = m_view->sheet().settings();
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
        showSheetByUser(activeSheet() + (event.key() == Qt::Key_PageDown ? 1 : -1));
        return true;
    }
    return false;
}

bool SpreadsheetControl::commandByKey(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = chord(event) | (event.modifiers() & Qt::ShiftModifier);
    for (const CommandKey& command : commandKeys)
        if (command.key == event.key() && command.modifiers == modifiers) {
            (this->*command.command)();
            return true;
        }
    const bool plus = event.key() == Qt::Key_Plus || event.key() == Qt::Key_Equal;
    if (chord(event) != Qt::ControlModifier || (!plus && event.key() != Qt::Key_Minus))
        return false;
    const CellRange range = selection().back();
    const bool columns = range.top == 1 && range.bottom >= m_view->sheet().settings().rowCount;
    if (plus)
        columns ? insertColumns() : insertRows();
    else
        columns ? deleteColumns() : deleteRows();
    return true;
}

/// Keys that act on the active cell: editing, buttons, check boxes.
bool SpreadsheetControl::actByKey(const QKeyEvent& event)
{
    const CellAddress cell = activeCell();
    const CellType type = m_view->sheet().style(cell).type;
    if (event.key() == Qt::Key_Escape)
        return giveUp();
    if (event.key() == Qt::Key_F2 && event.modifiers() == Qt::NoModifier)
        return beginEdit(EditStart::keep) || true;
    if (event.key() == Qt::Key_Backspace && event.modifiers() == Qt::NoModifier)
        return beginEdit(EditStart::replace) || true;
    if (const QString moment = momentOf(event); !moment.isEmpty())
        return beginEdit(EditStart::replace, moment) || true;
    if (event.key() == Qt::Key_Space && event.modifiers() == Qt::NoModifier) {
        if (type == CellType::checkBox) {
            toggleCheckBox(cell);
            return true;
        }
        if (type == CellType::button) {
            if (mayAct(cell))
                Q_EMIT buttonClicked(cell.column, cell.row);
            return true;
        }
    }
    const QString text = event.text();
    const bool isText = !text.isEmpty() && text[0].isPrint() && chord(event) == Qt::NoModifier;
    // Some layouts type with Ctrl and Alt together.
    const bool isAltGr =
        !text.isEmpty() && text[0].isPrint() && chord(event) == (Qt::ControlModifier | Qt::AltModifier);
    return (isText || isAltGr) && (beginEdit(EditStart::replace, text) || true);
}

bool SpreadsheetControl::giveUp()
{
    if (hideToolTip())
        return true;
    if (isEditing()) {
        cancelEdit();
        return true;
    }
    if (m_mouse->cancel())
        return true;
    const bool copied = m_view->hasCopied();
    if (copied)
        setCopiedRange(0, std::nullopt);
    return copied;
}

void SpreadsheetControl::selectAround()
{
    const CellRange block = blockAround(m_view->sheet(), activeCell());
    changeSelection(
        [&](Selection& s, const Sheet& sheet) { s.setRange(withWholeSpans(sheet, block), s.active()); });
}

void SpreadsheetControl::selectActiveCell()
{
    changeSelection([](Selection& s, const Sheet& sheet) { s.setActive(sheet, s.active()); });
}

void SpreadsheetControl::showActiveCell()
{
    bringIntoSight(activeCell());
}

void SpreadsheetControl::sumHere()
{
    const auto range = figuresBefore(m_view->sheet(), activeCell());
    QString formula = QStringLiteral("=SUM(");
    if (range)
        formula += referenceText(workbook(), activeSheet(), activeSheet(), *range) + ')';
    beginEdit(EditStart::replace, formula);
}

bool SpreadsheetControl::focusNextPrevChild(bool)
{
    return false; // Tab moves the cursor
}

} // namespace spreadsheet
