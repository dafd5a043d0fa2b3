#include "spreadsheet/files/exchange/imported_sheets.h"

#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/workbook/sheet_name.h"
#include "spreadsheet/workbook/Workbook.h"

namespace spreadsheet {

void addImportedSheet(Workbook& workbook, int number, const std::string& name, Warnings& warnings)
{
    const auto isRefused = [&](const std::string& candidate) {
        const Refusal problem =
            number == 1 ? workbook.renameSheet(1, candidate) : workbook.addSheet(candidate);
        return static_cast<bool>(problem);
    };
    if (!isRefused(name))
        return;
    if (isRefused(shortenedSheetName(name))) {
        for (int i = number; isRefused("Sheet" + std::to_string(i)); ++i)
            continue;
    }
    warnings.add("表名“" + name + "”不能使用,改为“" + workbook.sheet(number).name() + "”");
}

} // namespace spreadsheet
