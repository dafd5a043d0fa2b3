#pragma once
#include "spreadsheet/workbook/Sheet.h"

#include <vector>

namespace spreadsheet {

/// A cell that a file names, in one row.
struct StoredCell {
    int column;          ///< from 1
    std::uint32_t style; ///< as shown: its own, else its row's or column's
    const CellBlock* block;
    int index; ///< in the block

    std::uint32_t formula() const { return block->formula(index); }
    ValueKind kind() const { return block->kinds()[index]; }
    /// Holds nothing but a look.
    bool isBlank() const { return formula() == 0 && kind() == ValueKind::empty; }
};

/// Goes down a sheet, which is stored by columns, row by row.
class StoredRows {
public:
    /// @param columns  those beyond are left out
    StoredRows(const Sheet& sheet, int columns);

    /// The last row that has cells; 0: none.
    int lastRow() const { return m_lastRow; }
    /// The cells of a row with a content or a look of their own. Rows may only ascend.
    void collect(int row, std::vector<StoredCell>& cells);

private:
    struct Cursor {
        const std::vector<Column::Slot>* slots;
        std::size_t slot = 0;
    };

    const Sheet& m_sheet;
    std::vector<Cursor> m_cursors; ///< by column
    int m_lastRow = 0;
};

} // namespace spreadsheet
