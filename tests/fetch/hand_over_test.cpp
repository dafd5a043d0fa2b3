// What a stored cell hands over to REF_F: the text of its type and decimals, whatever a number format code
// makes of it on screen; and how that text counts in ranges.
#include "fetch/inter_report_fetch.h"
#include "fetch/ReportEvaluation.h"
#include "spreadsheet/files/content/content.h"
#include "state/fetch_procedures.h"
#include "state/shared_state.h"
#include "tests/fetch/TestLedger.h"

#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::CellAddress;
using spreadsheet::cellName;
using spreadsheet::CellStyle;
using spreadsheet::CellType;
using spreadsheet::Value;
using spreadsheet::Workbook;

/// A cell and what it hands over by the rules of its type.
struct Handed {
    CellType type;
    int decimals;
    Value value;
    const char* text;
    std::optional<double> counts; ///< in ranges; nothing: passed over
};

const Handed handed[] = {
    {CellType::edit, 0, 1234567.891, "1234567.891", 1234567.891},
    {CellType::edit, 0, -1234.5, "-1234.5", -1234.5},
    {CellType::edit, 0, 0.0, "0", 0},
    {CellType::edit, 0, Value::text("说明"), "说明", {}},
    {CellType::edit, 0, Value::text("2026-12-31"), "2026-12-31", {}},
    {CellType::edit, 0, Value::text("12.5%"), "12.5%", 0.125},
    {CellType::edit, 0, Value::text("￥1,234.50"), "￥1,234.50", 1234.5},
    {CellType::edit, 0, Value::text("(1,234.50)"), "(1,234.50)", -1234.5},
    {CellType::edit, 0, Value::text(" -¥ 5 "), " -¥ 5 ", -5},
    {CellType::edit, 0, Value::text("12,34"), "12,34", {}},
    {CellType::edit, 0, Value::text("％"), "％", {}},
    {CellType::edit, 0, Value::boolean(true), "TRUE", {}},
    {CellType::staticText, 0, -1234.5, "-1234.5", -1234.5},
    {CellType::dropDown, 0, 0.125, "0.125", 0.125},
    {CellType::number, 2, 1234567.891, "1234567.89", 1234567.89},
    {CellType::number, 2, -1234.5, "-1234.50", -1234.5},
    {CellType::number, 2, 0.0, "0.00", 0},
    {CellType::number, 0, -1234.5, "-1235", -1235},
    {CellType::currency, 0, 1234567.891, "￥1,234,567.89", 1234567.89},
    {CellType::currency, 0, -1234.5, "-￥1,234.50", -1234.5},
    {CellType::currency, 0, 0.0, "￥0.00", 0},
    {CellType::percent, 0, 1234.5, "123450.00%", 1234.5},
    {CellType::percent, 0, -0.125, "-12.50%", -0.125},
    {CellType::percent, 0, 0.0, "0.00%", 0},
    {CellType::scientific, 0, -1234.5, "-1.23E+03", -1230},
    {CellType::date, 0, 46387.5, "2026-12-31", {}},
    {CellType::time, 0, 46387.5, "12:00:00", {}},
};

constexpr const char* codes[] = {
    "",
    "0.00,",
    "0.0,,\"百万\"",
    "#,##0;-#,##0;\"–\"",
    "[Red]#,##0.00",
    "[Red]#,##0.00;[Red]#,##0.00",
    "#,##0.00;(#,##0.00)",
    "0%",
    "@",
    ";;;",
    "yyyy\"年\"m\"月\"",
    "\"共\"0.0\"元\"",
    "[DBNum2]General",
    "General;General;General;\"文\"@",
    "[>100]\"多\";\"少\"",
};

/// One row for each of `handed`, one column for each of `codes`.
void fillReport(spreadsheet::Sheet& sheet)
{
    for (int row = 1; row <= static_cast<int>(std::size(handed)); ++row) {
        const Handed& cell = handed[row - 1];
        for (int column = 1; column <= static_cast<int>(std::size(codes)); ++column) {
            CellStyle style;
            style.type = cell.type;
            style.decimals = static_cast<std::uint8_t>(cell.decimals);
            style.numberFormat = spreadsheet::Text(codes[column - 1]);
            sheet.setStyle({column, row}, style);
            sheet.setValue({column, row}, cell.value);
        }
    }
}

std::string reference(CellAddress cell)
{
    return "REF_F(\"甲表\" ,\"" + cellName(cell) + "\" , \"1\")";
}

struct HandOver : testing::Test {
    HandOver()
    {
        Workbook report;
        fillReport(report.sheet(1));
        ledger.addReport(1, "甲表", spreadsheet::saveContent(report));
    }
    test::TestLedger ledger;
};

} // namespace

TEST_F(HandOver, IsByTypeAndDecimalsWhateverTheFormatCode)
{
    Workbook workbook;
    spreadsheet::Sheet& sheet = workbook.sheet(1);
    for (int row = 1; row <= static_cast<int>(std::size(handed)); ++row)
        for (int column = 1; column <= static_cast<int>(std::size(codes)); ++column)
            demand(sheet.setFormula({column, row}, reference({column, row})));
    for (const bool run : {false, true}) {
        ReportEvaluation evaluation(workbook, sharedContext.database);
        evaluation.addSelfFunction();
        ASSERT_TRUE(run ? evaluation.startRun() : evaluation.recalculate());
        for (int row = 1; row <= static_cast<int>(std::size(handed)); ++row)
            for (int column = 1; column <= static_cast<int>(std::size(codes)); ++column)
                EXPECT_EQ(sheet.displayText({column, row}), handed[row - 1].text) << codes[column - 1];
    }
    // A fetch by itself, which shares nothing.
    for (const int column : {2, 4, 5, 10})
        EXPECT_EQ(changeREF_FInfo({"甲表", cellName({column, 16}), "1"}).text, "-1234.50")
            << codes[column - 1];
}

