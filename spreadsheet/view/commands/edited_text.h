#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <string>

namespace spreadsheet {

class Sheet;
class Workbook;

/// What the editor shows of a cell: a formula with "=", a number with all its digits, a date, time or
/// percentage as it is typed, a text with a leading apostrophe if it would be read as something else, which
/// it never is in a cell for texts only. Entered again it gives the cell what it had.
std::string editedText(const Workbook& workbook, const Sheet& sheet, CellAddress cell);

} // namespace spreadsheet
