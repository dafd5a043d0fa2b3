#include "spreadsheet/view/commands/page_breaks.h"

#include "spreadsheet/workbook/Workbook.h"

#include <iterator>

namespace spreadsheet {

static bool hasMark(const Sheet& sheet, Axis axis, int line)
{
    const PrintSettings& print = sheet.settings().print;
    return (axis == Axis::rows ? print.rowBreaks : print.columnBreaks).contains(line);
}

int pageMarkAt(const Sheet& sheet, Axis axis, int line)
{
    const SheetSettings& settings = sheet.settings();
    const auto& breaks = axis == Axis::rows ? settings.print.rowBreaks : settings.print.columnBreaks;
    const AxisSizes& sizes = axis == Axis::rows ? settings.rows : settings.columns;
    const auto behind = breaks.upper_bound(line);
    if (behind == breaks.begin())
        return 0;
    const int mark = std::prev(behind)->first;
    for (int between = line - 1; between >= mark; --between)
        if (sizes.size(between) > 0)
            return 0;
    return mark;
}

void movePageBreak(Workbook& workbook, Sheet& sheet, Axis axis, int from, int to)
{
    if (from == to || !hasMark(sheet, axis, from))
        return;
    const UndoStep step(workbook, "移动分页符");
    sheet.changeSettings([&](SheetSettings& settings) {
        auto& breaks = axis == Axis::rows ? settings.print.rowBreaks : settings.print.columnBreaks;
        breaks.erase(from);
        if (to > 1)
            breaks[to] = true;
    });
}

} // namespace spreadsheet
