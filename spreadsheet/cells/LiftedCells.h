#pragma once
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/values/Value.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

/// Everything that one cell has. Formula and style are numbers of the workbook's pools; a formula is
/// relative, so that it means other cells at another place.
struct CellContent {
    Value value;
    std::uint32_t formula = 0;
    std::uint32_t style = 0; ///< as it looks, be it by its row or column; 0: the fresh look
    Text tag;
    Text shown;

    bool isBlank() const
    {
        return value.isEmpty() && formula == 0 && style == 0 && tag.empty() && shown.empty();
    }
};

/// What drop-downs offer and buttons show in a block of cells, also where their columns say so.
struct CellLists {
    DropDowns dropDowns;
    std::map<CellAddress, std::string> captions;
};

/// A block of cells as it stood when it was lifted off a sheet, to be put down on a sheet of the same
/// workbook. Spans, array formulas, lists and captions count from the block's first cell, column 1 and row 1.
struct LiftedCells {
    int columns = 0;
    int rows = 0;
    std::vector<CellContent> cells; ///< column by column
    std::vector<CellRange> spans;   ///< those that lie wholly within
    std::vector<CellRange> arrays;
    std::optional<CellLists> lists; ///< nothing: what stands at the goal stays

    LiftedCells() = default;
    LiftedCells(int columnCount, int rowCount)
        : columns(columnCount)
        , rows(rowCount)
        , cells(static_cast<std::size_t>(columnCount) * static_cast<std::size_t>(rowCount))
    {
    }
    /// Both count from 1.
    CellContent& at(int column, int row) { return cells[place(column, row)]; }
    const CellContent& at(int column, int row) const { return cells[place(column, row)]; }

private:
    std::size_t place(int column, int row) const
    {
        return static_cast<std::size_t>(column - 1) * static_cast<std::size_t>(rows) +
               static_cast<std::size_t>(row - 1);
    }
};

} // namespace spreadsheet
