#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

std::vector<FormulaCase> texts(std::initializer_list<FormulaCase> cases)
{
    std::vector<FormulaCase> quoted;
    for (const FormulaCase& c : cases)
        quoted.push_back({c.formula, '"' + c.expected + '"'});
    return quoted;
}

} // namespace

// Bytes counted by hand: an ASCII character is one, any other two; half of one reads as a blank.
TEST(DoubleByteText, BytesInsteadOfCharacters)
{
    FormulaSheet sheet;
    sheet.expect({
        {"LENB(\"管理a费用\")", "9"},
        {"LENB(\"\")", "0"},
        {"LENB(1/0)", "#DIV/0!"},
        {"LEFTB(\"中国\",-1)", "#VALUE!"},
        {"MIDB(\"中国\",0,1)", "#VALUE!"},
        {"FINDB(\"费\",\"管a费\")", "4"},
        {"FINDB(\"管\",\"管a管\",2)", "4"},
        {"FINDB(\"A\",\"管a\")", "#VALUE!"},
        {"SEARCHB(\"A\",\"管a\")", "3"},
        {"SEARCHB(\"?费\",\"管a费\")", "3"},
        {"FINDB(\"a\",\"管a\",5)", "#VALUE!"},
    });
    sheet.expect(texts({
        {"LEFTB(\"中国\",2)", "中"},
        {"LEFTB(\"中国\",3)", "中 "},
        {"LEFTB(\"中国\")", " "},
        {"LEFTB(\"a中\",9)", "a中"},
        {"RIGHTB(\"中国\",1)", " "},
        {"RIGHTB(\"中国a\",3)", "国a"},
        {"MIDB(\"中国\",2,2)", "  "},
        {"MIDB(\"中国\",1,3)", "中 "},
        {"MIDB(\"a中国\",2,2)", "中"},
        {"MIDB(\"中国\",9,2)", ""},
        {"REPLACEB(\"中国人\",3,2,\"x\")", "中x人"},
        {"REPLACEB(\"中国\",2,2,\"x\")", " x "},
        {"REPLACEB(\"ab\",9,2,\"x\")", "abx"},
    }));
}

TEST(DoubleByteText, Widths)
{
    FormulaSheet().expect(texts({
        {"ASC(\"ＡＢＣ１２３，　中\")", "ABC123, 中"},
        {"ASC(\"ガパア。\")", "ｶﾞﾊﾟｱ｡"},
        {"DBCS(\"Abc 1!中\")", "Ａｂｃ　１！中"},
        {"JIS(\"ｶﾞﾊﾟｱ\")", "ガパア"},
        {"WIDECHAR(ASC(\"ヴー\"))", "ヴー"},
        {"DBCS(12.5)", "１２．５"},
    }));
}

// The written amounts follow the rules for cheques and vouchers.
TEST(AmountText, SignsAndChineseNumbers)
{
    FormulaSheet sheet;
    sheet.expect(texts({
        {"DOLLAR(1234.567)", "$1,234.57"},
        {"DOLLAR(-1234.567,-2)", "($1,200)"},
        {"DOLLAR(-0.001)", "$0.00"},
        {"USDOLLAR(99.888,1)", "$99.9"},
        {"RMB(1234.565)", "￥1,234.57"},
        {"RMB(-1234.5,0)", "￥-1,235"},
        {"YEN(1234.5)", "¥1,235"},
        {"NUMBERSTRING(1204,1)", "一千二百〇四"},
        {"NUMBERSTRING(1204.4,2)", "壹仟贰佰零肆"},
        {"NUMBERSTRING(1204,3)", "一二〇四"},
        {"RMBDX(1234.56)", "壹仟贰佰叁拾肆元伍角陆分"},
        {"RMBDX(100.05)", "壹佰元零伍分"},
        {"RMBDX(100.5)", "壹佰元伍角整"},
        {"RMBDX(0.05)", "伍分"},
        {"RMBDX(0.5)", "伍角整"},
        {"RMBDX(-100010000)", "负壹亿零壹万元整"},
        {"RMBDX(0)", "零元整"},
        {"RMBDX(-0.001)", "零元整"},
        {"TEXT(1204,\"[DBNum3]\")", "１千２百０４"},
        {"PHONETIC(A9:A9)", ""},
        {"ENCODEURL(\"a b/中\")", "a%20b%2F%E4%B8%AD"},
    }));
    sheet.expect({
        {"DOLLAR(1,128)", "#VALUE!"},
        {"NUMBERSTRING(-1,1)", "#NUM!"},
        {"NUMBERSTRING(1,4)", "#NUM!"},
        {"RMBDX(1E15)", "#NUM!"},
        {"NUMBERVALUE(\"2.500,27\",\",\",\".\")", "2500.27"},
        {"NUMBERVALUE(\"3.5%\")", "0.035"},
        {"NUMBERVALUE(\"1\",\".\",\"\")", "#VALUE!"},
        {"NUMBERVALUE(\"1\",\"\",\",\")", "#VALUE!"},
        {"NUMBERVALUE(\"9%%\")", "0.0009"},
        {"NUMBERVALUE(\" 1 2,3 \")", "123"},
        {"NUMBERVALUE(\"\")", "0"},
        {"NUMBERVALUE(\"1.2,3\")", "#VALUE!"}, // a group behind the point
        {"NUMBERVALUE(\"1.2.3\")", "#VALUE!"},
        {"NUMBERVALUE(\"x\")", "#VALUE!"},
        {"NUMBERVALUE(\"1,5\",\",\")", "1.5"},
    });
}

TEST(NumberFormat, FractionsAndShortGeneral)
{
    FormulaSheet().expect(texts({
        {"TEXT(5.25,\"# ?/?\")", "5 1/4"},
        {"TEXT(0.25,\"# ?/?\")", " 1/4"},
        {"TEXT(5,\"# ?/?\")", "5    "},
        {"TEXT(0,\"# ?/?\")", "0    "},
        {"TEXT(0.01,\"?? ?/?\")", " 0    "},
        {"TEXT(0.3,\"# ?\?/?\?\")", "  3/10"},
        {"TEXT(PI(),\"# ?\?/?\?\")", "3 14/99"},
        {"TEXT(PI(),\"?/?\")", "22/7"},
        {"TEXT(PI(),\"# ??\?/?\??\")", "3  16/113"},
        {"TEXT(-1.5,\"# ?/?\")", "-1 1/2"},
        {"TEXT(2.3,\"# ?/8\")", "2 2/8"},
        {"TEXT(1.96875,\"0 0/16\")", "2     "},
        {"TEXT(1.5,\"0 00/16\")", "1 08/16"},
        {"TEXT(0.999,\"# ?/?\")", "1    "},
        {"LEFT(TEXT(1E300,\"0/0\"),3)", "100"},
        {"TEXT(40607,\"d/m\")", "5/3"},
        {"TEXT(1/3,\"General\")", "0.333333333"},
        {"TEXT(1234567.891234,\"General\")", "1234567.891"},
        {"TEXT(12345678901,\"General\")", "12345678901"},
        {"TEXT(12345678901.5,\"General\")", "12345678902"},
        {"TEXT(-123456789012,\"General\")", "-1.23457E+11"},
        {"TEXT(0.0001234567891,\"General\")", "0.000123457"},
        {"TEXT(0.00001234567,\"General\")", "1.23457E-05"},
        {"TEXT(0.00001,\"General\")", "0.00001"},
        {"TEXT(1E+20,\"General\")", "1E+20"},
        {"TEXT(9999999999.6,\"General\")", "10000000000"},
    }));
}
