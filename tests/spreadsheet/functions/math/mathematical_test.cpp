#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(MathematicalFunctions, Rounding)
{
    FormulaSheet sheet;
    sheet.expect({
        {"ROUND(2.5,0)", "3"},
        {"ROUND(-2.5,0)", "-3"},
        {"ROUND(1.005,2)", "1.01"}, // as it reads, not as its bits are
        {"ROUND(1250,-2)", "1300"},
        {"ROUND(49,-2)", "0"},
        {"ROUND(51,-2)", "100"},
        {"ROUND(5,-9)", "0"},
        {"ROUND(1.23,999)", "1.23"},
        {"ROUND(\"2.45\",1)", "2.5"},
        {"ROUNDUP(3.141,2)", "3.15"},
        {"ROUNDUP(-3.141,2)", "-3.15"},
        {"ROUNDUP(1.1*3,1)", "3.3"}, // no step up for noise
        {"ROUNDUP(0.001,0)", "1"},
        {"ROUNDUP(0,-1)", "0"},
        {"ROUNDUP(99.1,0)", "100"},
        {"ROUNDUP(1,-2)", "100"},
        {"ROUNDDOWN(-3.149,2)", "-3.14"},
        {"ROUNDDOWN(199,-2)", "100"},
        {"ROUNDDOWN(99,-2)", "0"},
        {"TRUNC(-8.9)", "-8"},
        {"TRUNC(4.35*100)", "435"}, // the product is a bit less
        {"INT(-8.9)", "-9"},
        {"MROUND(10,3)", "9"},
        {"MROUND(1.3,0.2)", "1.4"},
        {"MROUND(-10,3)", "#NUM!"},
        {"CEILING(2.5,1)", "3"},
        {"CEILING(-2.5,-2)", "-4"},
        {"CEILING(-2.5,2)", "-2"},
        {"CEILING(2.5,-2)", "#NUM!"},
        {"CEILING(0.3,0.1)", "0.3"},
        {"CEILING(5,0)", "0"},
        {"FLOOR(2.5,1)", "2"},
        {"FLOOR(-2.5,-2)", "-2"},
        {"FLOOR(-2.5,2)", "-4"},
        {"FLOOR(0.3,0.1)", "0.3"},
        {"FLOOR(1,0)", "#DIV/0!"},
        {"EVEN(1.5)", "2"},
        {"EVEN(-1)", "-2"},
        {"ODD(1.5)", "3"},
        {"ODD(0)", "1"},
        {"ODD(-2)", "-3"},
        {"ODD(3)", "3"},
    });
}

