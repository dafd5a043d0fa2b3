#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// 1 to 9 row by row in A1:C3, numbers of a row and a column in D1 and D2, items beside them.
struct BlockSheet : FormulaSheet {
    BlockSheet()
        : FormulaSheet{{"A1", "1"},  {"B1", "2"},  {"C1", "3"}, {"A2", "4"},   {"B2", "5"},  {"C2", "6"},
                       {"A3", "7"},  {"B3", "8"},  {"C3", "9"}, {"D1", "2"},   {"D2", "丙"}, {"E1", "甲"},
                       {"E2", "乙"}, {"E3", "丙"}, {"F1", "3"}, {"D3", "TRUE"}}
    {
    }
};

/// Shown row by row.
std::string arrayText(FormulaSheet& sheet, const CellRange& cells, const std::string& formula)
{
    Sheet& first = sheet.workbook().sheet(1);
    EXPECT_FALSE(first.setArrayFormula(cells, formula)) << formula;
    sheet.workbook().recalculate();
    std::string text;
    for (int row = cells.top; row <= cells.bottom; ++row) {
        for (int column = cells.left; column <= cells.right; ++column)
            text += valueText(first.value({column, row})) + (column < cells.right ? " " : "");
        text += row < cells.bottom ? "|" : "";
    }
    first.clearContents(cells);
    return text;
}

} // namespace

TEST(ArrayContext, ASingleCellIsAValue)
{
    BlockSheet sheet;
    sheet.expect({
        {"SUMPRODUCT(INDEX(A1:C3,D1,0))", "15"},
        {"SUMPRODUCT(INDEX(A1:C3,0,MATCH(D2,E1:E3,0)))", "18"},
        {"SUMPRODUCT(INDEX(A1:C3,D1,0)*INDEX(A1:C3,F1,0))", "122"},
        {"SUMPRODUCT(OFFSET(A1,D1,0,1,D1))", "15"},
        {"SUMPRODUCT(SMALL(A1:C3,ROW(INDIRECT(\"1:\"&D1))))", "3"},
        {"SUMPRODUCT(ROW(INDIRECT(\"1:\"&D1))*10)", "30"},
        {"SUMPRODUCT((A1:A3>D1)*A1:A3)", "11"},
        {"SUMPRODUCT(INDIRECT(\"R\"&D1&\"C1:R3C\"&D1,FALSE))", "24"},
        {"SUMPRODUCT(TREND(A1:A3,B1:B3,B1:B3,D3))", "12"},
        {"SUMPRODUCT(GROWTH({1,2,4},{1,2,3},F1+1))", "8"},
        {"SUMPRODUCT(LARGE(A1:C3,D1)*A1:A3)", "96"},
        {"SUMPRODUCT(IF(D3,A1:A3,B1:B3))", "12"},
        {"SUMPRODUCT(CHOOSE(D1,A1:A3,B1:B3))", "15"},
        {"SUMPRODUCT(--(D2=E1:E3),C1:C3)", "9"},
    });
    EXPECT_EQ(arrayText(sheet, {7, 1, 9, 1}, "=INDEX(A1:C3,D1,0)"), "4 5 6");
    EXPECT_EQ(arrayText(sheet, {7, 1, 7, 2}, "=OFFSET(A1,D1-1,D1,2,1)*D1"), "12|18");
    EXPECT_EQ(arrayText(sheet, {7, 2, 8, 2}, "=LINEST(A1:A3,B1:B3,D3)"), "1 -1");
    EXPECT_EQ(arrayText(sheet, {7, 10, 8, 11}, "=ROW()*10+COLUMN()"), "107 108|117 118");
    EXPECT_EQ(arrayText(sheet, {7, 10, 8, 10}, "=COLUMN()"), "7 8");
}

