#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <vector>

namespace spreadsheet {

/// True if two of the ranges share a cell. Takes n log n steps.
bool anyOverlap(std::vector<CellRange> ranges);

} // namespace spreadsheet
