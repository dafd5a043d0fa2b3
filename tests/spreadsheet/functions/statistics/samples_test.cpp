#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// Pairs in A and B of which only rows 1, 2, 4 and 6 count; D and E hold a house price table.
FormulaSheet pairs()
{
    return FormulaSheet{{"A1", "2"}, {"A2", "4"}, {"A3", "x"}, {"A4", "6"},    {"A5", "7"}, {"A6", "9"},
                        {"B1", "1"}, {"B2", "3"}, {"B3", "2"}, {"B4", "4"},    {"B5", "'"}, {"B6", "8"},
                        {"C1", "5"}, {"C2", "5"}, {"C3", "5"}, {"C4", "#REF!"}};
}

} // namespace

// Worked out by hand from the definitions: means, distances, products.
TEST(Samples, PairsThatCount)
{
    FormulaSheet sheet = pairs();
    sheet.expect({
        {"COVAR(A1:A6,B1:B6)", "6.5"}, // means 5.25 and 4; products sum to 26
        {"COVARIANCE.P(A1:A6,B1:B6)", "6.5"},
        {"COVARIANCE.S(A1:A6,B1:B6)*3", "26"},
        {"SLOPE(A1:A6,B1:B6)", "1"}, // 26 / 26
        {"INTERCEPT(A1:A6,B1:B6)", "1.25"},
        {"FORECAST(10,A1:A6,B1:B6)", "11.25"},
        {"FORECAST.LINEAR(\"x\",A1:A6,B1:B6)", "#VALUE!"},
        {"CORREL(A1:A6,B1:B6)^2*26.75", "26"},
        {"PEARSON(A1:A6,B1:B6)^2*26.75", "26"},
        {"RSQ(A1:A6,B1:B6)*26.75", "26"},
        {"STEYX(A1:A6,B1:B6)^2*2", "0.75"},
        {"STEYX({2972.27,3596.94,-4633.68,4458},{2972.27,3596.94,-4633.68,4458})<1E-9", "TRUE"},
        {"CORREL(A1:A3,C1:C3)", "#DIV/0!"}, // no spread
        {"SLOPE(A1:A2,C1:C2)", "#DIV/0!"},
        {"CORREL(A1:A3,B1:B4)", "#N/A"},
        {"CORREL(A1:A4,C1:C4)", "#REF!"},
        {"CORREL(A1:A2,{1,3})", "1"}, // a column and a row of two
        {"CORREL(A:A,B:B)^2*26.75", "26"},
        {"COVARIANCE.S(A1,B1)", "#DIV/0!"},
        {"COVAR(A3,B3)", "#DIV/0!"},
        {"CORREL(A1:A6*1,B1:B6)", "#VALUE!"}, // element by element: a text is no number
        {"PROB({0,1,2,3},{0.2,0.3,0.1,0.4},2)", "0.1"},
        {"PROB({0,1,2,3},{0.2,0.3,0.1,0.4},1,3)", "0.8"},
        {"PROB({0,1},{0.2,0.3},1)", "#NUM!"},
        {"PROB({0,1,2},{0.2,0.8},1)", "#N/A"},
    });
}

// The first six probabilities were computed from the integrals with 30 digits, apart from this program.
TEST(Samples, Tests)
{
    FormulaSheet().expect({
        {"CHITEST({58,35;11,25;10,23},{45.35,47.65;17.56,18.44;16.09,16.91})", "0.000308192017008"},
        {"CHISQ.TEST({1,2},{1,0})", "#DIV/0!"},
        {"CHITEST({1,2},{1;2})", "1"}, // by their number
        {"CHITEST({1,2},{1;2;3})", "#N/A"},
        {"FTEST({6,7,9,15,21},{20,28,31,38,40})", "0.648317846786"},
        {"F.TEST({1,1},{1,2})", "#DIV/0!"},
        {"TTEST({3,4,5,8,9,1,2,4,5},{6,19,3,2,14,4,5,17,1},2,1)", "0.196015784925"},
        {"TTEST({3,4,5,8,9,1,2,4,5},{6,19,3,2,14,4,5,17,1},2,2)", "0.19199588676"},
        {"T.TEST({3,4,5,8,9,1,2,4,5},{6,19,3,2,14,4,5,17,1},1,3)*2", "0.202293923369"},
        {"TTEST({1,3},{0,2,4},2,2)", "1"}, // the same means, of as few as it takes
        {"TTEST({0,2,4},{1,3},2,3)", "1"},
        {"TTEST({1,2},{1,2,3},2,1)", "#N/A"},
        {"TTEST({1,2},{1,2},3,1)", "#NUM!"},
        {"TTEST({1,2},{1,2},2,4)", "#NUM!"},
        {"TTEST({1,2},{2,3},2,1)", "#DIV/0!"}, // all differences are the same
        {"ZTEST({3,6,7,8,6,5,4,2,1,9},4)", "0.0905741968514"},
        {"Z.TEST({1,2,3},2,1)", "0.5"},
        {"ZTEST({5},4)", "#DIV/0!"},
        {"ZTEST({5,6},4,0)", "#NUM!"},
    });
}

