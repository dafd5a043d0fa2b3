#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// A column with a value of every kind; A4 is empty, A7 an empty text.
FormulaSheet kinds()
{
    return FormulaSheet{{"A1", "5"},    {"A2", "'7"}, {"A3", "TRUE"}, {"A5", "abc"},
                        {"A6", "#N/A"}, {"A7", "'"},  {"B1", "30"},   {"C1", "40"}};
}

} // namespace

TEST(Coercion, Operators)
{
    FormulaSheet sheet = kinds();
    sheet.expect({
        {"\"5\"+1", "6"},
        {"\" 5 \"*2", "10"},
        {"\"50%\"*2", "1"},
        {"\"%50\"*2", "1"},
        {"\"1,000\"+1", "1001"},
        {"\"1e2\"+0", "100"},
        {"\"2011-3-5\"-\"2011-3-1\"", "4"},
        {"\"12:00\"*2", "1"},
        {"\"\"+1", "#VALUE!"},
        {"\" \"+1", "#VALUE!"},
        {"TRUE+TRUE", "2"},
        {"-TRUE", "-1"},
        {"TRUE%", "0.01"},
        {"\"TRUE\"*1", "#VALUE!"},
        {"A2+1", "8"},
        {"A3*3", "3"},
        {"A4+1", "1"},
        {"A5+1", "#VALUE!"},
        {"A7+1", "#VALUE!"},
        {"+\"abc\"", "\"abc\""}, // plus leaves everything as it is
        {"--\"5\"", "5"},
        {"-\"abc\"", "#VALUE!"},
        {"NA()+1/0", "#N/A"},
        {"1/0+NA()", "#DIV/0!"},
        {"A6&\"x\"", "#N/A"},
        {"1/0=1/0", "#DIV/0!"},
        {"\"x\"<A6", "#N/A"},
        {"1E+300*1E+300", "#NUM!"},
        {"-2^2", "4"}, // the sign binds closer
        {"2^3^2", "64"},
        {"(-8)^(1/3)", "#NUM!"},
        {"0^-1", "#DIV/0!"},
    });
}

TEST(Coercion, JoinedNumbers)
{
    FormulaSheet sheet = kinds();
    sheet.expect({
        {"1/3&\"\"", "\"0.333333333333333\""},
        {"2/3&\"\"", "\"0.666666666666667\""},
        {"(0.1+0.2)&\"\"", "\"0.3\""},
        {"1.50&\"\"", "\"1.5\""},
        {"-0&\"\"", "\"0\""},
        {"1E+15&\"\"", "\"1000000000000000\""},
        {"1E+30&\"\"", "\"1E+30\""},
        {"100%&\"\"", "\"1\""},
        {"1/3000&\"\"", "\"0.000333333333333333\""},
        {"1/30000&\"\"", "\"3.33333333333333E-05\""},
        {"\"1 1/2\"+0", "1.5"}, // and a fraction alone is a date
        {"\"-2 3/4\"+0", "-2.75"},
        {"\"1 1/0\"+0", "#VALUE!"},
        {"\"1 /2\"+0", "#VALUE!"},
        {"UPPER(\"straße\")", "\"STRAßE\""},
        {"TRUE&1", "\"TRUE1\""},
        {"A4&A7&\"x\"", "\"x\""},
        {"DATE(2011,3,5)&\"\"", "\"40607\""},
        {"\"a\"&1+2", "\"a3\""},
        {"1&2=\"12\"", "TRUE"},
    });
}

