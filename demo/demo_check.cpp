#include "demo/demo_check.h"

#include "demo/labelled_cell.h"
#include "fetch/numeric_prefix.h"
#include "platform/database/Connection.h"
#include "reports/report_run.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace selfreport {

namespace {

/// Where a figure stands and the query that computes it. "$…" stands for a piece below.
struct CheckedFigure {
    const char* report;
    int sheet;
    const char* label;
    int columnsRight; ///< of the label
    const char* column;
    const char* query; ///< one row, column f
};

constexpr CheckedFigure figures[] = {
    {"资产负债表", 1, "资产总计", 3, "期末数", "select sum(a.fEndBal) as f $TOTALS and b.fNumber<'2'"},
    {"资产负债表", 1, "负债和所有者权益总计", 3, "期末数",
     "select -sum(a.fEndBal) as f $TOTALS and b.fNumber>='2'"},
    {"资产负债表", 1, "资产总计", 2, "年初数",
     "select sum(a.fBeginBal) as f from tblAccountBal as a inner join tblAccount as b on "
     "b.fitemid=a.faccountid"
     " where a.fDetailId=0 and b.fIsDetail=1 and a.fPeriod=1 and a.fYear=$YEAR and b.fNumber<'2'"},
    {"利润表", 1, "一、营业收入", 3, "本年累计数",
     "select sum(e.fCredit-e.fDebit) as f $ENTRIES and (b.fNumber like '6001%' or b.fNumber like '6051%')"},
    {"利润表", 1, "四、净利润", 3, "本年累计数",
     "select sum(e.fCredit-e.fDebit) as f $ENTRIES and b.fNumber like '6%'"},
    {"利润表", 1, "四、净利润", 2, "本月数",
     "select sum(e.fCredit-e.fDebit) as f $ENTRIES and b.fNumber like '6%' and v.fPeriod=12"},
    {"部门费用明细表", 1, "费用合计", 10, "合计", "select sum(e.fDebit-e.fCredit) as f $ENTRIES $COSTS"},
    {"部门费用明细表", 1, "费用合计", 2, "第一个部门",
     "select sum(e.fDebit-e.fCredit) as f $ENTRIES $COSTS and e.fDetailId in (select c.fdetailId from "
     "tblItemDetailV as c inner join tblDepartment as d on d.fitemid=c.fitemid where d.fNumber='01')"},
    {"应收账款客户分析表", 1, "合计", 5, "年末余额",
     "select sum(a.fEndBal) as f $TOTALS and b.fNumber='1122'"},
    {"应收账款客户分析表", 1, "合计", 3, "本年借方",
     "select sum(e.fDebit) as f $ENTRIES and b.fNumber='1122'"},
    {"商品数量金额表", 1, "合计", 8, "结存数量",
     "select sum(d.fEndQty) as f from tblQtyBalance as d inner join tblAccount as b on b.fitemid=d.fAccountId"
     " where d.fDetailid=0 and b.fNumber='1405' and d.fPeriod=12 and d.fYear=$YEAR"},
    {"商品数量金额表", 1, "合计", 9, "结存金额", "select sum(a.fEndBal) as f $TOTALS and b.fNumber='1405'"},
    {"财务摘要", 1, "资产总计", 3, "期末数", "select sum(a.fEndBal) as f $TOTALS and b.fNumber<'2'"},
    {"财务摘要", 2, "费用合计", 1, "金额", "select sum(e.fDebit-e.fCredit) as f $ENTRIES $COSTS"},
    {"财务摘要", 2, "应收账款年末余额", 1, "金额", "select sum(a.fEndBal) as f $TOTALS and b.fNumber='1122'"},
};

/// What the queries share, the year last as the others hold it.
constexpr std::pair<std::string_view, std::string_view> pieces[] = {
    // Entries of the year's vouchers with their accounts, without what carries profit and loss over.
    {"$ENTRIES", "from tblVoucherEntry as e inner join tblVoucher as v on v.fvoucherid=e.fvoucherid"
                 " inner join tblAccount as b on b.fitemid=e.faccountid"
                 " where v.fexplanation<>'结转本期损益' and v.fYear=$YEAR"},
    // Totals of first-level accounts at the end of the year, debit-positive.
    {"$TOTALS", "from tblAccountBal as a inner join tblAccount as b on b.fitemid=a.faccountid"
                " where a.fDetailId=0 and b.fLevel=1 and a.fPeriod=12 and a.fYear=$YEAR"},
    {"$COSTS", "and (b.fNumber like '6601%' or b.fNumber like '6602%')"},
};

void replaceAll(std::string& text, std::string_view part, std::string_view by)
{
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += by.size())
        text.replace(at, part.size(), by);
}

std::string wholeQuery(std::string query, const std::string& year)
{
    for (const auto& [name, piece] : pieces)
        replaceAll(query, name, piece);
    replaceAll(query, "$YEAR", year);
    return query;
}

std::int32_t idOf(const std::vector<ListedReport>& reports, std::string_view name)
{
    const auto found = std::ranges::find(reports, name, &ListedReport::name);
    if (found == reports.end())
        throw ReportRunError("没有名为“" + std::string(name) + "”的报表");
    return found->id;
}

/// Each report run once.
class DemoRuns {
public:
    explicit DemoRuns(std::string connectionString)
        : m_connectionString(std::move(connectionString))
        , m_reports(listReports(m_connectionString))
    {
    }

    double amount(const CheckedFigure& figure)
    {
        auto& run = m_runs[figure.report];
        if (!run.workbook)
            run = runReport(m_connectionString, idOf(m_reports, figure.report));
        const spreadsheet::Sheet& sheet = run.workbook->sheet(figure.sheet);
        return numericPrefix(sheet.textByType(demo::cellBeside(sheet, figure.label, figure.columnsRight)));
    }

private:
    std::string m_connectionString;
    std::vector<ListedReport> m_reports;
    std::map<std::string, ReportRun> m_runs;
};

} // namespace

bool DemoFigure::agrees() const
{
    return std::abs(shown - queried) < 0.005;
}

std::vector<DemoFigure> demoFigures(const std::string& connectionString)
{
    DemoRuns runs(connectionString);
    const std::unique_ptr<Connection> connection = openConnection(connectionString);
    const std::string year = connection->query("select max(fYear) as y from tblAccountBal").text(0, "y");
    if (year.empty())
        throw ReportRunError("账上没有余额，没有可核对的数");
    std::vector<DemoFigure> checked;
    for (const CheckedFigure& figure : figures)
        checked.push_back({figure.report, std::string(figure.label) + " " + figure.column,
                           runs.amount(figure),
                           connection->query(wholeQuery(figure.query, year)).number(0, "f")});
    return checked;
}

} // namespace selfreport
