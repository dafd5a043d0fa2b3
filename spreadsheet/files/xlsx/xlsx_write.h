#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <filesystem>

namespace spreadsheet {

class Workbook;

/// Writes the workbook as an .xlsx file under that name, formulas with the values that they have now.
/// @throws ContentError if the file cannot be written
void writeXlsx(const Workbook& workbook, const std::filesystem::path& file, Warnings& warnings);

} // namespace spreadsheet
