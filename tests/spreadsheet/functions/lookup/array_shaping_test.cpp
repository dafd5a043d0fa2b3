#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// A list of people in A (name), B (department) and C (pay), one without a name.
FormulaSheet people()
{
    return FormulaSheet{{"A1", "李"},   {"B1", "销售"}, {"C1", "300"}, {"A2", "王"},
                        {"B2", "财务"}, {"C2", "100"},  {"A3", "赵"},  {"B3", "销售"},
                        {"C3", "200"},  {"B4", "财务"}, {"C4", "x"}};
}

/// Every element of an array, rows parted by ";".
std::string elements(FormulaSheet& sheet, const std::string& formula, int rows, int columns)
{
    std::string text;
    for (int row = 1; row <= rows; ++row) {
        for (int column = 1; column <= columns; ++column) {
            const std::string place = std::to_string(row) + "," + std::to_string(column);
            text += sheet.evaluate("INDEX(" + formula + "," + place + ")");
            text += column < columns ? "," : row < rows ? ";" : "";
        }
    }
    return text;
}

} // namespace

TEST(ArrayShaping, FilterSortUnique)
{
    FormulaSheet sheet = people();
    const struct {
        const char* formula;
        int rows, columns;
        const char* expected;
    } cases[] = {
        {"FILTER(A1:C3,B1:B3=\"销售\")", 2, 3, R"("李","销售",300;"赵","销售",200)"},
        {"FILTER(A1:C2,{1,0,1})", 2, 2, R"("李",300;"王",100)"},
        {"FILTER(C1:C3,C1:C3>150,\"无\")", 2, 1, "300;200"},
        {"FILTER(C1:C3,C1:C3>500,\"无\")", 1, 1, R"("无")"},
        {"FILTER(C1:C3,C1:C3>500)", 1, 1, "#N/A"},
        {"FILTER(C1:C3,{1,0})", 1, 1, "#VALUE!"},
        {"SORT(C1:C4)", 4, 1, R"(100;200;300;"x")"},
        {"SORT(C1:C4,1,-1)", 4, 1, R"("x";300;200;100)"},
        {"SORT(A1:C4,1,-1)", 4, 2, R"("赵","销售";"王","财务";"李","销售";0,"财务")"}, // empty ones last
        {"SORT(B1:C3,{1,2},{-1,1})", 3, 2, R"("销售",200;"销售",300;"财务",100)"},
        {"SORT({3,1,2},1,1,TRUE)", 1, 3, "1,2,3"},
        {"SORT({1;2},2)", 1, 1, "#VALUE!"},
        {"SORT({1;2},1,0)", 1, 1, "#VALUE!"},
        {"SORTBY(A1:A3,C1:C3)", 3, 1, R"("王";"赵";"李")"},
        {"SORTBY(A1:A3,B1:B3,-1,C1:C3,1)", 3, 1, R"("赵";"李";"王")"},
        {"SORTBY(A1:A3,{1,2})", 1, 1, "#VALUE!"},
        {"UNIQUE(B1:B4)", 2, 1, R"("销售";"财务")"},
        {"UNIQUE({1,2,1,3},TRUE,TRUE)", 1, 2, "2,3"},
        {"UNIQUE({1,2;1,3;1,2})", 2, 2, "1,2;1,3"},
        {"UNIQUE({\"a\";\"A\";TRUE;1})", 3, 1, R"("a";TRUE;1)"},
        {"SEQUENCE(2,3,10,-1)", 2, 3, "10,9,8;7,6,5"},
        {"SEQUENCE(3)", 3, 1, "1;2;3"},
        {"SEQUENCE(0)", 1, 1, "#VALUE!"},
        {"SEQUENCE(1048576,16384)", 1, 1, "#VALUE!"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(elements(sheet, c.formula, c.rows, c.columns), c.expected) << c.formula;
    sheet.expect({
        {"ROWS(UNIQUE(B1:B4))", "2"},
        {"COLUMNS(RANDARRAY(2,3))", "3"},
        {"AND(RANDARRAY(20,20,5,7,TRUE)>=5,RANDARRAY(20,20,5,7,TRUE)<=7)", "TRUE"},
        {"SUMPRODUCT(--(MOD(RANDARRAY(9,9,5,7,TRUE),1)=0))", "81"},
        {"AND(RANDARRAY(20,20,5,7)>=5,RANDARRAY(20,20,5,7)<7)", "TRUE"},
        {"SUMPRODUCT(--(RANDARRAY(40,50,5,7,TRUE)=5))>500", "TRUE"}, // a third of 2000
        {"RANDARRAY(2,2,1,0)", "#VALUE!"},
        {"SUM(SORT(A1:C4,1/0))", "#DIV/0!"},
    });
}

TEST(ArrayShaping, FillTheRangeOfAnArrayFormula)
{
    FormulaSheet sheet = people();
    Sheet& cells = sheet.workbook().sheet(1);
    ASSERT_FALSE(cells.setArrayFormula({5, 1, 5, 4}, "SORT(C1:C3)"));
    sheet.workbook().recalculate();
    EXPECT_EQ(valueText(cells.value({5, 1})), "100");
    EXPECT_EQ(valueText(cells.value({5, 3})), "300");
    EXPECT_EQ(valueText(cells.value({5, 4})), "#N/A"); // beyond the array
}

TEST(ExtendedLookup, EitherEndAndNextValue)
{
    FormulaSheet sheet{{"A1", "10"}, {"A2", "30"}, {"A3", "20"}, {"A4", "30"}, {"B1", "a"},
                       {"B2", "b"},  {"B3", "c"},  {"B4", "d"},  {"C2", "x*"}, {"C3", "xyz"}};
    sheet.expect({
        {"XMATCH(30,A1:A4)", "2"},
        {"XMATCH(30,A1:A4,0,-1)", "4"},
        {"XMATCH(25,A1:A4)", "#N/A"},
        {"XMATCH(25,A1:A4,-1)", "3"},
        {"XMATCH(25,A1:A4,1)", "2"},
        {"XMATCH(25,A1:A4,1,-1)", "4"},
        {"XMATCH(5,A1:A4,-1)", "#N/A"},
        {"XMATCH(25,{10,20,30},-1,2)", "2"},
        {"XMATCH(25,{30,20,10},1,-2)", "1"},
        {"XMATCH(\"x*\",C1:C3)", "2"}, // no wildcard unless asked for
        {"XMATCH(\"?y*\",C1:C3,2)", "3"},
        {"XMATCH(\"X*\",C1:C3,2,-1)", "3"},
        {"XMATCH(1,A1:B2)", "#VALUE!"},
        {"XMATCH(1,A1:A4,3)", "#VALUE!"},
        {"XMATCH(1,A1:A4,0,0)", "#VALUE!"},
        {"XMATCH(1/0,A1:A4)", "#DIV/0!"},
        {"XLOOKUP(20,A1:A4,B1:B4)", "\"c\""},
        {"XLOOKUP(21,A1:A4,B1:B4)", "#N/A"},
        {"XLOOKUP(21,A1:A4,B1:B4,\"无\")", "\"无\""},
        {"XLOOKUP(21,A1:A4,B1:B4,,-1)", "\"c\""},
        {"XLOOKUP(\"b\",B1:B4,A1:A4)", "30"},
        {"XLOOKUP(2,{1,2,3},{7,8,9})", "8"},
        {"SUM(XLOOKUP(20,A1:A4,A1:C4))", "20"}, // the whole row
        {"SUM(XLOOKUP(2,{1;2;3},{1,10;2,20;3,30}))", "22"},
        {"SUM(XLOOKUP(2,{1,2,3},{1,2,3;10,20,30}))", "22"},
        {"ROW(XLOOKUP(30,A1:A4,B1:B4,,0,-1))", "4"}, // a reference
        {"XLOOKUP(20,A1:A4,B1:B3)", "#VALUE!"},
        {"SUMPRODUCT(XMATCH({30;20},A1:A4))", "5"},
    });
}

TEST(Lookup, TextsThatNameReferences)
{
    FormulaSheet sheet{{"A1", "5"}, {"A2", "7"}, {"B1", "=A1+A2"}, {"D1", "税率"}};
    ASSERT_FALSE(sheet.workbook().defineName("税率", "Sheet1!$A$2"));
    ASSERT_FALSE(sheet.workbook().defineName("各行", "OFFSET(Sheet1!$A$1,0,0,2,1)"));
    ASSERT_FALSE(sheet.workbook().defineName("环", "INDIRECT(\"环\")"));
    ASSERT_FALSE(sheet.workbook().defineName("常数", "12"));
    sheet.expect({
        {"INDIRECT(D1)", "7"},
        {"SUM(INDIRECT(\"各行\"))", "12"},
        {"INDIRECT(\"环\")", "#REF!"},
        {"INDIRECT(\"常数\")", "#REF!"},
        {"INDIRECT(\"无此名\")", "#REF!"},
        {"INDIRECT(\"Sheet9!A1\")", "#REF!"},
        {"HYPERLINK(\"http://a\",A1)", "5"},
        {"HYPERLINK(\"http://a\")", "\"http://a\""},
        {"FORMULATEXT(B1)", "\"=A1+A2\""},
        {"FORMULATEXT(A1)", "#N/A"},
        {"FORMULATEXT(5)", "#VALUE!"},
        {"GETPIVOTDATA(\"额\",A1)", "#REF!"},
        {"RTD(\"a\",\"\",\"b\")", "#N/A"},
    });
}

TEST(Lookup, WholeColumnsOfUnequalDepth)
{
    FormulaSheet sheet{{"A1", "x"}, {"B1", "1"}, {"A3", "x"}, {"B3", "4"}, {"B9", "9"}};
    sheet.expect({
        {"SUMPRODUCT((A:A=\"x\")*B:B)", "5"},
        {"SUMPRODUCT((A:A=\"\")*B:B)", "9"},
        {"SUMPRODUCT(--(1:1=\"x\"))", "1"},
    });
}
