#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(TextFunctions, CountCharactersNotBytes)
{
    FormulaSheet sheet{{"A1", "应付职工薪酬"}, {"A2", "a😀b"}, {"A3", "=1/3"}, {"A5", "TRUE"}};
    sheet.expect({
        {"LEN(A1)", "6"},
        {"LEN(A2)", "4"}, // beyond the basic plane a character counts 2
        {"LEN(12.50)", "4"},
        {"LEN(A4)", "0"},
        {"LEFT(A1,2)", "\"应付\""},
        {"LEFT(A1)", "\"应\""},
        {"LEFT(A1,)", "\"\""},
        {"LEFT(A1,99)", "\"应付职工薪酬\""},
        {"LEFT(A1,-1)", "#VALUE!"},
        {"RIGHT(A1,2)", "\"薪酬\""},
        {"RIGHT(A2,1)", "\"b\""},
        {"MID(A1,3,2)", "\"职工\""},
        {"MID(A1,7,1)", "\"\""},
        {"MID(A1,0,1)", "#VALUE!"},
        {"MID(A2,2,2)", "\"😀\""},
        {"FIND(\"工\",A1)", "4"},
        {"FIND(\"b\",A2)", "4"},
        {"FIND(\"B\",A2)", "#VALUE!"},
        {"FIND(\"\",A1,3)", "3"},
        {"FIND(\"a\",\"banana\",3)", "4"},
        {"FIND(\"a\",\"banana\",9)", "#VALUE!"},
        {"SEARCH(\"B\",A2)", "4"},
        {"SEARCH(\"n?n\",\"banana\")", "3"},
        {"SEARCH(\"~?\",\"what?\")", "5"},
        {"SEARCH(\"n*b\",\"banana\")", "#VALUE!"},
        {"REPLACE(A1,3,2,\"X\")", "\"应付X薪酬\""},
        {"REPLACE(\"abc\",9,1,\"x\")", "\"abcx\""},
        {"SUBSTITUTE(\"a-b-c\",\"-\",\"\")", "\"abc\""},
        {"SUBSTITUTE(\"a-b-c\",\"-\",\"+\",2)", "\"a-b+c\""},
        {"SUBSTITUTE(\"abc\",\"\",\"x\")", "\"abc\""},
        {"SUBSTITUTE(\"abc\",\"b\",\"x\",0)", "#VALUE!"},
        {"REPT(\"=\",3)", "\"===\""},
        {"REPT(\"ab\",20000)", "#VALUE!"},
        {"EXACT(\"Ab\",\"ab\")", "FALSE"},
        {"EXACT(1,\"1\")", "TRUE"},
    });
}

TEST(TextFunctions, ChangeAndJoin)
{
    FormulaSheet sheet{{"A1", "x"}, {"A2", "5"}, {"A4", "TRUE"}, {"B1", "#N/A"}};
    sheet.expect({
        {"TRIM(\"  a  b \")", "\"a b\""},
        {"CLEAN(CHAR(7)&\"a\"&CHAR(10))", "\"a\""},
        {"UPPER(\"aé中b\")", "\"AÉ中B\""},
        {"LOWER(\"AÉ中\")", "\"aé中\""},
        {"PROPER(\"hELLO wORLD 2nd\")", "\"Hello World 2Nd\""},
        {"CONCATENATE(1.5,\"元\",TRUE)", "\"1.5元TRUE\""},
        {"CONCAT(A1:A4,\"!\")", "\"x5TRUE!\""},
        {"TEXTJOIN(\",\",TRUE,A1:A4)", "\"x,5,TRUE\""},
        {"TEXTJOIN({\"-\",\"+\"},FALSE,A1:A4)", "\"x-5+-TRUE\""},
        {"CONCAT(A1:B1)", "#N/A"},
        {"T(A2)", "\"\""},
        {"T(A1:A2)", "\"x\""},
        {"N(A2)", "5"},
        {"N(A4)", "1"},
        {"N(A1)", "0"},
        {"CHAR(65)", "\"A\""},
        {"CHAR(128)", "\"€\""},
        {"CHAR(0)", "#VALUE!"},
        {"CODE(\"A中\")", "65"},
        {"CODE(\"中\")", "63"},
        {"UNICODE(\"中\")", "20013"},
        {"UNICHAR(20013)", "\"中\""},
        {"CODE(\"\")", "#VALUE!"},
        {"FIXED(1234.567)", "\"1,234.57\""},
        {"FIXED(-1234.567,1,TRUE)", "\"-1234.6\""},
        {"FIXED(1250,-2)", "\"1,300\""},
    });
}

TEST(TextFunctions, TextsThatReadAsNumbers)
{
    FormulaSheet sheet;
    sheet.expect({
        {"VALUE(\" 1,234.5 \")", "1234.5"},
        {"VALUE(\"12%\")", "0.12"},
        {"VALUE(\"-$3\")", "-3"},
        {"VALUE(\"￥1,000.50\")", "1000.5"},
        {"VALUE(\"(5)\")", "-5"},
        {"VALUE(\"1e3\")", "1000"},
        {"VALUE(\".5\")", "0.5"},
        {"VALUE(\"\")", "#VALUE!"},
        {"VALUE(\"1,2,3x\")", "#VALUE!"},
        {"VALUE(\"inf\")", "#VALUE!"},
        {"VALUE(\"2011-3-5\")", "40607"},
        {"VALUE(\"12:00\")", "0.5"},
        {"\"2011年3月5日\"+0", "40607"},
        {"\"3/5/2011\"+0", "40607"},
        {"\"5-Mar-2011\"+0", "40607"},
        {"\"Mar 5, 2011\"+0", "40607"},
        {"\"2011/3/5 18:00\"+0", "40607.75"},
        {"\"2011-02-29\"+0", "#VALUE!"},
        {"\"1900-2-29\"+0", "60"}, // the day that spreadsheets have
        {"\"12:30 PM\"+0", "0.520833333333"},
        {"\"12:00 AM\"+0", "0"},
        {"\"25:00\"+0", "1.04166666667"},
        {"\"12:60\"+0", "#VALUE!"},
        {"\"2011-3\"+0", "40603"},
        {"\"TRUE\"+0", "#VALUE!"},
    });
}

TEST(TextFunctions, FormatCodes)
{
    FormulaSheet sheet;
    const auto text = [](const std::string& value, const std::string& code, const std::string& expected) {
        std::string quoted;
        for (const char c : code)
            quoted += c == '"' ? "\"\"" : std::string(1, c);
        return FormulaCase{"TEXT(" + value + ",\"" + quoted + "\")",
                           expected.starts_with('#') && expected.ends_with('!') ? expected
                                                                                : '"' + expected + '"'};
    };
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
        text("5", "foo", "#VALUE!"),
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
        text("40607", "[DBNum1]yyyy年m月d日", "二〇一一年三月五日"),
        text("41243", "[DBNum1]m月d日", "十一月三十日"),
    });
}
