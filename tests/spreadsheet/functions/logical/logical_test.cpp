#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(Logical, TruthValuesInRanges)
{
    FormulaSheet sheet{{"A1", "TRUE"},  {"A2", "x"},     {"A4", "0"},
                       {"A5", "FALSE"}, {"B1", "'TRUE"}, {"C1", "#N/A"}};
    sheet.expect({
        {"AND(A1:A3)", "TRUE"}, // texts and empty cells do not count
        {"AND(A1:A4)", "FALSE"},
        {"OR(A1:A5)", "TRUE"},
        {"OR(A2:A5)", "FALSE"},
        {"XOR(A1:A5)", "TRUE"},
        {"XOR(A1,A1)", "FALSE"},
        {"XOR(1,2,3)", "TRUE"},
        {"AND(A2:A3)", "#VALUE!"},
        {"OR(A3)", "#VALUE!"},
        {"XOR(B1)", "#VALUE!"},
        {"AND(B1,A1)", "TRUE"},
        {"AND(\"true\",1)", "TRUE"},
        {"OR(\"x\",TRUE)", "TRUE"},
        {"AND(TRUE,)", "FALSE"},
        {"AND(\"\",5)", "TRUE"},
        {"OR(\"no\",\"false\")", "FALSE"},
        {"XOR(\"x\",\"\")", "#VALUE!"},
        {"AND(A1,C1)", "#N/A"},
        {"AND(FALSE,1/0)", "#DIV/0!"},
        {"OR(A1:C1)", "#N/A"},
        {"OR({FALSE,0,2})", "TRUE"},
        {"NOT(\"false\")", "TRUE"},
        {"NOT(0.1)", "FALSE"},
        {"NOT(A3)", "TRUE"},
        {"NOT(\"x\")", "#VALUE!"},
        {"NOT(C1)", "#N/A"},
    });
}

TEST(Logical, Choices)
{
    FormulaSheet sheet{{"A1", "7"}};
    sheet.expect({
        {"IF(A2,1)", "FALSE"},
        {"IF(TRUE,,2)", "0"}, // left empty between commas
        {"IF(FALSE,1,)", "0"},
        {"IF(TRUE,5,1/0)", "5"},
        {"IF(FALSE,1/0,5)", "5"},
        {"IF(NA(),1,2)", "#N/A"},
        {"IF(TRUE,A2)", "0"},
        {"SUM(IF(TRUE,A1:A2,0))", "7"},
        {"IFERROR(1/0,\"e\")", "\"e\""},
        {"IFERROR(1/0,)", "0"},
        {"IFERROR(5,1/0)", "5"},
        {"IFERROR(1/0,NA())", "#N/A"},
        {"IFNA(1/0,1)", "#DIV/0!"},
        {"IFNA(NA(),1)", "1"},
        {"IFS(FALSE,1,FALSE,2)", "#N/A"},
        {"IFS(FALSE,1,3,2)", "2"},
        {"IFS(TRUE,1,1/0,2)", "1"},
        {"IFS(1/0,1,TRUE,2)", "#DIV/0!"},
        {"IFS(\"x\",1)", "#VALUE!"},
        {"SWITCH(2,1,\"a\",2,\"b\")", "\"b\""},
        {"SWITCH(3,1,\"a\")", "#N/A"},
        {"SWITCH(3,1,\"a\",\"z\")", "\"z\""},
        {"SWITCH(\"B\",\"b\",1)", "1"},
        {"SWITCH(1,\"1\",\"text\",TRUE,\"truth\",1,\"number\")", "\"number\""},
        {"SWITCH(A2,0,\"zero\")", "\"zero\""},
        {"SWITCH(NA(),1,2,3)", "#N/A"},
        {"SWITCH(1,1/0,2,1,3)", "#DIV/0!"},
        {"SWITCH(1,1,2,1/0,3)", "2"},
    });
}

TEST(Logical, ArrayConstantsChooseByElementInOrdinaryFormulas)
{
    FormulaSheet sheet{{"A1", "10"}, {"A2", "20"}, {"B1", "甲"}, {"B2", "乙"}};
    sheet.expect({
        {"VLOOKUP(\"乙\",IF({1,0},B1:B2,A1:A2),2,FALSE)", "20"}, // columns change places
        {"VLOOKUP(\"乙\",CHOOSE({1,2},B1:B2,A1:A2),2,FALSE)", "20"},
        {"SUM(IF({1,0,1},1,5))", "7"},
        {"SUM(CHOOSE({1,2},A1,A2))", "30"},
        {"SUM(IFERROR({1,#N/A},5))+SUM(IFNA({#N/A,2},5))", "13"},
        {"IF({TRUE,FALSE},1,2)", "1"},
        {"IF({FALSE},1)", "FALSE"},
        {"IF(SUM({1,2})=3,\"y\",1/0)", "\"y\""},
        {"IF(TRUE,SUM({1,2}),1/0)", "3"},
    });
}

TEST(Logical, ArrayFormulasChooseByElement)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "3"}};
    Sheet& cells = sheet.workbook().sheet(1);
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
        {"=IF(A1:A3>1,\"big\",A1:A3*10)", {"10", "\"big\"", "\"big\""}},
        {"=IF({TRUE;FALSE;TRUE},1,1/0)", {"1", "#DIV/0!", "1"}},
        {"=SUM(IF(A1:A3>1,A1:A3))", {"5", "5", "5"}},
        {"=IF(TRUE,A1:A3)", {"1", "2", "3"}},
        {"=IFERROR(6/(A1:A3-2),-1)", {"-6", "-1", "6"}},
        {"=IF(A1:A2=2,\"two\",\"other\")", {"\"other\"", "\"two\"", "#N/A"}}, // one row too few
        {"=NOT(A1:A3>1)", {"TRUE", "FALSE", "FALSE"}},
    };
    for (const auto& [formula, expected] : cases) {
        ASSERT_FALSE(cells.setArrayFormula({3, 1, 3, 3}, formula)) << formula;
        sheet.workbook().recalculate();
        for (int row = 1; row <= 3; ++row)
            EXPECT_EQ(valueText(cells.value({3, row})), expected[static_cast<std::size_t>(row - 1)])
                << formula << " row " << row;
    }
}
