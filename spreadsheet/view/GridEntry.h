#pragma once
#include "spreadsheet/view/CellEditing.h"
#include "spreadsheet/view/function_hints.h"

#include <QObject>

#include <memory>

class QKeyEvent;

namespace spreadsheet {

class InCellEditing;
class SheetView;
class SpreadsheetControl;

/// Typing into the cells of a control. It owns the editor that is open and acts on what comes of it: closes
/// it, gives the control the focus back, tells what has changed.
class GridEntry : public QObject {
public:
    GridEntry(SpreadsheetControl& control, SheetView& view);
    ~GridEntry() override;

    bool isOpen() const { return m_editing != nullptr; }
    /// What stands in the open editor; null if none is open.
    QString text() const { return m_editing ? m_editing->text() : QString(); }
    /// Opens the editor in the active cell, if mode and lock allow.
    /// @param typed  the first characters of EditStart::replace
    bool begin(EditStart start, const QString& typed = {});
    /// Takes another editor than the one in the cell, which is open from now on.
    void open(std::unique_ptr<CellEditing> editing);
    /// False if an editor is open and stays open, as its text was refused.
    [[nodiscard]] bool commit();
    /// False also if the sheet of the entry is back and what was chosen on another one no longer there.
    [[nodiscard]] bool commitHere();
    void cancel();

    /// A reference may be put where the text cursor stands.
    bool takesReference() const { return m_editing && m_editing->takesReference(); }
    /// See CellEditing.
    void pointAt(const CellRange& range, bool goesOn);
    /// Frames around the cells that a formula refers to.
    void setReferenceFrames(std::vector<ReferenceFrame> frames);
    /// Shows another sheet to point at its cells; the entry's own one comes back when it ends.
    void pointAtSheet(int index);

    /// Begins an edit by typing, F2 …. False for other keys.
    bool pressKey(const QKeyEvent& event);

    /// The first character that is composed begins an edit. The focus stays until the text is done: moving it
    /// would end the composing, and the characters so far would be lost.
    void compose(QInputMethodEvent* event);
    QRect cursorRect() const; ///< of the text, else of the active cell; in the control

    // What the control tells of
    void place();         ///< cells stand elsewhere on screen
    void takeFocus();     ///< a click beside the cells has given it to the control
    void sheetSwitched(); ///< by program the entry is given up

    /// What the editor tells of functions; registered ones are described here.
    FunctionHints& functionHints() { return m_hints; }

private:
    InCellEditing* openInCell(EditStart start, const QString& typed);
    void close(EntryOutcome outcome);
    void endByKey(QKeyEvent* event);
    void fillSelection();
    void pointByKey(int key, Qt::KeyboardModifiers modifiers);
    void showFrames();
    void focusMoved(QWidget* now);

    SpreadsheetControl& m_control;
    SheetView& m_view;
    FunctionHints m_hints;
    std::unique_ptr<CellEditing> m_editing;
    InCellEditing* m_inCell = nullptr; ///< m_editing, if it is the editor in the cell
    bool m_keeps = false;              ///< another sheet is being shown to point at its cells
    int m_ownSheetId = 0;              ///< the sheet to go back to when the entry ends; 0: no other was shown
};

} // namespace spreadsheet
