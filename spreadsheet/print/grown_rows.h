#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <map>

namespace spreadsheet {

class PageText;
class Sheet;

/// Twips that a cell's text needs from the top of its row to the end, by the metrics of paper; 0 if it shows
/// none or is merged with cells of other rows.
double neededCellHeight(const Sheet& sheet, CellAddress cell, PageText& text);

/// The heights, in twips, of those rows first..last that have none of their own and whose usual one would cut
/// their texts: what font and wrapped lines need. Costs a look at each cell of the rows; only texts that may
/// need more are laid out.
/// @param text  in twips
std::map<int, int> grownRows(const Sheet& sheet, int first, int last, PageText& text);

} // namespace spreadsheet
