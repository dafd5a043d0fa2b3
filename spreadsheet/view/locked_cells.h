#pragma once
#include "spreadsheet/values/CellAddress.h"

namespace spreadsheet {

class Sheet;
class Workbook;

/// True if a cell of the range is locked, be it by its own style or by that of its row or column.
bool holdsLockedCell(const Workbook& workbook, const Sheet& sheet, const CellRange& range);

} // namespace spreadsheet
