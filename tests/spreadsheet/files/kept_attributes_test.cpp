#include "spreadsheet/files/xls/xls_write.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/python.h"

#include <gmock/gmock.h>

namespace spreadsheet {
namespace {

/// Buttons and check boxes are cells like others elsewhere; how many there are is told.
TEST(KeptAttributes, LostControlsAreCounted)
{
    Workbook workbook;
    for (int row = 1; row <= 5; ++row) {
        CellStyle style;
        style.type = row <= 3 ? CellType::button : CellType::checkBox;
        workbook.sheet(1).setStyle({1, row}, style);
    }
    Warnings xlsx, xls;
    writeXlsx(workbook, xlsx);
    writeXls(workbook, xls);
    for (const Warnings* warnings : {&xlsx, &xls})
        EXPECT_THAT(warnings->texts(),
                    testing::ElementsAre(testing::StartsWith("3 个"), testing::StartsWith("2 个")));
}

/// Formats that a file names by number only.
TEST(KeptAttributes, NumbersOfFormatsFollowTheFilesCountry)
{
    const TestFolder folder;
    const auto shown = [&](const char* font) {
        EXPECT_EQ(python(folder,
                         std::string("import sys, xlsxwriter\n"
                                     "book = xlsxwriter.Workbook(sys.argv[1])\n"
                                     "book.formats[0].set_font_name('") +
                             font + R"(')
sheet = book.add_worksheet()
sheet.write(0, 0, 46387, book.add_format({'num_format': 14}))
for row, number in enumerate((37, 38, 39, 40)):
    sheet.write(row + 1, 0, -1234.5, book.add_format({'num_format': number}))
book.close()
)",
                         folder.file("a.xlsx")),
                  "");
        Workbook workbook;
        loadWorkbook(workbook, folder.file("a.xlsx"));
        std::string texts;
        for (int row = 1; row <= 5; ++row)
            texts += workbook.sheet(1).displayText({1, row}) + "|";
        return texts;
    };
    EXPECT_EQ(shown("Calibri"), "12/31/2026|(1,235)|(1,235)|(1,234.50)|(1,234.50)|");
    EXPECT_EQ(shown("宋体"), "2026/12/31|-1,235 |-1,235 |-1,234.50 |-1,234.50 |");
}

} // namespace
} // namespace spreadsheet