// Published examples of the order statistics, and values worked out by hand.
TEST(Samples, PlacesInOrder)
{
    FormulaSheet sheet{{"A1", "85"}, {"A2", "88"}, {"A3", "85"}, {"A4", "90"}, {"A5", "x"}};
    sheet.expect({
        {"PERCENTILE({1,3,2,4},0.3)", "1.9"},
        {"PERCENTILE.INC({7},0.3)", "7"},
        {"PERCENTILE({1,2},1.1)", "#NUM!"},
        {"PERCENTILE(A5,0.5)", "#NUM!"},
        {"PERCENTILE.EXC({6,7,15,36,39,40,41,42,43,47,49},0.25)", "15"},
        {"PERCENTILE.EXC({1,2,3},0.2)", "#NUM!"}, // before the first of three
        {"PERCENTILE.EXC({1,2,3},0.25)", "1"},
        {"QUARTILE({1,2,4,7,8,9,10,12},1)", "3.5"},
        {"QUARTILE.INC({1,2,4,7,8,9,10,12},4.9)", "12"},
        {"QUARTILE({1,2},5)", "#NUM!"},
        {"QUARTILE({1,2},-0.5)", "#NUM!"},
        {"SUM(QUARTILE({9,1,5,3,7},{0,1,2,3,4}))&\"/\"&SUM(PERCENTILE({9,1,5},{0,0.25,1}))", "\"25/13\""},
        {"SUM(SMALL({9,1,5,\"x\"},{3,2,1})*{100,10,1})", "951"},
        {"SUM(LARGE({9,1,5,#N/A},{1,2}))", "#N/A"},
        {"QUARTILE.EXC({6,7,15,36,39,40,41,42,43,47,49},3)", "43"},
        {"QUARTILE.EXC({1,2,3},0)", "#NUM!"},
        {"PERCENTRANK({13,12,11,8,4,3,2,1,1,1},2)", "0.333"},
        {"PERCENTRANK.INC({13,12,11,8,4,3,2,1,1,1},5)", "0.583"},
        {"PERCENTRANK({1,2,3,4},3,1)", "0.6"},
        {"PERCENTRANK({1,2},0)", "#N/A"},
        {"PERCENTRANK({1,2},1,0)", "#NUM!"},
        {"PERCENTRANK.EXC({1,2,3,6,6,6,7,8,9},7)", "0.7"},
        {"PERCENTRANK.EXC({1,2,3,6,6,6,7,8,9},5.43)", "0.381"},
        {"TRIMMEAN({4,5,6,7,2,3,4,5,1,2,3},0.2)*9", "34"},
        {"TRIMMEAN({1,2,3},1)", "#NUM!"},
        {"RANK.AVG(85,A1:A5)", "3.5"},
        {"RANK.EQ(85,A1:A5)", "3"},
        {"RANK.AVG(85,A1:A5,1)", "1.5"},
        {"SUM(FREQUENCY({79,85,78,85,50,81,95,88,97},{70,79,89})*{1;10;100;1000})", "2421"},
        {"SUM(FREQUENCY(A1:A5,{89,80,86})*{1;10;100;1000})", "1201"}, // bounds in any order
        {"MODE.SNGL({5,2,2,5})", "5"},
        {"SUM(MODE.MULT({1,2,3,4,3,2,1,2,3})*{1;10})", "32"},
        {"MODE.MULT({1,2})", "#N/A"},
    });
}

