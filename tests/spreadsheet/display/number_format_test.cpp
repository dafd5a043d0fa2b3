#include "spreadsheet/display/number_format_code.h"
#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// TEXT of a value, given as it stands in a formula, and a code without doubled quotes. `expected` is the
/// text without quotes, or an error.
FormulaCase text(const std::string& value, const std::string& code, const std::string& expected)
{
    std::string quoted;
    for (const char c : code)
        quoted += c == '"' ? "\"\"" : std::string(1, c);
    return {"TEXT(" + value + ",\"" + quoted + "\")",
            expected.starts_with('#') && expected.ends_with('!') ? expected : '"' + expected + '"'};
}

} // namespace

TEST(NumberFormat, CommonCodes)
{
    FormulaSheet sheet;
    sheet.expect({
        text("1234567.891", "#,##0.00", "1,234,567.89"),
        text("0", "#,##0", "0"),
        text("0", "#,###", ""),
        text("0.5", "#.00", ".50"),
        text("12", "0000", "0012"),
        text("1234567", "0,000", "1,234,567"),
        text("12", "00,000", "00,012"),
        text("1.5", "0.0##", "1.5"),
        text("1.5", "0.???", "1.5  "),
        text("5", "??0", "  5"),
        text("2.675", "0.00", "2.68"),
        text("1.005", "0.00", "1.01"),
        text("-5", "0.00", "-5.00"),
        text("-5", "0.00;(0.00)", "(5.00)"),
        text("0", "0;-0;\"零\"", "零"),
        text("\"abc\"", "0;0;0;\"<\"@\">\"", "<abc>"),
        text("\"abc\"", "0.00", "abc"),
        text("\"12\"", "0.00", "12.00"),
        text("TRUE", "0.00", "TRUE"),
        text("0.1234", "0.0%", "12.3%"),
        text("12345678", "#,##0,", "12,346"),
        text("12345678", "0.0,,\"百万\"", "12.3百万"),
        text("12345", "0.00E+00", "1.23E+04"),
        text("0.00012345", "0.0E-0", "1.2E-4"),
        text("12345", "##0.0E+0", "12.3E+3"),
        text("9.999", "0.0E+0", "1.0E+1"),
        text("999.96", "##0.0E+0", "1.0E+3"),
        text("5551234", "000-0000", "555-1234"),
        text("150", "[>100]\"大\"0;\"小\"0", "大150"),
        text("50", "[>100]\"大\"0;\"小\"0", "小50"),
        text("1.5", "General", "1.5"),
        text("1.5", "[Red]General\"元\"", "1.5元"),
        text("1234.5", "[$￥-804]#,##0.00", "￥1,234.50"),
        text("5", "0_)", "5 "),
        text("5", "\\x0!y", "x5y"),
        text("5", "nn", "#VALUE!"),
        text("2.5", "0.0x", "2.5x"),
        text("5", "0 元k", "5 元k"),
        text("40607", "yyyy-mm-dd", "2011-03-05"),
        text("40607", "yy/m/d", "11/3/5"),
        text("40607", "yyyy\"年\"m\"月\"d\"日\"", "2011年3月5日"),
        text("40607", "yyyy年m月", "2011年3月"),
        text("40607", "d mmm yyyy", "5 Mar 2011"),
        text("40607", "dddd, mmmm", "Saturday, March"),
        text("40607", "aaaa", "星期六"),
        text("40607.75", "m/d/yyyy h:mm AM/PM", "3/5/2011 6:00 PM"),
        text("0.520833333", "hh:mm:ss", "12:30:00"),
        text("1.5", "[h]:mm", "36:00"),
        text("0.0001", "mm:ss.00", "00:08.64"),
        text("0", "yyyy-mm-dd", "1900-01-00"),
        text("-1", "yyyy-mm-dd", "#VALUE!"),
        text("1204", "[DBNum2]", "壹仟贰佰零肆"),
        text("100200000.5", "[DBNum1]General", "一亿〇二十万.五"),
        text("2011", "[DBNum1]0", "二〇一一"),
        text("12345678", "#,##0,,.00\"百万\"", "12.35百万"), // commas before the point, too
        text("-987654", "0,.0", "-987.7"),
        text("1234567", "#,##0.0,", "1,234.6"),
        text("30", "[>100]\"大\"0", "30"), // what else there is shows as it is
        text("-30.5", "[=1]\"一\"", "-30.5"),
        text("30", "[<10]0;[>50]0.0", "#"),
        text("0.521", "h.mm.ss", "12.30.14"),
        text("0.521", "h\"点\"m", "12点30"),
        text("0.521", "mm,ss", "30,14"),
        text("40607", "yyyy.mm.dd", "2011.03.05"),
        text("40607.521", "mm.dd hh-mm", "03.05 12-30"),
        text("0.00012345", "0.0e-00", "1.2e-04"),
        text("-0.004", "0.00", "0.00"), // no minus before nothing but zeros
        text("-0.004", "#.##", "."),
        text("-0.0004", "0.0%", "0.0%"),
        text("-0.01", "# ?/?", "0    "),
        text("-0.5", "?/?", "-1/2"),
        text("-3", "# ?/?", "-3    "),
        text("-0.005", "0.00", "-0.01"),
        text("-0.4", "\"x\"", "-x"),
        text("-0.4", "0;(0)", "(0)"), // a part of its own says what stands there
        text("40607", "[DBNum1]yyyy年m月d日", "二〇一一年三月五日"),
        text("41243", "[DBNum1]m月d日", "十一月三十日"),
    });
}

