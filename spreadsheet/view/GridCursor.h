#pragma once
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/commands/selection_figures.h"
#include "spreadsheet/view/key_moves.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

class QKeyEvent;

namespace spreadsheet {

class Selection;
class Sheet;
class SheetView;
class SpreadsheetControl;

/// Where the user is in a control: the active cell, what is selected and what is in sight, on the active
/// sheet. What moves as a user does fires leaveCell, which may hold it up, and commits an open entry; it is
/// false if something held it up, which has told why.
class GridCursor {
public:
    GridCursor(SpreadsheetControl& control, SheetView& view);

    CellAddress activeCell() const;
    /// The ranges in the order in which they were selected; at least one. Whole columns reach from row 1 to
    /// the sheet's last row, whole rows likewise.
    const std::vector<CellRange>& selection() const;
    CellRange firstRange() const { return selection().front(); } ///< the active cell, if it stands alone
    /// True if more than the active cell (or its span) is selected.
    bool isBlockSelected() const;
    /// The bounds of all that is selected.
    CellRange selectedBlock() const;
    /// Of what is selected, for a status bar.
    SelectionFigures selectionFigures() const;

    // By program: no leave event
    /// Selects the cell and brings it into sight. Places outside the sheet do nothing.
    void setActiveCell(int column, int row);
    /// The range's first cell becomes active.
    void select(const CellRange& range);
    void selectAround();     ///< the block of cells in use around the active one
    void selectActiveCell(); ///< alone
    void changeSelection(const std::function<void(Selection&, const Sheet&)>& change);

    // As a user does
    /// @param extend  keeps the other end of the selection
    bool moveTo(CellAddress cell, bool extend = false);
    /// @param change  makes the new selection, in which `cell` is active
    bool enter(CellAddress cell, const std::function<void(Selection&, const Sheet&)>& change);
    /// Asks those who listen whether the cursor may go. Negative: to no cell.
    [[nodiscard]] bool leave(int newColumn, int newRow);
    /// Selects what the sheet (index) has of a range and shows its beginning.
    bool showRange(int sheet, const CellRange& range);
    /// "B12", "B2:C9", "一月!B12", a name.
    Refusal goTo(const QString& place);
    /// An open entry is committed, unless its formula takes a reference: then cells of that sheet can be
    /// pointed at.
    void showSheet(int index);

    // Keys
    /// Moves or selects as the key says. False for other keys.
    bool pressKey(const QKeyEvent& event);
    /// Where a movement key (arrows, Home, Page Up …) leads from a cell; nothing for other keys.
    std::optional<CellAddress> keyTarget(int key, Qt::KeyboardModifiers modifiers, CellAddress from) const;
    /// Enter does not lead back to where Tab began.
    void forgetTab() { m_tabColumn = 0; }

    // What is in sight
    CellAddress topLeftCell() const; ///< first cell behind the frozen rows and columns
    void setTopLeftCell(CellAddress cell);
    void bringIntoSight(CellAddress cell);

private:
    bool moveByKey(const QKeyEvent& event);
    bool stepByKey(const QKeyEvent& event);
    bool selectByKey(const QKeyEvent& event);
    void turnPage(CellAddress from, int screens, bool across);

    SpreadsheetControl& m_control;
    SheetView& m_view;
    int m_tabColumn = 0; ///< where Tab began: Enter leads back there; 0: nowhere
};

} // namespace spreadsheet
