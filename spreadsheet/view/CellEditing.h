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

/// What became of a text that was to be entered.
enum class EntryOutcome {
    refused,   ///< it stays in the editor, which shows why
    unchanged, ///< the cell keeps what it had
    entered,   ///< it is in the cell, and nobody has been told yet
    told,      ///< it is in the cell, recalculated and shown
};

/// An editor of a cell's text. Its owner, GridEntry, closes it by ending its life.
class CellEditing {
public:
    virtual ~CellEditing() = default;

    virtual CellAddress cell() const = 0;
    virtual QString text() const = 0; ///< as it stands, not yet in the cell
    /// Puts the text into the cell.
    [[nodiscard]] virtual EntryOutcome commit() = 0;
    /// What was typed is given up.
    virtual void discard() {}
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
