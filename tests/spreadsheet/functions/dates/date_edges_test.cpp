#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(DateEdges, MonthEndsAndWeeks)
{
    FormulaSheet sheet;
    sheet.expect({
        {"DATE(1900,3,1)-DATE(1900,2,28)", "2"}, // the day 60 between them
        {"WEEKDAY(60)", "4"},
        {"EOMONTH(1,1)", "60"},
        {"EDATE(31,1)", "60"},
        {"EDATE(DATE(2011,3,31),-1)=DATE(2011,2,28)", "TRUE"},
        {"EDATE(DATE(2012,2,29),12)=DATE(2013,2,28)", "TRUE"},
        {"EDATE(40607.9,1.9)", "40638"},
        {"EDATE(2958465,1)", "#NUM!"},
        {"EDATE(\"x\",1)", "#VALUE!"},
        {"EOMONTH(DATE(2012,1,15),1)=DATE(2012,2,29)", "TRUE"},
        {"EOMONTH(DATE(2011,3,5),-3)=DATE(2010,12,31)", "TRUE"},
        {"DATEDIF(DATE(2011,1,31),DATE(2011,2,28),\"m\")", "0"},
        {"DATEDIF(DATE(2008,2,29),DATE(2011,2,28),\"Y\")", "2"},
        {"DATEDIF(DATE(2008,2,29),DATE(2011,3,1),\"y\")", "3"},
        {"DATEDIF(DATE(2010,12,20),DATE(2011,1,5),\"yd\")", "16"},
        {"DATEDIF(DATE(2010,12,20),DATE(2011,1,5),\"md\")", "16"},
        {"DATEDIF(1,1,\"d\")", "0"},
        {"WEEKDAY(40607,3)", "5"}, // a Saturday
        {"WEEKDAY(40607,12)", "5"},
        {"WEEKDAY(40607,14)", "3"},
        {"WEEKDAY(40607,16)", "1"},
        {"WEEKDAY(40607,0)", "#NUM!"},
        {"WEEKNUM(DATE(2012,1,8))", "2"}, // 2012 began on a Sunday
        {"WEEKNUM(DATE(2012,1,2),2)", "2"},
        {"WEEKNUM(DATE(2012,1,2),12)", "1"},
        {"WEEKNUM(DATE(2012,1,3),12)", "2"},
        {"WEEKNUM(DATE(2012,1,7),16)", "2"},
        {"WEEKNUM(DATE(2012,12,31))", "53"},
        {"WEEKNUM(DATE(2012,12,31),21)", "1"},
        {"ISOWEEKNUM(DATE(2010,1,3))", "53"},
        {"ISOWEEKNUM(1)", "52"}, // of 1899
        {"ISOWEEKNUM(2)", "1"},
    });
}

TEST(DateEdges, FractionsAndWorkingDays)
{
    FormulaSheet sheet;
    sheet.expect({
        {"YEARFRAC(DATE(2012,2,29),DATE(2012,3,31))*360", "31"}, // a 29th does not cut the 31st
        {"YEARFRAC(DATE(2011,2,28),DATE(2012,2,29))", "1"},
        {"YEARFRAC(DATE(2011,1,29),DATE(2011,1,31))*360", "2"},
        {"YEARFRAC(DATE(2011,1,30),DATE(2011,1,31))", "0"},
        {"YEARFRAC(DATE(2011,3,1),DATE(2012,2,29),1)*366", "365"},
        {"YEARFRAC(DATE(2011,3,1),DATE(2012,2,28),1)*365", "364"},
        {"YEARFRAC(DATE(2012,2,29),DATE(2013,2,27),1)*366", "364"},
        {"YEARFRAC(DATE(2010,6,1),DATE(2012,6,1),1)*1096/3", "731"},
        {"YEARFRAC(DATE(2012,1,1),DATE(2012,12,31),2)*360", "365"},
        {"YEARFRAC(DATE(2012,1,1),DATE(2012,12,31),3)*365", "365"},
        {"YEARFRAC(DATE(2011,1,31),DATE(2011,2,28),4)*360", "28"},
        {"YEARFRAC(1,2,-1)", "#NUM!"},
        {"NETWORKDAYS(40609,40609)", "1"},
        {"NETWORKDAYS(40609,40613,{40609,40610})", "3"},
        {"NETWORKDAYS(40613,40609,40610)", "-4"},
        {"WORKDAY(40607,1)", "40609"}, // from a Saturday
        {"WORKDAY(40607,-1)", "40606"},
        {"WORKDAY(40607,0)", "40607"},
        {"WORKDAY(40606,1,40609)", "40610"},
        {"WORKDAY(40609,-1,{40606,40605})", "40604"},
        {"WORKDAY(40606,260)", "40970"},
        {"WORKDAY(40606,1,\"x\")", "#VALUE!"},
    });
}

