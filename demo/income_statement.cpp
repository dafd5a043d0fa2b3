#include "demo/demo_report.h"
#include "demo/StatementSheet.h"

#include <array>
#include <string_view>

namespace selfreport::demo {

namespace {

/// One line: its accounts, or what it makes of the lines above.
struct IncomeLine {
    std::string_view label;
    std::string_view first{};  ///< account
    std::string_view second{}; ///< a second account that adds to it
    std::string_view result{}; ///< "+1-2": sum of lines by number, instead of accounts
};

constexpr IncomeLine lines[] = {
    {"一、营业收入", "6001", "6051"},
    {"　减：营业成本", "6401", "6402"},
    {"　　　税金及附加", "6403"},
    {"　　　销售费用", "6601"},
    {"　　　管理费用", "6602"},
    {"　　　财务费用", "6603"},
    {"　　　资产减值损失", "6701"},
    {"　加：公允价值变动收益", "6101"},
    {"　　　投资收益", "6111"},
    {"二、营业利润", {}, {}, "+1-2-3-4-5-6-7+8+9"},
    {"　加：营业外收入", "6301"},
    {"　减：营业外支出", "6711"},
    {"三、利润总额", {}, {}, "+10+11-12"},
    {"　减：所得税费用", "6801"},
    {"四、净利润", {}, {}, "+13-14"},
};

std::string resultFormula(std::string_view result, const std::string& letter, int rowOfFirst)
{
    std::string formula;
    while (!result.empty()) {
        formula += result.front();
        result.remove_prefix(1);
        const std::size_t end = std::min(result.find_first_of("+-"), result.size());
        const int line = std::stoi(std::string(result.substr(0, end)));
        formula += letter + std::to_string(rowOfFirst + line - 1);
        result.remove_prefix(end);
    }
    return formula;
}

std::string amountFormula(const IncomeLine& line, Fetch fetch)
{
    fetch.account = line.first;
    const std::string formula = acct(fetch);
    if (line.second.empty())
        return formula;
    fetch.account = line.second;
    return formula + "+" + acct(fetch);
}

} // namespace

DemoReport incomeStatement(int year)
{
    DemoReport report = startReport("利润表", "利润表", false);
    constexpr std::array widths{28, 6, 17, 17};
    StatementSheet sheet(report.workbook->sheet(1), widths);
    sheet.title("利润表");
    sheet.underTitle("会企02表", std::to_string(year) + "年12月", "单位：元");
    sheet.headings({"项目", "行次", "本月数", "本年累计数"});
    const Fetch month{{}, "7", std::to_string(year), "12", "12"};
    const Fetch toDate{{}, "8", std::to_string(year), "1", "12"};
    const int rowOfFirst = sheet.row() + 1;
    int number = 0;
    for (const IncomeLine& line : lines) {
        sheet.beginRow();
        sheet.text(1, line.label);
        sheet.centred(2, std::to_string(++number));
        const bool isResult = !line.result.empty();
        sheet.formula(3, isResult ? resultFormula(line.result, "C", rowOfFirst) : amountFormula(line, month));
        sheet.formula(4,
                      isResult ? resultFormula(line.result, "D", rowOfFirst) : amountFormula(line, toDate));
        if (isResult)
            sheet.emphasize();
    }
    sheet.finish();
    return report;
}

} // namespace selfreport::demo
