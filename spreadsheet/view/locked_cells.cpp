#include "spreadsheet/view/locked_cells.h"

#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

namespace {

bool isLocked(const Workbook& workbook, std::uint32_t style)
{
    return workbook.styles()[style].locked;
}

/// Styles of whole lines within first..last.
bool anyLineLocked(const Workbook& workbook, const std::map<int, std::uint32_t>& styles, int first, int last)
{
    return std::any_of(styles.lower_bound(first), styles.upper_bound(last),
                       [&](const auto& entry) { return isLocked(workbook, entry.second); });
}

bool anyOwnLocked(const Workbook& workbook, const Column& column, const CellRange& range)
{
    for (std::size_t i = column.lowerSlot(range.top); i < column.slots().size(); ++i) {
        const Column::Slot& slot = column.slots()[i];
        if (slot.firstRow > range.bottom)
            break;
        if (!slot.block->hasStyles())
            continue;
        const int to = std::min(range.bottom, slot.lastRow()) - slot.firstRow;
        for (int cell = std::max(range.top, slot.firstRow) - slot.firstRow; cell <= to; ++cell) {
            const std::uint32_t style = slot.block->style(cell);
            if (style != 0 && isLocked(workbook, style))
                return true;
        }
    }
    return false;
}

} // namespace

bool holdsLockedCell(const Workbook& workbook, const Sheet& sheet, const CellRange& range)
{
    for (int column = range.left; column <= std::min(range.right, sheet.storedColumns()); ++column)
        if (anyOwnLocked(workbook, *sheet.column(column), range))
            return true;
    const SheetSettings& settings = sheet.settings();
    const bool byLine = anyLineLocked(workbook, settings.rowStyles, range.top, range.bottom) ||
                        anyLineLocked(workbook, settings.columnStyles, range.left, range.right);
    if (!byLine)
        return false;
    // A cell's own style comes first: an unlocked cell in a locked column stays free.
    for (int column = range.left; column <= range.right; ++column)
        for (int row = range.top; row <= range.bottom; ++row)
            if (sheet.style({column, row}).locked)
                return true;
    return false;
}

} // namespace spreadsheet
