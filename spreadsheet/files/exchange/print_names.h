#pragma once
#include "spreadsheet/cells/SheetSettings.h"

#include <string>
#include <string_view>

namespace spreadsheet {

// What workbook files keep under names of their own: print area and repeated rows and columns, as formulas
// such as "Sheet1!$A$1:$F$20,Sheet1!$H$1:$J$9" and "Sheet1!$A:$B,Sheet1!$1:$3".

/// Sets the print area of a sheet. False if the text names no cells.
bool applyPrintArea(std::string_view text, SheetSettings& settings);
/// … the rows and columns that are repeated on each page.
bool applyPrintTitles(std::string_view text, SheetSettings& settings);

/// @param sheet  the sheet's name as formulas write it, with "!"; empty result: there is none
std::string printAreaText(const PrintSettings& print, const std::string& sheet);
std::string printTitlesText(const PrintSettings& print, const std::string& sheet);

} // namespace spreadsheet
