#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(Trigonometry, ReciprocalsAndHyperbolics)
{
    FormulaSheet sheet;
    sheet.expect({
        {"SIN(2^27)", "#NUM!"},
        {"SIN(-2^27+1)<1", "TRUE"},
        {"COT(30)", "-0.156119952162"},
        {"COT(0)", "#DIV/0!"},
        {"COT(\"x\")", "#VALUE!"},
        {"SEC(45)", "1.9035944074"},
        {"CSC(15)", "1.53778056154"},
        {"CSC(0)", "#DIV/0!"},
        {"ACOT(-1)*4/PI()", "3"}, // between 0 and π
        {"ACOTH(6)", "0.168236118311"},
        {"ACOTH(0.5)", "#NUM!"},
        {"COTH(2)", "1.03731472073"},
        {"COTH(0)", "#DIV/0!"},
        {"COTH(-2E9)&CSCH(1E10)&SECH(-1E300)", "\"-100\""}, // no angles: no circle to get lost on
        {"COT(1E10)", "#NUM!"},
        {"SECH(2)*COSH(2)", "1"},
        {"CSCH(1.5)*SINH(1.5)", "1"},
        {"ACOSH(0.9)", "#NUM!"},
        {"ATANH(1)", "#NUM!"},
        {"ROUND(ASINH(SINH(3))-ACOSH(COSH(3))+ATANH(TANH(3)),9)", "3"},
        {"SINH(1000)", "#NUM!"},
    });
}

TEST(Rounding, MultiplesOfEitherSign)
{
    FormulaSheet sheet;
    sheet.expect({
        {"CEILING.MATH(24.3,5)&\"/\"&CEILING.MATH(-8.1,2)&\"/\"&CEILING.MATH(-5.5,2,-1)", "\"25/-8/-6\""},
        {"FLOOR.MATH(24.3,5)&\"/\"&FLOOR.MATH(-8.1,2)&\"/\"&FLOOR.MATH(-5.5,2,-1)", "\"20/-10/-4\""},
        {"CEILING.MATH(6.7)&\"/\"&FLOOR.MATH(-6.7)", "\"7/-7\""},
        {"CEILING.PRECISE(-4.1,-2)&\"/\"&ISO.CEILING(4.3,-2)&\"/\"&FLOOR.PRECISE(-3.2,-1)", "\"-4/6/-4\""},
        {"CEILING.MATH(5,0)", "0"},
        {"MROUND(TRUE,1)", "#VALUE!"},
        {"MROUND(6.05,0.1)", "6.1"}, // on the decimal digits
    });
}

// Counted by hand or with exact whole numbers.
TEST(Combinatorics, FactorialsAndChoices)
{
    FormulaSheet sheet{{"A1", "TRUE"}, {"A2", "24"}, {"A4", "36"}, {"A5", "x"}};
    sheet.expect({
        {"FACTDOUBLE(7)&\"/\"&FACTDOUBLE(8.9)&\"/\"&FACTDOUBLE(-1)", "\"105/384/1\""},
        {"FACTDOUBLE(-2)", "#NUM!"},
        {"FACTDOUBLE(-1.5)", "#NUM!"},
        {"FACTDOUBLE(1E300)", "#NUM!"},
        {"COMBINA(4,3)&\"/\"&COMBINA(0,0)", "\"20/1\""},
        {"COMBINA(0,1)", "#NUM!"},
        {"COMBINA(-0.5,0)", "#NUM!"}, // less than 0 before it is cut off
        {"COMBIN(5,0)", "1"},
        {"PERMUT(100,3)", "970200"},
        {"PERMUT(2,3)", "#NUM!"},
        {"PERMUT(2,-0.1)", "#NUM!"},
        {"PERMUT(1E15,1E14)", "#NUM!"}, // beyond the range of numbers, and soon
        {"PERMUTATIONA(3,2)", "9"},
        {"PERMUTATIONA(-0.3,2)", "#NUM!"},
        {"PERMUTATIONA(0,2)", "0"},
        {"MULTINOMIAL(2,3,4)", "1260"},
        {"MULTINOMIAL(A2:A4)=COMBIN(60,24)", "TRUE"},
        {"MULTINOMIAL(1,-1)", "#NUM!"},
        {"GCD(A2:A4,\"30\")", "6"},
        {"GCD(A2,A1)", "#VALUE!"},
        {"LCM(A2:A5)", "#VALUE!"},
        {"QUOTIENT(TRUE,1)", "#VALUE!"},
        {"SQRTPI(2)", "2.50662827463"},
        {"SQRTPI(-1)", "#NUM!"},
        {"SERIESSUM(2,1,2,{1;-3;0.5})", "-6"},
        {"SERIESSUM(0,0,1,5)", "#NUM!"}, // 0^0
        {"SERIESSUM(0,1,1,5)", "0"},
        {"SUMX2MY2({2,3,9},{6,5,11})", "-88"},
        {"SUMX2PY2({2,\"x\",9},{6,5,11})", "242"}, // a pair with a text is passed over
        {"SUMXMY2(A2:A4,A1:A3)", "#DIV/0!"},       // no pair at all
        {"SUMXMY2({1,2},{1})", "#N/A"},
        {"SUMXMY2({1,2,5,7},{0,1;2,3})", "27"}, // by their order, whatever the shapes
        {"SUMX2MY2({1;2;3},{6,5,4})", "-63"},
        {"SUMXMY2(A:ZY,A:ZY)", "0"},
    });
    sheet.put("A1", "1");
    sheet.expect({{"SUMXMY2(A1:A4,{0;0;7;30})", "613"}});
}

