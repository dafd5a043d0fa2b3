#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(LookupEdges, PlacesAmongMixedKinds)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "5"}, {"A3", "3"}, {"B1", "a"}, {"B2", "b"}, {"B3", "c"}};
    sheet.expect({
        {"MATCH(2,{1,2,2,2,3},0)", "2"},
        {"MATCH(2,{1,2,2,2,3},1)", "4"},
        {"MATCH(2,{3,1,2},0.9)", "3"},   // the kind is a whole number
        {"MATCH(6,{8,6,6,9,1},1)", "3"}, // halving meets an equal one: its equal neighbours, and no further
        {"MATCH(\"m\",{\"x\",\"b\",\"m\",\"a\",\"b\"})", "3"},
        {"LOOKUP(4,{9,1,4,2,3},{1,2,3,4,5})", "3"},
        {"HLOOKUP(4,{9,1,4,2,3;1,2,3,4,5},2)", "3"},
        {"MATCH(6,{5,6,\"x\",6,7})", "4"}, // in order but for the text
        {"MATCH(2,{3,2,2,1},-1)", "2"},
        {"MATCH(2.5,{1,\"x\",2,3})", "3"}, // texts do not count among numbers
        {"MATCH(\"b\",{1,\"a\",2,\"c\"})", "2"},
        {"MATCH(25,{\"z\",30,\"x\",20},-1)", "2"},
        {"MATCH(TRUE,{1,\"a\",FALSE,TRUE})", "4"},
        {"MATCH(\"x\",{1,2,3})", "#N/A"},
        {"MATCH(1,{\"1\",TRUE,1},0)", "3"},
        {"MATCH(0,D1:D9,0)", "#N/A"},                  // an empty cell is no 0
        {"MATCH(D1,{1,0},0)&MATCH(,{1,0},0)", "#N/A"}, // nor anything to look for
        {"MATCH(,{1,0},0)", "2"},
        {"VLOOKUP(D1,{0,\"zero\"},2,0)", "#N/A"},
        {"VLOOKUP(,{0,\"zero\"},2,0)", "\"zero\""},
        {"VLOOKUP(1/0,A1:B3,3)", "#REF!"}, // the number of the column is looked at first
        {"VLOOKUP(NA(),A1:B3,0)", "#VALUE!"},
        {"HLOOKUP(NA(),A1:B3,1/0)", "#DIV/0!"},
        {"VLOOKUP(NA(),A1:B3,2)", "#N/A"},
        {"MATCH(\"\",D1:D9,0)", "#N/A"},
        {"MATCH(\"a*\",{\"b\",\"AB\",\"a\"},0)", "2"},
        {"MATCH(\"a~*\",{\"ab\",\"a*\"},0)", "2"},
        {"MATCH(\"?\",{\"\",\"ab\",\"x\"},0)", "3"},
        {"MATCH(\"*\",{1,\"t\"},0)", "2"},
        {"MATCH(\"~?\",{\"x\",\"?\"},0)", "2"},
        {"MATCH(\"a~b\",{\"a~b\",\"ab\"},0)", "2"}, // "~" lets any character stand for itself
        {"MATCH(\"a~~b\",{\"ab\",\"a~b\"},0)", "2"},
        {"MATCH(\"a~\",{\"a\",\"a~\"},0)", "2"},
        {"MATCH(\"*c\",{\"abcd\",\"abc\"},0)", "2"},
        {"VLOOKUP(4,A1:B3,2)", "\"a\""}, // halving meets the 5 first
        {"VLOOKUP(9,A1:B3,2)", "\"c\""},
        {"VLOOKUP(\"c\",B1:B3,1,FALSE)", "\"c\""},
        {"HLOOKUP(25,{10,20,30;\"a\",\"b\",\"c\"},2)", "\"b\""},
        {"HLOOKUP(5,{10,20,30;\"a\",\"b\",\"c\"},2)", "#N/A"},
        {"HLOOKUP(10,{10,20,30;\"a\",\"b\",\"c\"},3)", "#REF!"},
        {"LOOKUP(3,{1,2;3,4})", "4"}, // a square is searched down
        {"LOOKUP(\"b\",{\"a\",\"b\",\"c\";1,2,3})", "2"},
        {"LOOKUP(5,{1;4;6},{10,20,30})", "20"},
        {"LOOKUP(9.99E+307,A:A)", "3"},
    });
}

