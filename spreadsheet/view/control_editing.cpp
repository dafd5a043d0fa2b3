// Editing in the active cell.
#include "spreadsheet/view/CellEditor.h"
#include "spreadsheet/view/InCellEditing.h"
#include "spreadsheet/view/SpreadsheetControl.h"

namespace spreadsheet {

bool SpreadsheetControl::beginEdit(EditStart start, const QString& typed)
{
    if (isEditing())
        return true;
    const Sheet& shown = workbook().sheet(activeSheet());
    const CellRange extent = shown.extent(activeCell());
    const CellAddress cell{extent.left, extent.top};
    const CellType type = shown.style(cell).type;
    if (type == CellType::button || type == CellType::checkBox || type == CellType::staticText)
        return false;
    if (!mayEdit(extent)) {
        Q_EMIT refused(mode() == GridMode::run ? QStringLiteral("报表在运行状态，不能更改")
                                               : QStringLiteral("单元格已锁定，不能更改"));
        return false;
    }
    bringIntoSight(cell);
    auto editing = std::make_unique<InCellEditing>(*this, cell, start, typed);
    CellEditor& editor = editing->editor();
    setEditing(std::move(editing));
    editor.setFocus();
    return true;
}

bool SpreadsheetControl::commitEdit()
{
    return !isEditing() || m_editing->commit();
}

void SpreadsheetControl::cancelEdit()
{
    if (isEditing())
        m_editing->cancel();
}

} // namespace spreadsheet
