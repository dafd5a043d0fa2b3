#pragma once
#include "spreadsheet/calculation/RecalculationReport.h"
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/cells/TextPool.h"
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/workbook/Sheet.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace spreadsheet {

struct Book;
class FormulaPool;
class NameTable;
class Recalculation;
class UndoJournal;

/// A book that can be edited: changes may be refused, are kept for undo, and mark what depends on them for
/// the next recalculation. Sheets count from 1. Not for several threads at once.
class Workbook {
public:
    /// One empty sheet, "Sheet1".
    Workbook();
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    int sheetCount() const { return static_cast<int>(m_sheets.size()); }
    /// @throws std::out_of_range
    Sheet& sheet(int index);
    const Sheet& sheet(int index) const;
    /// Index of the sheet of that name, letter case ignored; 0 if there is none.
    int sheetIndex(std::string_view name) const;
    /// Index of the sheet with that id; 0 if it is gone.
    int sheetIndexOfId(int id) const;
    int activeSheet() const;
    void setActiveSheet(int index);

    Refusal addSheet(std::string_view name, int before = 0); ///< 0: at the end
    Refusal removeSheet(int index);                          ///< references to it become #REF!
    Refusal renameSheet(int index, std::string_view name);
    Refusal moveSheet(int from, int to);
    /// Adds sheets with fresh names at the end or takes sheets from the end away.
    Refusal setSheetCount(int count);

    /// The data behind it, which evaluation works on.
    const Book& book() const { return *m_book; }
    StylePool& styles();
    const StylePool& styles() const;
    TextPool& texts();
    FormulaPool& formulas();
    const FormulaPool& formulas() const;
    const NameTable& names() const;
    /// Defines or replaces a name ("税率" for "Sheet1!$B$1"); an empty formula takes it away.
    /// @param sheet  id of the only sheet that files are to have it for; 0: all. Here all know it
    Refusal defineName(std::string_view name, std::string_view formula, int sheet = 0);

    /// From now on formulas that call `name` (letter case ignored) with this many parameters ask the
    /// handler; formulas that are already there too. Nothing is recalculated.
    void registerFunction(std::string_view name, int parameterCount, FunctionHandler handler);
    /// Empty: calls are not prepared.
    void setPrepareHook(PrepareHook hook);
    /// Asked between pieces of a recalculation. When it stops one, every cell has the value that it had
    /// before, and what was to be computed still is.
    void setPauseHook(PauseHook hook);
    /// While formulas are shown, custom functions that hand back nothing leave their cell as it is.
    /// Undo brings the former state back.
    void setFormulasShown(bool shown);
    bool formulasShown() const;
    /// Serial numbers of days count from 1904-01-01 (number 0), as in files from some machines, instead
    /// of from 1900. Date functions heed it with the next recalculation.
    void setCountsFrom1904(bool from1904);
    bool countsFrom1904() const;

    /// What a cell shows in place of its value; nothing: its value. It is asked while texts are shown.
    using TextInstead = std::function<std::optional<std::string>(const Sheet& sheet, CellAddress cell)>;
    void setTextInstead(TextInstead hook) { m_textInstead = std::move(hook); }
    const TextInstead& textInstead() const { return m_textInstead; }

    /// Computes every formula.
    RecalculationReport recalculate();
    /// Computes what depends on changes since the last recalculation, and volatile functions.
    RecalculationReport recalculateChanged();
    /// Forgets pending changes: what a file stored counts as computed.
    void markCalculated();

    /// Takes over everything that another workbook holds. Registered functions, the prepare hook and
    /// the undo setting stay. Nothing is recalculated. Within an undo step it is part of the step, so that
    /// undo brings the former content back; otherwise the undo history goes.
    void replaceContent(Workbook&& fresh);

    // Undo. Off at first, so that filling a workbook by program costs nothing.
    void setUndoEnabled(bool enabled);
    bool canUndo() const;
    bool canRedo() const;
    std::string undoLabel() const;
    void undo(); ///< and recalculates what depends on it
    void redo();
    /// Called before a step that changed something ends (with undo off: any step). What it changes belongs to
    /// the step.
    void setStepEndHook(std::function<void()> hook) { m_stepEnd = std::move(hook); }

    /// Changes with every edit; equal numbers mean an unchanged workbook.
    std::uint64_t revision() const { return m_revision; }
    /// … of what is designed: how it is shown or printed (see `DisplayOnly`) counts for nothing, and undo
    /// brings the former number back.
    std::uint64_t designRevision() const { return m_designRevision; }
    /// Bytes held by cells, formulas and the dependency graph.
    std::size_t bytes() const;

    UndoJournal& journal() { return *m_journal; }
    Recalculation& recalculation() { return *m_recalculation; }

private:
    friend class Sheet;
    friend class DisplayOnly;
    friend class UndoJournal;
    friend class UndoStep;
    friend class SheetStructure;

    void noteEdit();
    std::shared_ptr<Sheet> freshSheet(std::string_view name);
    void respell(int sheetId);
    /// Gives the sheets another order or number, in the book too; returns the former ones.
    std::vector<std::shared_ptr<Sheet>> exchangeSheets(std::vector<std::shared_ptr<Sheet>> sheets);

    std::unique_ptr<Book> m_book;
    std::vector<std::shared_ptr<Sheet>>
        m_sheets; ///< those of the book; shared with undo steps that bring them back
    std::unique_ptr<Recalculation> m_recalculation;
    std::unique_ptr<UndoJournal> m_journal;
    std::function<void()> m_stepEnd;
    TextInstead m_textInstead;
    std::uint64_t m_revision = 0;
    std::uint64_t m_designRevision = 0; ///< a value that m_revision once had
    int m_displayOnly = 0;
};

/// While it lives, all changes form one undo step.
class UndoStep {
public:
    UndoStep(Workbook& workbook, std::string label);
    ~UndoStep();
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

    /// Puts everything back that was changed since the outermost open step began, when a later part of it is
    /// refused: there is nothing to undo then. Works with undo on.
    void takeBack();

private:
    Workbook& m_workbook;
};

/// While it lives, changes are of how the workbook is shown or printed, not of what is designed.
class DisplayOnly {
public:
    explicit DisplayOnly(Workbook& workbook)
        : m_workbook(workbook)
    {
        ++m_workbook.m_displayOnly;
    }
    ~DisplayOnly() { --m_workbook.m_displayOnly; }
    DisplayOnly(const DisplayOnly&) = delete;
    DisplayOnly& operator=(const DisplayOnly&) = delete;

private:
    Workbook& m_workbook;
};

} // namespace spreadsheet
