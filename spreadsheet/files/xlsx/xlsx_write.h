#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <cstddef>
#include <vector>

namespace spreadsheet {

class Workbook;

/// A workbook as an .xlsx file, formulas with the values that they have now. What could not be carried over
/// goes to `warnings`.
/// @throws ContentError if it does not fit the format
std::vector<std::byte> writeXlsx(const Workbook& workbook, Warnings& warnings);

} // namespace spreadsheet
