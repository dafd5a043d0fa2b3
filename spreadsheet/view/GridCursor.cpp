// Cursor, selection, sheets: moving by program and by the user.
#include "spreadsheet/view/SheetTabs.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/UndoJournal.h"

#include <QApplication>
#include <QFocusEvent>
#include <QScopedValueRollback>

#include <tuple>
#include <utility>

namespace spreadsheet {

CellAddress SpreadsheetControl::activeCell() const
{
    return m_view->selection().active();
}

const std::vector<CellRange>& SpreadsheetControl::selection() const
{
    return m_view->selection().ranges();
}

bool SpreadsheetControl::isBlockSelected() const
{
    return m_view->selection().isBlock(m_view->sheet());
}

CellRange SpreadsheetControl::selectedBlock() const
{
    return m_view->selection().bounds();
}

SelectionFigures SpreadsheetControl::selectionFigures() const
{
    return spreadsheet::selectionFigures(m_view->sheet(), selection());
}

void SpreadsheetControl::changeSelection(const std::function<void(Selection&, const Sheet&)>& change)
{
    m_view->changeSelection(change);
    Q_EMIT selectionChanged();
    updateMicroFocus();
}

void SpreadsheetControl::setActiveCell(int column, int row)
{
    const SheetSettings& settings = m_view->sheet().settings();
    if (column < 1 || row < 1 || column > settings.columnCount || row > settings.rowCount)
        return;
    changeSelection([&](Selection& s, const Sheet& sheet) { s.setActive(sheet, {column, row}); });
    bringIntoSight(activeCell());
}

void SpreadsheetControl::select(const CellRange& range)
{
    const SheetSettings& settings = m_view->sheet().settings();
    const CellRange whole{1, 1, settings.columnCount, settings.rowCount};
    if (!whole.contains(range) || range.right < range.left || range.bottom < range.top)
        return;
    changeSelection([&](Selection& s, const Sheet& sheet) {
        if (range.isOneCell()) {
            s.setActive(sheet, {range.left, range.top});
        } else {
            const CellRange first = sheet.extent({range.left, range.top});
            s.setRange(withWholeSpans(sheet, range), {first.left, first.top});
        }
    });
    bringIntoSight(activeCell());
}

/// Asks those who listen whether the cursor may go. Negative: to no cell.
bool SpreadsheetControl::leave(int newColumn, int newRow)
{
    bool cancel = false;
    const CellAddress from = activeCell();
    Q_EMIT leaveCell(from.column, from.row, newColumn, newRow, cancel);
    return !cancel;
}

/// Moves the cursor as a user does. @param change  makes the new selection, in which `cell` is active
bool SpreadsheetControl::enter(CellAddress cell, const std::function<void(Selection&, const Sheet&)>& change)
{
    if (!commitHere())
        return false;
    const CellRange extent = m_view->sheet().extent(cell);
    const CellAddress goal{extent.left, extent.top};
    if (goal != activeCell() && !leave(goal.column, goal.row))
        return false;
    showChanges(); // a listener may have changed cells, and even taken some away
    const SheetSettings& settings = m_view->sheet().settings();
    if (goal.column > settings.columnCount || goal.row > settings.rowCount)
        return false;
    changeSelection(change);
    bringIntoSight(cell);
    return true;
}

bool SpreadsheetControl::moveTo(CellAddress cell, bool extend)
{
    if (!extend)
        return enter(cell, [&](Selection& s, const Sheet& sheet) { s.setActive(sheet, cell); });
    if (!commitHere())
        return false;
    changeSelection([&](Selection& s, const Sheet& sheet) { s.extendTo(sheet, cell); });
    bringIntoSight(cell);
    return true;
}

/// Selects what the sheet has of a range and shows its beginning, as a user does.
bool SpreadsheetControl::showRange(int sheet, CellRange range)
{
    if (!commitEdit())
        return false;
    showSheetByUser(sheet);
    const SheetSettings& settings = m_view->sheet().settings();
    range.right = std::min(range.right, settings.columnCount);
    range.bottom = std::min(range.bottom, settings.rowCount);
    const CellAddress first{range.left, range.top};
    if (sheet != activeSheet() || !range.contains(first) || !moveTo(first))
        return false;
    select(range);
    bringIntoSight(first);
    return true;
}

void SpreadsheetControl::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (isEditing() && event->reason() == Qt::MouseFocusReason)
        m_editing->takeFocus();
    update(cellRect(activeCell()));
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
    if (elsewhere && !isEditing() && !within)
        std::ignore = leave(-1, -1); // the focus has gone, whatever the listener says
}