TEST(LookupEdges, PartsAndMovedReferences)
{
    FormulaSheet sheet{{"A1", "1"},  {"B1", "2"},  {"C1", "4"},   {"A2", "8"},  {"B2", "16"},
                       {"C2", "32"}, {"A3", "64"}, {"B3", "128"}, {"C3", "256"}};
    sheet.expect({
        {"SUM(INDEX(A1:C3,0,2))", "146"},
        {"SUM(INDEX(A1:C3,2,0))", "56"},
        {"SUM(INDEX(A1:C3,0,0))", "511"},
        {"SUM(INDEX(A:C,0,2))", "146"},
        {"INDEX(A:A,3)", "64"},
        {"INDEX({1,2,3},4)", "#REF!"},
        {"SUM(INDEX(A1:C3,2,2):C3)", "432"},
        {"SUM(OFFSET(C3,0,0,-3,-3))", "511"},
        {"SUM(OFFSET(A1:B2,1,1))", "432"}, // keeps the size
        {"ROWS(OFFSET(A1:B2,0,0,5))&COLUMNS(OFFSET(A1:B2,0,0,5))", "\"52\""},
        {"OFFSET(A1,0,-1)", "#REF!"},
        {"OFFSET(A1,0,0,-2)", "#REF!"},
        {"OFFSET(A1,1048576,0)", "#REF!"},
        {"OFFSET(A1,2147483647,0)", "#REF!"},
        {"OFFSET(A1,1.9,0)", "8"},
        {"OFFSET(A1,\"x\",0)", "#VALUE!"},
        {"INDEX(TRANSPOSE({1,2,3;4,5,6}),3,1)", "3"},
        {"INDEX(TRANSPOSE({1,2,3;4,5,6}),1,2)", "4"},
        {"ROWS(TRANSPOSE({1,2,3;4,5,6}))", "3"},
        {"SUMPRODUCT(TRANSPOSE({1,2,4})*A1:A3)", "273"}, // 1·1 + 2·8 + 4·64
    });
}

TEST(LookupEdges, AddressesAsText)
{
    FormulaSheet sheet{{"A1", "7"}, {"A2", "9"}};
    ASSERT_FALSE(sheet.workbook().addSheet("It's"));
    sheet.workbook().sheet(2).setNumber({1, 1}, 100);
    sheet.expect({
        {"INDIRECT(\"'It''s'!A1\")", "100"},
        {"SUM(INDIRECT(\"1:2\"))", "16"},
        {"SUM(INDIRECT(\"1.5:2\"))", "#REF!"},
        {"INDIRECT(\"\")", "#REF!"},
        {"INDIRECT(\"A1:\")", "#REF!"},
        {"INDIRECT(\"A0\")", "#REF!"},
        {"INDIRECT(\"A1048577\")", "#REF!"},
        {"INDIRECT(\"XFE1\")", "#REF!"},
        {"INDIRECT(\"!A1\")", "#REF!"},
        {"INDIRECT(\"R1C1\")", "#REF!"},
        {"INDIRECT(\"R1C1\",)", "7"}, // left empty is FALSE
        {"INDIRECT(\"R[-97]C[-701]\",FALSE)", "9"},
        {"INDIRECT(\"R[-99]C1\",FALSE)", "#REF!"},
        {"INDIRECT(\"R[1C1\",FALSE)", "#REF!"},
        {"ROW(INDIRECT(\"R1048576C1\",FALSE))", "1048576"},
        {"INDIRECT(NA())", "#N/A"},
        {"ADDRESS(1,16384)", "\"$XFD$1\""},
        {"ADDRESS(1,16385)", "#VALUE!"},
        {"ADDRESS(1048577,1)", "#VALUE!"},
        {"ADDRESS(5,2,5)&ADDRESS(5,2,7)&ADDRESS(5,2,8)", "\"$B$5$B5B5\""}, // 1 to 4 once more
        {"ADDRESS(1,1,9)", "#VALUE!"},
        {"ADDRESS(5,2,6,FALSE)", "\"R5C[2]\""},
        {"ADDRESS(3,2,1,FALSE)", "\"R3C2\""},
        {"ADDRESS(3,2,3,FALSE)", "\"R[3]C2\""},
        {"ADDRESS(3,2,4,FALSE)", "\"R[3]C[2]\""},
        {"ADDRESS(1,1,,,\"Data\")", "\"Data!$A$1\""}, // letters unless told otherwise
        {"ADDRESS(1,1,1,TRUE,\"It's\")", "\"'It''s'!$A$1\""},
    });
}
