#include "spreadsheet/files/xls/xls_read.h"
#include "spreadsheet/files/xls/xls_write.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/python.h"

#include <gmock/gmock.h>

namespace spreadsheet {
namespace {

constexpr int a4Width = 11906, a4Height = 16838;

struct PageSetup {
    const char* name;
    void (*change)(PrintSettings& print);
};

constexpr PageSetup setups[]{
    {"nothing", [](PrintSettings&) {}},
    {"two areas",
     [](PrintSettings& print) {
         print.area = {{1, 1, 6, 20}, {8, 3, 9, 30}};
     }},
    {"one cell as area",
     [](PrintSettings& print) {
         print.area = {{2, 2, 2, 2}};
     }},
    {"repeated rows", [](PrintSettings& print) { print.titleTop = 2, print.titleBottom = 4; }},
    {"repeated columns", [](PrintSettings& print) { print.titleLeft = print.titleRight = 2; }},
    {"repeated rows and columns",
     [](PrintSettings& print) {
         print.titleTop = print.titleBottom = 1;
         print.titleLeft = 1, print.titleRight = 3;
     }},
    {"a scale", [](PrintSettings& print) { print.scale = 73; }},
    {"a scale that waits behind fitting", [](PrintSettings& print) { print.scale = 73, print.fitDown = 2; }},
    {"fitted both ways", [](PrintSettings& print) { print.fitAcross = 2, print.fitDown = 5; }},
    {"fitted across", [](PrintSettings& print) { print.fitAcross = 1; }},
    {"in the middle across", [](PrintSettings& print) { print.centredAcross = true; }},
    {"in the middle down", [](PrintSettings& print) { print.centredDown = true; }},
    {"down first", [](PrintSettings& print) { print.downFirst = true; }},
    {"a first page", [](PrintSettings& print) { print.firstPage = 17; }},
    {"a paper with a number",
     [](PrintSettings& print) { print.paperWidth = 16838, print.paperHeight = 23811; }},
    {"in grey, lying", [](PrintSettings& print) { print.colour = false, print.landscape = true; }},
};

/// Papers that files have no number for: 16K, a third of continuous paper, an odd one.
constexpr PageSetup ownPapers[]{
    {"184 × 260", [](PrintSettings& print) { print.paperWidth = 10431, print.paperHeight = 14740; }},
    {"241 × 93.1", [](PrintSettings& print) { print.paperWidth = 13663, print.paperHeight = 5278; }},
    {"of odd twips", [](PrintSettings& print) { print.paperWidth = 10001, print.paperHeight = 20003; }},
};

void fill(const PageSetup& setup, Workbook& workbook)
{
    demand(workbook.renameSheet(1, "利 润'表"));
    workbook.sheet(1).setNumber({9, 30}, 1);
    workbook.sheet(1).changeSettings([&](SheetSettings& settings) {
        settings.print.paperWidth = a4Width;
        settings.print.paperHeight = a4Height;
        setup.change(settings.print);
    });
}

void expectKept(const PageSetup& setup, const std::string& format)
{
    Workbook workbook, found;
    fill(setup, workbook);
    Warnings warnings;
    if (format == ".xlsx")
        readXlsx(writeXlsx(workbook, warnings), found, warnings);
    else
        readXls(writeXls(workbook, warnings), found, warnings);
    EXPECT_EQ(found.sheet(1).settings().print, workbook.sheet(1).settings().print)
        << format << " " << setup.name;
    EXPECT_THAT(warnings.texts(), testing::IsEmpty()) << format << " " << setup.name;
}

TEST(KeptPrintSetup, ComesBackFromBothFormats)
{
    for (const PageSetup& setup : setups) {
        expectKept(setup, ".xlsx");
        expectKept(setup, ".xls");
    }
    for (const PageSetup& setup : ownPapers)
        expectKept(setup, ".xlsx");
}

TEST(KeptPrintSetup, AnotherProgramReadsIt)
{
    const TestFolder folder;
    const PageSetup all{"all", [](PrintSettings& print) {
                            print.area = {{1, 1, 6, 20}};
                            print.titleTop = 1, print.titleBottom = 3;
                            print.titleLeft = print.titleRight = 1;
                            print.scale = 85;
                            print.fitAcross = 2;
                            print.firstPage = 7;
                            print.paperWidth = 10431, print.paperHeight = 14740;
                            print.landscape = true;
                        }};
    Workbook workbook;
    fill(all, workbook);
    saveWorkbook(workbook, folder.file("a.xlsx"), fileFormat(".xlsx"));
    EXPECT_EQ(python(folder, R"(
import sys, openpyxl
sheet = openpyxl.load_workbook(sys.argv[1]).active
page = sheet.page_setup
print(sheet.print_area, sheet.print_title_rows, sheet.print_title_cols)
print(sheet.sheet_properties.pageSetUpPr.fitToPage, page.fitToWidth, page.fitToHeight, page.scale, page.pageOrder)
print(page.firstPageNumber, page.useFirstPageNumber, page.orientation, page.paperWidth, page.paperHeight)
)",
                     folder.file("a.xlsx")),
              "['$A$1:$F$20'] $1:$3 $A:$A\n"
              "True 2 0 85 overThenDown\n"
              "7 True landscape 184mm 260mm\n");
}

TEST(LostChoices, AreCountedBySheets)
{
    Workbook book;
    demand(book.addSheet("乙"));
    for (const int sheet : {1, 2})
        book.sheet(sheet).changeSettings([&](SheetSettings& settings) {
            settings.nothingTexts[3] = "–";
            settings.print.strict = sheet == 2;
        });
    Warnings xlsx, xls;
    writeXlsx(book, xlsx);
    writeXls(book, xls);
    for (const Warnings* told : {&xlsx, &xls})
        EXPECT_THAT(told->texts(),
                    ::testing::ElementsAre("2 张表页的空值显示没有写出,那里没有取到数的单元格显示为 0",
                                           "1 张表页的严格打印没有写出"));
    Warnings none;
    writeXlsx(Workbook(), none);
    EXPECT_THAT(none.texts(), ::testing::IsEmpty());
}

} // namespace
} // namespace spreadsheet
