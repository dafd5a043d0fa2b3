#include "spreadsheet/view/CellActions.h"

#include "spreadsheet/display/cell_types.h"
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

bool isChecked(const Value& value)
{
    if (value.isBoolean())
        return value.boolean();
    return value.isNumber() ? value.number() != 0 : value.isText() && value.textView() == "1";
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

void CellActions::toggleCheckBox(CellAddress cell)
{
    Sheet& sheet = m_control.cells().shownSheet();
    if (!mayAct(cell) || (m_control.mode() == GridMode::run && sheet.hasFormula(cell))) {
        m_control.refuse("单元格已锁定，不能更改");
        return;
    }
    putValue(m_control.cells().workbook(), sheet, cell, Value::boolean(!isChecked(sheet.value(cell))));
    m_control.afterEdit(cell);
}

void CellActions::clickButton(CellAddress cell)
{
    if (mayAct(cell))
        Q_EMIT m_control.buttonClicked(cell.column, cell.row);
}

bool CellActions::pressKey(const QKeyEvent& event)
{
    if (event.key() != Qt::Key_Space || event.modifiers() != Qt::NoModifier)
        return false;
    const CellAddress cell = m_control.cursor().activeCell();
    switch (cellTypeRow(m_view.sheet().style(cell).type).face) {
    case CellFace::checkBox:
        toggleCheckBox(cell);
        return true;
    case CellFace::button:
        clickButton(cell);
        return true;
    default:
        return false;
    }
}

void CellActions::cancelDropDown()
{
    m_dropDownCancelled = true;
}

void CellActions::openDropDown()
{
    const CellAddress cell = m_control.cursor().activeCell();
    if (cellTypeRow(m_view.sheet().style(cell).type).face != CellFace::arrow) {
        m_control.showChanges(); // the cell may stand elsewhere by now
        m_dateEntry->open();
        return;
    }
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
