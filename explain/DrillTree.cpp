#include "explain/DrillTree.h"

#include "access/DatabaseAccess.h"
#include "explain/figure_parts.h"
#include "failures/failure_text.h"
#include "fetch/frmEditor1.h"
#include "fetch/ledger_query.h"
#include "fetch/quoted_text.h"
#include "fetch/referenced_place.h"
#include "platform/database/session/Recordset.h"
#include "platform/services/UserWait.h"
#include "spreadsheet/values/number_text.h"
#include "spreadsheet/workbook/Workbook.h"
#include "text/amount_text.h"

#include <cmath>

namespace selfreport {

namespace {

DrillNode nodeOf(const CallPart& part)
{
    DrillNode node;
    node.item = part.item;
    node.basis = part.basis;
    node.factor = part.factor;
    node.amount = part.amount;
    node.isFault = !part.failure.empty();
    node.remark = part.failure;
    if (!part.amount && part.failure.empty())
        node.remark = "无数据";
    if (!part.arguments.account.empty() && !part.less)
        node.call = part.arguments;
    return node;
}

/// What one opening gave, with the chart that it may have read.
struct Opened {
    std::shared_ptr<const AccountChart> chart;
    std::vector<PartsWay> ways;
    CallParts parts;
};

Opened openedCall(Connection& connection, std::shared_ptr<const AccountChart> chart,
                  const LedgerArguments& call, std::size_t way, const VouchersPlace& vouchers)
{
    Opened opened{std::move(chart), {}, {}};
    if (!opened.chart)
        opened.chart = std::make_shared<const AccountChart>(connection);
    CallOpening opening(connection, *opened.chart);
    opened.ways = opening.waysOf(call);
    if (way < opened.ways.size())
        opened.parts = opening.partsOf(call, opened.ways[way], vouchers);
    return opened;
}

/// The account that a call names by its code alone; nothing of a range or pattern.
std::optional<std::string> onlyCode(const LedgerArguments& call)
{
    const std::vector<std::string> codes = parseAccountExpression(call.account).codes;
    const bool isOne = codes.size() == 1 && codes.front().find('*') == std::string::npos;
    return isOne ? std::optional(codes.front()) : std::nullopt;
}

bool namesNoAccount(const LedgerArguments& call, const AccountChart& chart)
{
    const auto code = onlyCode(call);
    return code && !chart.ofCode(*code);
}

/// Why a row did not open. It stays closed: what failed once may be tried again.
void addFault(DrillNode& node, std::string reason)
{
    node.isOpen = false;
    DrillNode fault;
    fault.item = std::move(reason);
    fault.isFault = true;
    node.parts.push_back(std::move(fault));
}

void addDifference(DrillNode& node, const std::string& reason)
{
    if (node.isWhole())
        return;
    DrillNode row;
    row.item = "差额";
    row.basis = reason.empty() ? "账上的数加起来不等于上一级，可用账套自检查找" : reason;
    row.amount = node.difference();
    row.isFault = true;
    node.parts.push_back(std::move(row));
}

} // namespace

double DrillNode::difference() const
{
    return sum && whole ? std::round((*whole - *sum) * 10'000) / 10'000 + 0.0 : 0; // no "-0.00"
}

bool DrillNode::isWhole() const
{
    return std::abs(difference()) < leastDifference;
}

DrillTree::DrillTree(const std::string& report, const spreadsheet::Workbook& workbook,
                     const RunRecord& record, const spreadsheet::CallPlace& cell)
    : m_root(figureParts(workbook, record, cell, true))
{
    const spreadsheet::Sheet& sheet = workbook.sheet(cell.sheet);
    const spreadsheet::CellAddress address{cell.column, cell.row};
    m_head = {.report = report,
              .cell = placeText(workbook, cell),
              .formula = sheet.formula(address),
              .shown = sheet.displayText(address),
              .value = m_root.amount,
              .remark = m_root.remark};
    addDifference(m_root, "公式的各部分加起来不等于单元格的数");
}

void DrillTree::nameAccounts(DatabaseAccess& database)
{
    try {
        m_chart = database.asked<std::shared_ptr<const AccountChart>>(
            [](Connection& connection) { return std::make_shared<const AccountChart>(connection); });
        nameParts(m_root);
    } catch (const WorkCancelled&) {
        throw;
    } catch (const std::exception&) {
        // Rows that are opened say why the database does not answer.
    }
}

/// "1221" becomes "1221 其他应收款".
void DrillTree::nameParts(DrillNode& node) const
{
    for (DrillNode& part : node.parts) {
        const auto code = part.call ? onlyCode(*part.call) : std::nullopt;
        const AccountChart::Account* const account = code && m_chart ? m_chart->ofCode(*code) : nullptr;
        if (account && part.item == part.call->account)
            part.item += " " + account->name;
    }
}

void DrillTree::open(DrillNode& node, DatabaseAccess& database, std::size_t way, std::int64_t page)
{
    node.parts.clear();
    node.sum.reset();
    node.whole.reset();
    node.isOpen = true;
    try {
        if (node.call)
            openCall(node, database, way, page);
        else if (node.reference)
            openReference(node, database);
    } catch (const WorkCancelled&) {
        node.isOpen = false;
        throw;
    } catch (const std::exception& error) {
        node.parts.clear();
        addFault(node, "没有展开：" + failures::sentenceOf(error));
    }
}

/// The figure may have been fetched a while ago: the whole is asked for again together with its parts.
void DrillTree::openCall(DrillNode& node, DatabaseAccess& database, std::size_t way, std::int64_t page)
{
    if (page == 1 || way != node.way)
        node.balances.clear();
    VouchersPlace vouchers{page};
    if (const auto before = node.balances.find(page - 1); before != node.balances.end())
        vouchers.balance = before->second;
    Opened opened =
        database.asked<Opened>([chart = m_chart, call = *node.call, way, vouchers](Connection& connection) {
            return openedCall(connection, chart, call, way, vouchers);
        });
    if (opened.parts.balance)
        node.balances[page] = *opened.parts.balance;
    m_chart = std::move(opened.chart);
    node.ways = std::move(opened.ways);
    node.way = way;
    node.page = page;
    node.pages = std::max<std::int64_t>(1, (opened.parts.lines + vouchersOnPage - 1) / vouchersOnPage);
    if (node.ways.empty()) {
        if (node.isUnknown)
            return;
        const bool isGone = node.amount && namesNoAccount(*node.call, *m_chart);
        m_head.ledgerHasChanged = m_head.ledgerHasChanged || isGone;
        node.isFault = node.isFault || isGone;
        node.remark += (node.remark.empty() ? "" : "；") +
                       (isGone ? "科目" + quoted(node.call->account) + "已不存在" : "没有更细的数了");
        return;
    }
    const CallParts& parts = opened.parts;
    if (!parts.failure.empty())
        return addFault(node, parts.failure);
    for (const CallPart& part : parts.parts)
        node.parts.push_back(nodeOf(part));
    node.sum = parts.sum;
    node.whole = parts.whole.value_or(0);
    if (std::abs(*node.whole - node.amount.value_or(0)) >= leastDifference) {
        m_head.ledgerHasChanged = true;
        node.remark = "账已变动，现为 " + amountText(*node.whole);
    }
    addDifference(node, parts.reason);
}

/// The other report is computed once more, with its own periods; its own readings of reports stay closed, as
/// they do when it is read.
void DrillTree::openReference(DrillNode& node, DatabaseAccess& database)
{
    const RecalculationUnderWay underWay(database);
    frmEditor1 hidden(database);
    const std::string name = node.reference->report;
    const auto content = database.asked<std::optional<std::vector<std::byte>>>(
        [name](Connection& connection) { return storedContent(connection, name); });
    if (!content)
        return addFault(node, missingReport(name).reason);
    hidden.load(*content);
    const auto place = referencedPlace(hidden.fps1, *node.reference);
    if (!place)
        return addFault(node, "报表" + quoted(name) + "没有单元格" + node.reference->cell);
    DrillNode figure = figureParts(hidden.fps1, hidden.record, *place, false);
    node.remark = figure.remark;
    for (DrillNode& part : figure.parts) {
        part.report = name;
        node.parts.push_back(std::move(part));
    }
    nameParts(node);
    if (!figure.sum)
        return;
    const std::string handed = hidden.fps1.sheet(place->sheet).textByType({place->column, place->row});
    node.whole = spreadsheet::parseNumber(handed).value_or(0);
    const double rounding = *node.whole - figure.amount.value_or(0);
    if (rounding != 0)
        node.parts.push_back({.item = "舍入差", .basis = "按单元格的小数位交给别的报表", .amount = rounding});
    node.sum = *figure.sum + rounding;
    if (std::abs(*node.whole - node.amount.value_or(0)) >= leastDifference) {
        m_head.ledgerHasChanged = true;
        node.remark = "账已变动，现为 " + handed;
    }
    addDifference(node, "公式的各部分加起来不等于单元格的数");
}

} // namespace selfreport
