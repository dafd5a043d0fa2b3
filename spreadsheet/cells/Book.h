#pragma once
#include "spreadsheet/cells/BookSheet.h"
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/cells/TextPool.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// Sheets with everything that they share, as plain data: what is evaluated and stored. Nothing is refused,
/// kept for undo or computed here; that is the workbook's work. Sheets count from 1.
struct Book {
    /// No sheet. @param findFunction  the functions of the language
    explicit Book(FunctionFinder findFunction)
        : formulas(findFunction)
    {
    }

    std::vector<std::shared_ptr<BookSheet>> sheets; ///< shared with former states that bring them back
    StylePool styles;
    TextPool texts;
    FormulaPool formulas; ///< with names and registered functions
    int activeSheet = 1;
    int nextSheetId = 1;
    /// Serial numbers of days count from 1904-01-01 (number 0), instead of from 1900.
    bool countsFrom1904 = false;
    /// Formulas are shown in their cells: custom functions that hand back nothing leave their cell as it is.
    bool formulasShown = false;

    int sheetCount() const { return static_cast<int>(sheets.size()); }
    /// @throws std::out_of_range
    const BookSheet& sheet(int index) const
    {
        if (index < 1 || index > sheetCount())
            throw std::out_of_range("no such sheet");
        return *sheets[static_cast<std::size_t>(index) - 1];
    }
    BookSheet& sheet(int index) { return const_cast<BookSheet&>(std::as_const(*this).sheet(index)); }
    /// Index of the sheet of that name, letter case ignored; 0 if there is none.
    int sheetIndex(std::string_view name) const;
    /// Index of the sheet with that id; 0 if it is gone.
    int sheetIndexOfId(int id) const;

    /// The cell's own style, else that of its row, else of its column, else the fresh one.
    const CellStyle& style(const BookSheet& sheet, CellAddress cell) const
    {
        return styles[sheet.styleNumber(cell)];
    }
    const NameTable& names() const { return formulas.names(); }
};

} // namespace spreadsheet
