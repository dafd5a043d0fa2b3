#include "spreadsheet/files/exchange/CodePage.h"
#include "spreadsheet/files/exchange/header_codes.h"
#include "spreadsheet/files/exchange/number_formats.h"
#include "spreadsheet/files/exchange/Palette.h"
#include "spreadsheet/files/exchange/unicode_text.h"
#include "spreadsheet/files/xls/cell_codes.h"

#include <cmath>
#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

/// A code that another program does not know makes it refuse the whole file.
TEST(NumberFormats, OnlyWhatOtherProgramsKnowIsWritten)
{
    const struct {
        const char *code, *written;
        std::size_t warnings;
    } cases[] = {
        {"[万元]#,##0.00;[Red][万元]-#,##0.00", "#,##0.00;[Red]-#,##0.00", 1},
        {"\"人民币\"[人民币大写]", "\"人民币\"[DBNum2][$-804]General", 1},
        {"[红色]0;[蓝色]-0", "[Red]0;[Blue]-0", 0},
        {"0\"[万元]\";\\[万元\\]0", "0\"[万元]\";\\[万元\\]0", 0},
        {"[>100][$-804]0;_(0_);[h]:mm", "[>100][$-804]0;_(0_);[h]:mm", 0},
        {"0\"unclosed", "0\"unclosed", 0},
        {"0[unclosed", "0[unclosed", 0},
        {"0\\", "0\\", 0},
    };
    for (const auto& c : cases) {
        Warnings warnings;
        CellStyle style;
        style.numberFormat = Text(c.code);
        EXPECT_EQ(exportedFormatCode(style, warnings), c.written);
        EXPECT_EQ(warnings.texts().size(), c.warnings) << c.code;
    }
}

TEST(NumberFormats, CodesBecomeTypesOrAreKept)
{
    const struct {
        const char* code;
        CellType type;
        int decimals;
        bool isKept; ///< the type does not show it exactly
    } cases[] = {
        {"General", CellType::edit, 2, false},
        {"0", CellType::number, 0, false},
        {"0.000", CellType::number, 3, false},
        {"#,##0.00", CellType::number, 2, true},
        {"0.00%", CellType::percent, 2, false},
        {"0%", CellType::percent, 2, true},
        {"0.00E+00", CellType::scientific, 2, false},
        {"yyyy-mm-dd", CellType::date, 2, false},
        {"yyyy\\-mm\\-dd;@", CellType::date, 2, false},
        {"[$-804]yyyy\"年\"m\"月\"d\"日\"", CellType::date, 2, true},
        {"hh:mm:ss", CellType::time, 2, false},
        {"[h]:mm", CellType::time, 2, true},
        {"[$-F800]yyyy-mm-dd", CellType::date, 2, true}, // not what it seems to show
        {"[$-x-systime]hh:mm:ss", CellType::time, 2, true},
        {"mmm-yy", CellType::date, 2, true},
        {"\"￥\"#,##0.00", CellType::currency, 2, false},
        {"\"days\" 0.0", CellType::number, 1, true},
        {"[Red]0;[Blue]-0", CellType::number, 0, true},
        {"@", CellType::edit, 2, true},
        {"\"unclosed", CellType::edit, 2, true},
    };
    for (const auto& c : cases) {
        CellStyle style;
        applyFormatCode(c.code, style);
        EXPECT_EQ(static_cast<int>(style.type), static_cast<int>(c.type)) << c.code;
        EXPECT_EQ(style.decimals, c.decimals) << c.code;
        EXPECT_EQ(style.numberFormat.view(), c.isKept ? c.code : "") << c.code;
        CellStyle again;
        applyFormatCode(formatCodeOf(style), again);
        EXPECT_EQ(style, again) << c.code;
    }
}

