#pragma once
#include "spreadsheet/cells/changed_cells.h"
#include "spreadsheet/view/CellEditing.h"
#include "spreadsheet/view/CellOperations.h"
#include "spreadsheet/view/commands/find_replace.h"
#include "spreadsheet/view/commands/paste.h"
#include "spreadsheet/view/commands/selection_figures.h"
#include "spreadsheet/view/commands/sort_block.h"
#include "spreadsheet/view/commands/structure.h"
#include "spreadsheet/view/function_hints.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QScrollBar;

namespace spreadsheet {

class DateEntry;
class DropDownList;
class GridMouse;
class InCellEditing;
class SheetTabs;
class Selection;
class SheetView;

/// The codes are those that windows set.
enum class GridMode {
    edit = 0,
    run = 1, ///< for reading and printing: nothing the user does changes a cell, but check boxes, buttons and
             ///< drop-downs that are not locked
};

inline constexpr const char* inRunMode = "报表在运行状态，不能更改";

/// The spreadsheet as a widget: painting, moving, selecting, editing, commands. Key and mouse events may be
/// sent to it directly; its coordinates are those of the cells on screen. Cell operations by program are
/// those of CellOperations; they show with the next pass of the event loop, or at once with refresh().
class SpreadsheetControl : public QWidget, public CellOperations {
    Q_OBJECT
public:
    explicit SpreadsheetControl(QWidget* parent = nullptr);
    ~SpreadsheetControl() override;

    GridMode mode() const;
    void setMode(GridMode mode);

    // Cursor and selection, of the active sheet
    CellAddress activeCell() const;
    /// Moves the cursor there, selects the cell and brings it into sight. Fires no leave event. Places
    /// outside the sheet do nothing.
    void setActiveCell(int column, int row);
    /// The ranges in the order in which they were selected; at least one. Whole columns reach from row 1 to
    /// the sheet's last row, whole rows likewise.
    const std::vector<CellRange>& selection() const;
    CellRange firstRange() const { return selection().front(); } ///< the active cell, if it stands alone
    /// True if more than the active cell (or its span) is selected.
    bool isBlockSelected() const;
    /// The bounds of all that is selected.
    CellRange selectedBlock() const;
    /// Fires no leave event. The range's first cell becomes active.
    void select(const CellRange& range);
    /// Of what is selected, for a status bar.
    SelectionFigures selectionFigures() const;

    // What is seen
    QRect cellRect(CellAddress cell) const; ///< of its whole span, in the control; empty if out of sight
    std::optional<CellAddress> cellAt(QPoint place) const; ///< nothing over headings and beyond the cells
    QRect cellArea() const;                                ///< all cells on screen, headings left out
    CellAddress topLeftCell() const;                       ///< first cell behind the frozen rows and columns
    void setTopLeftCell(CellAddress cell);
    void bringIntoSight(CellAddress cell);
    double zoom() const; ///< 1: 100 %
    void showChanges();  ///< at once, and paints nothing else
    void refresh();      ///< likewise, and paints all that is seen anew
    const SheetView& view() const { return *m_view; }
    /// Why a cell of a sheet (by id) shows a mark in its corner, as tooltip; an empty text: it has none.
    /// The provider is asked for visible cells only, again whenever changes are shown.
    void setCellNotes(std::function<QString(int sheetId, CellAddress cell)> notes);
    void setHeadingsShown(bool columns, bool rows);
    /// Texts in the headings of the first columns instead of their letters.
    void setColumnHeadings(const QStringList& texts);
    void setSheetTabsShown(bool shown);
    void setGridLinesShown(bool shown);

    // Questions and refusals; without a handler questions are answered with no
    std::function<bool(const QString& question)> ask;

