#include "spreadsheet/files/exchange/print_paper.h"

#include "spreadsheet/cells/papers.h"

namespace spreadsheet {

unsigned paperNumber(const PrintSettings& print)
{
    if (print.paperWidth == 0 || print.paperHeight == 0)
        return a4Number;
    const Paper* const paper = paperOfSize(print.paperWidth, print.paperHeight);
    return paper ? static_cast<unsigned>(paper->number) : 0;
}

unsigned paperNumber(const PrintSettings& print, const std::string& sheet, Warnings& warnings)
{
    if (const unsigned number = paperNumber(print))
        return number;
    const Paper* const paper = paperOfSize(print.paperWidth, print.paperHeight);
    warnings.add("表“" + sheet + "”的纸张" + (paper ? " (" + std::string(paper->caption) + ")" : "") +
                 "没有写出,文件中为 A4");
    return a4Number;
}

void warnOfPrintSetup(const PrintSettings& print, const std::string& sheet, Warnings& warnings)
{
    if (print.textDistance != usualTextDistance)
        warnings.add("表“" + sheet + "”的文字与表线的距离没有写出");
    if (print.stamp)
        warnings.add("表“" + sheet + "”的打印戳记没有写出");
}

} // namespace spreadsheet
