#pragma once
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/CellEditing.h"

#include <QPointer>
#include <QString>

namespace spreadsheet {

class CellEditor;
class Sheet;
class SpreadsheetControl;

/// An edit of the control's active cell in an editor over it.
class InCellEditing : public CellEditing {
public:
    /// @param typed  what the editor begins with, for EditStart::replace
    InCellEditing(SpreadsheetControl& control, CellAddress cell, EditStart start, const QString& typed);
    ~InCellEditing() override;

    CellAddress cell() const override { return m_cell; }
    QString text() const override;
    [[nodiscard]] EntryOutcome commit() override;
    /// As an array formula of the first selected range.
    [[nodiscard]] EntryOutcome commitAsArray();
    void place() override;
    void takeFocus() override;
    void compose(QInputMethodEvent* event) override;
    QRect cursorRect() const override;
    bool takesReference() const override;
    void pointAt(int sheet, const CellRange& range, bool goesOn) override;

    CellEditor& editor();
    /// The sheet of the cell; null if it is gone.
    Sheet* sheet() const;
    int indentOnScreen() const;

private:
    EntryOutcome outcomeOf(const Refusal& problem);

    SpreadsheetControl& m_control;
    int m_sheetId;
    CellAddress m_cell;
    QPointer<CellEditor> m_editor; ///< the control may be going down with its children
};

} // namespace spreadsheet