TEST(RomanNumerals, FormsAndBack)
{
    FormulaSheet sheet;
    sheet.expect({
        {"ROMAN(499)&\" \"&ROMAN(499,1)&\" \"&ROMAN(499,2)&\" \"&ROMAN(499,3)&\" \"&ROMAN(499,FALSE)",
         "\"CDXCIX LDVLIV XDIX VDIV ID\""},
        {"ROMAN(-0.1)", "#VALUE!"}, // checked before it is cut
        {"ROMAN(7,-0.1)", "#VALUE!"},
        {"ROMAN(0.9,4.9)", "\"\""},
        {"ROMAN(3999.9,TRUE)", "\"MMMCMXCIX\""},
        {"ROMAN(0)", "\"\""},
        {"ROMAN(4000)", "#VALUE!"},
        {"ROMAN(1,5)", "#VALUE!"},
        {"SUMPRODUCT(--(ARABIC(ROMAN(ROW(A1:A3999),4))<>ROW(A1:A3999)))", "0"},
        {"ARABIC(\" -mcmxii \")", "-1912"},
        {"ARABIC(\"\")", "0"},
        {"ARABIC(\"IIQ\")", "#VALUE!"},
    });
}

TEST(Matrices, DeterminantInverseProduct)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "2"}, {"B1", "'3"}, {"B2", "4"}};
    sheet.expect({
        {"MDETERM({1,3,8,5;1,3,6,1;1,1,1,0;7,3,10,2})", "88"},
        {"MDETERM({1,2;2,4})", "0"},
        {"MDETERM({1,2,3;4,5,6})", "#VALUE!"},
        {"MDETERM(A1:B2)", "#VALUE!"}, // a text is no number, whatever it reads as
        {"MDETERM(A:A)", "#VALUE!"},
        {"MDETERM(A:Z)", "#VALUE!"}, // more than any array holds
        {"INDEX(MINVERSE({4,-1;2,0}),2,1)", "-1"},
        {"MINVERSE({1,2;2,4})", "#NUM!"},
        {"SUM(MMULT(MINVERSE({1,2,1;3,4,-1;0,2,0}),{1,2,1;3,4,-1;0,2,0}))", "3"},
        {"INDEX(MMULT({1,3;7,2},{2,0;0,2}),2,1)", "14"},
        {"MMULT({1,3},{2,0})", "#VALUE!"},
        {"SUM(MUNIT(3))", "3"},
        {"MUNIT(0)", "#VALUE!"},
        {"MUNIT(1E5)", "#VALUE!"},
    });
}

TEST(Aggregate, PassesOverWhatTheOptionNames)
{
    FormulaSheet sheet{{"A1", "1"}, {"A2", "x"}, {"A3", "=1/0"}, {"A4", "4"}, {"A5", "=SUBTOTAL(9,A1:A2)"}};
    sheet.expect({
        {"AGGREGATE(9,6,A1:A5)", "6"},
        {"AGGREGATE(9,3,A1:A5)", "5"},
        {"AGGREGATE(9,4,A1:A5)", "#DIV/0!"},
        {"AGGREGATE(3,0,A1:A5)", "4"}, // errors are counted
        {"AGGREGATE(4,2,A1:A2,A4)", "4"},
        {"AGGREGATE(12,6,A1:A5)", "1"},
        {"AGGREGATE(14,6,A1:A5,1)", "4"},
        {"AGGREGATE(15,6,ROW(A1:A5)/(A1:A5=4),1)", "4"}, // an array built on the way
        {"AGGREGATE(14,6,A1:A5,9)", "#NUM!"},
        {"AGGREGATE(14,6,A1:A5)", "#VALUE!"},
        {"AGGREGATE(9,6,{1,2})", "#VALUE!"},
        {"AGGREGATE(20,6,A1)", "#VALUE!"},
        {"AGGREGATE(9,8,A1)", "#VALUE!"},
    });
    sheet.put("A3", "=AGGREGATE(9,4,A1:A2)");
    sheet.workbook().sheet(1).changeSettings([](SheetSettings& settings) { settings.rows.hidden[4] = true; });
    sheet.expect({
        {"AGGREGATE(9,0,A1:A5)", "5"},
        {"AGGREGATE(9,1,A1:A5)", "1"},
        {"AGGREGATE(9,5,A1:A5)", "3"},
        {"SUBTOTAL(109,A1:A5)", "1"},
        {"SUBTOTAL(9,A1:A5)", "5"},
    });
}
