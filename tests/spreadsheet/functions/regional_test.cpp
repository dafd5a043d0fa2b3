#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

TEST(RegionalFunctions, EuroAndItsForerunners)
{
    FormulaSheet sheet;
    sheet.expect({
        {"EUROCONVERT(1.2,\"DEM\",\"eur\")", "0.61"},
        {"EUROCONVERT(1,\"FRF\",\"EUR\",TRUE,3)", "0.152"},
        {"EUROCONVERT(1,\"FRF\",\"DEM\",TRUE,3)", "0.29728616"},
        {"EUROCONVERT(1,\"FRF\",\"DEM\")", "0.3"},
        {"EUROCONVERT(10000,\"ITL\",\"ESP\")", "859"}, // no cents in either
        {"EUROCONVERT(1,\"USD\",\"EUR\")", "#VALUE!"},
        {"EUROCONVERT(1,\"FRF\",\"DEM\",TRUE,2)", "#VALUE!"},
    });
}

// After the rules of Thai number words: ten and twenty are irregular, a last one behind others is เอ็ด.
TEST(RegionalFunctions, ThaiWords)
{
    FormulaSheet sheet;
    sheet.expect({
        {"BAHTTEXT(1234)", "\"หนึ่งพันสองร้อยสามสิบสี่บาทถ้วน\""},
        {"BAHTTEXT(0.25)", "\"ยี่สิบห้าสตางค์\""},
        {"BAHTTEXT(-1000021.5)", "\"ลบหนึ่งล้านยี่สิบเอ็ดบาทห้าสิบสตางค์\""},
        {"BAHTTEXT(1E12)", "\"หนึ่งล้านล้านบาทถ้วน\""},
        {"BAHTTEXT(0.004)", "\"ศูนย์บาทถ้วน\""},
        {"BAHTTEXT(\"x\")", "#VALUE!"},
        {"THAINUMSOUND(111.05)", "\"หนึ่งร้อยสิบเอ็ดจุดศูนย์ห้า\""},
        {"THAINUMSTRING(12)", "\"หนึ่งสอง\""},
        {"THAIDIGIT(\"7-90\")", "\"๗-๙๐\""},
        {"ISTHAIDIGIT(\"๗七๐\")", "FALSE"},
        {"ISTHAIDIGIT(\"๗๙\")&ISTHAIDIGIT(\"๗9๐\")&ISTHAIDIGIT(\"\")", "\"TRUEFALSEFALSE\""},
        {"THAISTRINGLENGTH(\"ที่นี่ab\")", "4"},
        {"THAIDAYOFWEEK(40607)&THAIMONTHOFYEAR(40607)&THAIYEAR(40607)", "\"วันเสาร์มีนาคม2554\""},
        {"THAIYEAR(-1)", "#NUM!"},
        {"ROUNDBAHTUP(1.1)-ROUNDBAHTDOWN(1.1)", "0.25"},
        {"DATESTRING(DATE(2005,3,5))", "\"05年03月05日\""},
    });
}
