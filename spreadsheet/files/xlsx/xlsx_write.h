#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace spreadsheet {

class Workbook;

/// Writes a workbook as an .xlsx file, formulas with the values that they have now, row by row. What could
/// not be carried over goes to `warnings`.
/// @param put  is handed the file piece by piece with the place of each, mostly behind the one before
/// @throws ContentError if it does not fit the format; whatever `put` throws
void writeXlsx(const Workbook& workbook, Warnings& warnings,
               const std::function<void(std::size_t place, std::span<const std::byte> bytes)>& put);

/// The same as one piece in memory.
std::vector<std::byte> writeXlsx(const Workbook& workbook, Warnings& warnings);

} // namespace spreadsheet
