#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(Lookup, TablesAndVectors)
{
    FormulaSheet sheet{{"A1", "1"},    {"B1", "one"}, {"A2", "3"},          {"B2", "three"}, {"A3", "5"},
                       {"B3", "five"}, {"A4", "5"},   {"B4", "five again"}, {"A5", "b"},     {"B5", "text"},
                       {"A6", "TRUE"}, {"D1", "k1"},  {"E1", "K2"},         {"F1", "z~"},    {"D2", "10"},
                       {"E2", "20"},   {"F2", "30"}};
    sheet.expect({
        {"VLOOKUP(3,A1:B6,2,FALSE)", "\"three\""},
        {"VLOOKUP(5,A1:B6,2,FALSE)", "\"five\""}, // the first of equal ones
        {"VLOOKUP(5,A1:B6,2)", "\"five again\""}, // the last of equal ones
        {"VLOOKUP(4,A1:B6,2)", "\"three\""},
        {"VLOOKUP(0,A1:B6,2)", "#N/A"},
        {"VLOOKUP(99,A1:B6,2)", "\"five again\""}, // texts and truth values are no numbers
        {"VLOOKUP(\"B\",A1:B6,2,0)", "\"text\""},
        {"VLOOKUP(\"3\",A1:B6,2,0)", "#N/A"},
        {"VLOOKUP(TRUE,A1:B6,1,0)", "TRUE"},
        {"VLOOKUP(3,A1:B6,0,0)", "#VALUE!"},
        {"VLOOKUP(3,A1:B6,3,0)", "#REF!"},
        {"VLOOKUP(NA(),A1:B6,2,0)", "#N/A"},
        {"VLOOKUP(3,A:B,2,)", "\"three\""},       // left empty is FALSE
        {"MIN(9,VLOOKUP(3,A1:C6,3,FALSE))", "0"}, // an empty cell is handed on as a value
        {"COUNT(VLOOKUP(3,A1:C6,3,FALSE))", "1"},
        {"MIN(9,LOOKUP(3,A1:A4,C1:C4))", "0"},
        {"ISBLANK(VLOOKUP(3,A1:C6,3,FALSE))", "TRUE"},
        {"VLOOKUP(Z1,{0,7},2)", "#N/A"},
        {"VLOOKUP(Z1,{0,7},3,0)", "#REF!"},
        {"HLOOKUP(Z1,{0;7},2,FALSE)", "#N/A"},
        {"LOOKUP(Z1,{0,1},{7,8})", "#N/A"},
        {"VLOOKUP(2,{1,\"x\";2,\"y\"},2,0)", "\"y\""},
        {"HLOOKUP(\"k2\",D1:F2,2,FALSE)", "20"},
        {"HLOOKUP(\"?2\",D1:F2,2,FALSE)", "20"},
        {"HLOOKUP(\"z~~\",D1:F2,2,FALSE)", "30"},
        {"LOOKUP(4,A1:A4,B1:B4)", "\"three\""},
        {"LOOKUP(4,A1:B4)", "\"three\""},
        {"LOOKUP(\"k2\",D1:F2)", "20"},
        {"LOOKUP(2,1/(A1:A4=3),B1:B4)", "\"three\""},
        {"LOOKUP(0,A1:A4,B1:B4)", "#N/A"},
        {"MATCH(4,A1:A4)", "2"},
        {"MATCH(5,A1:A4,0)", "3"},
        {"MATCH(\"z~~\",D1:F1,0)", "3"},
        {"MATCH(15,{30,20,10},-1)", "2"},
        {"MATCH(40,{30,20,10},-1)", "#N/A"},
        {"MATCH(3,A1:B4,0)", "#N/A"},
        {"INDEX(A1:B4,3,2)", "\"five\""},
        {"INDEX(D2:F2,2)", "20"},
        {"SUM(INDEX(A1:B4,0,1))", "14"},
        {"SUM(INDEX(D1:F2,2,0))", "60"},
        {"SUM(A1:INDEX(A1:A4,2))", "4"},
        {"INDEX((A1:B2,D1:F2),2,3,2)", "30"},
        {"INDEX(A1:B4,5,1)", "#REF!"},
        {"INDEX(A1:B4,-1,1)", "#VALUE!"},
        {"INDEX({1,2;3,4},2,1)", "3"},
        {"SUM(INDEX({1,2;3,4},0,2))", "6"},
        {"CHOOSE(2.9,\"a\",\"b\",1/0)", "\"b\""},
        {"CHOOSE(0,1)", "#VALUE!"},
        {"SUM(CHOOSE(2,D2:E2,D2:F2))", "60"},
    });
}

TEST(Lookup, References)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "4"}, {"B1", "8"}, {"B2", "16"}, {"C1", "'A2"}};
    ASSERT_FALSE(sheet.workbook().addSheet("2月 调整"));
    sheet.workbook().sheet(2).setNumber({1, 1}, 100);
    sheet.expect({
        {"ROW(B7)", "7"},
        {"ROW()", "99"},
        {"COLUMN()", "702"},
        {"SUM(ROW(A2:A4))", "2"},
        {"SUMPRODUCT(ROW(A2:A4))", "9"},
        {"ROWS(A2:C9)", "8"},
        {"COLUMNS(A2:C9)", "3"},
        {"COLUMNS({1,2;3,4})", "2"},
        {"AREAS((A1:B2,C3))", "2"},
        {"OFFSET(A1,1,1)", "16"},
        {"SUM(OFFSET(A1,0,0,3,1))", "7"},
        {"SUM(OFFSET(A3,0,0,-2,1))", "6"},
        {"OFFSET(A1,-1,0)", "#REF!"},
        {"SUM(OFFSET(A1,0,0,0,1))", "#REF!"},
        {"INDIRECT(\"A3\")", "4"},
        {"INDIRECT(C1)", "2"},
        {"SUM(INDIRECT(\"$A$1:B2\"))", "27"},
        {"SUM(INDIRECT(\"A:A\"))", "7"},
        {"INDIRECT(\"'2月 调整'!A1\")", "100"},
        {"INDIRECT(\"没有!A1\")", "#REF!"},
        {"INDIRECT(\"R2C1\",FALSE)", "2"},
        {"INDIRECT(\"xyz\")", "#REF!"},
        {"ADDRESS(3,2)", "\"$B$3\""},
        {"ADDRESS(3,2,4)", "\"B3\""},
        {"ADDRESS(3,28,3,TRUE,\"2月 调整\")", "\"'2月 调整'!$AB3\""},
        {"ADDRESS(3,2,2,FALSE)", "\"R3C[2]\""},
        {"ADDRESS(0,1)", "#VALUE!"},
        {"SUMPRODUCT(TRANSPOSE({1,2,3})*{1;10;100})", "321"},
        {"SUM(IF(FALSE,A1:A3,B1:B2))", "24"},
    });
}