TEST(MathematicalFunctions, NumbersAndTheirLimits)
{
    FormulaSheet sheet{{"A1", "12"}, {"A2", "18"}, {"A3", "x"}};
    sheet.expect({
        {"MOD(-3,2)", "1"},
        {"MOD(3,-2)", "-1"},
        {"MOD(5,0)", "#DIV/0!"},
        {"MOD(-7,-0.01)", "0"},
        {"MOD(6.3,0.1)", "0"},
        {"MOD(-6.3,0.1)", "0"},
        {"ROUND(MOD(6.35,0.1),9)", "0.05"},
        {"MOD(1000000.00000001,0.01)>0", "TRUE"},
        {"MOD(1000000000000001,2)", "1"},
        {"MOD(1E16,3)", "1"},
        {"MOD(-1E16,3)", "2"},
        {"MOD(2^60,7)", "1"}, // 8^20
        {"QUOTIENT(-7,2)", "-3"},
        {"QUOTIENT(35.8,0.05)", "716"}, // as the numbers show
        {"QUOTIENT(-35.8,0.05)", "-716"},
        {"QUOTIENT(1,0)", "#DIV/0!"},
        {"POWER(0,0)", "#NUM!"},
        {"POWER(-8,1/3)", "#NUM!"},
        {"POWER(0,-1)", "#DIV/0!"},
        {"SQRT(-1)", "#NUM!"},
        {"EXP(1000)", "#NUM!"},
        {"LN(0)", "#NUM!"},
        {"LOG(8,2)", "3"},
        {"LOG(1000)", "3"},
        {"LOG(10,1)", "#DIV/0!"},
        {"LOG10(-1)", "#NUM!"},
        {"FACT(5.9)", "120"},
        {"FACT(0)", "1"},
        {"FACT(-1)", "#NUM!"},
        {"FACT(171)", "#NUM!"},
        {"COMBIN(49,6)", "13983816"},
        {"COMBIN(3,4)", "#NUM!"},
        {"COMBIN(3.9,2.9)", "3"},
        {"COMBIN(-0.5,0)", "#NUM!"},
        {"GCD(A1:A2,30)", "6"},
        {"GCD(A1:A3,30)", "#VALUE!"},
        {"GCD(0,5)", "5"},
        {"LCM(A1:A2,5)", "180"},
        {"GCD(-2)", "#NUM!"},
        {"SIGN(-0.1)", "-1"},
        {"SIGN(0)", "0"},
        {"ATAN2(-1,0)-PI()", "0"},
        {"ATAN2(0,0)", "#DIV/0!"},
        {"ASIN(2)", "#NUM!"},
        {"DEGREES(PI())", "180"},
        {"RADIANS(180)-PI()", "0"},
        {"ABS(\"-3\")", "3"},
        {"ABS(\"x\")", "#VALUE!"},
        {"ABS(A3)", "#VALUE!"},
        {"ABS(B9)", "0"},
        {"ABS(#REF!)", "#REF!"},
        {"AND(RAND()>=0,RAND()<1)", "TRUE"},
        {"RANDBETWEEN(3,3)", "3"},
        {"RANDBETWEEN(4,3)", "#NUM!"},
        {"SUM(ABS({-1,2,-3}))", "6"},
        {"SUM({1,2}*10)", "30"},
        {"SUM(-{1,2})", "-3"},
    });
    EXPECT_EQ(sheet.evaluate("ABS(A1:A3)", {5, 2}), "18"); // the cell of the own row
}

TEST(StatisticalFunctions, OrderAndSpread)
{
    FormulaSheet sheet{{"A1", "50"}, {"A2", "80"}, {"A3", "80"}, {"A4", "20"}, {"A5", "x"}, {"B1", "#NUM!"}};
    sheet.expect({
        {"MEDIAN(A1:A5)", "65"},
        {"MEDIAN(1,2,9)", "2"},
        {"MEDIAN(1E308,1E308)=1E308", "TRUE"}, // their sum is beyond the range of numbers
        {"MEDIAN(A5)", "#NUM!"},
        {"MODE(A1:A5)", "80"},
        {"MODE(1,2,2,1)", "1"},
        {"MODE(1,2)", "#N/A"},
        {"MODE(4,4,\"4\")", "#VALUE!"}, // no text, whatever it reads as
        {"MODE({4,4,\"x\"})", "4"},
        {"LARGE(A1:A5,3)", "50"},
        {"SMALL(A1:A5,2)", "50"},
        {"LARGE(A1:A5,5)", "#NUM!"},
        {"SMALL(A1:A5,0)", "#NUM!"},
        {"SMALL(A1:A5,0.9)", "#NUM!"},
        {"LARGE(A1:A5,0.2)", "#NUM!"},
        {"SUM(LARGE(A1:A5,{1,2}))", "160"},
        {"RANK(80,A1:A5)", "1"},
        {"RANK(50,A1:A5)", "3"},
        {"RANK(50,A1:A5,1)", "2"},
        {"RANK(51,A1:A5)", "#N/A"},
        {"STDEV(2,4,4,4,5,5,7,9)^2*7", "32"},
        {"STDEVP(2,4,4,4,5,5,7,9)", "2"},
        {"VAR(1,2,3,4)*3", "5"},
        {"VARP(A1:A1)", "0"},
        {"VAR(1)", "#DIV/0!"},
        {"VAR(A1:B1)", "#NUM!"},
        {"VARP(1000000001,1000000003)", "1"}, // no digits lost about a large mean
    });
}

