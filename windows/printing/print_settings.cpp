#include "windows/printing/print_settings.h"

#include "spreadsheet/workbook/Workbook.h"

#include <cmath>

namespace selfreport {

namespace {

void changeIfOther(spreadsheet::Sheet& sheet, const std::function<void(spreadsheet::PrintSettings&)>& change)
{
    spreadsheet::PrintSettings changed = sheet.settings().print;
    change(changed);
    if (changed != sheet.settings().print)
        sheet.changeSettings([&](spreadsheet::SheetSettings& settings) { settings.print = changed; });
}

} // namespace

void changePrintSettings(spreadsheet::Workbook& workbook,
                         const std::function<void(spreadsheet::PrintSettings&)>& change)
{
    const spreadsheet::DisplayOnly storedApart(workbook);
    const spreadsheet::UndoStep step(workbook, "页面设置");
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        changeIfOther(workbook.sheet(index), change);
}

void changeReportsPrint(spreadsheet::Workbook& workbook,
                        const std::function<void(spreadsheet::PrintSettings&)>& change)
{
    const spreadsheet::UndoStep step(workbook, "打印选项");
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        changeIfOther(workbook.sheet(index), change);
}

void changeActiveSheetsPrint(spreadsheet::Workbook& workbook,
                             const std::function<void(spreadsheet::PrintSettings&)>& change)
{
    changeIfOther(workbook.sheet(workbook.activeSheet()), change);
}

const spreadsheet::PrintSettings& activeSheetsPrint(const spreadsheet::Workbook& workbook)
{
    return workbook.sheet(workbook.activeSheet()).settings().print;
}

int marginTwips(double inches)
{
    return static_cast<int>(std::lround(inches * spreadsheet::twipsPerInch));
}

} // namespace selfreport
