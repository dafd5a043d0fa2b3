#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <string>

namespace spreadsheet {

class Sheet;

/// A range as an HTML table, with merged cells and looks, and the exact numbers behind shown ones as
/// `sdval`, so that other programs paste it as cells.
std::string htmlText(const Sheet& sheet, const CellRange& range);

} // namespace spreadsheet