    // Editing in a cell
    bool isEditing() const { return m_editing != nullptr; }
    /// What stands in the open editor; null if none is open.
    QString typedText() const { return m_editing ? m_editing->text() : QString(); }
    /// Opens the editor in the active cell, if mode and lock allow.
    /// @param typed  the first characters of EditStart::replace
    bool beginEdit(EditStart start, const QString& typed = {});
    /// False if an editor is open and stays open, as its text was refused.
    [[nodiscard]] bool commitEdit();
    void cancelEdit();
    /// Esc: ends one thing, the first of a tool tip, an open entry, filling or resizing by mouse, and the
    /// border around copied cells. False if there is none.
    bool giveUp();
    /// Why the user may not change cells of the sheet that is shown: mode or a lock.
    Refusal editRefusal(const CellRange& range) const;
    [[nodiscard]] bool mayEdit(const CellRange& range) const { return !editRefusal(range); }

public Q_SLOTS:
    // Commands on the selection, as from keys and menus. What is refused is told by refused().
    void undo();
    void redo();
    void cut();
    void copy();
    void paste();
    void pasteValues();
    void clear(); ///< contents; looks stay
    void fillDown();
    void fillRight();
    /// Fills from the first selected range, which the goal holds, and selects the goal.
    void fillTo(const spreadsheet::CellRange& goal, bool asSeries);
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
    bool findNext(const spreadsheet::Search& search, bool backwards = false); ///< selects the cell found
    int replaceAll(const spreadsheet::Search& search, const QString& replacement);
    void sortBlock(const std::vector<spreadsheet::SortKey>& keys, bool headerRow);
    void sumHere();          ///< opens the editor on the sum of the figures above, else of those on the left
    void selectAround();     ///< the block of cells in use around the active one
    void selectActiveCell(); ///< alone
    void showActiveCell();   ///< scrolls back to it
    /// "B12", "B2:C9", "一月!B12", a name.
    spreadsheet::Refusal goTo(const QString& place);
    void setZoom(double zoom); ///< 0.25 to 4; others are put into these limits
    void zoomIn();
    void zoomOut();
    void addSheet();
    void renameSheet(int index, const QString& name);
    void moveSheet(int from, int to);
    void removeSheet(int index); ///< asks first
    void openDropDown();         ///< of the active cell; the calendar of a date cell

Q_SIGNALS:
    /// The user is about to move the cursor from (col, row) to (newCol, newRow). Negative new coordinates: no
    /// cell of this sheet is entered, as the focus goes to another control or another sheet is about to be
    /// shown. With `cancel` set to true the cursor stays (not when the focus goes).
    void leaveCell(int col, int row, int newCol, int newRow, bool& cancel);
    /// @param button  1 left, 2 right, 4 middle
    void mouseDown(int button, int col, int row); ///< row 0, column 0: headings; -1: beyond the cells
    /// The right button or the menu key, after mouseDown.
    void contextMenuWanted(const QPoint& globalPlace, int col, int row);
    /// An editor opens or closes. @param changed  on closing: the text in the cell is another
    void editModeChanged(bool on, bool changed);
    /// A drop-down is about to open. A slot that calls cancelDropDown() opens something else instead.
    void comboDropDown(int col, int row);
    /// @param index  of the chosen entry, from 0; -1: closed without a choice
    void comboCloseUp(int col, int row, int index);
    void buttonClicked(int col, int row);
    /// Before the control acts on a key. An accepted event is left alone; it comes in ignored.
    void keyDown(QKeyEvent* event);
    /// The user has changed the cell (typing, paste, undo, a click on a check box …); -1: several cells.
    void cellChanged(int col, int row);
    void sheetChanged(int index);     ///< another sheet is shown
    void sheetsChanged();             ///< sheets were added, renamed, moved, taken away
    void selectionChanged();          ///< or the active cell, also by program
    void viewChanged();               ///< scrolled, zoomed, rows or columns resized
    void refused(const QString& why); ///< one Chinese sentence for the status bar
    void undoChanged();               ///< what undo and redo would do may have changed

public:
    void cancelDropDown(); ///< see comboDropDown

    /// What the editor tells of functions; registered ones are described here.
    FunctionHints& functionHints() { return m_hints; }

