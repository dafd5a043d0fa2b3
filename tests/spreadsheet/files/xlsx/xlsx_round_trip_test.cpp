#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/xlsx/xlsx_read.h"
#include "spreadsheet/files/xlsx/xlsx_write.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/sample_workbook.h"
#include "tests/spreadsheet/files/xlsx/made_archive.h"

#include <gmock/gmock.h>
#include <limits>
#include <random>

namespace spreadsheet {
namespace {

std::string reasonFor(Bytes file)
{
    try {
        Workbook workbook;
        Warnings warnings;
        readXlsx(file, workbook, warnings);
    } catch (const ContentError& error) {
        return error.what();
    }
    return {};
}

TEST(Xlsx, RoundTripKeepsEverything)
{
    Workbook workbook, found;
    fillSample(workbook);
    Warnings warnings;
    readXlsx(writeXlsx(workbook, warnings), found, warnings);
    EXPECT_THAT(warnings.texts(), testing::IsEmpty());
    // Cells that were only covered by a span come back with the span's look.
    expectSame(workbook, found);
}

TEST(Xlsx, NumbersComeBackBitForBitAndWidthsInWholePixels)
{
    Workbook workbook, found;
    Sheet& sheet = workbook.sheet(1);
    constexpr double largest = std::numeric_limits<double>::max();
    const std::vector<double> numbers{largest, -largest, 1.0 / 3, 123'456'789'012'345'678.0, 5e-324, 1e-300};
    for (std::size_t i = 0; i < numbers.size(); ++i)
        sheet.setNumber({1, static_cast<int>(i) + 1}, numbers[i]);
    demand(sheet.setFormula({2, 1}, "A1"));
    workbook.recalculate();
    constexpr int twipsOfPixel = 15, widths = 250;
    workbook.setCountsFrom1904(true);
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.colour = false;
        settings.columnCount = widths;
        for (int pixels = 1; pixels <= widths; ++pixels)
            settings.columns.sizes[pixels] = pixels * twipsOfPixel + pixels % 8;
    });
    Warnings warnings;
    readXlsx(writeXlsx(workbook, warnings), found, warnings);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        EXPECT_EQ(found.sheet(1).value({1, static_cast<int>(i) + 1}), Value(numbers[i]));
    EXPECT_EQ(found.sheet(1).value({2, 1}), Value(largest));
    EXPECT_TRUE(found.countsFrom1904());
    EXPECT_FALSE(found.sheet(1).settings().print.colour);
    EXPECT_EQ(found.sheet(1).settings().columns.defaultSize, sheet.settings().columns.defaultSize);
    for (int pixels = 1; pixels <= widths; ++pixels)
        EXPECT_EQ(found.sheet(1).settings().columns.size(pixels), pixels * twipsOfPixel);
}

TEST(Xlsx, ReadsWhatOtherProgramsWrite)
{
    const TestFolder folder;
    Workbook workbook;
    Warnings warnings;
    readXlsx(
        archive(folder,
                workbookOf("<x:worksheet xmlns:x=\"m\"><x:sheetData><x:row><x:c><x:v>1.5</x:v></x:c>"
                           "<x:c t=\"inlineStr\"><x:is><x:r><x:t>甲</x:t></x:r><x:r><x:t>乙</x:t></x:r>"
                           "</x:is></x:c></x:row><x:row r=\"3\"><x:c r=\"B3\" t=\"str\"><x:f t=\"shared\" "
                           "si=\"0\" ref=\"B3:B4\">A1+_xlfn.IFNA(A2,0)</x:f><x:v>x_x0041_</x:v></x:c></x:row>"
                           "<x:row r=\"4\"><x:c r=\"B4\"><x:f t=\"shared\" si=\"0\"/></x:c></x:row>"
                           "</x:sheetData></x:worksheet>")),
        workbook, warnings);
    const Sheet& sheet = workbook.sheet(1);
    EXPECT_EQ(sheet.displayText({1, 1}), "1.5");
    EXPECT_EQ(sheet.displayText({2, 1}), "甲乙");
    EXPECT_EQ(sheet.formula({2, 3}), "A1+IFNA(A2,0)");
    EXPECT_EQ(sheet.formula({2, 4}), "A2+IFNA(A3,0)");

    // Texts of a program that has others compute everything; numbers of one under a comma's locale; what is
    // none.
    const struct {
        const char *book, *cell, *margin;
        Value value;
        int left;
    } cases[] = {
        {"", " t=\"str\"><f>1</f><v>TRUE</v>", "0.75", Value::text("TRUE"), 1080},
        {"", " t=\"str\"><v>#N/A</v>", "0.75", Value::text("#N/A"), 1080},
        {"<calcPr fullCalcOnLoad=\"1\"/>", " t=\"str\"><f>NOSUCH(1)</f><v>TRUE</v>", "0.75",
         Value::boolean(true), 1080},
        {"<calcPr fullCalcOnLoad=\"1\"/>", " t=\"str\"><f>#N/A</f><v>#N/A</v>", "0.75", CellError::na, 1080},
        {"", " t=\"b\"><v>true</v>", "0.75", Value::boolean(true), 1080},
        {"", " t=\"e\"><v>#NUM!</v>", " 0.75 ", CellError::num, 1080},
        {"", " t=\"d\"><v>2026-12-31T12:00:00Z</v>", "0.75", 46387.5, 1080},
        {"", " t=\"d\"><v>2026-12-31</v>", "0.75", 46387.0, 1080},
        {"", " t=\"d\"><v>12:30:00</v>", "0.75", 45000 / 86400.0, 1080},
        {"", " t=\"d\"><v>T06:00Z</v>", "0.75", 0.25, 1080},
        {"", " t=\"d\"><v>12</v>", "0.75", Value::text("12"), 1080},
        {"<workbookPr date1904=\"1\"/>", " t=\"d\"><v>2024-02-29T12:00:00</v>", "0.75", 43889.5, 1080},
        {"<workbookPr date1904=\"1\"/>", " t=\"d\"><v>18:00:00.0</v>", "0.75", 0.75, 1080},
        {"<workbookPr date1904=\"1\"/>", " t=\"d\"><v>1903-12-31</v>", "0.75", Value::text("1903-12-31"),
         1080},
        {"", "><v>1,5</v>", "0,75", 1.5, 1080},
        {"", "><v> 2.5E+3\n</v>", "7.5E-1", 2500.0, 1080},
        {"", "><v>1.5.2</v>", "x", Value::text("1.5.2"), 0},
        {"", "><v/>", "-1", Value(), 0},
        {"", " t=\"str\"><v>_xD83D__xDE00__xD83D__x005f_x0041_</v>", "0", Value::text("😀\uFFFD_x0041_"), 0},
    };
    for (const auto& c : cases) {
        Parts parts =
            workbookOf(std::string("<worksheet><sheetData><row r=\"1\"><c r=\"A1\"") + c.cell +
                       "</c></row></sheetData><pageMargins left=\"" + c.margin + "\"/></worksheet>");
        std::string& book = parts[1].second;
        book.insert(book.rfind("</"), c.book);
        Workbook other;
        readXlsx(archive(folder, parts), other, warnings);
        EXPECT_EQ(other.sheet(1).value({1, 1}), c.value) << c.cell << other.sheet(1).displayText({1, 1});
        EXPECT_EQ(other.sheet(1).settings().print.marginLeft, c.left) << c.margin;
    }

    const std::string deep(100'000, '(');
    const auto sheetOf = [](const std::string& formula) {
        return "<worksheet><sheetData><row r=\"1\"><c r=\"A1\"><f>" + formula +
               "</f><v>42</v></c></row></sheetData></worksheet>";
    };
    for (const std::string& formula : {deep, std::string("[1]S!A1"), std::string("1+")}) {
        Workbook other;
        Warnings kept;
        readXlsx(archive(folder, workbookOf(sheetOf(formula))), other, kept);
        EXPECT_EQ(other.sheet(1).value({1, 1}), Value(42.0));
        EXPECT_FALSE(other.sheet(1).hasFormula({1, 1}));
        EXPECT_THAT(kept.texts(), testing::ElementsAre(testing::HasSubstr("保留了上次算出的值")));
    }
}

TEST(Xlsx, RefusalsNameTheReason)
{
    const TestFolder folder;
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<a>";
    const std::string bomb(80 << 20, ' ');
    const std::string head = "<worksheet><sheetData><row r=\"";
    const struct {
        const char* what;
        Parts parts;
        const char* reason;
    } cases[] = {
        {"no workbook", {{"a.txt", "x"}}, "没有工作簿"},
        {"broken XML", workbookOf("<worksheet><sheetData>"), "完整的 XML"},
        {"nested without end", workbookOf(deep), "嵌套太深"},
        {"a bomb", workbookOf(bomb), "大得不合常理"},
        {"row beyond the sheet", workbookOf(head + "1048577\"/></sheetData></worksheet>"), "行号"},
        {"column beyond the sheet", workbookOf(head + "1\"><c r=\"XFE1\"/></row></sheetData></worksheet>"),
         "单元格的名称"},
    };
    for (const auto& c : cases)
        EXPECT_THAT(reasonFor(archive(folder, c.parts)), testing::HasSubstr(c.reason)) << c.what;
}

/// The file goes out piece by piece; what the one who takes them throws comes out as it is.
TEST(Xlsx, AFailureOfTheTargetPassesThrough)
{
    struct DiskFull {};
    Workbook workbook;
    std::mt19937 random(13); // NOLINT: the same amounts every time
    for (int row = 1; row <= 40'000; ++row)
        workbook.sheet(1).setNumber({1, row}, static_cast<double>(random()));
    int pieces = 0;
    Warnings warnings;
    writeXlsx(workbook, warnings, [&](std::size_t, Bytes) { ++pieces; });
    ASSERT_GT(pieces, 3);
    for (int failing = 1; failing <= pieces; ++failing) {
        int left = failing;
        const auto put = [&](std::size_t, Bytes) {
            if (--left == 0)
                throw DiskFull();
        };
        EXPECT_THROW(writeXlsx(workbook, warnings, put), DiskFull) << failing;
    }
}

TEST(Xlsx, DamagedBytesNeitherCrashNorTakeLong)
{
    Workbook workbook;
    fillSample(workbook);
    Warnings warnings;
    const std::vector<std::byte> file = writeXlsx(workbook, warnings);
    for (std::size_t end = 0; end < file.size(); end += 97)
        EXPECT_NE(reasonFor(Bytes(file).first(end)), "") << end;
    std::mt19937 random(13); // NOLINT: the same damage every time
    for (int round = 0; round < 100; ++round) {
        std::vector<std::byte> damaged = file;
        for (int i = 0; i < 1 + round % 8; ++i)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        reasonFor(damaged);
    }
}

} // namespace
} // namespace spreadsheet
