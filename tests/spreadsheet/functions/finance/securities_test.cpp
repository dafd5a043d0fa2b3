#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

// Values come from the published formulas with the examples that their documentation gives, and from
// the identities between the functions.

TEST(SecurityFunctions, CouponDays)
{
    FormulaSheet sheet{{"A1", "=DATE(2011,1,25)"}, {"A2", "=DATE(2011,11,15)"}, {"A3", "=DATE(2012,2,29)"}};
    sheet.expect({
        {"COUPDAYBS(A1,A2,2,1)", "71"},
        {"COUPDAYBS(A1,A2,2)", "70"},
        {"COUPDAYS(A1,A2,2,1)", "181"},
        {"COUPDAYS(A1,A2,2,3)", "182.5"},
        {"COUPDAYS(A1,A2,4,2)", "90"},
        {"COUPDAYSNC(A1,A2,2,1)", "110"},
        {"COUPDAYSNC(A1,A2,2)", "110"},
        {"COUPDAYSNC(DATE(2015,2,11),DATE(2024,2,28),2)", "17"}, // each 28th is one
        {"COUPDAYSNC(DATE(2015,2,11),DATE(2024,2,29),2)", "19"}, // each end of a month is a 30th
        {"COUPNCD(A1,A2,2)=DATE(2011,5,15)", "TRUE"},
        {"COUPPCD(A1,A2,2)=DATE(2010,11,15)", "TRUE"},
        {"COUPNUM(A1,A2,4)", "4"},
        {"COUPNUM(DATE(2011,5,15),A2,2)", "1"}, // settlement on a coupon day
        {"COUPPCD(DATE(2011,5,15),A2,2)=DATE(2011,5,15)", "TRUE"},
        {"COUPPCD(DATE(2011,12,5),A3,4)=DATE(2011,11,30)", "TRUE"}, // ends of months stay ends
        {"COUPNUM(A2,A1,2)", "#NUM!"},
        {"COUPNUM(A1,A2,3)", "#NUM!"},
        {"COUPNUM(A1,A2,2,5)", "#NUM!"},
        {"COUPNUM(\"x\",A2,2)", "#VALUE!"},
        {"COUPNUM(A1,A2,TRUE)", "#VALUE!"},
        {"COUPNUM(A1:A2,A2,2)", "#VALUE!"},
        {"COUPPCD(20,40,1)", "#NUM!"}, // before the calendar
    });
}

TEST(SecurityFunctions, PricesAndYields)
{
    FormulaSheet sheet{{"A1", "=DATE(2008,2,15)"}, {"A2", "=DATE(2017,11,15)"}, {"A3", "=DATE(2008,5,15)"}};
    sheet.expect({
        {"PRICE(A1,A2,0.0575,0.065,100,2)", "94.6343616213"},
        // Calendar days beside a period of 360 or 365 by the coupons: the published formula, summed
        // elsewhere.
        {"PRICE(37197,38431,0.0934,0.1664,32.79,1,2)", "41.9639092982"},
        {"PRICE(36600,41000,0.05,0.04,100,4,3)", "109.524689525"},
        {"YIELD(A1,A2,0.0575,PRICE(A1,A2,0.0575,0.065,100,2),100,2)", "0.065"},
        {"YIELD(A1,A2,0,PRICE(A1,A2,0,0.9,100,4,3),100,4,3)", "0.9"},
        {"YIELD(A1,A3,0.05,PRICE(A1,A3,0.05,0.07,100,2,1),100,2,1)", "0.07"}, // the last period
        {"YIELD(A1,A2,0.01,150,100,1)<0", "TRUE"},
        {"PRICE(A1,A2,-0.01,0.065,100,2)", "#NUM!"},
        {"YIELD(A1,A2,0.0575,0,100,2)", "#NUM!"},
        {"DURATION(39448,42370,0.08,0.09,2,1)", "5.99377495555"},
        {"MDURATION(39448,42370,0.08,0.09,2,1)", "5.73566981392"},
        {"DURATION(DATE(2020,1,1),DATE(2022,1,1),0.08,0,1)*116", "224"}, // 8 after a year, 108 after two
        {"ODDFPRICE(DATE(2008,11,11),DATE(2021,3,1),DATE(2008,10,15),DATE(2009,3,1),0.0785,0.0625,100,2,1)",
         "113.597717474"},
        {"ODDFYIELD(DATE(2008,11,11),DATE(2021,3,1),DATE(2008,10,15),DATE(2009,3,1),0.0575,84.5,100,2,0)",
         "0.0772455415978"},
        // A regular first period is no odd one: both prices agree.
        {"ROUND(ODDFPRICE(A1,A2,DATE(2007,11,15),A3,0.0575,0.065,100,2)-PRICE(A1,A2,0.0575,0.065,100,2),9)",
         "0"},
        {"ROUND(ODDFPRICE(A1,A2,DATE(2007,11,15),A3,0,0.065,100,2)-PRICE(A1,A2,0,0.065,100,2),9)", "0"},
        {"ODDFPRICE(A1,A2,DATE(2007,11,15),A3+1,0.0575,0.065,100,2)", "#NUM!"},
        {"ODDFYIELD(A1,A2,DATE(2005,7,4),A3,0.05,ODDFPRICE(A1,A2,DATE(2005,7,4),A3,0.05,0.04,100,2,3),100,2,"
         "3)",
         "0.04"},
        {"ODDLPRICE(DATE(2008,2,7),DATE(2008,6,15),DATE(2007,10,15),0.0375,0.0405,100,2,0)", "99.8782860147"},
        {"ODDLYIELD(DATE(2008,4,20),DATE(2008,6,15),DATE(2007,12,24),0.0375,99.875,100,2,0)",
         "0.0451922356292"},
        {"ODDLPRICE(A3,A2,A1,0.05,0.04,0,2)", "#NUM!"},
    });
}

