#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

namespace {

/// Five vouchers in A1:D6; criteria stand from F1 on.
FormulaSheet vouchers()
{
    return {{"A1", "科目"},     {"B1", "部门"},     {"C1", "金额"}, {"D1", "Note"},     {"A2", "管理费用"},
            {"B2", "一部"},     {"C2", "100"},      {"D2", "a"},    {"A3", "管理人员"}, {"B3", "二部"},
            {"C3", "250"},      {"A4", "银行存款"}, {"B4", "一部"}, {"C4", "40"},       {"D4", "b"},
            {"A5", "管理费用"}, {"B5", "二部"},     {"C5", "x"},    {"A6", "现金"},     {"B6", "一部"},
            {"C6", "60"},       {"D6", "A"}};
}

} // namespace

// Expected values are counted by hand from the five rows.
TEST(DatabaseFunctions, CriteriaChooseRecords)
{
    struct Case {
        const char* what;
        std::vector<std::pair<std::string, std::string>> criteria;
        const char* formula;
        const char* expected;
    };
    const Case cases[] = {
        {"a text is met by what begins with it", {{"F1", "科目"}, {"F2", "管理"}}, "F1:F2", "350"},
        {"an equals sign asks for the whole text", {{"F1", "科目"}, {"F2", "'=管理费用"}}, "F1:F2", "100"},
        {"wildcards", {{"F1", "科目"}, {"F2", "*款"}}, "F1:F2", "40"},
        {"conditions of a row all hold",
         {{"F1", "部门"}, {"G1", "金额"}, {"F2", "一部"}, {"G2", ">50"}},
         "F1:G2",
         "160"},
        {"any row will do", {{"F1", "部门"}, {"F2", "二部"}, {"F3", "'=一部"}}, "F1:F3", "450"},
        {"one field twice makes a range",
         {{"F1", "金额"}, {"G1", "金额"}, {"F2", ">=60"}, {"G2", "<250"}},
         "F1:G2",
         "160"},
        {"an empty row is met by all", {{"F1", "部门"}, {"F2", "没有"}}, "F1:F3", "450"},
        {"an empty field", {{"F1", "Note"}, {"F2", "'="}}, "F1:F2", "250"},
        {"a filled field", {{"F1", "note"}, {"F2", "<>"}}, "F1:F2", "200"},
        {"letter case is ignored", {{"F1", "NOTE"}, {"F2", "a"}}, "F1:F2", "160"},
        {"a formula is computed for every record",
         {{"F1", "算"}, {"F2", "=C2>AVERAGE(C$2:C$6)"}},
         "F1:F2",
         "250"},
        {"a formula under a field's name is a value", {{"F1", "金额"}, {"F2", "=30+30"}}, "F1:F2", "60"},
    };
    for (const Case& c : cases) {
        FormulaSheet sheet = vouchers();
        for (const auto& [cell, content] : c.criteria)
            sheet.put(cell, content);
        EXPECT_EQ(sheet.evaluate("DSUM(A1:D6,\"金额\"," + std::string(c.formula) + ")"), c.expected)
            << c.what;
    }
}

TEST(DatabaseFunctions, Summaries)
{
    FormulaSheet sheet = vouchers();
    sheet.put("F1", "部门");
    sheet.put("F2", "一部");
    sheet.put("G1", "部门");
    sheet.put("G2", "三部");
    sheet.put("H1", "科目");
    sheet.put("H2", "现金");
    sheet.expect({
        {"DCOUNT(A1:D6,\"金额\",F1:F2)", "3"},
        {"DCOUNT(A1:D6,\"Note\",F1:F2)&DCOUNTA(A1:D6,\"Note\",F1:F2)&DCOUNT(A1:D6,,F1:F2)", "\"033\""},
        {"DMAX(A1:D6,3,F1:F2)&\"/\"&DMIN(A1:D6,3.9,F1:F2)&\"/\"&DPRODUCT(A1:D6,3,F1:F2)",
         "\"100/40/240000\""},
        {"DAVERAGE(A1:D6,3,F1:F2)*3", "200"},
        {"DVARP(A1:D6,3,F1:F2)*9", "5600"},
        {"DVAR(A1:D6,3,F1:F2)*3", "2800"},
        {"ROUND(DSTDEV(A1:D6,3,F1:F2)^2*3+DSTDEVP(A1:D6,3,F1:F2)^2*9,6)", "8400"},
        {"DGET(A1:D6,\"金额\",H1:H2)", "60"},
        {"DGET(A1:D6,\"金额\",F1:F2)", "#NUM!"},
        {"DGET(A1:D6,\"金额\",G1:G2)", "#VALUE!"},
        {"DSUM(A1:D6,3,G1:G2)+DMAX(A1:D6,3,G1:G2)", "0"},
        {"DAVERAGE(A1:D6,3,G1:G2)", "#DIV/0!"},
        {"DSUM(A1:D6,\"无\",F1:F2)", "#VALUE!"},
        {"DSUM(A1:D6,5,F1:F2)", "#VALUE!"},
        {"DSUM(A1:D6,0,F1:F2)", "#VALUE!"},
        {"DSUM(7,1,F1:F2)", "#VALUE!"},
        {"DSUM(A1:D6,3,F1)", "#VALUE!"}, // a name without a condition
        {"DSUM(A:D,3,F1:F2)", "200"},    // whole columns cost what they hold
    });
    sheet.put("C4", "#N/A");
    sheet.expect({{"DSUM(A1:D6,3,F1:F2)", "#N/A"}, {"DSUM(A1:D6,3,H1:H2)", "60"}});
}
