#include "tests/spreadsheet/functions/FormulaSheet.h"

#include <chrono>

using namespace spreadsheet;

namespace {

/// The text of a formula in B2, which has to be accepted.
std::string textBack(Workbook& workbook, const std::string& text)
{
    Sheet& sheet = workbook.sheet(1);
    const auto problem = sheet.setFormula({2, 2}, text);
    return problem ? "refused: " + problem.reason() : sheet.formula({2, 2});
}

std::string repeated(const std::string& part, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

std::string valuesOf(const Sheet& sheet, const CellRange& range)
{
    std::string text;
    for (int row = range.top; row <= range.bottom; ++row) {
        for (int column = range.left; column <= range.right; ++column)
            text += valueText(sheet.value({column, row})) + (column < range.right ? " " : "");
        text += row < range.bottom ? "; " : "";
    }
    return text;
}

} // namespace

TEST(FormulaText, ComesBackLetterByLetter)
{
    Workbook workbook;
    ASSERT_FALSE(workbook.addSheet("my sheet"));
    ASSERT_FALSE(workbook.addSheet("it's"));
    ASSERT_FALSE(workbook.addSheet("二月"));
    const char* const texts[] = {
        "sUm( a1 , $A1,A$1, $a$1 )",
        "1 +  2",
        "\"a \"\"b\"\" c\"&\"\"",
        "SUM(D:D)+SUM($d:E)+SUM(12:9)+SUM($12:$19)",
        "SUM(B4:A3)",
        "'my sheet'!A1+'MY sheet'!$b$2",
        "'it''s'!C3*二月!c3",
        "SUM(Sheet1:'it''s'!D4)",
        "SUM('Sheet1:二月'!A9:B10)",
        "SUM({1,-2; \"x\",TRUE ;#N/A,3.50})",
        "IF(TRUE,,false)",
        "1.50e3+.5+007%",
        "Acct( \"1001:1002\" , \"\" , C1 )",
        "(((A1)))--A1",
        "#N/A+#ref!",
        "未定义的名称+1",
        "SUM((D1:D9 C3:E3,F1))",
    };
    for (const char* text : texts) {
        EXPECT_EQ(textBack(workbook, text), text);
        EXPECT_EQ(textBack(workbook, '=' + std::string(text)), text) << "with =";
    }
}

TEST(FormulaText, OperatorsBindAndYield)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "3"}, {"B1", "10"}, {"B2", "20"}, {"B3", "30"}};
    sheet.expect({
        {"-2^2", "4"},
        {"0-2^2", "-4"},
        {"2^3^2", "64"},
        {"2^-1", "0.5"},
        {"10%*50", "5"},
        {"50+10%", "50.1"},
        {"200%%", "0.02"},
        {"-10%", "-0.1"},
        {"1+2&3", "\"33\""},
        {"1&2+3", "\"15\""},
        {"1<2=TRUE", "TRUE"},
        {"3>2>1", "TRUE"},
        {"\"1\"=1", "FALSE"},
        {"\"abc\"=\"ABC\"", "TRUE"},
        {"1&1=\"11\"", "TRUE"},
        {"2+3*4", "14"},
        {"(2+3)*4", "20"},
        {"10-4-3", "3"},
        {"64/4/2", "8"},
        {"--3", "3"},
        {"-+-3", "3"},
        {"5--3", "8"},
        {"\"4\"*TRUE", "4"},
        {"C9+1", "1"},
        {"C9&\"\"", "\"\""},
        {"\"x\"+1", "#VALUE!"},
        {"1/0", "#DIV/0!"},
        {"#N/A+1/0", "#N/A"},
        {"1/0&#N/A", "#DIV/0!"},
        {"SUM((A1,B2:B3,A1))", "52"},
        {"SUM(A1:B2 B1:B3)", "30"},
        {"A1:B3 A2:B2 B1:B9", "20"},
        {"SUM(A1:A2 B1:B2)", "#NULL!"},
        {"SUM(A1:B2:B3)", "66"},
        {"SUM(OFFSET(A1,1,0):B3)", "55"},
        {"SUM(B3:A2)", "55"},
        {"SUM(IF(TRUE,A1,0):INDEX(A1:B3,2,2))", "33"},
    });
}

