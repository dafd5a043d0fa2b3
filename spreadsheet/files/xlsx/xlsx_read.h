#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/ole2/little_endian.h"

namespace spreadsheet {

class Workbook;

/// Reads an .xlsx file into a fresh workbook. Formulas keep the values that the file has for them. What
/// could not be carried over goes to `warnings`.
/// @throws ContentError if the file is damaged, no workbook, or expands beyond all measure
void readXlsx(Bytes file, Workbook& workbook, Warnings& warnings);

} // namespace spreadsheet
