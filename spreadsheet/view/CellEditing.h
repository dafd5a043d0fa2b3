#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QColor>
#include <QRect>
#include <QString>

#include <vector>

class QInputMethodEvent;

namespace spreadsheet {

/// How an edit begins.
enum class EditStart {
    replace, ///< a key was typed: the old content goes
    keep,    ///< F2, double click: the content is there, the cursor at its end
};

/// The editor that is open in a cell, as the control sees it. It lives from SpreadsheetControl::setEditing to
/// editingEnded().
class CellEditing {
public:
    virtual ~CellEditing() = default;

    virtual CellAddress cell() const = 0;
    virtual QString text() const = 0; ///< as it stands, not yet in the cell
    /// Puts the text into the cell. False: it was refused, and the editor stays open with the reason.
    [[nodiscard]] virtual bool commit() = 0;
    virtual void cancel() = 0;
    /// The cell has moved on screen, or zoom or sheet have changed.
    virtual void place() = 0;

    /// A click on tabs or scroll bars has given the control the focus; keys still belong to the text.
    virtual void takeFocus() = 0;
    /// An input method composes while the control still has the focus; the editor takes it over when a text
    /// is done.
    virtual void compose(QInputMethodEvent* event) = 0;
    /// Where the cursor stands, in the control.
    virtual QRect cursorRect() const = 0;

    // Pointing at cells while a formula is written
    /// A reference may be put where the text cursor stands.
    virtual bool takesReference() const = 0;
    /// The mouse points at a range of a sheet (index): its reference is put in, or replaces the one pointed
    /// at before while `goesOn`.
    virtual void pointAt(int sheet, const CellRange& range, bool goesOn) = 0;
};

/// A coloured frame around cells that a formula refers to.
struct ReferenceFrame {
    int sheetId = 0;
    CellRange range;
    QColor colour;
};

} // namespace spreadsheet
