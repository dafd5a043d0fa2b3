#include "demo/demo_report.h"
#include "demo/labelled_cell.h"
#include "demo/StatementSheet.h"

#include <array>

namespace selfreport::demo {

namespace {

/// Reference to the cell so many columns to the right of a label of another report.
std::string referenceTo(const DemoReport& report, std::string_view label, int columnsRight)
{
    return reference(report.name,
                     spreadsheet::cellName(cellBeside(report.workbook->sheet(1), label, columnsRight)), "1");
}

void fillIndicators(StatementSheet& sheet, int year, const DemoReport& balance, const DemoReport& income)
{
    sheet.title("财务摘要");
    sheet.underTitle("主要指标", std::to_string(year) + "年度", "单位：元");
    sheet.headings({"指标", "行次", "年初数", "期末数"});
    int number = 0;
    const auto beginNumbered = [&](std::string_view label) {
        sheet.beginRow();
        sheet.text(1, label);
        sheet.centred(2, std::to_string(++number));
    };
    for (const char* label : {"流动资产合计", "流动负债合计", "资产总计", "负债合计", "所有者权益合计"}) {
        beginNumbered(label);
        sheet.formula(3, referenceTo(balance, label, 2));
        sheet.formula(4, referenceTo(balance, label, 3));
    }
    const int first = sheet.row() - 4;
    const auto ratio = [&](std::string_view label, int over, int under) {
        beginNumbered(label);
        for (const char* column : {"C", "D"})
            sheet.percentage(column[0] - 'A' + 1,
                             column + std::to_string(over) + "/" + column + std::to_string(under));
    };
    ratio("资产负债率", first + 3, first + 2);
    ratio("流动比率", first, first + 1);
    sheet.beginRow();
    sheet.text(1, "损益");
    sheet.centred(3, "本月数");
    sheet.centred(4, "本年累计数");
    sheet.emphasize();
    for (const char* label : {"一、营业收入", "二、营业利润", "三、利润总额", "四、净利润"}) {
        beginNumbered(label);
        sheet.formula(3, referenceTo(income, label, 2));
        sheet.formula(4, referenceTo(income, label, 3));
    }
    ratio("销售净利率", sheet.row(), sheet.row() - 3);
    sheet.finish();
}

/// The departments' costs stand in the row of sums, one column each.
void fillTrade(StatementSheet& sheet, int year, const DemoReport& costs, const DemoReport& customers,
               const DemoReport& goods)
{
    sheet.title("费用与往来");
    sheet.underTitle("本年累计", std::to_string(year) + "年度", "单位：元");
    sheet.headings({"项目", "金额"});
    const int first = sheet.row() + 1;
    const spreadsheet::Sheet& costSheet = costs.workbook->sheet(1);
    const int lastColumn = costSheet.lastDataColumn();
    const int headingRow = cellBeside(costSheet, "费用项目", 0).row;
    for (int column = 3; column < lastColumn; ++column) {
        sheet.beginRow();
        sheet.text(1, costSheet.textByType({column, headingRow}));
        sheet.formula(2, referenceTo(costs, "费用合计", column - 1));
    }
    sheet.beginRow();
    sheet.text(1, "费用合计");
    sheet.formula(2, "SUM(B" + std::to_string(first) + ":B" + std::to_string(sheet.row() - 1) + ")");
    sheet.emphasize();
    sheet.beginRow();
    sheet.text(1, "应收账款年末余额");
    sheet.formula(2, referenceTo(customers, "合计", 5));
    sheet.beginRow();
    sheet.text(1, "商品结存金额");
    sheet.formula(2, referenceTo(goods, "合计", 9));
    sheet.finish();
}

} // namespace

DemoReport financialSummary(int year, const DemoReport& balance, const DemoReport& income,
                            const DemoReport& costs, const DemoReport& customers, const DemoReport& goods)
{
    DemoReport report = startReport("财务摘要", "主要指标", false);
    spreadsheet::demand(report.workbook->addSheet("费用与往来"));
    constexpr std::array indicatorWidths{26, 6, 18, 18};
    StatementSheet indicators(report.workbook->sheet(1), indicatorWidths);
    fillIndicators(indicators, year, balance, income);
    constexpr std::array tradeWidths{34, 24};
    StatementSheet trade(report.workbook->sheet(2), tradeWidths);
    fillTrade(trade, year, costs, customers, goods);
    return report;
}

} // namespace selfreport::demo
