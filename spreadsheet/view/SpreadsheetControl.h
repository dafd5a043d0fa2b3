#pragma once
#include "spreadsheet/view/CellActions.h"
#include "spreadsheet/view/CellOperations.h"
#include "spreadsheet/view/CornerMark.h"
#include "spreadsheet/view/GridCommands.h"
#include "spreadsheet/view/GridCursor.h"
#include "spreadsheet/view/GridEntry.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QScrollBar;

namespace spreadsheet {

class GridMouse;
class SheetTabs;
class SheetView;

/// The codes are those that windows set.
enum class GridMode {
    edit = 0,
    run = 1, ///< for reading and printing: nothing the user does changes a cell, but check boxes, buttons and
             ///< drop-downs that are not locked
};

inline constexpr const char* inRunMode = "报表在运行状态，不能更改";

/// The spreadsheet as a widget: its events, its layout, and what windows hear of it. What can be done with it
/// is done with its parts. Key and mouse events may be sent to it directly; its coordinates are those of the
/// cells on screen.
class SpreadsheetControl : public QWidget {
    Q_OBJECT
public:
    explicit SpreadsheetControl(QWidget* parent = nullptr);
    ~SpreadsheetControl() override;

    /// Cell operations by program. They show with the next pass of the event loop, or at once with
    /// showChanges().
    CellOperations& cells();
    const CellOperations& cells() const;
    GridCursor& cursor() { return m_cursor; }
    const GridCursor& cursor() const { return m_cursor; }
    GridEntry& entry() { return *m_entry; }
    const GridEntry& entry() const { return *m_entry; }
    GridCommands& commands() { return *m_commands; }
    CellActions& actions() { return *m_actions; }
    const SheetView& view() const { return *m_view; }

    // What the user may do
    GridMode mode() const { return m_mode; }
    void setMode(GridMode mode);
    /// Commands that change several cells or the sheet at once, by keys and by dragging the selection's
    /// corner; without them cells are typed into one by one, and nothing can be undone.
    bool offersCommands() const { return m_offersCommands; }
    void setCommandsOffered(bool offered);
    /// The right button beyond the selection moves the cursor there before contextMenuWanted.
    bool movesByRightButton() const { return m_movesByRightButton; }
    void setMovesByRightButton(bool moves) { m_movesByRightButton = moves; }
    /// Why the user may not change cells of the sheet that is shown: mode or a lock.
    Refusal editRefusal(const CellRange& range) const;
    [[nodiscard]] bool mayEdit(const CellRange& range) const { return !editRefusal(range); }
    bool refuse(const Refusal& why); ///< true if it is one, which is told
    [[nodiscard]] bool refuseEdit(const std::vector<CellRange>& ranges);
    [[nodiscard]] bool refuseInRun(); ///< true in run mode, which is told
    /// After a change by the user: recalculates, shows what changed and fires cellChanged.
    void afterEdit(std::optional<CellAddress> cell = std::nullopt);
    /// Esc: ends one thing, the first of a tool tip, an open entry, filling or resizing by mouse, and the
    /// border around copied cells. False if there is none.
    bool giveUp();
    /// Questions to the user; without a handler they are answered with no.
    std::function<bool(const QString& question)> ask;

    // What is seen
    QRect cellRect(CellAddress cell) const; ///< of its whole span, in the control; empty if out of sight
    std::optional<CellAddress> cellAt(QPoint place) const; ///< nothing over headings and beyond the cells
    QRect cellArea() const;                                ///< all cells on screen, headings left out
    /// The font of a cell as it is on screen, zoom included.
    QFont screenFont(const CellFont& font) const;
    double zoom() const;       ///< 1: 100 %
    void setZoom(double zoom); ///< 0.25 to 4; others are put into these limits
    void showChanges();        ///< at once, and paints nothing else
    /// Why a cell of a sheet (by id) shows a mark in its corner, as tooltip; an empty text: it has none.
    /// The provider is asked for visible cells only, again whenever changes are shown.
    /// @param marks  which mark, asked with every painting; empty: a triangle where there is a note
    void setCellNotes(std::function<QString(int sheetId, CellAddress cell)> notes,
                      std::function<CornerMark(int sheetId, CellAddress cell)> marks = {});
    void setHeadingsShown(bool columns, bool rows);
    /// Texts in the headings of the first columns instead of their letters.
    void setColumnHeadings(const QStringList& texts);
    void setSheetTabsShown(bool shown);
    void setGridLinesShown(bool shown);

    // What parts tell of
    void placesChanged();   ///< cells stand elsewhere on screen
    void fitScrollBars();   ///< to what is in sight
    void showActiveSheet(); ///< another one is active
    void restoreTabs();     ///< the tab bar may have gone ahead of the sheets
    void tellInputMethod() { updateMicroFocus(); }

    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

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
    /// A drop-down is about to open. A slot that calls CellActions::cancelDropDown() opens something else
    /// instead.
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
    /// Undo or redo has given the sheets other print settings.
    /// @param alone  and changed nothing of the design
    void printSettingsTravelled(bool alone);

protected:
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
    class Cells;

    void connectBars();
    void connectTabs();
    void layOut();
    void showTabs();
    void showFillHandle();
    void showAnotherWorkbook();
    void zoomBy(int steps);

    std::unique_ptr<Cells> m_cells;
    std::unique_ptr<SheetView> m_view; ///< places, selection, pictures
    GridCursor m_cursor;
    std::unique_ptr<GridMouse> m_mouse;
    QScrollBar* m_down;
    QScrollBar* m_across;
    SheetTabs* m_tabs;
    std::unique_ptr<GridCommands> m_commands;
    std::unique_ptr<GridEntry> m_entry; ///< goes before the view that its editor asks
    std::unique_ptr<CellActions> m_actions;
    QTimer m_showChanges; ///< of the program, with the next pass of the event loop
    GridMode m_mode = GridMode::edit;
    bool m_offersCommands = true;
    bool m_movesByRightButton = false;
    bool m_tabsShown = true;
    QStringList m_tabNames; ///< as they are shown
    int m_tabActive = 0;
    int m_wheelZoom = 0; ///< eighths of a degree not yet acted on
    int m_wheelDown = 0, m_wheelAcross = 0;
};

} // namespace spreadsheet