TEST_F(HandOver, CountsInRangesAsInArithmetic)
{
    Workbook workbook;
    spreadsheet::Sheet& sheet = workbook.sheet(1);
    const int rows = static_cast<int>(std::size(handed));
    double sum = 0, least = 0, most = 0;
    int count = 0;
    for (int row = 1; row <= rows; ++row) {
        demand(sheet.setFormula({1, row}, reference({2, row})));
        demand(sheet.setFormula({2, row}, "A" + std::to_string(row) + "+0"));
        const auto counts = handed[row - 1].counts;
        sum += counts.value_or(0);
        least = std::min(least, counts.value_or(0));
        most = std::max(most, counts.value_or(0));
        count += counts.has_value();
    }
    const std::string range = "A1:A" + std::to_string(rows);
    const std::pair<std::string, double> cases[] = {
        {"SUM(" + range + ")", sum},
        {"COUNT(" + range + ")", count},
        {"AVERAGE(" + range + ")", sum / count},
        {"MIN(" + range + ")", least},
        {"MAX(" + range + ")", most},
        {"SUBTOTAL(9," + range + ")", sum},
        {"SUMIF(" + range + ",\"<0\")", -1234.5 * 5 - 5 - 1235 - 0.125 - 1230},
        {"SUMIF(" + range + ",0.125)", 0.25},
        {"SUMPRODUCT(" + range + ")", sum},
        {"LARGE(" + range + ",1)", most},
    };
    for (int i = 0; i < static_cast<int>(std::size(cases)); ++i)
        demand(sheet.setFormula({3, i + 1}, cases[i].first));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    ASSERT_TRUE(evaluation.recalculate());
    for (int i = 0; i < static_cast<int>(std::size(cases)); ++i) {
        const Value result = sheet.value({3, i + 1});
        ASSERT_TRUE(result.isNumber()) << cases[i].first << " " << sheet.displayText({3, i + 1});
        EXPECT_NEAR(result.number(), cases[i].second, 1e-6) << cases[i].first;
    }
    for (int row = 1; row <= rows; ++row) {
        const auto counts = handed[row - 1].counts;
        EXPECT_TRUE(!counts || sheet.value({2, row}) == Value(*counts)) << handed[row - 1].text;
    }
}

TEST_F(HandOver, SumsOfSumsKeepTheirWholeAmounts)
{
    Workbook sums;
    spreadsheet::Sheet& first = sums.sheet(1);
    const CellType types[] = {CellType::currency, CellType::percent, CellType::number};
    for (int column = 1; column <= 3; ++column) {
        CellStyle style;
        style.type = types[column - 1];
        style.decimals = 2;
        style.numberFormat = spreadsheet::Text("[Red]#,##0.0,;;\"–\"");
        for (int row = 1; row <= 4; ++row)
            first.setStyle({column, row}, style);
        for (int row = 1; row <= 3; ++row)
            first.setNumber({column, row}, -1000.25 * row);
        demand(first.setFormula({column, 4},
                                "SUM(" + cellName({column, 1}) + ":" + cellName({column, 3}) + ")"));
    }
    ledger.addReport(2, "乙表", spreadsheet::saveContent(sums));
    Workbook workbook;
    spreadsheet::Sheet& sheet = workbook.sheet(1);
    for (int column = 1; column <= 3; ++column)
        demand(sheet.setFormula({column, 1}, "REF_F(\"乙表\" ,\"" + cellName({column, 4}) + "\" , \"1\")"));
    demand(sheet.setFormula({1, 2}, "SUM(A1:C1)"));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    ASSERT_TRUE(evaluation.recalculate());
    EXPECT_EQ(sheet.displayText({1, 1}), "-￥6,001.50");
    EXPECT_EQ(sheet.displayText({2, 1}), "-600150.00%");
    EXPECT_EQ(sheet.displayText({3, 1}), "-6001.50");
    EXPECT_EQ(sheet.value({1, 2}), Value(-6001.5 * 3));
    // The number that a text counts as stays with it when the report is stored.
    Workbook stored;
    spreadsheet::loadContent(stored, spreadsheet::saveContent(workbook));
    demand(stored.sheet(1).setFormula({1, 3}, "SUM(A1:C1)*2"));
    stored.recalculateChanged();
    EXPECT_EQ(stored.sheet(1).value({1, 3}), Value(-6001.5 * 6));
}

TEST_F(HandOver, AReportStoredWithItsFormulasShownHandsOverItsFigures)
{
    Workbook report;
    spreadsheet::Sheet& sheet = report.sheet(1);
    CellStyle style;
    style.type = CellType::number;
    style.decimals = 1;
    sheet.setStyle({1, 1}, style);
    demand(sheet.setFormula({1, 1}, "10/3"));
    sheet.setStyle({1, 2}, style);
    sheet.setNumber({1, 2}, 2.25);
    {
        ReportEvaluation evaluation(report, sharedContext.database);
        evaluation.showFormulas();
    }
    ASSERT_EQ(sheet.displayText({1, 1}), "10/3");
    ledger.addReport(2, "乙表", spreadsheet::saveContent(report));
    EXPECT_EQ(changeREF_FInfo({"乙表", "A1", "1"}).text, "3.3");
    EXPECT_EQ(changeREF_FInfo({"乙表", "A2", "1"}).text, "2.3");
}

} // namespace selfreport