TEST(DateEdges, TextsAndClock)
{
    FormulaSheet sheet;
    sheet.expect({
        {"DATEVALUE(\"3/5/29\")=DATE(2029,3,5)", "TRUE"},
        {"DATEVALUE(\"3/5/30\")=DATE(1930,3,5)", "TRUE"},
        {"DATEVALUE(\"26/3/5\")=DATE(2026,3,5)", "TRUE"}, // no month is 26
        {"DATEVALUE(\"30-3-5\")=DATE(1930,3,5)", "TRUE"},
        {"DATEVALUE(\"26/13/5\")", "#VALUE!"},
        {"DATEVALUE(\"26/3/2005\")", "#VALUE!"},
        {"DATEVALUE(\"2011-13-1\")", "#VALUE!"},
        {"DATEVALUE(\"2011-3-5x\")", "#VALUE!"},
        {"DATEVALUE(\"2011\")", "#VALUE!"},
        {"DATEVALUE(\"1899-12-31\")", "#VALUE!"},
        {"DATEVALUE(\"\")", "#VALUE!"},
        {"TIMEVALUE(\"6:45 PM\")", "0.78125"},
        {"TIMEVALUE(\"24:00\")", "0"},
        {"TIMEVALUE(\"8 AM\")*24", "8"},
        {"TIMEVALUE(\"下午3:30\")*24", "15.5"},
        {"TIMEVALUE(\"8时30分\")*24", "8.5"},
        {"TIMEVALUE(\"13:00 PM\")", "#VALUE!"},
        {"TIMEVALUE(\"12:60\")", "#VALUE!"},
        {"TIME(24,0,0)", "0"},
        {"TIME(0,1500,0)*24", "1"},
        {"TIME(1,-30,0)*48", "1"},
        {"TIME(1,0,-3601)", "#NUM!"},
        {"TIME(0,0,32768)", "#NUM!"},
        {"TIME(1.9,0,0)*24", "1"},
    });
}

// Worked out on a calendar of January 2006, which began on a Sunday.
TEST(DateEdges, ChosenWeekends)
{
    FormulaSheet sheet{{"A1", "=DATE(2006,1,2)"}, {"A2", "=DATE(2006,1,16)"}, {"A3", "x"}};
    sheet.expect({
        {"NETWORKDAYS.INTL(DATE(2006,1,1),DATE(2006,1,31))", "22"},
        {"NETWORKDAYS.INTL(DATE(2006,2,28),DATE(2006,1,31))", "-21"},
        {"NETWORKDAYS.INTL(DATE(2006,1,1),DATE(2006,2,1),7,A1:A2)", "22"}, // Friday and Saturday off
        {"NETWORKDAYS.INTL(DATE(2006,1,1),DATE(2006,1,31),11)", "26"},     // Sunday off
        {"NETWORKDAYS.INTL(DATE(2006,1,1),DATE(2006,1,31),17)", "27"},     // Saturday off
        {"NETWORKDAYS.INTL(DATE(2006,1,1),DATE(2006,2,1),\"0010001\",A1:A2)", "20"},
        {"NETWORKDAYS.INTL(DATE(2006,1,1),DATE(2006,1,31),\"1111111\")", "0"},
        {"NETWORKDAYS.INTL(1,2,8)", "#NUM!"},
        {"NETWORKDAYS.INTL(1,2,\"000000\")", "#VALUE!"},
        {"NETWORKDAYS.INTL(1,2,1,A3)", "#VALUE!"},
        {"WORKDAY.INTL(DATE(2012,1,1),90,11)", "41013"},
        {"WORKDAY.INTL(DATE(2012,1,1),30,17)", "40944"},
        {"WORKDAY.INTL(DATE(2006,1,1),1,\"0111111\")=A1", "TRUE"},
        {"WORKDAY.INTL(1,1,\"1111111\")", "#VALUE!"},
        {"WORKDAY.INTL(1,2E9)", "#NUM!"},
        {"WORKDAY(TRUE,1)", "#VALUE!"},
        {"EDATE(A1:A2,1)", "#VALUE!"},
        {"WEEKNUM(TRUE)", "#VALUE!"},
    });
}