TEST(FormulaText, RefusedTextsLeaveTheCellAsItIs)
{
    struct Case {
        const char* what;
        std::string text;
        std::size_t first, last; ///< where the position may lie
    };
    const std::string minuses = repeated("-", 5000) + "1";
    const std::string brackets = repeated("(", 10'000) + "1" + repeated(")", 10'000);
    const Case cases[] = {
        {"unclosed bracket", "=1+(2*3", 3, 3},
        {"unclosed call", "SUM(1,2", 0, 3},
        {"unclosed quote", "=1&\"ab", 3, 6},
        {"unclosed sheet name", "1+'abc", 2, 6},
        {"unclosed array", "1+{1,2", 2, 6},
        {"bracket too many", "=1+2)", 4, 4},
        {"no argument", "=SUM()", 1, 5},
        {"too few arguments", "1+ROUND(1)", 2, 9},
        {"too many arguments", "=2*ABS(1,2)", 3, 10},
        {"one argument of IF", "IF(1)", 0, 4},
        {"four arguments of IF", "IF(1,2,3,4)", 0, 10},
        {"one argument of IFERROR", "IFERROR(1)", 0, 9},
        {"one argument of CHOOSE", "CHOOSE(1)", 0, 8},
        {"arguments where none may be", "PI(1)", 0, 4},
        {"unknown sheet", "=1+无!A1", 3, 7},
        {"unknown sheet in a row of sheets", "SUM(Sheet1:无!A1)", 4, 16},
        {"two numbers", "=1 2", 2, 3},
        {"two texts", "\"a\" \"b\"", 3, 4},
        {"nothing", "=", 0, 1},
        {"only a bracket", "(", 0, 1},
        {"empty brackets", "1+()", 2, 3},
        {"ends in an operator", "1+2*", 3, 4},
        {"starts with an operator", "=*2", 1, 1},
        {"two operators", "1+*2", 2, 2},
        {"an operator before a comma", "=SUM(1+,2)", 7, 7},
        {"an operator at an argument's end", "SUM(2,1+)", 8, 8},
        {"a sign at an argument's end", "SUM(-)", 5, 5},
        {"a sign before a comma", "IF(1,-,2)", 6, 6},
        {"ragged array", "={1,2;3}", 1, 7},
        {"array of references", "{1,A1}", 3, 5},
        {"bare comma", "=1,2", 2, 2},
        {"odd character", "1+@2", 2, 2},
        {"number beyond all", "=1+1e999", 3, 8},
        {"no cell behind the sheet", "Sheet1!+1", 0, 7},
        {"100,000 characters", repeated("1+", 50'000) + "1", 0, 100'001},
        {"a text of 100,000 characters", "\"" + repeated("x", 100'000) + "\"", 0, 100'002},
        {"10,000 brackets", brackets, 1, 10'000},
        {"5,000 minus signs", minuses, 1, 5000},
        {"5,000 calls in each other", repeated("ABS(", 5000) + "1" + repeated(")", 5000), 1, 20'000},
    };
    FormulaSheet sheet{{"B2", "=1+1"}};
    sheet.workbook().recalculate();
    const Sheet& first = sheet.workbook().sheet(1);
    const auto start = std::chrono::steady_clock::now();
    for (const Case& c : cases) {
        const auto problem = sheet.workbook().sheet(1).setFormula({2, 2}, c.text);
        ASSERT_TRUE(problem) << c.what;
        EXPECT_GE(problem.position(), c.first) << c.what;
        EXPECT_LE(problem.position(), c.last) << c.what;
        EXPECT_FALSE(problem.reason().empty()) << c.what;
        sheet.workbook().recalculateChanged();
        EXPECT_EQ(first.formula({2, 2}), "1+1") << c.what;
        EXPECT_EQ(valueText(first.value({2, 2})), "2") << c.what;
        EXPECT_TRUE(sheet.workbook().sheet(1).setArrayFormula({2, 2, 3, 3}, c.text)) << c.what;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(FormulaText, ARangeMeetsTheRowOrColumnOfItsCell)
{
    struct Case {
        const char* formula;
        CellAddress cell;
        const char* expected;
    };
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "3"}, {"B7", "70"}, {"C7", "80"}, {"A5", "x"}};
    const Case cases[] = {
        {"A1:A3", {4, 2}, "2"},        {"A1:A3*10", {4, 3}, "30"},
        {"A1:A3", {4, 4}, "#VALUE!"},  {"A1:A3+1", {4, 4}, "#VALUE!"},
        {"B7:C7", {3, 9}, "80"},       {"B7:C7", {4, 9}, "#VALUE!"},
        {"A:A", {4, 3}, "3"},          {"7:7", {2, 10}, "70"},
        {"A1:C7", {9, 2}, "#VALUE!"},  {"IF(A1:A3>1,\"y\",\"n\")", {5, 1}, "\"n\""},
        {"ABS(A1:A3)", {5, 3}, "3"},   {"SUM(A1:A3)", {5, 9}, "6"},
        {"SUM(A1:A3*2)", {5, 2}, "4"}, {"SUM({1,2,3}*2)", {5, 9}, "12"},
        {"{7,8;9,10}", {5, 2}, "7"},   {"SUMPRODUCT(A1:A3*A1:A3)", {5, 9}, "14"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(sheet.evaluate(c.formula, c.cell), c.expected) << c.formula << " in " << cellName(c.cell);
        sheet.workbook().sheet(1).clearContents({c.cell.column, c.cell.row, c.cell.column, c.cell.row});
    }
}

TEST(ArrayFormulas, SpreadOverTheirRange)
{
    struct Case {
        const char* what;
        const char* formula;
        CellRange range;
        const char* expected;
    };
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "3"}, {"B1", "10"}, {"B2", "20"}, {"B3", "30"}};
    const Case cases[] = {
        {"element by element", "=A1:A3*B1:B3", {4, 1, 4, 3}, "10; 40; 90"},
        {"beyond the edge", "A1:A2", {4, 1, 5, 3}, "1 1; 2 2; #N/A #N/A"},
        {"a row repeats", "{1,2}", {4, 1, 6, 2}, "1 2 #N/A; 1 2 #N/A"},
        {"one value everywhere", "SUM(A1:A3)", {4, 1, 5, 2}, "6 6; 6 6"},
        {"a column and a row", "A1:A2+{100,200}", {4, 1, 5, 2}, "101 201; 102 202"},
        {"unequal sizes", "A1:A3+B1:B2", {4, 1, 4, 3}, "11; 22; #N/A"},
        {"cut off", "A1:B3", {4, 1, 4, 2}, "1; 2"},
        {"conditions", "IF(A1:A3>1,B1:B3,\"-\")", {4, 1, 4, 3}, "\"-\"; 20; 30"},
        {"one cell sums products", "SUM(A1:A3*B1:B3)", {4, 1, 4, 1}, "140"},
        {"only one element fails", "1/(A1:A3-2)", {4, 1, 4, 3}, "-1; #DIV/0!; 1"},
    };
    Sheet& target = sheet.workbook().sheet(1);
    for (const Case& c : cases) {
        ASSERT_FALSE(target.setArrayFormula(c.range, c.formula)) << c.what;
        sheet.workbook().recalculateChanged();
        EXPECT_EQ(valuesOf(target, c.range), c.expected) << c.what;
        EXPECT_EQ(target.arrayRange({c.range.right, c.range.bottom}), c.range) << c.what;
        target.clearContents(c.range);
        EXPECT_FALSE(target.arrayRange({c.range.left, c.range.top})) << c.what;
    }
}

TEST(ArrayFormulas, StayWholeUntilAValueDissolvesThem)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "3"}};
    Sheet& target = sheet.workbook().sheet(1);
    ASSERT_FALSE(target.setArrayFormula({3, 1, 3, 3}, "=A1:A3*2"));
    sheet.workbook().recalculateChanged();
    EXPECT_EQ(target.formula({3, 2}), "A1:A3*2") << "every cell shows the array's formula";

    const auto problem = target.setArrayFormula({3, 3, 4, 4}, "=1");
    ASSERT_TRUE(problem);
    EXPECT_FALSE(problem.reason().empty());
    sheet.put("A1", "5");
    sheet.workbook().recalculateChanged();
    EXPECT_EQ(valuesOf(target, {3, 1, 4, 4}), "10 empty; 4 empty; 6 empty; empty empty");

    target.setNumber({3, 2}, 99);
    sheet.put("A3", "7");
    sheet.workbook().recalculateChanged();
    EXPECT_FALSE(target.arrayRange({3, 1}));
    EXPECT_FALSE(target.hasFormula({3, 3}));
    EXPECT_EQ(valuesOf(target, {3, 1, 3, 3}), "10; 99; 6");

    ASSERT_FALSE(target.setArrayFormula({3, 1, 4, 3}, "=A1:A3")) << "a larger one may cover";
    sheet.workbook().recalculateChanged();
    EXPECT_EQ(valuesOf(target, {3, 1, 4, 3}), "5 5; 2 2; 7 7");
}
