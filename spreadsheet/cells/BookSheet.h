#pragma once
#include "spreadsheet/cells/Column.h"
#include "spreadsheet/cells/SheetSettings.h"

#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

/// One sheet of a book: cells by column, and settings. Plain data: nothing is refused, kept for undo or
/// computed here. A place without a cell reads as empty.
struct BookSheet {
    BookSheet(int sheetId, std::string name);

    int id; ///< stays when sheets are moved or renamed
    SheetSettings settings;
    std::vector<Column> columns; ///< column 1 first

    const std::string& name() const { return settings.name; }
    int storedColumns() const { return static_cast<int>(columns.size()); }
    /// Columns count from 1; null if the column has never held a cell.
    const Column* column(int number) const
    {
        return number >= 1 && number <= storedColumns() ? &columns[static_cast<std::size_t>(number) - 1]
                                                        : nullptr;
    }
    /// The column to write to, made if there is none.
    Column& writableColumn(int number);

    Value value(CellAddress cell) const
    {
        const Column* cells = column(cell.column);
        return cells ? cells->value(cell.row) : Value();
    }
    /// In the formula pool; 0: none.
    std::uint32_t formula(CellAddress cell) const;
    /// The cell that a formula is relative to: itself, or the first one of its array formula.
    CellAddress formulaBase(CellAddress cell, bool isArrayFormula) const;
    /// The whole range of the array formula that the cell belongs to.
    std::optional<CellRange> arrayRange(CellAddress cell) const;
    Text tag(CellAddress cell) const;
    Text shownText(CellAddress cell) const;
    bool hasShownTexts() const; ///< of any cell
    /// In the style pool: the cell's own, else that of its row, else of its column, else 0.
    std::uint32_t styleNumber(CellAddress cell) const;
    /// The same without its own.
    std::uint32_t lineStyle(CellAddress cell) const;
    /// Last row and last column that hold data (value, formula, tag or shown text); 0 if none do.
    int lastDataRow() const;
    int lastDataColumn() const;
    /// The entries that a drop-down cell offers, its own or its column's; null: none.
    const std::vector<std::string>* dropDownEntries(CellAddress cell) const;
    /// What a button cell shows instead of its value, its own or its column's; null: its value.
    const std::string* buttonCaption(CellAddress cell) const;
    /// The span that covers a cell, if one does.
    std::optional<CellRange> spanAt(CellAddress cell) const;
};

} // namespace spreadsheet
