#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// A1:A8 holds the numbers 3, 1, 3 and -2 among texts, a truth value and a gap; B1 is an empty text, B2
/// empty; C1:C2 holds an error.
FormulaSheet mixedKinds()
{
    return FormulaSheet{{"A1", "3"}, {"A2", "1"},  {"A3", "'5"}, {"A4", "TRUE"}, {"A6", "3"},
                        {"A7", "x"}, {"A8", "-2"}, {"B1", "'"},  {"C1", "#N/A"}, {"C2", "4"}};
}

} // namespace

TEST(Statistical, OrderAndRank)
{
    FormulaSheet sheet = mixedKinds();
    sheet.expect({
        {"MEDIAN(A1:A8)", "2"},
        {"MEDIAN(A1:A2,A6)", "3"},
        {"MEDIAN(\"5\",TRUE,1)", "1"},
        {"MEDIAN({7,1,9,3,5,2})", "4"},
        {"MEDIAN(A5)", "#NUM!"},
        {"MEDIAN(C1:C2)", "#N/A"},
        {"MODE(A1:A8)", "3"},
        {"MODE({2,1,1,2})", "2"}, // of equally frequent ones the first
        {"MODE({1,2,3})", "#N/A"},
        {"MODE(A5)", "#N/A"},
        {"LARGE(A1:A8,1)", "3"},
        {"LARGE(A1:A8,2)", "3"},
        {"LARGE(A1:A8,3)", "1"},
        {"LARGE(A1:A8,4)", "-2"},
        {"LARGE(A1:A8,5)", "#NUM!"},
        {"LARGE(A1:A8,0)", "#NUM!"},
        {"LARGE(A1:A8,\"x\")", "#VALUE!"},
        {"SMALL(A1:A8,1)", "-2"},
        {"SMALL(A1:A8,2)", "1"},
        {"SMALL(A1:A8,3)", "3"},
        {"SMALL(A1:A8,-1)", "#NUM!"},
        {"SMALL(A5,1)", "#NUM!"},
        {"SMALL(C1:C2,1)", "#N/A"},
        {"SUMPRODUCT(LARGE({5,9,7},{1,2}))", "16"},
        {"RANK(3,A1:A8)", "1"},
        {"RANK(1,A1:A8)", "3"}, // two share the first place
        {"RANK(-2,A1:A8)", "4"},
        {"RANK(3,A1:A8,1)", "3"},
        {"RANK(1,A1:A8,1)", "2"},
        {"RANK(\"3\",A1:A8)", "1"},
        {"RANK(5,A1:A8)", "#N/A"}, // a text is in no order
        {"RANK(4,C1:C2)", "#N/A"},
    });
}

TEST(Statistical, Spread)
{
    FormulaSheet sheet = mixedKinds();
    sheet.expect({
        {"VARP({2,4,4,4,5,5,7,9})", "4"},
        {"STDEVP({2,4,4,4,5,5,7,9})", "2"},
        {"VAR({2,4,4,4,5,5,7,9})*7", "32"},
        {"STDEV({2,4,4,4,5,5,7,9})^2*7", "32"},
        {"VAR({1000000004,1000000007,1000000013,1000000016})", "30"}, // small beside the mean
        {"VARP({1000000004,1000000007,1000000013,1000000016})", "22.5"},
        {"VAR(5)", "#DIV/0!"},
        {"VARP(5)", "0"},
        {"STDEV(A5)", "#DIV/0!"},
        {"STDEVP(A5)", "#DIV/0!"},
        {"VARP(TRUE,3)", "1"},
        {"VARP(A3:A4,A1)", "0"}, // of a range only the numbers
        {"STDEV(C1:C2)", "#N/A"},
        {"VAR(\"x\",1)", "#VALUE!"},
    });
}

TEST(Statistical, MixedKindsCountDifferently)
{
    FormulaSheet sheet = mixedKinds();
    sheet.expect({
        {"AVERAGE(A1:A8)", "1.25"},
        {"AVERAGEA(A1:A8)*7", "6"}, // 3 1 0 1 3 0 -2
        {"AVERAGE(\"4\",TRUE)", "2.5"},
        {"AVERAGEA(1,TRUE,\"4\")", "2"},
        {"AVERAGEA(\"x\")", "#VALUE!"},
        {"AVERAGE(A3:A5)", "#DIV/0!"},
        {"AVERAGEA(A5)", "#DIV/0!"},
        {"AVERAGEA(B1:B2)", "0"},
        {"AVERAGEA(C1:C2)", "#N/A"},
        {"AVERAGE(C1:C2)", "#N/A"},
        {"MIN(A3:A5)", "0"},
        {"MAX(A8)", "-2"},
        {"MAX({-5,-3})", "-3"},
        {"MIN(C1:C2)", "#N/A"},
        {"MINA(A1:A4)", "0"},
        {"MINA(A4)", "1"},
        {"MAXA(A3:A4)", "1"},
        {"MAXA(A8,B1)", "0"},
        {"MAXA(A5)", "0"},
        {"MAXA({\"9\",-1})", "0"},
        {"MINA(C1:C2)", "#N/A"},
        {"COUNT(A1:A8)", "4"},
        {"COUNT(\"5\",TRUE,\"x\",2)", "3"},
        {"COUNT(C1:C2)", "1"},
        {"COUNT(1/0)", "0"},
        {"COUNT({1,\"2\",TRUE})", "1"},
        {"COUNTA(A1:A8)", "7"},
        {"COUNTA(B1:B2)", "1"},
        {"COUNTA(C1:C2,1/0)", "3"},
        {"COUNTA(A:A)", "7"},
        {"COUNTBLANK(A1:A8)", "1"},
        {"COUNTBLANK(B1:B2)", "2"},
        {"COUNTBLANK(A:A)", "1048569"},
        {"COUNTBLANK(C1:D2)", "2"},
    });
}
