#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/ole2/little_endian.h"

namespace spreadsheet {

class Workbook;

/// True if the bytes begin like a workbook of the .xls family, in a compound file or bare.
bool looksLikeXls(Bytes file);

/// Reads an .xls file (BIFF8; of BIFF5 and 7 values, texts and looks) into a fresh workbook. Formulas keep
/// the values that the file has for them. What could not be carried over goes to `warnings`.
/// @throws ContentError if the file is damaged, protected by a password or of an older kind
void readXls(Bytes file, Workbook& workbook, Warnings& warnings);

} // namespace spreadsheet
