#include "tests/CommaLocale.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/sample_workbook.h"

#include <fstream>

namespace spreadsheet {
namespace {

std::string saved(const Workbook& workbook, const TestFolder& folder, const FileFormat& format)
{
    saveWorkbook(workbook, folder.file("a"), format);
    std::ifstream stream(folder.file("a"), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Fractions wherever a file has numbers: values, sizes, fonts, margins, codes.
void fillFractions(Workbook& workbook)
{
    fillSample(workbook);
    Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({1, 30}, 1.5);
    sheet.setNumber({1, 31}, 1234567.875);
    sheet.setNumber({1, 32}, -2.5e-7);
    sheet.setNumber({1, 33}, 0.1 + 0.2);
    demand(
        sheet.setFormula({1, 34}, "TEXT(A31,\"#,##0.00\")&\"|\"&1/4&\"|\"&VALUE(\"2.5\")&FIXED(1234.567,2)"));
    demand(sheet.setArrayFormula({1, 35, 2, 35}, "{1.5,2.5}*1.1"));
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.marginTop = 1000;
        settings.rows.sizes[31] = 333;
    });
    workbook.recalculate();
}

TEST(CommaLocaleFiles, AreTheSameAndReadTheSame)
{
    const TestFolder folder;
    Workbook workbook;
    fillFractions(workbook);
    for (const FileFormat& format : fileFormats()) {
        const std::string expected = saved(workbook, folder, format);
        const bool isRead = format.read;
        Workbook plain;
        if (isRead)
            loadWorkbook(plain, folder.file("a"));
        const std::string readPlain = saved(plain, folder, fileFormat(".ss7"));
        for (const CommaLocale::Reach reach : {CommaLocale::Reach::process, CommaLocale::Reach::thread}) {
            SCOPED_TRACE(std::string(format.ending()) + " " + std::to_string(static_cast<int>(reach)));
            const CommaLocale locale(reach);
            Workbook other, found;
            fillFractions(other); // typed, computed and formatted under the locale too
            EXPECT_EQ(saved(other, folder, format), expected);
            if (isRead)
                loadWorkbook(found, folder.file("a"));
            EXPECT_EQ(saved(found, folder, fileFormat(".ss7")), readPlain);
        }
    }
}

} // namespace
} // namespace spreadsheet
