#include "spreadsheet/files/exchange/imported_sheets.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/files/FileFormats.h"

#include "spreadsheet/files/placing/PendingFile.h"
#include "tests/spreadsheet/files/FilesTest.h"
#include "tests/spreadsheet/files/sample_workbook.h"
#include "text/ascii.h"

#include <bit>
#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <random>
#include <ranges>
#include <set>

namespace spreadsheet {
namespace {

void put(const std::filesystem::path& file, std::string_view content)
{
    std::ofstream(file, std::ios::binary) << content;
}

std::string contentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(FileFormats, AreSensedByContentHoweverTheFileIsCalled)
{
    const TestFolder folder;
    Workbook workbook;
    fillSample(workbook);
    for (const FileFormat& format : fileFormats() | std::views::filter(&FileFormat::senses)) {
        const auto file = folder.file("报表.unknown");
        EXPECT_THAT(saveWorkbook(workbook, file, format), testing::IsEmpty());
        Workbook found;
        loadWorkbook(found, file);
        expectSame(workbook, found);
    }
    EXPECT_EQ(folder.fileCount(), 1U); // nothing is left beside it
}

TEST(FileFormats, EachIsFoundByItsEndings)
{
    std::set<std::string_view> captions;
    for (const FileFormat& format : fileFormats()) {
        EXPECT_TRUE(captions.insert(format.caption).second) << format.caption;
        for (const std::string_view ending : format.endings) {
            const std::string capitals = "报表.2026" + ascii::upper(ending);
            EXPECT_EQ(fileFormatOfName(capitals), &format) << capitals; // no other has it
        }
    }
    for (const char* name : {"报表", "a.doc", ".xls", "a.xls.", "xlsx"})
        EXPECT_EQ(fileFormatOfName(name), nullptr) << name;
}

TEST(FileFormats, NumbersComeBackBitForBit)
{
    const TestFolder folder;
    std::vector<double> numbers{-0.0, 0.1 + 0.2, 5e-324, 1.7976931348623157e308, 1e15, 123456789012345678.0};
    std::mt19937_64 random(17); // NOLINT: the same numbers every time
    while (numbers.size() < 300) {
        const auto number = std::bit_cast<double>(random());
        if (std::isfinite(number))
            numbers.push_back(number);
    }
    Workbook workbook;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        workbook.sheet(1).setNumber({1, static_cast<int>(i) + 1}, numbers[i]);
    for (const FileFormat& format : fileFormats() | std::views::filter(&FileFormat::senses)) {
        Workbook found;
        saveWorkbook(workbook, folder.file("a"), format);
        loadWorkbook(found, folder.file("a"));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            EXPECT_EQ(
                std::bit_cast<std::uint64_t>(found.sheet(1).value({1, static_cast<int>(i) + 1}).number()),
                std::bit_cast<std::uint64_t>(numbers[i]))
                << numbers[i] << " in " << format.ending();
    }
}

/// What versions that counted a name's bytes let through.
void nameAsInOldFiles(Workbook& workbook, int sheet, const std::string& name)
{
    workbook.sheet(sheet).changeSettings([&](SheetSettings& settings) { settings.name = name; });
}

std::string repeated(int times, const std::string& text)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

TEST(FileFormats, LongSheetNamesOfOldReports)
{
    const std::string pair = "\xF0\xA0\x80\x80"; // one character that counts twice
    const struct {
        std::string name, inXls;
    } cases[] = {
        {std::string(93, 'x'), std::string(31, 'x')},
        {repeated(15, pair) + "表格表", repeated(15, pair) + "表"},
        {repeated(16, pair), repeated(15, pair)}, // not cut through the last one
        {repeated(31, "表"), repeated(31, "表")},
    };
    const TestFolder folder;
    for (const auto& c : cases) {
        Workbook workbook;
        nameAsInOldFiles(workbook, 1, c.name);
        demand(workbook.addSheet("另"));
        demand(workbook.sheet(2).setFormula({1, 1}, "'" + c.name + "'!B2"));
        saveWorkbook(workbook, folder.file("a.ss7"), fileFormat(".ss7"));
        Workbook loaded;
        loadWorkbook(loaded, folder.file("a.ss7"));
        EXPECT_EQ(loaded.sheet(1).name(), c.name);
        EXPECT_EQ(loaded.sheet(2).formula({1, 1}), workbook.sheet(2).formula({1, 1}));
        EXPECT_FALSE(loaded.renameSheet(1, c.name)) << "the name is no other";
        const auto warnings = saveWorkbook(loaded, folder.file("a.xls"), fileFormat(".xls"));
        EXPECT_EQ(warnings.empty(), c.name == c.inXls) << c.name;
        loadWorkbook(loaded, folder.file("a.xls"));
        EXPECT_EQ(loaded.sheet(1).name(), c.inXls);
    }
}

TEST(FileFormats, LongSheetNamesOfForeignFiles)
{
    const std::string longest(31, 'x');
    const struct {
        std::string name, ours;
    } sheets[] = {{longest + "a", longest}, {longest + "b", "Sheet2"}, {"a:b", "Sheet3"}, {"四", "四"}};
    Workbook workbook;
    Warnings warnings;
    int number = 0;
    for (const auto& sheet : sheets) {
        addImportedSheet(workbook, ++number, sheet.name, warnings);
        EXPECT_EQ(workbook.sheet(number).name(), sheet.ours);
    }
    EXPECT_EQ(warnings.texts().size(), 3U);
}

TEST(FileFormats, RefusalsNameTheReasonAndLoseNothing)
{
    const TestFolder folder;
    const struct {
        const char *name, *content, *reason;
    } cases[] = {
        {"a.xls", "<html><body>登录</body></html>", "网页"},
        {"b.xls", "\xEF\xBB\xBF  <!DOCTYPE html>", "网页"},
        {"c.xls", "科目,金额\n1,2\n", "文本"},
        {"d.xlsx", "PK\x03\x04rest", "压缩包"},
        {"d.csv", "PK", "压缩包"}, // as short as what it is known by
        {"e.xls", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "截断"},
        {"f.csv", "", "空的"},
        {"g.ss7", "\x89SS7\r\n\x1A\n", "不完整"},
    };
    Workbook workbook;
    workbook.sheet(1).setText({1, 1}, "原来的");
    for (const auto& c : cases) {
        put(folder.file(c.name), c.content);
        try {
            loadWorkbook(workbook, folder.file(c.name));
            ADD_FAILURE() << c.name;
        } catch (const ContentError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(c.reason)) << c.name;
        }
        EXPECT_EQ(workbook.sheet(1).displayText({1, 1}), "原来的");
    }
    EXPECT_THROW(loadWorkbook(workbook, folder.file("没有")), ContentError);
    EXPECT_THROW(loadWorkbook(workbook, folder.file("")), ContentError);
}

TEST(FileFormats, AFailedExportLeavesTheFormerFile)
{
    const TestFolder folder;
    Workbook workbook;
    workbook.sheet(1).setNumber({300, 70'000}, 1);
    put(folder.file("a.xls"), "从前");
    EXPECT_THROW(saveWorkbook(workbook, folder.file("a.xls"), fileFormat(".xls")), ContentError);
    EXPECT_EQ(contentOf(folder.file("a.xls")), "从前");
    nameAsInOldFiles(workbook, 1, std::string(60, 'x')); // longer than .xlsx takes
    EXPECT_THROW(saveWorkbook(workbook, folder.file("a.xls"), fileFormat(".xlsx")), ContentError);
    EXPECT_EQ(contentOf(folder.file("a.xls")), "从前");
    EXPECT_EQ(folder.fileCount(), 1U);
    EXPECT_THROW(saveWorkbook(workbook, folder.file("没有/a.csv"), fileFormat(".csv")), FileError);
    saveWorkbook(workbook, folder.file("a.xls"), fileFormat(".csv"));
    EXPECT_THAT(contentOf(folder.file("a.xls")), testing::StartsWith("\xEF\xBB\xBF"));
}

} // namespace
} // namespace spreadsheet
