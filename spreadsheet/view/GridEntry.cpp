// Editing in the active cell.
#include "spreadsheet/view/CellEditor.h"
#include "spreadsheet/view/InCellEditing.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QInputMethodEvent>

namespace spreadsheet {

/// The new editor, without the focus; null if the cell may not be edited.
InCellEditing* SpreadsheetControl::openEditor(EditStart start, const QString& typed)
{
    const Sheet& shown = workbook().sheet(activeSheet());
    const CellRange extent = shown.extent(activeCell());
    const CellAddress cell{extent.left, extent.top};
    const CellType type = shown.style(cell).type;
    if (type == CellType::button || type == CellType::checkBox || type == CellType::staticText)
        return nullptr;
    if (refuse(editRefusal(extent)))
        return nullptr;
    bringIntoSight(cell);
    auto editing = std::make_unique<InCellEditing>(*this, cell, start, typed);
    InCellEditing* const opened = editing.get();
    setEditing(std::move(editing));
    return opened;
}

bool SpreadsheetControl::beginEdit(EditStart start, const QString& typed)
{
    if (isEditing())
        return true;
    InCellEditing* const opened = openEditor(start, typed);
    if (opened)
        opened->editor().setFocus();
    return opened != nullptr;
}

/// The first character that is composed begins an edit. The focus stays until the text is done: moving it
/// would end the composing, and the characters so far would be lost.
void SpreadsheetControl::inputMethodEvent(QInputMethodEvent* event)
{
    const bool brings = !event->preeditString().isEmpty() || !event->commitString().isEmpty();
    if (isEditing() || (brings && openEditor(EditStart::replace, {})))
        m_editing->compose(event);
    event->accept();
}

QVariant SpreadsheetControl::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return mode() == GridMode::edit;
    case Qt::ImFont:
        return screenFont(workbook().sheet(activeSheet()).style(activeCell()).font);
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle:
        return isEditing() ? m_editing->cursorRect() : cellRect(activeCell());
    default:
        return QWidget::inputMethodQuery(query);
    }
}

bool SpreadsheetControl::commitEdit()
{
    return !isEditing() || m_editing->commit();
}

/// False also if the sheet of the entry is back and what was chosen on another one no longer there.
bool SpreadsheetControl::commitHere()
{
    const int chosen = activeSheet();
    return commitEdit() && activeSheet() == chosen;
}

void SpreadsheetControl::cancelEdit()
{
    if (isEditing())
        m_editing->cancel();
}

} // namespace spreadsheet
