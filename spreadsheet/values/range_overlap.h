#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <vector>

namespace spreadsheet {

/// Takes out the ranges that share a cell with one that stays, and returns them. Of two those stay that begin
/// in a higher row, or else stand first. Takes n log n steps.
std::vector<CellRange> takeOverlapping(std::vector<CellRange>& ranges);

/// True if two of the ranges share a cell.
bool anyOverlap(std::vector<CellRange> ranges);

} // namespace spreadsheet
