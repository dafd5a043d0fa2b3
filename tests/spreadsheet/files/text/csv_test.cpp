#include "spreadsheet/files/text/csv.h"

#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/placing/ContentError.h"
#include "spreadsheet/files/text/html.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

TEST(Csv, WritesTheUsedArea)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    EXPECT_EQ(sheetCsv(sheet), "\xEF\xBB\xBF");
    sheet.setText({1, 1}, "科目,名称");
    sheet.setText({2, 1}, "引\"号\"");
    sheet.setText({1, 2}, " 前面有空格");
    sheet.setText({3, 2}, "两\n行");
    sheet.setNumber({2, 3}, -1234.5);
    CellStyle style;
    style.type = CellType::number;
    sheet.setStyle({2, 3}, style);
    EXPECT_EQ(sheetCsv(sheet), "\xEF\xBB\xBF"
                               "\"科目,名称\",\"引\"\"号\"\"\",\r\n"
                               "\" 前面有空格\",,\"两\n行\"\r\n"
                               ",-1234.50,\r\n");
}

/// A file is read as figures again, by programs that know neither commas nor our units.
TEST(Csv, FiguresAreWrittenAsTheyAreNotAsACodeDressesThem)
{
    const struct {
        Value value;
        CellType type;
        const char* code;
        const char* field;
    } cases[] = {
        {-1234.5, CellType::number, "#,##0.00_ ;[Red](#,##0.00);_ ", "-1234.50"},
        {0.0, CellType::number, "#,##0.00_ ;-#,##0.00_ ;_ ", "0.00"},
        {12345678.0, CellType::number, "[万元]#,##0.00", "12345678.00"},
        {1234.5, CellType::edit, "0.0,", "1234.5"},
        {5.0, CellType::edit, "[人民币大写]", "5"},
        {Value::text("货币资金"), CellType::edit, "_ @", "货币资金"},
        {123.0, CellType::edit, "000000", "000123"}, // a code of an account
        {46022.0, CellType::edit, "yyyy-mm-dd", "2025-12-31"},
        {-1.25, CellType::number, "# ?/?", "-1.25"},    // a fraction is no figure
        {-1.5, CellType::edit, "yyyy-mm-dd;@", "-1.5"}, // no day, and no section for it
        {1234.565, CellType::edit, "0.00_ ", "1234.57"},
        {0.04125, CellType::percent, "0.000%", "4.125%"},
        {-0.5, CellType::percent, "0%", "-50%"},
        {12.5, CellType::percent, "#,##0%", "1250.00%"},
        {123456.0, CellType::scientific, "0.0000E+00", "1.2346E+05"},
        {-45322.5, CellType::currency, "", "-45322.50"},
        {-45322.5, CellType::currency, "\"US$\"#,##0.0_ ", "-45322.50"},
        {Value::text("无"), CellType::currency, "", "无"},
    };
    for (const auto& c : cases) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        sheet.setValue({1, 1}, c.value);
        CellStyle style;
        style.type = c.type;
        style.numberFormat = Text(c.code);
        sheet.setStyle({1, 1}, style);
        EXPECT_EQ(sheetCsv(sheet), std::string("\xEF\xBB\xBF") + c.field + "\r\n") << c.code;
    }
}

/// Padded lines would be 17 thousand million commas.
TEST(Csv, OfASheetUsedFarBothWaysIsNoLongerThanItsCells)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.setNumber({maxColumns, 1}, 1);
    sheet.setNumber({2, maxRows}, 2);
    const std::string csv = sheetCsv(sheet);
    EXPECT_EQ(csv.size(), std::size_t(3 + maxColumns + 2 * (maxRows - 1) + 2 + 2));
    EXPECT_THAT(csv, testing::EndsWith("\r\n,2\r\n"));
    EXPECT_THROW(workbookHtml(workbook, ""), ContentError);
}

/// Cells of the first two rows as they show, rows parted by "/" and cells by "|".
std::string cellsOf(std::string_view text)
{
    Workbook workbook;
    readCsv(std::as_bytes(std::span(text)), workbook);
    const Sheet& sheet = workbook.sheet(1);
    std::string cells;
    for (int row = 1; row <= 2; ++row) {
        for (int column = 1; column <= 3; ++column)
            cells +=
                sheet.displayText({column, row}) + (sheet.value({column, row}).isNumber() ? "#" : "") + "|";
        cells += "/";
    }
    return cells;
}