TEST(SecurityFunctions, PaidOnce)
{
    FormulaSheet sheet;
    sheet.expect({
        {"DISC(39107,39248,97.975,100,1)", "0.052420212766"},
        {"INTRATE(39493,39583,1000000,1014420,2)", "0.05768"},
        {"RECEIVED(39493,39583,1000000,0.0575,2)", "1014584.65441"},
        {"RECEIVED(39493,39583,1000000,5,2)", "#NUM!"},
        {"PRICEMAT(39494,39674,39400,0,0.1,2)*1.05", "100"}, // half a year without interest
        {"PRICEDISC(39494,39508,0.0525,100,2)", "99.7958333333"},
        {"YIELDDISC(39494,39508,99.795,100,2)", "0.0528225719869"},
        {"PRICEMAT(39493,39551,39397,0.061,0.061,0)", "99.9844988756"},
        {"YIELDMAT(39522,39755,39394,0.0625,100.0123,0)", "0.0609543336915"},
        {"YIELDMAT(39493,39551,39397,0.061,PRICEMAT(39493,39551,39397,0.061,0.03,1),1)", "0.03"},
        {"TBILLEQ(39538,39600,0.0914)", "0.0941514935659"},
        {"TBILLEQ(DATE(2011,1,1),DATE(2011,12,1),0.05)", "0.0525345699162"}, // more than half a year
        {"TBILLPRICE(39538,39600,0.09)", "98.45"},
        {"TBILLYIELD(39538,39600,98.45)", "0.0914169629253"},
        {"TBILLYIELD(39538,39600,101)<0", "TRUE"},
        {"TBILLEQ(39538,39600,9)", "#NUM!"},
        {"TBILLPRICE(39538,39538+367,0.09)", "#NUM!"},
        {"TBILLPRICE(39538,39600,9)", "#NUM!"}, // nothing would be left
        {"ACCRINTM(39539,39614,0.1,1000,3)", "20.5479452055"},
        {"ACCRINTM(39539,39614,0.1,,3)", "20.5479452055"},
        {"ACCRINT(39508,39691,39569,0.1,1000,2,0)", "16.6666666667"},
        {"ACCRINT(DATE(2008,3,5),39691,39569,0.1,1000,2,0,FALSE)", "15.5555555556"},
        {"ACCRINT(DATE(2008,4,5),39691,39569,0.1,1000,2,0,TRUE)", "7.22222222222"},
        {"ACCRINT(DATE(2008,1,1),DATE(2008,7,1),DATE(2010,4,1),0.1,1000,2,0,TRUE)", "225"},
        {"ACCRINT(39691,39691,39569,0.1,1000,2,0)", "#NUM!"},
    });
}
