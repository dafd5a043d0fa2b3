#pragma once
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/files/exchange/Warnings.h"

#include <string>

namespace spreadsheet {

/// By which workbook files name the paper of a sheet; A4 where the sheet has none of its own, and, with a
/// warning, where they have no number for it.
unsigned paperNumber(const PrintSettings& print, const std::string& sheet, Warnings& warnings);

/// Warns of what of a print set-up has no place in workbook files.
void warnOfPrintSetup(const PrintSettings& print, const std::string& sheet, Warnings& warnings);

} // namespace spreadsheet
