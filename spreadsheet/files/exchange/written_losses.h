#pragma once
#include "spreadsheet/cells/SheetSettings.h"
#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/files/exchange/Warnings.h"

namespace spreadsheet {

/// Counts a written cell that is a button or a check box here and will be none elsewhere.
inline void countLostControl(CellType type, Warnings& warnings)
{
    if (const CellTypeRow& row = cellTypeRow(type); row.isControl)
        warnings.count("{} 个" + std::string(row.name) + "单元格写为普通单元格");
}

/// Counts a written sheet that chooses what is shown in place of nothing, or asks before it is printed.
inline void countLostChoices(const SheetSettings& settings, Warnings& warnings)
{
    if (!settings.nothingTexts.empty())
        warnings.count("{} 张表页的空值显示没有写出,那里没有取到数的单元格显示为 0");
    if (settings.print.strict)
        warnings.count("{} 张表页的严格打印没有写出");
}

} // namespace spreadsheet
