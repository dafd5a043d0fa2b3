#pragma once
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/files/exchange/Warnings.h"

#include <string>

namespace spreadsheet {

/// Number of the paper that workbook files name where they know none of the sheet's size, or it has none.
inline constexpr unsigned a4Number = 9;

/// By which workbook files name the paper of a sheet, A4 where the sheet has none of its own; 0: they have no
/// number for its size.
unsigned paperNumber(const PrintSettings& print);
/// … with a warning A4 where they have no number for it.
unsigned paperNumber(const PrintSettings& print, const std::string& sheet, Warnings& warnings);

/// Warns of what of a print set-up has no place in workbook files.
void warnOfPrintSetup(const PrintSettings& print, const std::string& sheet, Warnings& warnings);

} // namespace spreadsheet
