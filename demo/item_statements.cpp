#include "demo/demo_report.h"
#include "demo/StatementSheet.h"

#include <array>

namespace selfreport::demo {

namespace {

/// "SUM(C4:C9)"
std::string sumAbove(const StatementSheet& sheet, int column, int firstRow)
{
    const std::string letter = spreadsheet::columnName(column);
    return "SUM(" + letter + std::to_string(firstRow) + ":" + letter + std::to_string(sheet.row() - 1) + ")";
}

void sumRow(StatementSheet& sheet, std::string_view label, int firstRow, int firstColumn, int lastColumn)
{
    sheet.beginRow();
    sheet.text(1, label);
    for (int column = firstColumn; column <= lastColumn; ++column)
        sheet.formula(column, sumAbove(sheet, column, firstRow));
    sheet.emphasize();
}

} // namespace

DemoReport departmentCosts(int year, std::span<const LedgerName> accounts,
                           std::span<const LedgerName> departments)
{
    DemoReport report = startReport("部门费用明细表", "部门费用", true);
    std::vector<int> widths{9, 12};
    std::vector<std::string> headings{"科目代码", "费用项目"};
    for (const LedgerName& department : departments) {
        widths.push_back(11);
        headings.push_back(department.name);
    }
    widths.push_back(12);
    headings.emplace_back("合计");

    StatementSheet sheet(report.workbook->sheet(1), widths);
    sheet.title("部门费用明细表");
    sheet.underTitle("本年累计", std::to_string(year) + "年1月至12月", "单位：元");
    sheet.headings(headings);
    const int firstRow = sheet.row() + 1;
    const int lastColumn = static_cast<int>(widths.size());
    for (const LedgerName& account : accounts) {
        sheet.beginRow();
        sheet.text(1, account.code);
        sheet.text(2, account.name);
        int column = 2;
        for (const LedgerName& department : departments)
            sheet.formula(++column,
                          acct({account.code + "|部门|" + department.code, "8", std::to_string(year)}));
        sheet.formula(lastColumn, "SUM(C" + std::to_string(sheet.row()) + ":" + sheet.cell(column) + ")");
    }
    sumRow(sheet, "费用合计", firstRow, 3, lastColumn);
    sheet.beginRow();
    sheet.text(1, "总账发生额");
    sheet.formula(lastColumn, acct({"6601:6602", "8", std::to_string(year)}));
    sheet.finish();
    return report;
}

DemoReport customerAnalysis(int year, std::span<const LedgerName> customers)
{
    DemoReport report = startReport("应收账款客户分析表", "应收账款", true);
    constexpr std::array widths{10, 26, 14, 14, 14, 14, 9};
    StatementSheet sheet(report.workbook->sheet(1), widths);
    sheet.title("应收账款客户分析表");
    sheet.underTitle("科目：1122", std::to_string(year) + "年1月至12月", "单位：元");
    sheet.headings({"客户代码", "客户名称", "年初余额", "本年借方", "本年贷方", "年末余额", "占比"});
    const int firstRow = sheet.row() + 1;
    const std::string totalRow = std::to_string(firstRow + static_cast<int>(customers.size()));
    constexpr std::array types{"1", "5", "6", "2"};
    for (const LedgerName& customer : customers) {
        sheet.beginRow();
        sheet.text(1, customer.code);
        sheet.text(2, customer.name);
        int column = 2;
        for (const char* type : types)
            sheet.formula(++column, acct({"1122|客户|" + customer.code, type, std::to_string(year)}));
        sheet.percentage(7, sheet.cell(6) + "/$F$" + totalRow);
    }
    sumRow(sheet, "合计", firstRow, 3, 6);
    sheet.percentage(7, sumAbove(sheet, 7, firstRow));
    sheet.finish();
    return report;
}

DemoReport goodsTurnover(int year, std::span<const LedgerName> goods)
{
    DemoReport report = startReport("商品数量金额表", "商品", true);
    constexpr std::array widths{7, 17, 8, 12, 8, 12, 8, 12, 8, 12};
    StatementSheet sheet(report.workbook->sheet(1), widths);
    sheet.title("商品数量金额表");
    sheet.underTitle("科目：1405", std::to_string(year) + "年1月至12月", "单位：件、元");
    sheet.headings({"商品代码", "商品名称", "年初数量", "年初金额", "收入数量", "收入金额", "发出数量",
                    "发出金额", "结存数量", "结存金额"});
    const int firstRow = sheet.row() + 1;
    constexpr std::array types{"9", "1", "11", "3", "12", "4", "10", "2"};
    for (const LedgerName& item : goods) {
        sheet.beginRow();
        sheet.text(1, item.code);
        sheet.text(2, item.name);
        int column = 2;
        for (const char* type : types)
            sheet.formula(++column, acct({"1405|商品|" + item.code, type, std::to_string(year)}));
    }
    sumRow(sheet, "合计", firstRow, 3, 10);
    sheet.finish();
    return report;
}

} // namespace selfreport::demo
