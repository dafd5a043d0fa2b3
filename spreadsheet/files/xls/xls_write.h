#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <cstddef>
#include <vector>

namespace spreadsheet {

class Workbook;

/// The workbook as an .xls file (BIFF8), formulas with the values that they have now. What the format cannot
/// hold goes to `warnings`.
/// @throws ContentError if a sheet holds more than 65,536 rows or 256 columns of data
std::vector<std::byte> writeXls(const Workbook& workbook, Warnings& warnings);

} // namespace spreadsheet