TEST(NumberFormat, RoundingCarriesIntoNewPlaces)
{
    FormulaSheet sheet;
    sheet.expect({
        text("999.995", "0.00", "1000.00"),
        text("999.995", "#,##0.00", "1,000.00"),
        text("999999.5", "#,##0", "1,000,000"),
        text("9.9995", "0.000", "10.000"),
        text("0.9999", "0.0%", "100.0%"),
        text("999999", "0.0,", "1000.0"),
        text("99999", "0.00E+00", "1.00E+05"),
        text("0.99999", "0.0E+0", "1.0E+0"),
        text("-0.5", "0", "-1"), // halves go away from zero
        text("2.5", "0", "3"),
        text("59.9999/86400", "m:ss", "1:00"),
        text("40607.999999", "yyyy-mm-dd hh:mm:ss", "2011-03-06 00:00:00"),
    });
}

TEST(NumberFormat, PlacesAndScaling)
{
    FormulaSheet sheet{{"A2", "#N/A"}};
    sheet.expect({
        text("1234567", "#,##0,,", "1"),
        text("499999", "0,,\"M\"", "0M"),
        text("1500", "0.0,\"K\"", "1.5K"),
        text("1234567.891", "# ##0.00", "1234 567.89"),
        text("0.5", "0%", "50%"),
        text("0.5", "%0", "%50"),
        text("-0.125", "0.0%", "-12.5%"),
        text("0", "0.00E+00", "0.00E+00"),
        text("-1234.5", "0.00E+00", "-1.23E+03"),
        text("1E-100", "0.0E+00", "1.0E-100"),
        text("1", "0.0E+000", "1.0E+000"),
        text("1E+20", "0.00", "100000000000000000000.00"),
        text("1.23456789E-7", "0.0000000000", "0.0000001235"),
        text("1E-300", "0.00", "0.00"),
        text("-1234567.8", "#,##0.00", "-1,234,567.80"),
        text("A1", "0.00", "0.00"), // an empty cell
        text("\"50%\"", "0.00", "0.50"),
        text("\"2011-3-5\"", "m/d/yy", "3/5/11"),
        {"TEXT(A2,\"0\")", "#N/A"},
        {"TEXT(5,A2)", "#N/A"},
        {"LEN(TEXT(5,REPT(\"0\",255)))", "255"},
        {"RIGHT(TEXT(1234,REPT(\"0\",255)),5)", "\"01234\""},
        {"TEXT(1.5,REPT(\"\\x\",200)&\"0.0\")=REPT(\"x\",200)&\"1.5\"", "TRUE"},
    });
}

TEST(NumberFormat, SectionsConditionsAndLiterals)
{
    FormulaSheet sheet;
    sheet.expect({
        text("5", "", ""),
        text("5", ";;;", ""),
        text("\"abc\"", ";;;", ""),
        text("-5", "0;0", "5"),
        text("-5", "0;-0;0;@", "-5"),
        text("-5.5", "0.0;@", "-5.5"), // a last section with "@" is for texts only
        text("0", "0.0;(0.0);@", "0.0"),
        text("-1", "yyyy-m-d;@", "#VALUE!"),
        text("3", "[>5]0.0;@", "3"),
        text("0", "0.0;(0.0)", "0.0"), // without a third section zero is positive
        text("5", "0.00_);(0.00)", "5.00 "),
        text("\"abc\"", "@@", "abcabc"),
        text("\"abc\"", "0;0;0", "abc"),
        text("5", "@", "5"),
        text("\"abc\"", "0;0;0;\"科目\"@", "科目abc"),
        text("100", "[<=100]0.0;[>100]0", "100.0"),
        text("101", "[<=100]0.0;[>100]0", "101"),
        text("1", "[=1]\"one\";[=2]\"two\";\"many\"", "one"),
        text("2", "[=1]\"one\";[=2]\"two\";\"many\"", "two"),
        text("3", "[=1]\"one\";[=2]\"two\";\"many\"", "many"),
        text("2", "[<>1]0\"x\";0\"y\"", "2x"),
        text("-5", "[<0]\"负\"0;0", "负5"), // the section holds negative numbers only
        text("-5", "[<10]\"小\"0;0", "-小5"),
        text("5", "[Color10][>1]0.0;0", "5.0"),
        text("1234", "\"0\"0", "01234"),
        text("5", "0.0\"元\"整", "5.0元整"),
        text("5", "*-0", "5"),
        text("5", "[$-804]0", "5"),
        text("1234.5", "¥#,##0.0", "¥1,234.5"),
        text("5", "0;0;0;0;0", "#VALUE!"),
        text("5", "[>100", "#VALUE!"),
        text("5", "[>x]0", "#VALUE!"),
        text("5", "[DBNum9]0", "#VALUE!"),
    });
}