TEST(ArrayContext, ArraysOfReferences)
{
    BlockSheet sheet;
    sheet.expect({
        {"SUMPRODUCT(SUMIF(OFFSET(A1:A3,0,{0,2}),\">3\"))", "26"},
        {"SUM(COUNTIF(INDIRECT({\"A1:A3\",\"B1:B3\"}),\">4\"))", "3"},
        {"SUMPRODUCT(SUBTOTAL(9,OFFSET(A1,ROW(A1:A3)-1,0,1,3))*(E1:E3=D2))", "24"},
        {"SUMPRODUCT(SUBTOTAL({4,5},OFFSET(A1,{1;2},0,1,3)))", "26"},
        {"SUM(SUMIFS(OFFSET(A1:A3,0,{0;1}),E1:E3,\"乙\"))", "9"},
        {"SUM(COUNTBLANK(OFFSET(A1:A4,0,{0,1})))", "2"},
        {"SUM(MAXIFS(OFFSET(A1:A3,0,{0,1}),E1:E3,\"<>丙\"))", "9"},
        {"SUM(SUMIF(INDIRECT({\"E1:E3\",\"E2:E3\"}),\"乙\",INDIRECT({\"A1:A3\",\"B1:B2\"})))", "6"},
        {"SUM(N(OFFSET(A1,{0,2},{0,2})))", "10"},
        {"SUM(OFFSET(A1,{0,2},0))", "8"}, // single cells are their values
        {"SUM(OFFSET(A1,{0,2},0)*10)", "80"},
        {"SUMPRODUCT(OFFSET(A1,{0,1},0,2,1))", "#VALUE!"}, // several cells have none
        {"SUM(ROW(INDIRECT({\"A5\",\"A9\"})))", "14"},
        {"SUM(SUMIF(INDIRECT({\"A1:A3\",\"no such\"}),\">0\"))", "#REF!"},
        {"INDEX(COUNTIF(OFFSET(A1:A3,0,{0,1}),\">4\"),2)", "2"},
        {"SUM(RANK(5,OFFSET(A1:A3,0,{1,2})))", "#N/A"},
        {"INDEX(RANK(5,OFFSET(A1:A3,0,{1,2})),1)", "2"},
    });
}

TEST(ArrayContext, ConditionsThatComeToArrays)
{
    BlockSheet sheet;
    sheet.expect({
        {"SUM(IF(FREQUENCY(A1:A3,{3,6})>0,1))", "3"},
        {"SUM(IF(TRANSPOSE(A1:A3)>1,TRANSPOSE(A1:A3)))", "11"},
        {"SUM(IF(TRANSPOSE(A1:A3)>1,IF(TRANSPOSE(A1:A3)>5,100,10),1))", "111"},
        {"SUM(IFS(TRANSPOSE(A1:A3)>5,1,TRANSPOSE(A1:A3)>2,10,TRUE,100))", "111"},
        {"SUM(SWITCH(TRANSPOSE(A1:A3),1,100,4,10,1))", "111"},
        {"SUM(SWITCH(4,TRANSPOSE(A1:A3),10,1))", "12"},
        {"SUM(CHOOSE(TRANSPOSE({1;2;1}),A1,A2))", "6"},
        {"SUM(IFERROR(1/TRANSPOSE({1;0;0.5}),7))", "10"},
        {"IF(INDEX({1,0},2),1/0,\"n\")", "\"n\""},
        {"IFS(1=1,\"a\",1/0,2)", "\"a\""},
        {"IFS(FALSE,1,FALSE)", "#VALUE!"},
        {"SWITCH(3,1,\"a\",3,\"b\",1/0,\"c\")&SWITCH(9,1,2,\"z\")", "\"bz\""},
    });
}

TEST(ArrayContext, ABlockMeetsTheCellByRowAndColumn)
{
    BlockSheet sheet;
    demand(sheet.workbook().addSheet("另"));
    Sheet& other = sheet.workbook().sheet(2);
    for (const auto& [cell, formula, expected] : {std::tuple{"B3", "=Sheet1!A1:C3", "8"},
                                                  {"C2", "=Sheet1!A1:C3*10", "60"},
                                                  {"D2", "=Sheet1!A1:C3", "#VALUE!"},
                                                  {"B4", "=ABS(Sheet1!A1:C3)", "#VALUE!"},
                                                  {"A1", "=-Sheet1!A1:C3", "-1"}}) {
        EXPECT_FALSE(other.setFormula(*parseCellName(cell), formula)) << formula;
        sheet.workbook().recalculate();
        EXPECT_EQ(valueText(other.value(*parseCellName(cell))), expected) << formula << " in " << cell;
    }
}

TEST(ArrayContext, NamesMayBeUnions)
{
    BlockSheet sheet;
    EXPECT_FALSE(sheet.workbook().defineName("Corners", "=Sheet1!$A$1,Sheet1!$C$1:$C$3"));
    sheet.expect({{"SUM(Corners)", "19"}, {"AREAS(Corners)", "2"}, {"COUNT(Corners,1)", "5"}});
    EXPECT_TRUE(sheet.workbook().sheet(1).setFormula({8, 1}, "=A1,C1")); // in a cell it is a slip
}

TEST(ArrayContext, WholeRowsReachAsFarAsAnythingIsUsed)
{
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    ASSERT_FALSE(sheet.setFormula({1, 2}, "SUMPRODUCT(--(1:1=\"\"))"));
    workbook.recalculate();
    EXPECT_EQ(valueText(sheet.value({1, 2})), "1");
}