TEST(LogicalFunctions, BranchesAndTruths)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "0"}, {"A3", "x"}, {"B1", "=1/0"}, {"B2", "=NA()"}};
    sheet.expect({
        {"IF(A1,\"y\",1/0)", "\"y\""},
        {"IF(A2,1)", "FALSE"},
        {"IF(A1,,5)", "0"},
        {"IF(\"true\",1,2)", "1"},
        {"IF(A3,1,2)", "#VALUE!"},
        {"IF(B1,1,2)", "#DIV/0!"},
        {"SUMPRODUCT(IF({TRUE,FALSE},{1,2},{10,20}))", "21"},
        {"IFERROR(B1,\"-\")", "\"-\""},
        {"IFNA(B1,0)", "#DIV/0!"},
        {"IFNA(B2,7)", "7"},
        {"SUMPRODUCT(IFERROR(A1:A3/A2:A2,9))", "27"},
        {"IFS(A2,1/0,A1,\"b\")", "\"b\""},
        {"IFS(A2,1)", "#N/A"},
        {"SWITCH(2,1,\"a\",2,\"b\")", "\"b\""},
        {"SWITCH(\"B\",\"b\",1,0)", "1"},
        {"SWITCH(9,1,\"a\",\"none\")", "\"none\""},
        {"SWITCH(9,1,\"a\")", "#N/A"},
        {"AND(A1,TRUE)", "TRUE"},
        {"AND(A1:A3)", "FALSE"}, // texts in ranges are passed over
        {"AND(A3)", "#VALUE!"},
        {"OR(A2,\"x\")", "FALSE"},
        {"OR(A1:A2)", "TRUE"},
        {"OR(B1,TRUE)", "#DIV/0!"},
        {"XOR(TRUE,TRUE,TRUE)", "TRUE"},
        {"NOT(A1)", "FALSE"},
        {"TRUE()", "TRUE"},
    });
}

TEST(InformationFunctions, KindsOfValues)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "'1"}, {"A4", "#N/A"}, {"A5", "TRUE"}, {"A6", "=\"\""}};
    sheet.expect({
        {"ISBLANK(A3)", "TRUE"},
        {"ISBLANK(A6)", "FALSE"},
        {"ISNUMBER(A2)", "FALSE"},
        {"ISTEXT(A2)", "TRUE"},
        {"ISNONTEXT(A3)", "TRUE"},
        {"ISLOGICAL(A5)", "TRUE"},
        {"ISERROR(A4)", "TRUE"},
        {"ISERR(A4)", "FALSE"},
        {"ISNA(A4)", "TRUE"},
        {"ISREF(A1:B2)", "TRUE"},
        {"ISREF(1)", "FALSE"},
        {"ISREF(INDEX(A1:A6,2))", "TRUE"},
        {"ISEVEN(-2.9)", "TRUE"},
        {"ISODD(A2)", "TRUE"},
        {"ISODD(A5)", "#VALUE!"},
        {"ERROR.TYPE(A4)", "7"},
        {"ERROR.TYPE(1/0)", "2"},
        {"ERROR.TYPE(1)", "#N/A"},
        {"TYPE(A1)", "1"},
        {"TYPE(A2)", "2"},
        {"TYPE(A4)", "16"},
        {"TYPE({1,2})", "64"},
        {"SUMPRODUCT(--ISNUMBER(A1:A6))", "1"},
    });
}

TEST(Mathematical, AnglesAndTheirInverses)
{
    FormulaSheet().expect({
        {"COS(PI()/3)", "0.5"},
        {"ROUND(TAN(PI()/4),12)", "1"},
        {"ACOS(0.5)*3/PI()", "1"},
        {"ACOS(1.1)", "#NUM!"},
        {"ATAN(1)*4-PI()", "0"},
        {"COS(2^27)", "#NUM!"}, // so far out the angle has no meaning left
    });
}
