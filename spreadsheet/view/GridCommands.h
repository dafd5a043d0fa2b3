#pragma once
#include "spreadsheet/cells/changed_cells.h"
#include "spreadsheet/view/commands/find_replace.h"
#include "spreadsheet/view/commands/paste.h"
#include "spreadsheet/view/commands/sort_block.h"
#include "spreadsheet/view/commands/structure.h"

#include <QTimer>

#include <functional>
#include <optional>

class QKeyEvent;
class QMimeData;

namespace spreadsheet {

class SheetView;
class SpreadsheetControl;
class UndoJournal;

/// What users do with what is selected, by keys and menus: each command is an undo step. What is refused is
/// told by the control's refused().
class GridCommands {
public:
    GridCommands(SpreadsheetControl& control, SheetView& view);

    void undo();
    void redo();
    void cut();
    void copy();
    void paste();
    void pasteValues();
    void pasteText(); ///< at the active cell, whatever else the clipboard offers
    void clear();     ///< contents; looks stay
    void fillDown();
    void fillRight();
    /// Fills from the first selected range, which the goal holds, and selects the goal.
    void fillTo(const CellRange& goal, bool asSeries);
    bool findNext(const Search& search, bool backwards = false); ///< selects the cell found
    int replaceAll(const Search& search, const QString& replacement);
    void sortBlock(const std::vector<SortKey>& keys, bool headerRow);
    void sumHere(); ///< opens the editor on the sum of the figures above, else of those on the left

    // Rows and columns
    void insertRows(); ///< before the selection, as many as are selected
    void insertColumns();
    void deleteRows();
    void deleteColumns();
    void hideRows();
    void hideColumns();
    void showRows();
    void showColumns();
    void autofitRows(); ///< to the tallest text
    void autofitColumns();
    void freezeHere(); ///< rows above and columns left of the active cell; again: frees them
    /// A line, or all selected ones if it is selected whole. @param twips  0 hides
    void resizeLinesTo(Axis axis, int line, int twips);
    void autofitLine(Axis axis, int line);
    /// The page that begins by hand at a row or column begins at another; at the first one the mark is gone.
    void movePageBreak(Axis axis, int from, int to);
    /// … that at the active cell by so many lines, and the cursor with it.
    void movePageBreakHere(Axis axis, int lines);

    // Sheets
    void addSheet();
    void renameSheet(int index, const QString& name);
    void moveSheet(int from, int to);
    void removeSheet(int index); ///< asks first

    /// Runs the command of a key. False for other keys.
    bool pressKey(const QKeyEvent& event);
    /// The moving border around copied cells of a sheet; nothing takes it away.
    void setCopiedRange(int sheetId, std::optional<CellRange> range);
    /// Cells that were cut are no longer to be moved: another workbook is shown.
    void forgetCut() { m_cut.reset(); }

private:
    std::optional<CellRange> onlyRange();
    void travelInTime(std::optional<ChangedCells> (UndoJournal::*travel)());
    std::optional<PackedOrigin> copyRange(const CellRange& range);
    const QMimeData* clipboardOffer();
    void pasteClipboard(PasteKind kind);
    /// @param place  nothing: what is selected
    void pasteOffered(const QMimeData& offer, const std::optional<CellRange>& place, PasteKind kind);
    void pastePlanned(Sheet& target, const ClipboardContent& content, const PastePlan& plan, PasteKind kind);
    void pasteIntoEach(Sheet& target, const ClipboardContent& content, PasteKind kind);
    void fillAlong(bool down);
    using LineCommand = std::function<Refusal(Workbook&, Sheet&, Axis, const std::vector<LineRange>&)>;
    void changeLines(LineCommand command, Axis axis);
    void autofit(Axis axis);
    std::vector<LineRange> linesWith(Axis axis, int line) const;

    /// Cells that were cut and not pasted yet; an edit in between makes a copy of them.
    struct Cut {
        PackedOrigin origin;
        std::uint64_t revision = 0; ///< of the workbook
    };

    SpreadsheetControl& m_control;
    SheetView& m_view;
    QTimer m_march; ///< moves the border of copied cells
    std::optional<Cut> m_cut;
};

} // namespace spreadsheet
