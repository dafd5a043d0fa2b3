#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"

#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

class Sheet;
class Workbook;

struct SortKey {
    int column = 1; ///< of the sheet, within the block
    bool descending = false;
};

/// Sorts the rows of a block by its keys, the first one first, as one undo step. Numbers come before texts
/// (Chinese ones by their pinyin, letter case ignored), then truth values and errors; empty cells come last
/// in both directions. Rows that are equal keep their order. Cells move with their looks, and formulas with
/// what is relative in them.
/// @param headerRow  the first row stays
/// @return why nothing was sorted: merged cells or array formulas in the way, a key outside the block
Refusal sortBlock(Workbook& workbook, Sheet& sheet, const CellRange& block, const std::vector<SortKey>& keys,
                  bool headerRow);

/// The cells around a cell that hang together: grown until empty rows and columns (or the sheet's edge) are
/// all around.
CellRange blockAround(const Sheet& sheet, CellAddress cell);

} // namespace spreadsheet