// --- sheets

void SpreadsheetControl::workbookSwitched()
{
    m_entrySheetId = 0;
    cancelEdit();
    m_cut.reset();
    m_view->setWorkbook(workbook());
    sheetSwitched();
}

void SpreadsheetControl::sheetSwitched()
{
    if (!workbook().journal().enabled())
        workbook().setUndoEnabled(true); // which forgets former steps
    if (!m_keepsEditing) {
        m_entrySheetId = 0; // the sheet that is shown now stays
        cancelEdit();
    }
    m_view->update();
    m_tabColumn = 0;
    placesChanged();
    showTabs();
    Q_EMIT sheetChanged(activeSheet());
    Q_EMIT selectionChanged();
}

void SpreadsheetControl::showTabs()
{
    QStringList names;
    for (int index = 1; index <= workbook().sheetCount(); ++index)
        names.append(QString::fromStdString(workbook().sheet(index).name()));
    if (names == m_tabNames && m_tabActive == activeSheet())
        return;
    m_tabNames = names;
    m_tabActive = activeSheet();
    m_tabs->showSheets(names, m_tabActive);
    if (!m_view->geometry().area().isEmpty())
        layOut();
}

void SpreadsheetControl::showSheetByUser(int index)
{
    if (index == activeSheet() || index < 1 || index > sheetCount())
        return;
    if (isEditing() && m_editing->takesReference()) { // to point at its cells
        const QScopedValueRollback keeps(m_keepsEditing, true);
        if (m_entrySheetId == 0)
            m_entrySheetId = workbook().sheet(activeSheet()).id();
        setActiveSheet(index);
        m_editing->place();
    } else if (commitEdit() && leave(-1, -1))
        setActiveSheet(index);
    m_tabActive = 0; // the tab bar may have gone ahead
    showTabs();
}

void SpreadsheetControl::addSheet()
{
    if (refuseInRun() || !commitEdit())
        return;
    if (workbook().sheetCount() >= maxSheets) {
        refuse("表的个数应在 1 到 256 之间");
        return;
    }
    int number = workbook().sheetCount() + 1;
    while (workbook().sheetIndex("Sheet" + std::to_string(number)) != 0)
        ++number;
    if (!leave(-1, -1) || refuse(workbook().addSheet("Sheet" + std::to_string(number))))
        return;
    setActiveSheet(workbook().sheetCount());
    Q_EMIT sheetsChanged();
    Q_EMIT undoChanged();
}

void SpreadsheetControl::renameSheet(int index, const QString& name)
{
    if (refuseInRun() || refuse(workbook().renameSheet(index, name.toStdString())))
        return;
    showChanges();
    Q_EMIT sheetsChanged();
}

void SpreadsheetControl::moveSheet(int from, int to)
{
    const int activeId = workbook().sheet(activeSheet()).id();
    const bool done = !refuseInRun() && !refuse(workbook().moveSheet(from, to));
    if (done)
        workbook().setActiveSheet(workbook().sheetIndexOfId(activeId));
    m_tabNames.clear(); // the tab bar has moved its tab already
    showTabs();
    if (done)
        Q_EMIT sheetsChanged();
}

void SpreadsheetControl::removeSheet(int index)
{
    if (refuseInRun() || index < 1 || index > sheetCount() || !commitEdit())
        return;
    const QString name = QString::fromStdString(workbook().sheet(index).name());
    if (workbook().sheetCount() == 1) {
        refuse("至少要有一张表");
        return;
    }
    if (!ask || !ask(QStringLiteral("确定要删除表“%1”吗?").arg(name)))
        return;
    const int activeId = workbook().sheet(activeSheet()).id();
    if (refuse(workbook().removeSheet(index)))
        return;
    const int shown = workbook().sheetIndexOfId(activeId);
    workbook().setActiveSheet(shown != 0 ? shown : std::min(index, workbook().sheetCount()));
    if (shown == 0)
        sheetSwitched();
    afterEdit();
    Q_EMIT sheetsChanged();
}

} // namespace spreadsheet
