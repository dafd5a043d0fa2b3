#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <vector>

namespace spreadsheet {

/// The cells of ranges, each once: parts of them that overlap none of the parts before.
std::vector<CellRange> disjoint(const std::vector<CellRange>& ranges);

/// What two ranges that intersect have in common.
CellRange common(const CellRange& a, const CellRange& b);

} // namespace spreadsheet
