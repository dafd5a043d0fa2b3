#pragma once
#include "spreadsheet/cells/BookSheet.h"
#include "spreadsheet/cells/LiftedCells.h"
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/values/Value.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

class StyleChange;
class Workbook;

/// One sheet of a workbook. Every change is one undo step, or part of the step that is open.
/// Changes of values mark what depends on them; Workbook::recalculateChanged computes it.
class Sheet {
public:
    Sheet(Workbook& workbook, std::shared_ptr<BookSheet> cells);
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    int id() const { return m_cells->id; } ///< stays when sheets are moved or renamed
    const std::string& name() const { return m_cells->name(); }
    const SheetSettings& settings() const { return m_cells->settings; }
    /// Another number after each change of the settings, for what is computed from them.
    std::uint64_t settingsRevision() const { return m_settingsRevision; }
    /// Changes sizes, counts, print settings and the like as one undo step. The name is changed by
    /// Workbook::renameSheet, but for one that no formula mentions yet and nobody may choose, spans by the
    /// operations below.
    void changeSettings(const std::function<void(SheetSettings&)>& change);

    // Reading. A place without a cell reads as empty.
    Value value(CellAddress cell) const { return m_cells->value(cell); }
    /// What the cell shows: its shown text if it has one, else what Workbook::setTextInstead puts in place of
    /// its value, else its value as its type shows it.
    std::string displayText(CellAddress cell) const;
    /// Its value as its type shows it, whatever is shown in its place.
    std::string textOfValue(CellAddress cell) const;
    /// What the cell hands on: its value as type and decimals give it, whatever it shows.
    std::string textByType(CellAddress cell) const;
    bool hasFormula(CellAddress cell) const { return m_cells->formula(cell) != 0; }
    /// Letter by letter as it was typed, without "="; empty for a constant.
    std::string formula(CellAddress cell) const;
    /// The whole range of the array formula that the cell belongs to.
    std::optional<CellRange> arrayRange(CellAddress cell) const { return m_cells->arrayRange(cell); }
    Text tag(CellAddress cell) const { return m_cells->tag(cell); }
    Text shownText(CellAddress cell) const { return m_cells->shownText(cell); }
    bool hasShownTexts() const { return m_cells->hasShownTexts(); } ///< of any cell
    /// The cell's own style, else that of its row, else of its column, else the fresh one.
    const CellStyle& style(CellAddress cell) const;
    std::uint32_t styleNumber(CellAddress cell) const { return m_cells->styleNumber(cell); }
    /// Last row and last column that hold data (value, formula, tag or shown text); 0 if none do.
    int lastDataRow() const { return m_cells->lastDataRow(); }
    int lastDataColumn() const { return m_cells->lastDataColumn(); }
    /// The entries that a drop-down cell offers, its own or its column's; null: none.
    const std::vector<std::string>* dropDownEntries(CellAddress cell) const
    {
        return m_cells->dropDownEntries(cell);
    }
    /// What a button cell shows instead of its value, its own or its column's; null: its value.
    const std::string* buttonCaption(CellAddress cell) const { return m_cells->buttonCaption(cell); }
    /// The span that covers a cell, if one does.
    std::optional<CellRange> spanAt(CellAddress cell) const { return m_cells->spanAt(cell); }
    /// The cell's whole span, or the cell alone.
    CellRange extent(CellAddress cell) const;

    // Writing.
    /// A constant; empty takes value and formula away. A new value takes the shown text away, and an
    /// array formula that the cell belongs to (its other cells keep their values).
    void setValue(CellAddress cell, Value value);
    void setNumber(CellAddress cell, double number) { setValue(cell, Value(number)); }
    void setText(CellAddress cell, std::string_view text);
    /// With or without a leading "=". An empty text takes a formula away and leaves a constant as it is.
    Refusal setFormula(CellAddress cell, std::string_view text);
    Refusal setArrayFormula(const CellRange& range, std::string_view text);
    void setTag(CellAddress cell, std::string_view tag);
    /// A text shown instead of the value; it feeds no dependents. Empty: the value shows again.
    void setShownText(CellAddress cell, std::string_view text);
    void setStyle(CellAddress cell, const CellStyle& style);
    /// Changes the style of every cell of a range; whole rows and columns keep theirs by row or column.
    void restyle(const CellRange& range, const std::function<void(CellStyle&)>& change);
    /// Takes values, formulas and shown texts away; styles and tags stay.
    void clearContents(const CellRange& range);
    /// Merges; spans that it meets are taken away first. A single cell makes a span too: it is not merged
    /// again.
    void addSpan(const CellRange& range);
    void removeSpans(const CellRange& range);

    // Structure. Refused if the sheet would lose data or an array formula would be cut.
    Refusal insertRows(int row, int count);
    Refusal deleteRows(int row, int count);
    Refusal insertColumns(int column, int count);
    Refusal deleteColumns(int column, int count);
    /// Copies cells with styles, tags and shifted references onto another place of any sheet.
    Refusal copyCells(const CellRange& from, Sheet& target, CellAddress to);
    /// Moves cells; references to them follow, from wherever they are.
    Refusal moveCells(const CellRange& from, Sheet& target, CellAddress to);
    /// The cells of a range as they stand now.
    LiftedCells lift(const CellRange& range) const;
    /// Puts cells of this workbook down with their looks; references shift with them. Spans that lie at
    /// the goal are taken away first.
    Refusal put(const LiftedCells& lifted, CellAddress to);
    /// Copies the range's first row (column) over its other rows (columns).
    Refusal fillDown(const CellRange& range);
    Refusal fillRight(const CellRange& range);

    /// The cells themselves: for evaluation, files and painting. Columns count from 1; null if the
    /// column has never held a cell.
    const Column* column(int number) const { return m_cells->column(number); }
    int storedColumns() const { return m_cells->storedColumns(); }
    /// For readers of files, which fill a fresh sheet without undo.
    Column& loadColumn(int number) { return m_cells->writableColumn(number); }

private:
    friend class Workbook;
    friend class UndoJournal;
    friend class SheetStructure;

    /// The column, its former state kept for undo.
    Column& editableColumn(int column);
    /// Keeps the settings for undo before they change.
    SheetSettings& editableSettings();
    void noteSettings();
    CellLists listsOf(const CellRange& range) const;
    void replaceLists(const CellRange& range, const CellLists& lists);
    void putFormula(const CellRange& range, std::uint32_t formula);
    void restyleCells(const CellRange& range, StyleChange& restyled);
    void restyleColumns(const CellRange& range, StyleChange& restyled);
    void restyleRows(const CellRange& range, StyleChange& restyled);
    /// The cells of a range that have a style of their own.
    void restyleOwn(const CellRange& range, StyleChange& restyled);
    /// Gives a cell without a style of its own one.
    void styleFresh(CellAddress cell, std::uint32_t number);
    /// Takes the array formula away that a cell belongs to; its cells keep their values.
    void dissolveArray(CellAddress cell);
    /// Forgets array formulas that lie within cells about to be overwritten.
    void dropArrays(const CellRange& range);
    CellAddress formulaBase(CellAddress cell, std::uint32_t formula) const;
    void noteChanged(const CellRange& range);

    Workbook& m_workbook;
    std::shared_ptr<BookSheet> m_cells; ///< one of the book's
    std::uint64_t m_settingsRevision = 0;
};

} // namespace spreadsheet
