#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <string>

namespace spreadsheet {

// What CELL tells of a cell's look.

/// "G" general, "F2" fixed with two decimals, ",2" grouped, "C2" currency, "P2" percent, "S2"
/// scientific, "D1" to "D9" dates and times; with "-" behind it if negative numbers have a colour,
/// "()" if positive ones stand in brackets.
std::string formatCodeLetters(const CellStyle& style);
bool negativesColoured(const CellStyle& style);
bool positivesInBrackets(const CellStyle& style);

} // namespace spreadsheet
