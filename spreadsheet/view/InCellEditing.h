#pragma once
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/CellEditing.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace spreadsheet {

class CellEditor;
class Sheet;
class SpreadsheetControl;

/// An edit of the control's active cell in an editor over it.
class InCellEditing : public QObject, public CellEditing {
    Q_OBJECT

public:
    /// @param typed  what the editor begins with, for EditStart::replace
    InCellEditing(SpreadsheetControl& control, CellAddress cell, EditStart start, const QString& typed);
    ~InCellEditing() override;

    CellAddress cell() const override { return m_cell; }
    QString text() const override;
    /// Ends the life of this object if it returns true.
    [[nodiscard]] bool commit() override;
    /// Ends the life of this object.
    void cancel() override;
    void place() override;
    void takeFocus() override;
    void compose(QInputMethodEvent* event) override;
    QRect cursorRect() const override;
    bool takesReference() const override;
    void pointAt(int sheet, const CellRange& range, bool goesOn) override;

    CellEditor& editor() { return *m_editor; }

private:
    Sheet* sheet() const;
    Refusal enter(Sheet& sheet, bool asArray);
    /// False: refused, which the editor shows; it stays open.
    [[nodiscard]] bool commitText(bool asArray);
    void commitByKey(int key, Qt::KeyboardModifiers modifiers);
    void fillSelection();
    std::vector<CellAddress> cellsToFill(const Sheet& sheet) const;
    void pointByKey(int key, Qt::KeyboardModifiers modifiers);
    void showFrames();
    void focusMoved(QWidget* now);
    void end(bool changed);

    SpreadsheetControl& m_control;
    int m_sheetId;
    CellAddress m_cell;
    QPointer<CellEditor> m_editor; ///< the control may be going down with its children
};

} // namespace spreadsheet