TEST(DateEdges, DaysCountedFrom1904)
{
    FormulaSheet sheet({{"A1", "39145"},
                        {"B1", "2024-02-29"}, // a text
                        {"C1", "5"},
                        {"B2", "43889"},
                        {"C2", "7"},
                        {"E1", "day"},
                        {"F1", "day"},
                        {"E2", "2024/2/29"},
                        {"F2", "2024/2/29"},
                        {"G1", "1903-12-31"}});
    sheet.workbook().setCountsFrom1904(true);
    sheet.expect({
        {"DATE(1904,1,1)", "0"},
        {"DATE(2011,3,5)", "39145"}, // 1,462 days less than from 1900
        {"DATE(1903,12,31)", "#NUM!"},
        {"YEAR(0)&\"-\"&MONTH(0)&\"-\"&DAY(0)", "\"1904-1-1\""},
        {"DATEVALUE(\"2011-3-5\")", "39145"},
        {"WEEKDAY(DATE(2011,3,6))", "1"},
        {"EDATE(DATE(2011,3,5),1)-DATE(2011,4,5)", "0"},
        {"EDATE(5,-1)", "#NUM!"},
        {"TEXT(DATE(2011,3,5),\"yyyy-mm-dd\")&TEXT(0.5,\"h:mm\")", "\"2011-03-0512:00\""},
        {"YEAR(\"2011-3-5\")&EDATE(\"2011-3-5\",0)&HOUR(\"6:00\")", "\"2011391456\""},
        {"DAY(\"1901-1-1\")", "#VALUE!"},
        {"\"2011-3-5\"+0", "39145"}, // operators and conditions count alike
        {"-\"2011-3-5\"", "-39145"},
        {"SUM(-{\"2011-3-5\",1})", "-39146"},
        {"\"6:00\"*2", "0.5"},
        {"\"1901-1-1\"+0", "#VALUE!"},
        {"TEXT(\"2024-2-29\",\"yyyy-mm-dd\")&TEXT(B1,\"0\")&TEXT(\"6:00\",\"h:mm\")",
         "\"2024-02-29438896:00\""}, // 45,351 from 1900
        {"TEXT(G1,\"yyyy\")", "\"1903-12-31\""},
        {"COUNTIF(B1,\"2024-2-29\")&COUNTIF(B1,45351)&COUNTIF(B1,43889)", "\"101\""},
        {"SUMIF(B1,DATE(2024,2,29),C1)&SUMIFS(C1:C2,B1:B2,\"2024-2-29\")", "\"512\""},
        {"DSUM(E1:E2,1,F1:F2)&DCOUNTA(E1:E2,1,F1:F2)", "\"01\""},
        // The index answers from the second question on.
        {"SUMIF(B1:B99,43889,C1:C99)&SUMIF(B1:B99,\"2024-2-29\",C1:C99)&COUNTIF(B1:B99,DATE(2024,2,29))",
         "\"12122\""},
        {"COUNTIF(A1,\">2011-3-4\")&COUNTIF(A1,\"2011-3-5\")&COUNTIF(A1,\">2011-3-5\")", "\"110\""},
        {"NETWORKDAYS(DATE(2011,3,1),DATE(2011,3,31))", "23"},
        {"COUPNCD(DATE(2011,1,25),DATE(2011,11,15),2)=DATE(2011,5,15)", "TRUE"},
        {"YEAR(TODAY())>2020", "TRUE"},
    });
}
