#include "tests/spreadsheet/functions/FormulaSheet.h"

#include "spreadsheet/functions/engineering/units.h"

using namespace spreadsheet;

TEST(EngineeringFunctions, NumberBases)
{
    FormulaSheet sheet{{"A1", "TRUE"}, {"A2", "11"}};
    sheet.expect({
        {"BIN2DEC(1100100)", "100"},
        {"BIN2DEC(\"1111111111\")", "-1"},
        {"BIN2DEC(\"\")", "0"},
        {"BIN2DEC(12)", "#NUM!"},
        {"BIN2DEC(\"10000000000\")", "#NUM!"},
        {"BIN2DEC(-1)", "#NUM!"},
        {"BIN2DEC(A1)", "#VALUE!"},
        {"BIN2DEC(A1:A2)", "#VALUE!"},
        {"BIN2OCT(1001,3)", "\"011\""},
        {"BIN2OCT(1111111111)", "\"7777777777\""},
        {"HEX2OCT(\"F\",3)", "\"017\""},
        {"HEX2OCT(\"20000000\")", "#NUM!"},
        {"OCT2BIN(3,3)", "\"011\""},
        {"OCT2BIN(1000)", "#NUM!"},
        {"BIN2HEX(11111011,4.9)", "\"00FB\""},
        {"BIN2HEX(1111111111,3)", "\"FFFFFFFFFF\""}, // digits asked for do not cut a negative number
        {"DEC2BIN(-100)", "\"1110011100\""},
        {"DEC2BIN(511.9)", "\"111111111\""},
        {"DEC2BIN(512)", "#NUM!"},
        {"DEC2BIN(-513)", "#NUM!"},
        {"DEC2BIN(9,3)", "#NUM!"},
        {"DEC2BIN(9,11)", "#NUM!"},
        {"DEC2BIN(9,-1)", "#NUM!"},
        {"DEC2BIN(\"x\")", "#VALUE!"},
        {"DEC2HEX(-549755813888)", "\"8000000000\""},
        {"DEC2HEX(549755813888)", "#NUM!"},
        {"DEC2OCT(-1)", "\"7777777777\""},
        {"HEX2BIN(\"fffffffe00\")", "\"1000000000\""},
        {"HEX2BIN(\"200\")", "#NUM!"},
        {"HEX2DEC(\"FFFFFFFF5B\")", "-165"},
        {"HEX2DEC(\"G\")", "#NUM!"},
        {"OCT2HEX(7777777533)", "\"FFFFFFFF5B\""},
        {"OCT2DEC(\"8\")", "#NUM!"},
        {"BASE(15,2,10)", "\"0000001111\""},
        {"BASE(2^53-1,36)", "\"2GOSA7PA2GV\""},
        {"BASE(-1,2)", "#NUM!"},
        {"BASE(1,37)", "#NUM!"},
        {"DECIMAL(\"zap\",36)", "45745"},
        {"DECIMAL(\"12\",2)", "#NUM!"},
        {"BITAND(13,25)&\"/\"&BITOR(13,25)&\"/\"&BITXOR(13,25)", "\"9/29/20\""},
        {"BITAND(1.5,1)", "#NUM!"},
        {"BITOR(-1,1)", "#NUM!"},
        {"BITXOR(2^48,1)", "#NUM!"},
        {"BITLSHIFT(1,47)=2^47", "TRUE"},
        {"BITLSHIFT(1,48)", "#NUM!"},
        {"BITLSHIFT(13,-2)", "3"},
        {"BITRSHIFT(13,54)", "#NUM!"},
    });
}

