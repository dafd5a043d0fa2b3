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
        {"FIND(\"\",\"zz\",3)", "#VALUE!"}, // begins behind the text
        {"FIND(\"\",\"\")", "1"},
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
        {"REPT(\"\",1E+300)", "\"\""},
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
        {"TEXTJOIN(1/0,TRUE,A1:A4)", "#DIV/0!"},
        {"TEXTJOIN(\",\",TRUE,A1:A4)", "\"x,5,TRUE\""},
        {"TEXTJOIN({\"-\",\"+\"},FALSE,A1:A4)", "\"x-5+-TRUE\""},
        {"CONCAT(A1:B1)", "#N/A"},
        // Every empty cell is a piece, also where nothing stands in any row or column.
        {"TEXTJOIN(\";\",FALSE,A1:A6)", "\"x;5;;TRUE;;\""},
        {"TEXTJOIN(\"|\",FALSE,AAC1,XFC1:XFC2,\"x\")", "\"|||x\""},
        {"TEXTJOIN(\",\",FALSE,(AAD200:AAE201,A2))", "\",,,,5\""},
        {"TEXTJOIN(A3:A4,FALSE,A5:A8)&TEXTJOIN(A399:A400,FALSE,A5:A8)", "\"TRUE\""},
        {"TEXTJOIN(AAC1:AAC2,FALSE,A:A)&TEXTJOIN(\",\",TRUE,A:A)", "\"x5TRUEx,5,TRUE\""},
        {"TEXTJOIN(\",\",FALSE,AAC:AAC)", "#VALUE!"}, // a million commas
        {"T(A2)", "\"\""},
        {"T(A1:A2)", "\"x\""},
        {"N(A2)", "5"},
        {"N(A4)", "1"},
        {"N(A1)", "0"},
        {"CHAR(65)", "\"A\""},
        {"CHAR(128)", "\"€\""},
        {"CHAR(0)", "#VALUE!"},
        {"CODE(\"A中\")", "65"},
        {"CODE(\"中\")", "54992"}, // D6 D0 of GBK
        {"CHAR(54992)", "\"中\""},
        {"CHAR(256)", "#VALUE!"},
        {"CODE(\"☃\")", "63"}, // in neither code page
        {"UNICODE(\"中\")", "20013"},
        {"UNICHAR(946)&UNICHAR(20013)&UNICHAR(131083)", "\"β中𠀋\""},
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
