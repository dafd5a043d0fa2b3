#include "demo/demo_report.h"
#include "demo/StatementSheet.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace selfreport::demo {

namespace {

enum class LineKind {
    caption, ///< opens a section
    item,
    section, ///< sum of the section's items
    total,   ///< sum of all sections so far
};

struct BalanceLine {
    LineKind kind;
    std::string_view label;
    std::string_view plus{};  ///< account expressions that add, parted by blanks
    std::string_view minus{}; ///< and those that reduce them
};

constexpr BalanceLine assets[] = {
    {LineKind::caption, "流动资产："},
    {LineKind::item, "货币资金", "1001:1012"},
    {LineKind::item, "交易性金融资产", "1101"},
    {LineKind::item, "应收票据", "1121"},
    {LineKind::item, "应收账款", "1122", "1231"},
    {LineKind::item, "预付款项", "1123"},
    {LineKind::item, "应收利息", "1132"},
    {LineKind::item, "应收股利", "1131"},
    {LineKind::item, "其他应收款", "1221"},
    {LineKind::item, "存货", "1402:1411", "1471"},
    {LineKind::item, "其他流动资产", "190101"},
    {LineKind::section, "流动资产合计"},
    {LineKind::caption, "非流动资产："},
    {LineKind::item, "长期应收款", "1531"},
    {LineKind::item, "长期股权投资", "1511"},
    {LineKind::item, "固定资产", "1601", "1602 1603"},
    {LineKind::item, "在建工程", "1604"},
    {LineKind::item, "固定资产清理", "1606"},
    {LineKind::item, "无形资产", "1701", "1702"},
    {LineKind::item, "长期待摊费用", "1801"},
    {LineKind::item, "递延所得税资产", "1811"},
    {LineKind::item, "其他非流动资产", "190102"},
    {LineKind::section, "非流动资产合计"},
    {LineKind::total, "资产总计"},
};

constexpr BalanceLine claims[] = {
    {LineKind::caption, "流动负债："},           {LineKind::item, "短期借款", "2001"},
    {LineKind::item, "应付票据", "2201"},        {LineKind::item, "应付账款", "2202"},
    {LineKind::item, "预收款项", "2203"},        {LineKind::item, "应付职工薪酬", "2211"},
    {LineKind::item, "应交税费", "2221"},        {LineKind::item, "应付利息", "2231"},
    {LineKind::item, "应付股利", "2232"},        {LineKind::item, "其他应付款", "2241"},
    {LineKind::section, "流动负债合计"},         {LineKind::caption, "非流动负债："},
    {LineKind::item, "长期借款", "2501"},        {LineKind::item, "长期应付款", "2701"},
    {LineKind::item, "递延收益", "2401"},        {LineKind::item, "递延所得税负债", "2901"},
    {LineKind::section, "非流动负债合计"},       {LineKind::total, "负债合计"},
    {LineKind::caption, "所有者权益："},         {LineKind::item, "实收资本", "4001"},
    {LineKind::item, "资本公积", "4002"},        {LineKind::item, "盈余公积", "4101"},
    {LineKind::item, "未分配利润", "4103 4104"}, {LineKind::section, "所有者权益合计"},
    {LineKind::total, "负债和所有者权益总计"},
};

std::string fetches(std::string_view accounts, char sign, const Fetch& fetch)
{
    std::string text;
    while (!accounts.empty()) {
        const std::size_t end = std::min(accounts.find(' '), accounts.size());
        Fetch one = fetch;
        one.account = accounts.substr(0, end);
        text += (text.empty() && sign == '+') ? std::string() : std::string(1, sign);
        text += acct(one);
        accounts.remove_prefix(std::min(end + 1, accounts.size()));
    }
    return text;
}

/// One half of the sheet: a label, a line number and two amounts.
class BalanceSide {
public:
    BalanceSide(StatementSheet& sheet, int column, int year)
        : m_sheet(sheet)
        , m_column(column)
        , m_year(std::to_string(year))
    {
    }

    /// Fills the sheet's current row.
    void fill(const BalanceLine& line, int number)
    {
        const std::string indent = line.kind == LineKind::item ? "　" : "";
        m_sheet.text(m_column, indent + std::string(line.label));
        if (line.kind == LineKind::caption) {
            m_firstItem = m_sheet.row() + 1;
            return;
        }
        m_sheet.centred(m_column + 1, std::to_string(number));
        m_sheet.formula(m_column + 2, formula(line, m_column + 2, "1"));
        m_sheet.formula(m_column + 3, formula(line, m_column + 3, "2"));
        if (line.kind == LineKind::section)
            m_sections.push_back(m_sheet.row());
    }

private:
    std::string formula(const BalanceLine& line, int column, std::string_view type) const
    {
        const std::string letter = spreadsheet::columnName(column);
        if (line.kind == LineKind::section)
            return "SUM(" + letter + std::to_string(m_firstItem) + ":" + letter +
                   std::to_string(m_sheet.row() - 1) + ")";
        if (line.kind == LineKind::item) {
            const Fetch fetch{{}, std::string(type), m_year, "1", "12"};
            return fetches(line.plus, '+', fetch) + fetches(line.minus, '-', fetch);
        }
        std::string sum;
        for (const int row : m_sections)
            sum += (sum.empty() ? "" : "+") + letter + std::to_string(row);
        return sum;
    }

    StatementSheet& m_sheet;
    int m_column;
    std::string m_year;
    int m_firstItem = 0;
    std::vector<int> m_sections; ///< rows of their sums
};

} // namespace

DemoReport balanceSheet(int year)
{
    DemoReport report = startReport("资产负债表", "资产负债表", true);
    constexpr std::array widths{20, 5, 13, 13, 20, 5, 13, 13};
    StatementSheet sheet(report.workbook->sheet(1), widths);
    sheet.title("资产负债表");
    sheet.underTitle("会企01表", std::to_string(year) + "年12月31日", "单位：元");
    sheet.headings({"资产", "行次", "年初数", "期末数", "负债和所有者权益", "行次", "年初数", "期末数"});
    BalanceSide left(sheet, 1, year);
    BalanceSide right(sheet, 5, year);
    constexpr std::size_t rows = std::max(std::size(assets), std::size(claims));
    for (std::size_t row = 0; row < rows; ++row) {
        sheet.beginRow();
        const bool isLast = row + 1 == rows; // both totals stand on the last line
        const int number = static_cast<int>(row) + 1;
        if (isLast || row + 1 < std::size(assets))
            left.fill(isLast ? assets[std::size(assets) - 1] : assets[row], number);
        right.fill(claims[row], number + static_cast<int>(rows));
        if (isLast)
            sheet.emphasize();
    }
    sheet.note("注：各项目按总账科目的期初余额、期末余额填列。");
    sheet.finish();
    return report;
}

} // namespace selfreport::demo