// Computed with Python's cmath; texts carry 15 digits.
TEST(EngineeringFunctions, ComplexNumbers)
{
    FormulaSheet sheet{{"A1", "3+4i"}, {"A2", "5-3i"}, {"A4", "2"}};
    sheet.expect({
        {"COMPLEX(3,-1)", "\"3-i\""},
        {"COMPLEX(0,1,\"j\")", "\"j\""},
        {"COMPLEX(0,0)", "\"0\""},
        {"COMPLEX(1,1,\"I\")", "#VALUE!"},
        {"COMPLEX(TRUE,1)", "#VALUE!"},
        {"IMAGINARY(\"1E3-1.5e-2i\")", "-0.015"},
        {"IMAGINARY(\"-j\")", "-1"},
        {"IMREAL(\"1E-3\")", "0.001"},
        {"IMREAL(7)", "7"},
        {"IMREAL(\"\")", "#NUM!"},
        {"IMREAL(ZZ1)", "0"}, // an empty cell
        {"IMSUM(\"1 + i\",\" 2- 3i\",\" -i \")", "\"3-3i\""},
        {"IMAGINARY(\"3 4i\")", "#NUM!"},
        {"IMREAL(\"3+4\")", "#NUM!"},
        {"IMREAL(\"3 + 4i\")", "3"},
        {"IMREAL(\"3+4I\")", "#NUM!"},
        {"IMREAL(TRUE)", "#VALUE!"},
        {"IMABS(\"5+12i\")", "13"},
        {"IMARGUMENT(\"3+4i\")", "0.927295218002"},
        {"IMARGUMENT(0)", "#DIV/0!"},
        {"IMCONJUGATE(\"2-j\")", "\"2+j\""},
        {"IMSUM(A1:A4,\"i\")", "\"10+2i\""}, // an empty cell is passed over
        {"IMSUM(\"i\",\"j\")", "#VALUE!"},
        {"IMPRODUCT(A1:A4)", "\"54+22i\""},
        {"IMPRODUCT(-1,0)", "\"0\""},
        {"IMSUB(A1,A2)", "\"-2+7i\""},
        {"IMDIV(\"-238+240i\",\"10+24i\")", "\"5+12i\""},
        {"IMDIV(1,0)", "#NUM!"},
        {"IMPOWER(\"2+3i\",3)", "\"-46+9.00000000000001i\""},
        {"IMPOWER(0,0)", "#NUM!"},
        {"IMSQRT(\"1+i\")", "\"1.09868411346781+0.455089860562227i\""},
        {"IMEXP(\"1+i\")", "\"1.46869393991589+2.28735528717884i\""},
        {"IMLN(\"3+4i\")", "\"1.6094379124341+0.927295218001612i\""},
        {"IMLN(0)", "#NUM!"},
        {"IMLOG10(\"3+4i\")", "\"0.698970004336019+0.402719196273373i\""},
        {"IMLOG2(\"3+4i\")", "\"2.32192809488736+1.33780421245098i\""},
        {"IMSIN(\"4+3i\")", "\"-7.61923172032141-6.548120040911i\""},
        {"IMCOS(\"1+i\")", "\"0.833730025131149-0.988897705762865i\""},
        {"IMTAN(\"4+3i\")", "\"0.00490825806749606+1.00070953606723i\""},
        {"IMCOT(\"4+3i\")", "\"0.00490118239430447-0.999266927805902i\""},
        {"IMSEC(\"4+3i\")", "\"-0.065294027857947-0.0752249603027732i\""},
        {"IMCSC(\"4+3i\")", "\"-0.0754898329158637+0.0648774713706355i\""},
        {"IMSINH(\"4+3i\")", "\"-27.0168132580039+3.85373803791938i\""},
        {"IMCOSH(\"4+3i\")", "\"-27.0349456030742+3.85115333481178i\""},
        {"IMSECH(\"4+3i\")", "\"-0.0362534969158689-0.00516434460775318i\""},
        {"IMCSCH(\"4+3i\")", "\"-0.036275889628626-0.0051744731840194i\""},
    });
}

// From the series of each function, summed with exact fractions; erf from its power series.
TEST(EngineeringFunctions, BesselAndErrorFunctions)
{
    FormulaSheet sheet;
    sheet.expect({
        {"BESSELI(1.5,1)", "0.981666428578"},
        {"BESSELI(-1.5,1.9)", "-0.981666428578"},
        {"BESSELJ(1.9,2)", "0.329925727692"},
        {"BESSELJ(0,0)", "1"},
        {"BESSELK(1E6,1E6)", "0"},
        {"BESSELJ(1,-1)", "#NUM!"},
        {"BESSELJ(2,-0.5)", "#NUM!"},
        {"BESSELI(3,3E9)+BESSELJ(1000,1E7)", "0"}, // far beyond x nothing is left
        {"BESSELY(3,3E9)", "#NUM!"},
        {"BESSELK(1.5,1)", "0.277387800457"},
        {"BESSELK(0,1)", "#NUM!"},
        {"BESSELY(2.5,1)", "0.145918137967"},
        {"BESSELY(-1,1)", "#NUM!"},
        {"BESSELI(1000,1)", "#NUM!"}, // beyond the range of numbers
        {"BESSELJ(1E300,1)", "#NUM!"},
        {"ERF(0.745)", "0.707928920096"},
        {"ERF(-1,1)", "1.6854015859"},
        {"ERFC(1)", "0.15729920705"},
        {"ERFC.PRECISE(-1)-ERF.PRECISE(1)", "1"},
        {"ERF(TRUE)", "#VALUE!"},
        {"DELTA(5,4)&DELTA(5,5)&DELTA(0)", "\"011\""},
        {"GESTEP(-4,-5)&GESTEP(-1)", "\"10\""},
    });
}

TEST(EngineeringFunctions, Units)
{
    FormulaSheet sheet;
    sheet.expect({
        {"CONVERT(1,\"lbm\",\"kg\")", "0.45359237"},
        {"CONVERT(68,\"F\",\"C\")", "20"},
        {"CONVERT(-40,\"C\",\"fah\")", "-40"},
        {"CONVERT(1,\"MK\",\"kK\")", "1000"},
        {"CONVERT(80,\"Reau\",\"Rank\")", "671.67"},
        {"CONVERT(1,\"kC\",\"K\")", "#N/A"}, // no prefix before degrees
        {"CONVERT(1,\"Mibyte\",\"bit\")", "8388608"},
        {"CONVERT(1,\"Mim\",\"m\")", "#N/A"},
        {"CONVERT(1,\"km2\",\"ha\")", "100"},
        {"CONVERT(1,\"cm^3\",\"ml\")", "1"},
        {"CONVERT(1,\"dal\",\"el\")", "1"},
        {"CONVERT(1,\"HP\",\"W\")", "745.699871582"},
        {"CONVERT(1,\"psi\",\"Pa\")", "6894.75729317"},
        {"CONVERT(1,\"us_acre\",\"m2\")", "4046.87260987"},
        {"CONVERT(1,\"MI\",\"m\")", "#N/A"}, // letter case counts
        {"CONVERT(1,\"ft\",\"sec\")", "#N/A"},
        {"CONVERT(\"a\",\"ft\",\"m\")", "#VALUE!"},
    });
    // Milli-inch does not exist, minutes and pints do.
    EXPECT_FALSE(convertedUnit(1, "min2", "m2"));
    EXPECT_EQ(convertedUnit(1, "min", "s"), 60);
    EXPECT_EQ(convertedUnit(1, "pt", "cup"), 2);
}
