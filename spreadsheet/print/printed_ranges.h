#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <vector>

namespace spreadsheet {

class Sheet;
struct PrintSettings;

/// The ranges of a sheet that are printed, each on pages of its own, in the order of the sheet: from the top,
/// then from the left. No cell stands in two of them. Empty if nothing is to be printed.
/// @param asked  only these cells; empty: the print area, or what the settings say without one. Of whole
///               columns and rows only what is used, if the settings want no more than that
std::vector<CellRange> printedRanges(const Sheet& sheet, const PrintSettings& print,
                                     std::vector<CellRange> asked);

/// Takes from each range what former ones hold: one that lies in another vanishes, one that reaches out of it
/// keeps the rest as up to four ranges. In the order of the sheet.
std::vector<CellRange> withoutOverlaps(std::vector<CellRange> ranges);

/// Last column and row in which something shows: data, or lines and backgrounds of cells (not of whole rows
/// or columns). A line on an edge counts for the cell before it, which closes with it; white on white paper
/// shows nothing. {0, 0} if there is nothing.
CellAddress lastShownCell(const Sheet& sheet);

} // namespace spreadsheet
