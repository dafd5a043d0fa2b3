#pragma once
#include "spreadsheet/cells/changed_cells.h"
#include "spreadsheet/cells/Column.h"
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/workbook/CellMove.h"

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace spreadsheet {

class Sheet;
class Workbook;
struct WorkbookContent;

/// Former states of what edits changed. A step holds the columns, settings, sheets and names as they
/// were; columns share their blocks with the present, so a step costs what it really changed.
/// Undoing exchanges the states, which turns the step into its own redo.
class UndoJournal {
public:
    static constexpr std::size_t maxBytes = std::size_t(256) << 20;
    static constexpr std::size_t maxSteps = 10'000;

    explicit UndoJournal(Workbook& workbook)
        : m_workbook(workbook)
    {
    }

    void setEnabled(bool enabled);
    bool enabled() const { return m_enabled; }
    bool canUndo() const { return !m_undo.empty(); }
    bool canRedo() const { return !m_redo.empty(); }
    /// Steps that can be undone.
    std::size_t steps() const { return m_undo.size(); }
    /// Bytes that undo and redo hold besides the present sheets.
    std::size_t bytes() const { return m_bytes; }
    std::string label() const { return m_undo.empty() ? std::string() : m_undo.back().label; }

    void open(std::string label);
    void close();
    /// Makes the open step's changes undone; the step is empty then.
    void takeBack();
    /// Tells the block of cells that are others now, of one sheet; of a step that inserted or removed rows or
    /// columns, those. Nothing if no cell is another, or formulas are only shown in another way.
    std::optional<ChangedCells> undo();
    std::optional<ChangedCells> redo();

    /// Told of each change that made cells lie elsewhere, once it is done; undo and redo are such changes
    /// too.
    void setMoveHook(MoveHook hook) { m_moved = std::move(hook); }
    void noteMove(const CellMove& move); ///< called after it
    /// Gives the workbook another content. Hooks and registered functions stay. Within a step the former one
    /// is kept; otherwise the history goes with it.
    void replaceContent(std::shared_ptr<WorkbookContent> content);

    // Called before the change.
    void keepColumn(const Sheet& sheet, int column);
    void keepAllColumns(const Sheet& sheet);
    void keepSettings(const Sheet& sheet);
    void keepSheets();
    void keepNames();
    void keepFormulasShown();
    void keepDesignRevision();
    /// The rows or columns that are about to be inserted or removed.
    void noteLines(const Sheet& sheet, const CellRange& lines);

    /// A column as it was before the open step; null unless the step changed cells of it where they stand.
    const Column* formerColumn(int sheetId, int column) const;

private:
    struct Step {
        std::string label;
        std::map<std::pair<int, int>, Column> columns; ///< by sheet id and column
        std::map<int, std::vector<Column>> allColumns; ///< by sheet id
        std::map<int, SheetSettings> settings;
        std::optional<std::vector<std::shared_ptr<Sheet>>> sheets;
        std::optional<std::vector<std::uint32_t>> names;
        std::optional<bool> formulasShown;
        /// Replaced as a whole. Nothing that follows in the step is kept: it goes with the new content.
        std::shared_ptr<WorkbookContent> content;
        bool contentLast = false; ///< exchanged behind the rest, which belongs to the content there now
        std::optional<std::uint64_t> designRevision; ///< before it; none: the step is of the display only
        std::optional<ChangedCells> lines;           ///< inserted or removed
        std::vector<CellMove> moves; ///< those that exchanging the step takes back, last first
        std::size_t bytes = 0;
        bool empty() const;
    };

    bool recording() const { return m_enabled && m_depth > 0 && !m_current.content; }
    void exchange(Step& step);
    void exchangeCells(Step& step);
    void exchangeContent(WorkbookContent& other);
    std::optional<ChangedCells> changedBy(const Step& exchanged) const;
    void exchangeColumn(Sheet& sheet, int column, Column& former);
    void noteDifference(int sheetId, int column, const Column& before, const Column& after);
    void tellMove(const CellMove& move) const;
    void takeMovesBack(std::vector<CellMove>& moves);
    void exchangeNames(std::vector<std::uint32_t>& former);
    /// Also a sheet that only the step holds, so that a step which adds a sheet and fills it is redone.
    Sheet* sheetOfId(int id, const Step& step);
    void weigh(Step& step);
    std::size_t bytesOf(const Step& step);
    void trim();

    Workbook& m_workbook;
    MoveHook m_moved;
    std::uint64_t m_contents = 1;      ///< that the workbook has held so far
    std::uint64_t m_contentNumber = 1; ///< of the present one
    bool m_enabled = false;
    int m_depth = 0;
    Step m_current;
    std::deque<Step> m_undo;
    std::vector<Step> m_redo;
    std::size_t m_bytes = 0;
};

} // namespace spreadsheet
