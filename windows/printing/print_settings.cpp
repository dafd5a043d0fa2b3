#include "windows/printing/print_settings.h"

#include "spreadsheet/workbook/Workbook.h"

#include <cmath>

namespace selfreport {

void changePrintSettings(spreadsheet::Workbook& workbook,
                         const std::function<void(spreadsheet::PrintSettings&)>& change)
{
    const spreadsheet::DisplayOnly storedApart(workbook);
    const spreadsheet::UndoStep step(workbook, "页面设置");
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        workbook.sheet(index).changeSettings(
            [&](spreadsheet::SheetSettings& settings) { change(settings.print); });
}

void changeActiveSheetsPrint(spreadsheet::Workbook& workbook,
                             const std::function<void(spreadsheet::PrintSettings&)>& change)
{
    spreadsheet::Sheet& sheet = workbook.sheet(workbook.activeSheet());
    spreadsheet::PrintSettings changed = sheet.settings().print;
    change(changed);
    if (changed != sheet.settings().print)
        sheet.changeSettings([&](spreadsheet::SheetSettings& settings) { settings.print = changed; });
}

int marginTwips(double inches)
{
    return static_cast<int>(std::lround(inches * spreadsheet::twipsPerInch));
}

} // namespace selfreport