TEST(Csv, SensesEncodingAndSeparator)
{
    const struct {
        std::string text, cells;
    } cases[] = {
        {"甲,乙\n1,2", "甲|乙||/1#|2#||/"},
        {"\xEF\xBB\xBF甲;乙;1,5\r\n1;2;3,5\r\n", "甲|乙|1,5|/1#|2#|3,5|/"},
        {"甲\t乙\t丙\r1\t2\t\r", "甲|乙|丙|/1#|2#||/"},
        {CodePage("GB18030").encoded("科目|金额\n001|1,234.5"), "科目|金额||/001|1234.5#||/"},
        {"\"a,\"\"b\"\"\nc\",x\n=1+1,12345678901234567890", "a,\"b\"\nc|x||/=1+1|12345678901234567890||/"},
        {"\"不闭合,1\n2", "不闭合,1\n2|||/|||/"},
        {std::string("\xFF\xFE"
                     "a\0,\0b\0",
                     8),
         "a|b||/|||/"},
        {"sep=|\r\n1;2;3|乙\r\n4;5;6|", "1;2;3|乙||/4;5;6|||/"},
        {"sep=\n1,2", "sep=|||/1#|2#||/"},
        {"一列\n两行", "一列|||/两行|||/"},
        // digits that their writer wants to keep
        {"=\"001\",\"=\"\"002\"\"\",=\"\"\n=\"a\"\"b\",=\"1\"&\"2\",=\"",
         "001|002||/a\"b|=\"1\"&\"2\"|=\"|/"},
        {"2026-11-27 10:30:05,25:30\n", "2026-11-27 10:30:05#|25:30:00#||/|||/"},
        {"\t6222021234567890123,0012\t,1.50\t", "6222021234567890123|0012|1.5#|/|||/"},
        {"甲\t,\t乙\t\r\n1\t,2\t\n", "甲|乙||/1#|2#||/"},
        {"\u00A0001\u00A0,\u00A0-5.5\u00A0\n", "001|-5.5#||/|||/"},
        {"2026010100001\t,=\"001\"\t,7\t\n2026010100001,\t\n", "2026010100001|001|7#|/2026010100001#|||/"},
        {"甲\t1,234\t\n乙\t2,345\t\n", "甲|1234#||/乙|2345#||/"},
        {"\xFF\xFF,1", "\uFFFD\uFFFD|1#||/|||/"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(cellsOf(c.text), c.cells) << c.text;
    EXPECT_THROW(cellsOf(std::string("a\0b", 3)), ContentError);
    EXPECT_NO_THROW(cellsOf(std::string(maxColumns - 1, ',') + "x"));
    EXPECT_THROW(cellsOf(std::string(maxColumns, ',') + "x"), ContentError);
}

TEST(Csv, ColumnsHaveRoomForDaysWithATime)
{
    const std::string text = "2026-11-27,2026-11-27 10:30\n,\n";
    Workbook workbook;
    readCsv(std::as_bytes(std::span(text)), workbook);
    EXPECT_EQ(workbook.sheet(1).settings().columns.size(1), defaultColumnWidth);
    EXPECT_GT(workbook.sheet(1).settings().columns.size(2), defaultColumnWidth * 3 / 2);
}

TEST(Html, EscapesTextsAndJoinsSpans)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    sheet.setText({1, 1}, "<b>&");
    sheet.setText({1, 2}, "合并");
    sheet.addSpan({1, 2, 2, 3});
    sheet.setNumber({2, 1}, 5);
    const std::string html = workbookHtml(workbook, "a<b");
    EXPECT_THAT(html, testing::HasSubstr("<title>a&lt;b</title>"));
    EXPECT_THAT(html, testing::HasSubstr("<td>&lt;b&gt;&amp;</td><td style=\"text-align:right\">5</td>"));
    EXPECT_THAT(html, testing::HasSubstr("<td colspan=\"2\" rowspan=\"2\">合并</td></tr>"));
}

/// Two steps are 27 points, on the side that the text is aligned to.
TEST(Html, IndentsAreRoomBesideTheText)
{
    using enum HorizontalAlignment;
    const struct {
        HorizontalAlignment alignment;
        const char *text, *number;
    } cases[] = {{left, "padding-left:27pt", "padding-left:27pt"},
                 {right, "padding-right:27pt", "padding-right:27pt"},
                 {general, "padding-left:27pt", "padding-left:3px;padding-right:27pt"},
                 {centre, "", ""}};
    for (const auto& c : cases) {
        for (const bool isNumber : {false, true}) {
            Workbook workbook;
            Sheet& sheet = workbook.sheet(1);
            sheet.setValue({1, 1}, isNumber ? Value(5.0) : Value::text("目"));
            sheet.restyle({1, 1, 1, 1}, [&](CellStyle& style) {
                style.horizontal = c.alignment;
                style.carried.indent = 2;
            });
            std::string html = workbookHtml(workbook, "");
            html.erase(0, html.find(".s")); // every cell's room comes first
            const std::string expected = isNumber ? c.number : c.text;
            if (expected.empty())
                EXPECT_THAT(html, testing::Not(testing::HasSubstr("padding")));
            else
                EXPECT_THAT(html, testing::HasSubstr(expected));
        }
    }
}

} // namespace
} // namespace spreadsheet
