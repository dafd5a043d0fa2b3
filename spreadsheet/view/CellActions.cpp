#include "spreadsheet/view/CellActions.h"

#include "spreadsheet/view/DateEntry.h"
#include "spreadsheet/view/DropDownList.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QKeyEvent>

namespace spreadsheet {

namespace {

/// A new value by the user as one undo step.
void putValue(Workbook& workbook, Sheet& sheet, CellAddress cell, Value value)
{
    const UndoStep step(workbook, "输入");
    sheet.setValue(cell, std::move(value));
}

} // namespace

CellActions::CellActions(SpreadsheetControl& control, SheetView& view)
    : m_control(control)
    , m_view(view)
    , m_dropDown(new DropDownList(&control))
    , m_dateEntry(new DateEntry(control))
{
    QObject::connect(m_dropDown, &DropDownList::closed, &control,
                     [this](int index) { closeDropDown(index); });
}

bool CellActions::mayAct(CellAddress cell) const
{
    return !m_view.sheet().style(cell).locked;
}

const CellBehaviour& CellActions::behaviourAt(CellAddress cell) const
{
    return behaviourOf(m_view.sheet().style(cell).type);
}

void CellActions::act(CellAddress cell)
{
    behaviourAt(cell).act(*this, cell);
}

Value CellActions::value(CellAddress cell) const
{
    return m_view.sheet().value(cell);
}

void CellActions::put(CellAddress cell, Value value)
{
    Sheet& sheet = m_control.cells().shownSheet();
    if (!mayAct(cell) || (m_control.mode() == GridMode::run && sheet.hasFormula(cell))) {
        m_control.refuse("单元格已锁定，不能更改");
        return;
    }
    putValue(m_control.cells().workbook(), sheet, cell, std::move(value));
    m_control.afterEdit(cell);
}

void CellActions::click(CellAddress cell)
{
    if (mayAct(cell))
        Q_EMIT m_control.buttonClicked(cell.column, cell.row);
}

bool CellActions::pressKey(const QKeyEvent& event)
{
    const CellAddress cell = m_control.cursor().activeCell();
    if (event.key() != Qt::Key_Space || event.modifiers() != Qt::NoModifier ||
        !behaviourAt(cell).takes(CellBehaviour::Key::space))
        return false;
    act(cell);
    return true;
}

void CellActions::cancelDropDown()
{
    m_dropDownCancelled = true;
}

void CellActions::openDropDown()
{
    const CellAddress cell = m_control.cursor().activeCell();
    if (behaviourAt(cell).takes(CellBehaviour::Key::open))
        return act(cell);
    m_control.showChanges(); // the cell may stand elsewhere by now
    m_dateEntry->open();
}

void CellActions::openList()
{
    const CellAddress cell = m_control.cursor().activeCell();
    if (!m_control.entry().commitHere())
        return;
    if (!mayAct(cell)) {
        m_control.refuse("单元格已锁定，不能更改");
        return;
    }
    m_dropDownCancelled = false;
    Q_EMIT m_control.comboDropDown(cell.column, cell.row);
    m_control.cells().setAddressedSheet(m_control.cells().activeSheet());
    m_control.showChanges();
    const QStringList entries = m_control.cells().dropDownOf(cell);
    if (m_dropDownCancelled || entries.isEmpty())
        return;
    m_dropDownCell = cell;
    const QRect place = m_control.cellRect(cell);
    m_dropDown->open(entries,
                     static_cast<int>(entries.indexOf(m_control.cells().text(cell.column, cell.row))),
                     QRect(m_control.mapToGlobal(place.topLeft()), place.size()),
                     m_control.screenFont(m_view.sheet().style(cell).font));
}

void CellActions::closeDropDown(int index)
{
    const CellAddress cell = m_dropDownCell;
    const QStringList entries = m_control.cells().dropDownOf(cell);
    if (index >= 0 && index < entries.size()) {
        putValue(m_control.cells().workbook(), m_control.cells().shownSheet(), cell,
                 Value::text(entries[index].toStdString()));
        m_control.afterEdit(cell);
    }
    Q_EMIT m_control.comboCloseUp(cell.column, cell.row, index);
}

} // namespace spreadsheet