// Published examples, recomputed from the definitions.
TEST(Samples, ShapeAndMeans)
{
    FormulaSheet().expect({
        {"AVEDEV({4,5,6,7,5,4,3})*49", "50"},
        {"DEVSQ({4,5,8,7,11,4,3})", "48"},
        {"DEVSQ(5)", "0"},
        {"AVEDEV(ZZ1)", "#NUM!"},
        {"GEOMEAN({4,5,8,7,11,4,3})^7", "147840"},
        {"GEOMEAN({1,0})", "#NUM!"},
        {"HARMEAN({1,2,4})*7", "12"},
        {"HARMEAN({1,-1})", "#NUM!"},
        {"KURT({3,4,5,2,3,4,5,6,4,7})", "-0.151799637208"},
        {"KURT({1,2,3})", "#DIV/0!"},
        {"SKEW({3,4,5,2,3,4,5,6,4,7})", "0.359543071407"},
        {"SKEW.P({3,4,5,2,3,4,5,6,4,7})", "0.303193339354"},
        {"SKEW({1,1,1})", "#DIV/0!"},
        {"VAR.S({2,4,4,4,5,5,7,9})*7", "32"},
        {"VAR.P({2,4,4,4,5,5,7,9})", "4"},
        {"STDEV.S({1,3})^2", "2"},
        {"STDEV.P({1,3})", "1"},
        {"VARPA(TRUE,3)", "1"},
        {"VARA({1,\"x\",TRUE})*3", "1"},
        {"STDEVA({0,\"x\",TRUE})^2*3", "1"},
        {"STDEVPA({2,\"x\"})", "1"},
    });
}

TEST(Samples, Regression)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"A3", "3"}, {"A4", "4"}, {"B1", "1"}, {"B2", "1"},
                       {"B3", "2"}, {"B4", "5"}, {"C1", "7"}, {"C2", "9"}, {"C3", "x"}};
    // y = 2 + 3·x1 - x2 exactly
    sheet.put("D1", "4");
    sheet.put("D2", "7");
    sheet.put("D3", "9");
    sheet.put("D4", "9");
    const std::string house =
        "{142000;144000;151000;150000;139000;169000;126000;142900;163000;169000;149000},"
        "{2310,2,2,20;2333,2,2,12;2356,3,1.5,33;2379,3,2,43;2402,2,3,53;2425,4,2,23;2448,2,1.5,99;"
        "2471,2,2,34;2494,3,3,23;2517,4,4,55;2540,2,3,22},TRUE,TRUE";
    sheet.expect({
        {"SUM(LINEST({1,9,5,7},{0,4,2,3})*{1,10})", "12"}, // 2x + 1
        {"SUM(LINEST({1;9;5;7})*{10,1})", "16"},           // 1.4x + 2 over 1, 2, 3, 4
        {"ROUND(INDEX(LINEST(D1:D4,A1:B4),1,1),9)", "-1"},
        {"ROUND(INDEX(LINEST(D1:D4,A1:B4),1,2),9)", "3"},
        {"ROUND(INDEX(LINEST(D1:D4,A1:B4),1,3),9)", "2"},
        {"LINEST({2,4,6},{1,2,3},FALSE)", "2"},
        {"INDEX(LINEST({2,4,6},{1,2,3},FALSE,TRUE),2,2)", "#N/A"},
        {"INDEX(LINEST({1,2,4},{1,2,3},TRUE,TRUE),3,1)*28", "27"},
        {"INDEX(LINEST({1,2,4},{1,2,3},TRUE,TRUE),4,2)", "1"},
        {"INDEX(LINEST({1,2,4},{1,2,3},TRUE,TRUE),5,2)*6", "1"},
        {"INDEX(LINEST({1;2;3;4},{1,2;2,4;3,6;4,8},TRUE,TRUE),4,2)", "2"}, // the second column says nothing
        {"INDEX(LINEST(" + house + "),4,1)", "459.753674225"},             // published: 459.7537
        {"INDEX(LINEST(" + house + "),2,5)", "12237.3616029"},             // published: 12237.36
        {"INDEX(LINEST(" + house + "),3,1)", "0.996747993385"},            // published: 0.99675
        {"LINEST(C1:C3)", "#VALUE!"},
        {"LINEST(A1:A4,B1:B3)", "#REF!"},
        {"ROUND(LOGEST({2,4,8}),9)", "2"},
        {"ROUND(INDEX(LOGEST({6,12,24},{1,2,3}),1,2),9)", "3"},
        {"LOGEST({1,0,4})", "#NUM!"},
        {"SUM(TREND({1;2;3},,{4;5}))", "9"},
        {"TREND({3,5,7},{1,2,3},{10})", "21"},
        {"SUM(TREND({1,2,4}))", "7"}, // heights on the line keep the sum
        {"ROUND(TREND(D1:D4,A1:B4,{10,4}),9)", "28"},
        {"TREND(D1:D4,A1:B4,{10,4,1})", "#REF!"},
        {"ROUND(SUM(GROWTH({2,4,8},{1,2,3},{4,5})),9)", "48"},
        {"GROWTH({33100;47300;69000;102000;150000;220000},{11;12;13;14;15;16},{17;18})", "320196.718363"},
    });
}