    // For the editor and the commands
    bool refuse(const Refusal& why); ///< true if it is one, which is told
    [[nodiscard]] bool refuseEdit(const std::vector<CellRange>& ranges);
    /// After a change by the user: recalculates, shows what changed and fires cellChanged.
    void afterEdit(std::optional<CellAddress> cell = std::nullopt);
    /// Takes the editor that beginEdit has made.
    void setEditing(std::unique_ptr<CellEditing> editing);
    /// The editor is gone; it deletes the object. The control has the focus again and shows the entry's
    /// sheet.
    void editingEnded(bool changed);
    /// Moves as a user does: fires leaveCell, which may hold it up, and commits an open editor.
    /// @param extend  keeps the other end of the selection
    /// @return false if something held it up, which has told why
    bool moveTo(CellAddress cell, bool extend = false);
    /// Shows a sheet as a user does: fires leaveCell, which may hold it up. An open editor is committed,
    /// unless its formula takes a reference: then cells of that sheet can be pointed at.
    void showSheetByUser(int index);
    /// Where a movement key (arrows, Home, Page Up …) leads from a cell; nothing for other keys.
    std::optional<CellAddress> keyTarget(const QKeyEvent& event, CellAddress from) const;
    void setReferenceFrames(std::vector<ReferenceFrame> frames);
    /// The moving border around copied cells of a sheet; nothing takes it away.
    void setCopiedRange(int sheetId, std::optional<CellRange> range);
    /// The font of a cell as it is on screen, zoom included.
    QFont screenFont(const CellFont& font) const;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    /// Size that a line needs for its texts, in twips.
    int neededRowHeight(int row) const;
    int neededColumnWidth(int column) const;

protected:
    void changed() override;
    void sheetSwitched() override;
    void workbookSwitched() override;

    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    friend class GridMouse;

    // Of the view
    void layOut();
    void adjustScrollBars();
    void placesChanged();
    void scrollTo(CellAddress topLeft);
    void changeSelection(const std::function<void(Selection&, const Sheet&)>& change);
    [[nodiscard]] bool commitHere();
    [[nodiscard]] bool leave(int newColumn, int newRow);
    bool showRange(int sheet, CellRange range);
    bool enter(CellAddress cell, const std::function<void(Selection&, const Sheet&)>& change);
    void showTabs();
    /// A line, or all selected ones if it is selected whole.
    std::vector<LineRange> linesWith(bool rows, int line) const;
    void resizeLinesTo(bool rows, int line, int twips);
    void autofitLine(bool rows, int line);
    // Of the keys
    bool moveByKey(const QKeyEvent& event);
    bool selectByKey(const QKeyEvent& event);
    bool commandByKey(const QKeyEvent& event);
    bool actByKey(const QKeyEvent& event);
    bool stepByKey(const QKeyEvent& event);
    // Of cells that act
    bool mayAct(CellAddress cell) const;
    void toggleCheckBox(CellAddress cell);
    void closeDropDown(int index);

    InCellEditing* openEditor(EditStart start, const QString& typed);
    // Of the commands
    /// True in run mode, which is told.
    [[nodiscard]] bool refuseInRun();
    std::optional<CellRange> onlyRange();
    void travelInTime(std::optional<ChangedCells> (UndoJournal::*travel)());
    std::optional<PackedOrigin> copyRange(const CellRange& range);
    void pasteClipboard(PasteKind kind);
    void pastePlanned(Sheet& target, const ClipboardContent& content, const PastePlan& plan, PasteKind kind);
    void fillAlong(bool down);
    using LineCommand = std::function<Refusal(Workbook&, Sheet&, Axis, const std::vector<LineRange>&)>;
    void changeLines(LineCommand command, bool rows);
    void autofit(bool rows);

    std::unique_ptr<SheetView> m_view; ///< places, selection, pictures
    std::unique_ptr<GridMouse> m_mouse;
    QScrollBar* m_down;
    QScrollBar* m_across;
    SheetTabs* m_tabs;
    DropDownList* m_dropDown;
    DateEntry* m_dateEntry;
    QTimer m_march;       ///< moves the border of copied cells
    QTimer m_showChanges; ///< of the program, with the next pass of the event loop
    GridMode m_mode = GridMode::edit;
    CellAddress m_dropDownCell;
    bool m_dropDownCancelled = false;
    bool m_tabsShown = true;
    QStringList m_tabNames; ///< as they are shown
    int m_tabActive = 0;
    int m_tabColumn = 0; ///< where Tab began: Enter leads back there; 0: nowhere
    int m_wheelZoom = 0; ///< eighths of a degree not yet acted on
    int m_wheelDown = 0, m_wheelAcross = 0;
    std::unique_ptr<CellEditing> m_editing;
    bool m_keepsEditing = false; ///< another sheet is being shown to point at its cells
    int m_entrySheetId = 0;      ///< the sheet to go back to when the entry ends; 0: no other was shown
    FunctionHints m_hints;
    /// Cells that were cut and not pasted yet; an edit in between makes a copy of them.
    struct Cut {
        PackedOrigin origin;
        std::uint64_t revision = 0; ///< of the workbook
    };
    std::optional<Cut> m_cut;
};

} // namespace spreadsheet
