#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(DateFunctions, CalendarAndClock)
{
    FormulaSheet sheet;
    sheet.expect({
        {"DATE(2008,2,29)", "39507"},
        {"DATE(2011,13,1)", "40909"},
        {"DATE(2011,3,0)", "40602"},
        {"DATE(108,1,1)", "39448"}, // years before 1900 count from 1900
        {"DATE(1900,2,29)", "60"},
        {"DATE(1900,1,-1)", "#NUM!"},
        {"DATE(10000,1,1)", "#NUM!"},
        {"DATE(9999,12,31)", "2958465"},
        {"YEAR(\"2011-3-5\")", "2011"},
        {"MONTH(0)&\"/\"&DAY(0)", "\"1/0\""},
        {"DAY(60)", "29"},
        {"YEAR(-1)", "#NUM!"},
        {"YEAR(2958466)", "#NUM!"},
        {"TIME(12,30,0)", "0.520833333333"},
        {"TIME(25,0,0)", "0.0416666666667"},
        {"TIME(0,-1,0)", "#NUM!"},
        {"HOUR(0.75)", "18"},
        {"MINUTE(\"12:34:56\")", "34"},
        {"SECOND(\"12:34:56\")", "56"},
        {"SECOND(0.999999)", "0"},
        {"DATEVALUE(\"2011-3-5 18:00\")", "40607"},
        {"TIMEVALUE(\"2011-3-5 18:00\")", "0.75"},
        {"DATEVALUE(40607)", "#VALUE!"},
        {"TODAY()=INT(NOW())", "TRUE"},
        {"YEAR(TODAY())>2020", "TRUE"},
        // 2011-03-06 was a Sunday.
        {"WEEKDAY(40608)", "1"},
        {"WEEKDAY(40608,2)", "7"},
        {"WEEKDAY(40608,3)", "6"},
        {"WEEKDAY(40608,11)", "7"},
        {"WEEKDAY(40608,16)", "2"}, // begins on Saturday
        {"WEEKDAY(40608,17)", "1"},
        {"WEEKDAY(40608,4)", "#NUM!"},
        // 2011 began on a Saturday.
        {"WEEKNUM(DATE(2011,1,1))", "1"},
        {"WEEKNUM(DATE(2011,1,2))", "2"},
        {"WEEKNUM(DATE(2011,1,2),2)", "1"},
        {"WEEKNUM(DATE(2011,1,2),21)", "52"},
        {"ISOWEEKNUM(DATE(2011,1,3))", "1"},
        {"ISOWEEKNUM(DATE(2009,12,31))", "53"},
    });
}

TEST(DateFunctions, SpansOfTime)
{
    FormulaSheet sheet{{"A1", "40607"}, {"A2", "40610"}, {"A3", "40610"}};
    sheet.expect({
        {"EDATE(DATE(2012,1,31),1)", "40968"},
        {"EDATE(DATE(2012,1,31),-1)=DATE(2011,12,31)", "TRUE"},
        {"EDATE(10,-12)", "#NUM!"},
        {"EOMONTH(DATE(2011,1,31),1)", "40602"},
        {"EOMONTH(DATE(2011,12,5),-12)", "40543"},
        {"DATEDIF(DATE(2010,5,31),DATE(2011,3,1),\"y\")", "0"},
        {"DATEDIF(DATE(2010,5,31),DATE(2011,3,1),\"M\")", "9"},
        {"DATEDIF(DATE(2010,5,20),DATE(2011,3,1),\"md\")", "9"}, // from February 20
        {"DATEDIF(DATE(2010,5,20),DATE(2012,3,1),\"ym\")", "9"},
        {"DATEDIF(DATE(2010,5,20),DATE(2012,5,19),\"yd\")", "365"},
        {"DATEDIF(2,1,\"d\")", "#NUM!"},
        {"DATEDIF(1,2,\"x\")", "#NUM!"},
        {"DAYS(\"2011-3-5\",\"2011-3-1\")", "4"},
        {"DAYS360(DATE(2011,1,30),DATE(2011,3,31))", "60"},
        {"DAYS360(DATE(2011,1,15),DATE(2011,3,31))", "76"},
        {"DAYS360(DATE(2011,1,15),DATE(2011,3,31),TRUE)", "75"},
        {"DAYS360(DATE(2011,2,28),DATE(2011,3,31))", "30"},
        {"NETWORKDAYS(DATE(2011,3,1),DATE(2011,3,31))", "23"},
        {"NETWORKDAYS(DATE(2011,3,31),DATE(2011,3,1))", "-23"},
        {"NETWORKDAYS(DATE(2011,3,1),DATE(2011,3,31),A1:A3)", "22"}, // a Saturday, a Tuesday twice
        {"NETWORKDAYS(DATE(2011,3,5),DATE(2011,3,6))", "0"},
        {"WORKDAY(DATE(2011,3,4),1)", "40609"},
        {"WORKDAY(DATE(2011,3,4),2,A1:A3)", "40611"},
        {"WORKDAY(DATE(2011,3,7),-1)", "40606"},
        {"WORKDAY(1,-9)", "#NUM!"},
        {"WORKDAY(40606,100000,{40609,50000})", "180610"},
        {"YEARFRAC(DATE(2011,1,1),DATE(2011,7,1))", "0.5"},
        {"YEARFRAC(DATE(2011,7,1),DATE(2011,1,1))", "0.5"},
        {"YEARFRAC(DATE(2011,2,28),DATE(2011,8,31))*360", "181"},
        {"YEARFRAC(DATE(2011,1,1),DATE(2012,1,1),1)", "1"},
        {"YEARFRAC(DATE(2012,1,1),DATE(2012,7,1),1)*366", "182"},
        {"YEARFRAC(DATE(2011,7,1),DATE(2012,3,1),1)*366", "244"},
        {"YEARFRAC(DATE(2010,1,1),DATE(2012,1,1),1)*1096/3", "730"},
        {"YEARFRAC(0,36,2)", "0.1"},
        {"YEARFRAC(0,73,3)", "0.2"},
        {"YEARFRAC(DATE(2011,1,31),DATE(2011,3,31),4)*360", "60"},
        {"YEARFRAC(1,2,5)", "#NUM!"},
    });
}