TEST(NumberFormat, DatesAndElapsedTime)
{
    FormulaSheet sheet;
    sheet.expect({
        text("0.5", "h AM/PM", "12 PM"),
        text("0", "h AM/PM", "12 AM"),
        text("0.25", "hh:mm A/P", "06:00 A"),
        text("0.75", "上午/下午h:mm", "下午6:00"),
        text("0.5", "[mm]:ss", "720:00"),
        text("0.5", "[ss]", "43200"),
        text("0.125", "[hh]:mm", "03:00"),
        text("25.5/24", "[h]:mm", "25:30"),
        text("100", "[h]", "2400"),
        text("40607.5", "mm/dd hh:mm", "03/05 12:00"), // months first, then minutes
        text("40607.75", "yyyymmddhhmmss", "20110305180000"),
        text("40607", "mmmmm ddd", "M Sat"),
        text("40607", "e", "2011"),
        text("40607", "aaa", "六"),
        text("40608", "aaaa", "星期日"),
        text("1", "aaaa", "星期日"),
        text("60", "yyyy-mm-dd", "1900-02-29"),
        text("2958465", "yyyy-mm-dd", "9999-12-31"),
        text("2958466", "yyyy-mm-dd", "#VALUE!"),
        text("40607", "aa", "#VALUE!"),
        text("40607", "[$-804]yyyy\"年\"", "2011年"),
        text("40607", "[$-804]dddd mmmm", "星期六 三月"),
        text("40608", "[$-804]ddd mmm", "周日 3月"),
        text("0.75", "[$-804]AM/PM h:mm", "下午 6:00"),
        text("40607", "[$-409]dddd mmm", "Saturday Mar"),
        text("40607", "[$-zh-CN]dddd", "星期六"),
        text("40607.75", "[$-F800]dddd\\, mmmm dd\\, yyyy", "2011年3月5日"), // as the system writes it
        text("40607.75", "[$-x-sysdate]mm/dd/yy;@", "2011年3月5日"),
        text("40607.3", "[$-F400]h:mm:ss AM/PM", "7:12:00"),
        text("40607.3", "[$-x-systime]hh", "7:12:00"),
        text("\"无\"", "[$-F800]yyyy;;;\"文\"@", "文无"),
    });
}

/// A code may be a piece of a longer text.
TEST(NumberFormat, CodesEndWhereTheyEnd)
{
    const std::string_view text = "mmmm\\x000[h]ss";
    for (const std::size_t length : {2U, 5U, 8U, 14U}) {
        const auto piece = parseFormatCode(text.substr(0, length)),
                   alone = parseFormatCode(std::string(text.substr(0, length)));
        ASSERT_EQ(piece.has_value(), alone.has_value()) << length;
        if (!piece)
            continue;
        ASSERT_EQ(piece->front().parts.size(), alone->front().parts.size()) << length;
        for (std::size_t part = 0; part < alone->front().parts.size(); ++part) {
            EXPECT_EQ(piece->front().parts[part].count, alone->front().parts[part].count) << length;
            EXPECT_EQ(piece->front().parts[part].text, alone->front().parts[part].text) << length;
        }
    }
}

TEST(NumberFormat, ChineseNumerals)
{
    FormulaSheet sheet;
    sheet.expect({
        text("1204", "[DBNum2]0", "壹贰零肆"),
        text("10", "[DBNum2]", "壹拾"),
        text("10", "[DBNum1]General", "一十"),
        text("0", "[DBNum2]", "零"),
        text("10010", "[DBNum1]", "一万〇一十"),
        text("100000000", "[DBNum2]", "壹亿"),
        text("123456789012", "[DBNum2]",
             "壹仟贰佰叁拾肆亿伍仟陆佰柒拾捌万玖仟零壹拾贰"), // too long for a cell's digits
        text("-100000000001", "[DBNum2][$-804]General", "-壹仟亿零壹"),
        text("1E15", "[DBNum2]", "1E+15"),
        text("-5", "[DBNum2]", "-伍"),
        text("3.5", "[DBNum2]0.00", "叁.伍零"),
        text("25", "[DBNum3]0", "２５"),
        text("1234.56", "[DBNum2]General\"元\"", "壹仟贰佰叁拾肆.伍陆元"),
        text("40612", "[DBNum1]m月d日", "三月十日"),
        text("0.520833334", "[DBNum1]h时mm分", "十二时三十分"),
    });
}
