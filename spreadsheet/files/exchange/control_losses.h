#pragma once
#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/files/exchange/Warnings.h"

namespace spreadsheet {

/// Counts a written cell that is a button or a check box here and will be none elsewhere.
inline void countLostControl(CellType type, Warnings& warnings)
{
    if (const CellTypeRow& row = cellTypeRow(type); row.isControl)
        warnings.count("{} 个" + std::string(row.name) + "单元格写为普通单元格");
}

} // namespace spreadsheet
