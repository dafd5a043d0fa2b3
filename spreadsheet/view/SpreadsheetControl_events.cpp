// The events of the widget.
#include "spreadsheet/view/entry_keys.h"
#include "spreadsheet/view/GridMouse.h"
#include "spreadsheet/view/SheetTabs.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QApplication>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace spreadsheet {

namespace {

constexpr int wheelNotch = 120; // eighths of a degree

} // namespace

void SpreadsheetControl::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    m_view->paint(painter, event->region());
    const QRect corner(m_down->x(), m_across->y(), m_down->width(), m_across->height());
    painter.fillRect(corner, palette().window());
    painter.fillRect(m_tabs->geometry(), palette().window());
}

void SpreadsheetControl::resizeEvent(QResizeEvent*)
{
    const bool first = m_view->geometry().area().isEmpty();
    layOut();
    if (first)
        m_cursor.bringIntoSight(m_cursor.activeCell()); // may have been set before there was a size
}

void SpreadsheetControl::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        m_view->repaintAll();
    QWidget::changeEvent(event);
}

bool SpreadsheetControl::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto& help = static_cast<const QHelpEvent&>(*event);
        const auto cell = cellAt(help.pos());
        const QString note = cell ? m_view->noteAt(*cell) : QString();
        if (note.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help.globalPos(), note, this, cellRect(*cell));
        return true;
    }
    return QWidget::event(event);
}

void SpreadsheetControl::wheelEvent(QWheelEvent* event)
{
    // Touch pads tell small parts of a notch, which add up.
    const auto notches = [](int& sum, int delta, int notch) {
        sum += delta;
        const int whole = sum / notch;
        sum -= whole * notch;
        return whole;
    };
    constexpr int rowsPerNotch = 3;
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        zoomBy(notches(m_wheelZoom, event->angleDelta().y(), wheelNotch));
    } else {
        const bool turned = event->modifiers().testFlag(Qt::ShiftModifier);
        const QPoint delta = turned ? event->angleDelta().transposed() : event->angleDelta();
        const int down = notches(m_wheelDown, delta.y(), wheelNotch / rowsPerNotch);
        const int across = notches(m_wheelAcross, delta.x(), wheelNotch);
        const CellGeometry& geometry = m_view->geometry();
        const CellAddress last = geometry.lastTopLeft();
        const auto moved = [](const AxisPositions& axis, int from, int steps, int lastFirst) {
            return std::min(axis.moved(from, -steps), std::max(lastFirst, from));
        };
        m_cursor.setTopLeftCell({moved(geometry.columns(), geometry.topLeft().column, across, last.column),
                                 moved(geometry.rows(), geometry.topLeft().row, down, last.row)});
    }
    event->accept();
}

void SpreadsheetControl::mousePressEvent(QMouseEvent* event)
{
    m_mouse->press(*event);
}

void SpreadsheetControl::mouseMoveEvent(QMouseEvent* event)
{
    m_mouse->move(*event);
}

void SpreadsheetControl::mouseReleaseEvent(QMouseEvent* event)
{
    m_mouse->release(*event);
}

void SpreadsheetControl::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_mouse->doubleClick(*event);
}

void SpreadsheetControl::contextMenuEvent(QContextMenuEvent* event)
{
    const CellAddress cell = m_cursor.activeCell();
    // The mouse's was told when the button went down.
    if (event->reason() == QContextMenuEvent::Keyboard)
        Q_EMIT contextMenuWanted(mapToGlobal(cellRect(cell).center()), cell.column, cell.row);
}

void SpreadsheetControl::keyPressEvent(QKeyEvent* event)
{
    event->ignore();
    Q_EMIT keyDown(event);
    if (event->isAccepted())
        return;
    if (belongsToWindow(*event))
        return;
    const bool isEscape = event->key() == Qt::Key_Escape;
    if (m_cursor.pressKey(*event) || m_commands->pressKey(*event) || (isEscape && giveUp()) ||
        (!isEscape && (m_actions->pressKey(*event) || m_entry->pressKey(*event))))
        event->accept();
}

void SpreadsheetControl::inputMethodEvent(QInputMethodEvent* event)
{
    m_entry->compose(event);
    event->accept();
}

QVariant SpreadsheetControl::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return mode() == GridMode::edit;
    case Qt::ImFont:
        return screenFont(m_view->sheet().style(m_cursor.activeCell()).font);
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle:
        return m_entry->cursorRect();
    default:
        return QWidget::inputMethodQuery(query);
    }
}

void SpreadsheetControl::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (event->reason() == Qt::MouseFocusReason)
        m_entry->takeFocus();
    update(cellRect(m_cursor.activeCell()));
}

void SpreadsheetControl::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    // Menus and other windows come and go without the user having left the cell.
    const bool elsewhere = event->reason() != Qt::PopupFocusReason &&
                           event->reason() != Qt::ActiveWindowFocusReason &&
                           event->reason() != Qt::MenuBarFocusReason;
    const QWidget* now = QApplication::focusWidget();
    const bool within = now && (now->window() != window() || isAncestorOf(now)); // lists are windows too
    if (elsewhere && !m_entry->isOpen() && !within)
        std::ignore = m_cursor.leave(-1, -1); // the focus has gone, whatever the listener says
}

bool SpreadsheetControl::focusNextPrevChild(bool)
{
    return false; // Tab moves the cursor
}

} // namespace spreadsheet
