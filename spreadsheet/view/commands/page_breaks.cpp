#include "spreadsheet/view/commands/page_breaks.h"

#include "spreadsheet/workbook/Workbook.h"

namespace spreadsheet {

bool beginsPage(const Sheet& sheet, Axis axis, int line)
{
    const PrintSettings& print = sheet.settings().print;
    return (axis == Axis::rows ? print.rowBreaks : print.columnBreaks).contains(line);
}

void movePageBreak(Workbook& workbook, Sheet& sheet, Axis axis, int from, int to)
{
    if (from == to || !beginsPage(sheet, axis, from))
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