TEST(HeaderCodes, ForeignTextsBecomeOurs)
{
    const std::string plain = "/fn\"宋体\"/fz\"10\"/fb0/fi0/fu0/fk0";
    const struct {
        const char* foreign;
        std::string own;
        std::size_t warnings;
    } cases[] = {
        {"", "", 0},
        {"标题", plain + "/c标题/n", 0},
        {"&L左&R&P", plain + "/l左" + plain + "/r/p/n", 0},
        {"&C一\n二", plain + "/c一/n" + plain + "/c二/n", 0},
        {"&L&\"黑体,Bold Italic\"&14甲&U乙",
         "/fn\"黑体\"/fz\"14\"/fb1/fi1/fu0/fk0/l甲/fn\"黑体\"/fz\"14\"/fb1/fi1/fu1/fk0/l乙/n", 0},
        {"&A && &D&N", plain + "/c&表名 & &日期&总页数/n", 0},
        {"&&日期&Z", plain + "/c＆日期/n", 1},
        {"&&日&G期", plain + "/c＆日期/n", 1}, // what stands between is lost
        {"&CA/nB/", plain + "/cA／nB／/n", 0},
        {"&R&K01+000红", plain + "/r红/n", 0},
        {"&1234", "/fn\"宋体\"/fz\"123\"/fb0/fi0/fu0/fk0/c4/n", 0}, // a size has three digits
        {"&", plain + "/c&/n", 0},
        {"&\"不闭合", "", 0},
    };
    for (const auto& c : cases) {
        Warnings warnings;
        EXPECT_EQ(readForeignHeader(c.foreign, {"宋体", 10}, warnings), c.own) << c.foreign;
        EXPECT_EQ(warnings.texts().size(), c.warnings) << c.foreign;
    }
}

TEST(HeaderCodes, OursComeBack)
{
    for (const std::string codes :
         {"/fn\"宋体\"/fz\"12\"/fb1/fi0/fu1/fk0/c利润 & 表/n/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk1/r/p/n",
          "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/l第/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/l/p/n",
          // "&P+1" would be the number of the next page
          "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/c/p/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/c+1/n",
          "/fn\"宋体\"/fz\"9\"/fb0/fi0/fu0/fk0/c共&总页数页 &日期&时间 &表名 &报表名/n",
          "/n/n/fn\"Arial\"/fz\"8\"/fb0/fi1/fu0/fk0/r2026/12/31/n"}) {
        Warnings warnings;
        EXPECT_EQ(readForeignHeader(writeForeignHeader(codes), {"宋体", 10}, warnings), codes);
    }
}

TEST(Palette, EqualColoursShareAPlaceAndTheRestIsApproximated)
{
    PaletteBuilder builder;
    EXPECT_EQ(builder.number(0xFF0000), 10U);
    EXPECT_FALSE(builder.isChanged());
    const unsigned own = builder.number(0x123456);
    EXPECT_EQ(builder.number(0x123456), own);
    EXPECT_EQ(builder.palette()[own], 0x123456U);
    for (Colour colour = 1; colour < 60; ++colour)
        builder.number(colour * 0x010203);
    EXPECT_TRUE(builder.hasApproximated());
    EXPECT_EQ(builder.palette()[own], 0x123456U);
    EXPECT_EQ(builder.palette()[10], 0xFF0000U);
}

TEST(Rk, HoldsOnlyNumbersThatComeBackExactly)
{
    for (const double number :
         {0.0, 1.0, -1.0, 0.01, 0.1, 12.34, -99.99, 536870911.0, 1e10, 0.5, 1.0 / 3, 1e300, -0.0}) {
        if (const auto rk = rkOfNumber(number)) {
            EXPECT_EQ(numberOfRk(*rk), number);
            EXPECT_EQ(std::signbit(numberOfRk(*rk)), std::signbit(number));
        }
    }
    EXPECT_TRUE(rkOfNumber(12.34));
    EXPECT_FALSE(rkOfNumber(1.0 / 3));
}

TEST(Texts, EncodingsThereAndBack)
{
    const std::string text = "a é 文 𠮷";
    EXPECT_EQ(utf8Of(utf16Of(text)), text);
    EXPECT_EQ(utf8Of(u"\xD800x"), "\uFFFDx");
    EXPECT_EQ(utf16Of("\xE6x文"), u"\uFFFDx文") << "only the byte that leads nowhere is lost";
    EXPECT_FALSE(isUtf8("\xC0\x80"));
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));
    EXPECT_FALSE(isUtf8("\xB0\xA1")) << "啊 in GB 2312";
    EXPECT_EQ(CodePage("GB18030").decoded(CodePage("GB18030").encoded(text)), text);
    EXPECT_EQ(CodePage(1252).decoded("\x80"), "€");
}

} // namespace
} // namespace spreadsheet