TEST(Coercion, ComparisonAcrossKinds)
{
    FormulaSheet sheet = kinds();
    sheet.expect({
        // Numbers come before texts, texts before truth values.
        {"1E+300<\"\"", "TRUE"},
        {"1<\"1\"", "TRUE"},
        {"\"z\"<FALSE", "TRUE"},
        {"TRUE>99", "TRUE"},
        {"FALSE<TRUE", "TRUE"},
        {"\"1\"=1", "FALSE"},
        {"TRUE=1", "FALSE"},
        {"\"TRUE\"=TRUE", "FALSE"},
        {"1=1=1", "FALSE"},
        {"A2=7", "FALSE"},
        // An empty cell is the neutral value of the other side.
        {"A4=0", "TRUE"},
        {"A4=\"\"", "TRUE"},
        {"A4=FALSE", "TRUE"},
        {"A4=Z1", "TRUE"},
        {"A4<\"a\"", "TRUE"},
        {"A4<TRUE", "TRUE"},
        {"A4>-1", "TRUE"},
        {"A7=A4", "TRUE"},
        {"A7=0", "FALSE"},
        // Letter case and width do not count, blanks do.
        {"\"ABC\"=\"abc\"", "TRUE"},
        {"\"ＡＢＣ（１）\"=\"abc(1)\"", "TRUE"},
        {"\"É\"=\"é\"", "TRUE"},
        {"\"a\"<\"B\"", "TRUE"},
        {"\"abc\"<\"abcd\"", "TRUE"},
        {"\"a \"=\"a\"", "FALSE"},
        {"\"a\"<>\"A\"", "FALSE"},
        {"0.1+0.2=0.3", "TRUE"},
        {"1=1.0000000000001", "FALSE"},
        {"1E+20=1E+20+1", "TRUE"},
        {"-0=0", "TRUE"},
    });
}

TEST(Coercion, FunctionArguments)
{
    FormulaSheet sheet = kinds();
    sheet.expect({
        // A value handed over directly is coerced, one in a range or array is passed over.
        {"SUM(\"5\",TRUE)", "6"},
        {"SUM(A1:A5)", "5"},
        {"SUM(A2,A3)", "0"},
        {"SUM(\"abc\")", "#VALUE!"},
        {"SUM(A1:A6)", "#N/A"},
        {"SUM({\"5\",TRUE,3})", "3"},
        {"SUM(A1,,3)", "8"},
        {"PRODUCT(A2:A5)", "0"},
        {"MAX(\"9\",3)", "9"},
        {"MAX(A2,3)", "3"},
        {"ABS(\"-3\")", "3"},
        {"ABS(A2)", "7"},
        {"ABS(TRUE)", "1"},
        {"ABS(A4)", "0"},
        {"ABS(A5)", "#VALUE!"},
        {"ABS(A6)", "#N/A"},
        {"ABS(A7)", "#VALUE!"},
        {"LEN(TRUE)", "4"},
        {"LEN(A6)", "#N/A"},
        {"LEFT(12345,\"2\")", "\"12\""},
        {"REPT(\"x\",TRUE)", "\"x\""},
        {"ROUND(2.5,)", "3"},
        {"DATE(\"2011\",\"3\",\"5\")", "40607"},
        {"IF(\"true\",1,2)", "1"},
        {"IF(\"abc\",1,2)", "#VALUE!"},
        {"IF(A4,1,2)", "2"},
        {"IF(-0.1,1,2)", "1"},
        {"ABS({-4,2})", "4"},
    });
}

TEST(Coercion, RangesInPlacesOfSingleValues)
{
    FormulaSheet sheet = kinds();
    struct Case {
        std::string formula;
        CellAddress cell;
        std::string expected;
    };
    const std::vector<Case> cases{
        {"A1:A3+1", {4, 1}, "6"}, // the cell in the formula's own row
        {"ABS(A1:A3)", {4, 2}, "7"},       {"ABS(A1:A3)", {4, 9}, "#VALUE!"},
        {"A1:C1*2", {2, 9}, "60"}, // or column
        {"A1:C1*2", {4, 9}, "#VALUE!"},    {"A1:B2+1", {4, 1}, "#VALUE!"},
        {"A:A&\"!\"", {4, 5}, "\"abc!\""}, {"1:1+1", {3, 9}, "41"},
        {"A4:A4+1", {4, 50}, "1"},         {"IF(A1:A3>6,\"big\",\"small\")", {4, 1}, "\"small\""},
        {"LEN(A1:A6)", {4, 6}, "#N/A"},    {"VLOOKUP(A1:A3,A1:C1,2,0)", {4, 1}, "30"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(sheet.evaluate(c.formula, c.cell), c.expected) << c.formula << " in row " << c.cell.row;
}
