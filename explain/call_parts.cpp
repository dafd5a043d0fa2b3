#include "explain/call_parts.h"

#include "explain/OpenedCall.h"
#include "failures/failure_text.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/chinese_collation.h"
#include "platform/database/dialect/sql_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace selfreport {

// Every part is asked for by a call of its own, and so is what is left over: nothing is found by subtracting
// the other parts from the whole. So a sum that differs from the whole says that the ledger's own rows do not
// add up, or that a part was forgotten here.

using Account = AccountChart::Account;

namespace {

std::string captionOf(const Account& account)
{
    return account.code + " " + account.name;
}

/// Balances are debit-positive, and amounts that are signed by the account's direction mean that of each.
double factorOf(const AcctKind& kind, const Account& child, const Account& above)
{
    const bool isSigned = kind.byDirection || kind.column.front() == 'e';
    return isSigned ? child.direction * above.direction : 1;
}

constexpr const char* unnamable = "代码里有“:”或“|”，公式不能单取";

/// A range from the first to the last code of a table. A code that no formula can name is cut off where that
/// begins, and what follows it is behind all that can stand there.
std::string rangeOfAll(const std::string& first, const std::string& last)
{
    const std::size_t end = last.find_first_of(":|");
    return first.substr(0, first.find_first_of(":|")) + ":" +
           (end == last.npos ? last : last.substr(0, end) + "龥");
}

/// A part of one code. A star in it would be a pattern; a range knows none, and from a code to itself is that
/// code.
/// @param call  the call of what it is given
template <class OfCode>
CallPart partOf(std::string caption, const std::string& code, OfCode call)
{
    if (code.find_first_of(":|") != std::string::npos)
        return {.item = std::move(caption), .failure = unnamable};
    const bool isPattern = code.find('*') != std::string::npos;
    return {.item = std::move(caption), .arguments = call(isPattern ? code + ":" + code : code)};
}

} // namespace

std::string PartsWay::text() const
{
    switch (by) {
    case PartsBy::accounts:
        return "匹配科目";
    case PartsBy::subaccounts:
        return "下级科目";
    case PartsBy::items:
        return className;
    case PartsBy::movement:
        return "期初、借方和贷方";
    case PartsBy::periods:
        return "期间";
    case PartsBy::previous:
        return "上期期末";
    case PartsBy::vouchers:
        return "凭证";
    }
    return {};
}

bool CallParts::isWhole() const
{
    return std::abs(difference) < leastDifference;
}

AccountChart::AccountChart(Connection& connection)
{
    const Recordset rows =
        connection.query("select fitemid,fNumber,fName,fParentId,fDirection from tblAccount");
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        const std::int64_t id = rows.integer(row, "fitemid");
        m_accounts[id] = {id, rows.integer(row, "fParentId"), rows.integer(row, "fDirection") < 0 ? -1 : 1,
                          rows.text(row, "fNumber"), rows.text(row, "fName")};
    }
}

const Account* AccountChart::ofId(std::int64_t id) const
{
    const auto found = m_accounts.find(id);
    return found == m_accounts.end() ? nullptr : &found->second;
}

const Account* AccountChart::ofCode(std::string_view code) const
{
    const auto found = std::ranges::find_if(
        m_accounts, [&](const auto& entry) { return compareChinese(entry.second.code, code) == 0; });
    return found == m_accounts.end() ? nullptr : &found->second;
}

std::vector<const Account*> AccountChart::childrenOf(std::int64_t id) const
{
    std::vector<const Account*> children;
    for (const auto& [other, account] : m_accounts)
        if (account.parent == id && other != id)
            children.push_back(&account);
    std::ranges::sort(children, {}, &Account::code);
    return children;
}

std::vector<const Account*> CallOpening::matched(const Call& call)
{
    const Recordset rows =
        m_connection.query("select b.fitemid from tblAccount as b where 1=1" +
                           codeCondition("b.fNumber", call.expression.codes) + " order by b.fNumber");
    std::vector<const Account*> accounts;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        if (const Account* account = m_chart.ofId(rows.integer(row, "fitemid")))
            accounts.push_back(account);
    return accounts;
}

/// 0 if the matched accounts stand on both sides, or there are none.
int CallOpening::commonDirection(const Call& call)
{
    if (call.account)
        return call.account->direction;
    int direction = 0;
    for (const Account* account : matched(call)) {
        if (direction != 0 && direction != account->direction)
            return 0;
        direction = account->direction;
    }
    return direction;
}

/// Classes that the account is kept by and that the call leaves open.
std::vector<std::string> CallOpening::classesOf(const Call& call)
{
    std::vector<std::string> names;
    const bool countsSides = call.kind->side != AcctSide::both;
    if (!call.account || (countsSides && call.expression.qualifiers.empty()))
        return names; // one side of each combination is no sum over items
    const Recordset rows =
        m_connection.query("select k.fItemname from tblAccountHSDetail as h join tblItemClass as k on "
                           "k.fitemclassid=h.fitemclassid where h.fDetailId=" +
                           std::to_string(call.account->id) + " order by k.fitemclassid");
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        if (const std::string name = rows.text(row, 0); !call.namesOneItemOf(name))
            names.push_back(name);
    return names;
}

std::vector<PartsWay> CallOpening::waysOf(const LedgerArguments& arguments)
{
    const Call call(arguments, m_chart);
    std::vector<PartsWay> ways;
    if (!call.kind || arguments.account.empty())
        return ways;
    const AcctKind& kind = *call.kind;
    const bool countsSides = kind.side != AcctSide::both;
    if (!call.account && !call.namesOne())
        ways.push_back({PartsBy::accounts, {}});
    if (call.account && !countsSides && !m_chart.childrenOf(call.account->id).empty())
        ways.push_back({PartsBy::subaccounts, {}});
    for (const std::string& name : classesOf(call))
        ways.push_back({PartsBy::items, name});
    if (call.isClosing() && commonDirection(call) != 0)
        ways.push_back({PartsBy::movement, {}});
    if (call.hasPeriods())
        ways.push_back({PartsBy::periods, {}});
    // A year may end with periods that some items have and others have not.
    if (call.isOpening() && call.account && (call.first() > 1 || call.items().empty()))
        ways.push_back({PartsBy::previous, {}});
    if (call.account && call.hasVouchers())
        ways.push_back({PartsBy::vouchers, {}});
    return ways;
}

CallParts CallOpening::partsOf(const LedgerArguments& arguments, const PartsWay& way,
                               const VouchersPlace& vouchers)
{
    CallParts parts;
    try {
        const Call call(arguments, m_chart);
        const bool asksOne =
            way.by == PartsBy::subaccounts || way.by == PartsBy::items || way.by == PartsBy::vouchers;
        if (!call.kind)
            parts.failure = "取数类型不存在，不能展开";
        else if (asksOne && !call.account)
            parts.failure = "科目不存在，不能展开";
        else if (way.by == PartsBy::accounts)
            byAccounts(parts, call);
        else if (way.by == PartsBy::subaccounts)
            bySubaccounts(parts, call);
        else if (way.by == PartsBy::items)
            byItems(parts, call, way.className);
        else if (way.by == PartsBy::movement)
            byMovement(parts, call);
        else if (way.by == PartsBy::periods)
            byPeriods(parts, call);
        else if (way.by == PartsBy::previous)
            byPrevious(parts, call);
        else
            byVouchers(parts, call, vouchers);
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError& error) {
        parts = {};
        parts.failure = failures::sentenceOf(error);
    }
    return parts;
}

/// One that gets no answer in the wave is made alone, for its reason.
std::vector<LedgerAnswer> CallOpening::answers(std::span<const LedgerArguments> calls)
{
    std::vector<LedgerAnswer> all;
    const auto together = fetchLedger(m_connection, calls);
    for (std::size_t at = 0; at < calls.size(); ++at)
        all.push_back(together[at] ? *together[at] : fetchLedgerAlone(m_connection, calls[at]));
    return all;
}

/// Fetches the whole and all parts that have no amount yet, in one wave, and adds them up.
void CallOpening::fetch(CallParts& parts, const Call& call)
{
    std::vector<LedgerArguments> calls{call.arguments};
    for (const CallPart& part : parts.parts) {
        if (part.arguments.account.empty())
            continue;
        calls.push_back(part.arguments);
        if (part.less)
            calls.push_back(*part.less);
    }
    const std::vector<LedgerAnswer> found = answers(calls);
    parts.whole = found.front().amount;
    parts.failure = found.front().failure;
    std::size_t next = 1;
    for (CallPart& part : parts.parts) {
        if (part.failure == unnamable)
            parts.reason = unnamable;
        if (!part.arguments.account.empty()) {
            part.amount = found[next].amount;
            part.failure = found[next++].failure;
            if (part.less) {
                const LedgerAnswer& less = found[next++];
                if (part.amount || less.amount)
                    part.amount = part.amount.value_or(0) - less.amount.value_or(0);
                part.failure = part.failure.empty() ? less.failure : part.failure;
            }
        }
        parts.sum += part.factor * part.amount.value_or(0);
    }
    parts.difference = std::round((parts.whole.value_or(0) - parts.sum) * 10'000) / 10'000;
}

/// An account counts unless one above it is matched too and has a row. So the rows of the topmost are asked
/// for first, and of those without one the matched ones below.
void CallOpening::byAccounts(CallParts& parts, const Call& call)
{
    const std::vector<const Account*> all = matched(call);
    const auto ofAccount = [&](const std::string& code) { return call.ofAccount(code); };
    std::set<std::int64_t> ids;
    for (const Account* account : all)
        ids.insert(account->id);
    const auto nearestAbove = [&](const Account& account) -> std::int64_t {
        std::set<std::int64_t> seen{account.id}; // a chart that is its own parent ends, too
        for (const Account* at = m_chart.ofId(account.parent); at && seen.insert(at->id).second;
             at = m_chart.ofId(at->parent))
            if (ids.contains(at->id))
                return at->id;
        return 0;
    };
    std::multimap<std::int64_t, const Account*> below;
    for (const Account* account : all)
        below.emplace(nearestAbove(*account), account);
    std::vector<std::int64_t> wave{0};
    while (!wave.empty()) {
        std::vector<const Account*> asked;
        std::vector<LedgerArguments> rows;
        for (const std::int64_t above : wave)
            for (auto [at, end] = below.equal_range(above); at != end; ++at) {
                asked.push_back(at->second);
                rows.push_back(call.rowProbe(at->second->code));
            }
        const std::vector<LedgerAnswer> found = answers(rows);
        wave.clear();
        for (std::size_t at = 0; at < asked.size(); ++at)
            if (found[at].amount || !found[at].failure.empty())
                parts.parts.push_back(partOf(captionOf(*asked[at]), asked[at]->code, ofAccount));
            else
                wave.push_back(asked[at]->id);
    }
    std::ranges::sort(parts.parts, {}, &CallPart::item);
    fetch(parts, call);
}

void CallOpening::bySubaccounts(CallParts& parts, const Call& call)
{
    for (const Account* child : m_chart.childrenOf(call.account->id)) {
        parts.parts.push_back(partOf(captionOf(*child), child->code,
                                     [&](const std::string& code) { return call.ofAccount(code); }));
        parts.parts.back().factor = factorOf(*call.kind, *child, *call.account);
    }
    fetch(parts, call);
    std::erase_if(parts.parts, [](const CallPart& part) { return !part.amount && part.failure.empty(); });
}

/// Items that combinations with balances hold; what has none of them is everything less what is found by the
/// class as a whole.
void CallOpening::byItems(CallParts& parts, const Call& call, const std::string& className)
{
    const auto table = itemTableOf(m_connection, className);
    if (!table) {
        parts.failure = "项目类别“" + className + "”不存在或没有项目表";
        return;
    }
    const std::vector<std::string>* narrowed = call.codesOf(className);
    const Recordset items = m_connection.query(
        "select distinct i.fNumber,i.fName from tblItemDetailV as v join " + *table +
        " as i on i.fitemid=v.fitemid where v.fdetailId in (select a.fDetailId from tblAccountBal as a where "
        "a.faccountid=" +
        std::to_string(call.account->id) + " and a.fYear=" + call.year() + ")" +
        (narrowed ? codeCondition("i.fNumber", *narrowed) : "") + " order by i.fNumber");
    for (std::size_t row = 0; row < items.rowCount(); ++row)
        parts.parts.push_back(partOf(items.text(row, 0) + " " + items.text(row, 1), items.text(row, 0),
                                     [&](const std::string& code) { return call.ofItem(className, code); }));
    const Recordset ends = m_connection.query("select min(fNumber) as f,max(fNumber) as g from " + *table);
    if (!narrowed && !ends.isEmpty() && !ends.isNull(0, "f"))
        parts.parts.push_back(
            {.item = "未指定" + className,
             .basis = "全部项目组合减去有" + className + "的组合",
             .arguments = call.ofItem(className, ""),
             .less = call.ofItem(className, rangeOfAll(ends.text(0, "f"), ends.text(0, "g")))});
    fetch(parts, call);
    std::erase_if(parts.parts, [](const CallPart& part) {
        return (!part.amount || (part.less && *part.amount == 0)) && part.failure.empty();
    });
    if (!parts.isWhole() && parts.reason.empty())
        parts.reason = twofoldReason(call, className);
}

/// Two items of one class in a combination are counted twice.
std::string CallOpening::twofoldReason(const Call& call, const std::string& className)
{
    const Recordset rows = m_connection.query(
        "select count(*) as n from (select v.fdetailId from tblItemDetailV as v join tblItemClass as k on "
        "k.fitemclassid=v.fitemclassid where k.fItemname='" +
        sqlQuoted(className) +
        "' and v.fdetailId in (select a.fDetailId from tblAccountBal as a where a.faccountid=" +
        std::to_string(call.account->id) + " and a.fYear=" + call.year() +
        ") group by v.fdetailId having count(*)>1) as x");
    const std::int64_t combinations = rows.integer(0, "n");
    return combinations == 0
               ? ""
               : std::to_string(combinations) + " 个项目组合中有两个以上的" + className + "，各算了一次";
}

void CallOpening::byMovement(CallParts& parts, const Call& call)
{
    const double direction = commonDirection(call);
    const bool isQuantity = call.kind->column.front() == 'd';
    parts.parts.push_back({.item = isQuantity ? "期初数量" : "期初余额",
                           .arguments = call.ofKey(isQuantity ? "9" : "1", call.last(), call.last())});
    parts.parts.push_back({.item = isQuantity ? "收入数量" : "借方发生额",
                           .factor = direction,
                           .arguments = call.ofKey(isQuantity ? "11" : "3", call.last(), call.last())});
    parts.parts.push_back({.item = isQuantity ? "发出数量" : "贷方发生额",
                           .factor = -direction,
                           .arguments = call.ofKey(isQuantity ? "12" : "4", call.last(), call.last())});
    fetch(parts, call);
}

/// Of a call's year the periods that its accounts have rows in, to its last one. A day that was typed for a
/// period, 20251231, or a stray row would else be millions of calls.
std::vector<int> CallOpening::periodsOf(const Call& call, int from)
{
    const Recordset rows = m_connection.query(
        "select distinct a.fPeriod from tblAccount as b join tblAccountBal as a on a.faccountid=b.fitemid "
        "where a.fYear=" +
        call.year() + " and a.fPeriod>=" + std::to_string(from) +
        " and a.fPeriod<=" + std::to_string(call.last()) + codeCondition("b.fNumber", call.expression.codes) +
        " order by a.fPeriod");
    std::vector<int> periods;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        periods.push_back(static_cast<int>(rows.integer(row, 0)));
    return periods;
}

/// Amounts to date begin with what was before the first period that the ledger has.
void CallOpening::byPeriods(CallParts& parts, const Call& call)
{
    const bool isToDate = call.kind->periods == AcctPeriods::last;
    const std::string key = isToDate ? std::string(call.movementKey()) : call.arguments.fetchType;
    const std::vector<int> periods = periodsOf(call, isToDate ? 1 : call.first());
    std::vector<LedgerArguments> probes;
    for (const int period : periods) {
        parts.parts.push_back({.item = call.year() + " 年 " + std::to_string(period) + " 期",
                               .arguments = call.ofKey(key, period, period)});
        if (isToDate)
            probes.push_back(call.ofKey("3", period, period));
    }
    const std::vector<LedgerAnswer> rows = answers(probes);
    const auto begun =
        std::ranges::find_if(rows, [](const LedgerAnswer& one) { return one.amount.has_value(); });
    if (begun != rows.end()) {
        const int period = periods[static_cast<std::size_t>(begun - rows.begin())];
        parts.parts.insert(parts.parts.begin(),
                           {.item = "启用前累计",
                            .basis = std::to_string(period) + " 期的累计减去当期发生额",
                            .arguments = call.ofKey(call.arguments.fetchType, period, period),
                            .less = call.ofKey(key, period, period)});
    }
    fetch(parts, call);
    std::erase_if(parts.parts, [](const CallPart& part) {
        return (!part.amount || (part.less && *part.amount == 0)) && part.failure.empty();
    });
    if (isToDate && !parts.whole && parts.failure.empty() && !hasLastPeriod(call)) {
        parts = {};
        parts.parts.push_back(
            {.item = "账上没有 " + call.year() + " 年 " + std::to_string(call.last()) + " 期"});
    }
}

/// Whether any account has a row in the last period of a call.
bool CallOpening::hasLastPeriod(const Call& call)
{
    const std::string table = call.kind->column.front() == 'e'   ? "tblProfitAndLoss"
                              : call.kind->column.front() == 'd' ? "tblQtyBalance"
                                                                 : "tblAccountBal";
    return !m_connection
                .query("select top 1 fPeriod from " + table + " where fYear=" + call.year() +
                       " and fPeriod=" + std::to_string(call.last()))
                .isEmpty();
}

/// So that a balance can be followed back to the period that it arose in.
void CallOpening::byPrevious(CallParts& parts, const Call& call)
{
    const std::string_view key = call.kind->key == "9" ? "10" : "2";
    std::vector<LedgerArguments> closings;
    if (call.first() > 1)
        closings.push_back(call.ofKey(key, call.first() - 1, call.first() - 1));
    else
        for (const int last : {13, 12}) {
            closings.push_back(call.ofKey(key, last, last));
            closings.back().year = std::to_string(std::stoi(call.year()) - 1);
        }
    const std::vector<LedgerAnswer> found = answers(closings);
    const auto closed =
        std::ranges::find_if(found, [](const LedgerAnswer& one) { return one.amount.has_value(); });
    const bool isCarriedOn = closed != found.end();
    if (isCarriedOn) {
        const LedgerArguments& before = closings[static_cast<std::size_t>(closed - found.begin())];
        parts.parts.push_back(
            {.item = before.year + " 年 " + before.lastPeriod + " 期期末", .arguments = before});
    }
    fetch(parts, call);
    if (isCarriedOn && parts.whole)
        return;
    parts.parts.clear();
    if (parts.whole)
        parts.parts.push_back({.item = "期初", .basis = "上一期没有数据", .amount = parts.whole});
    parts.sum = parts.whole.value_or(0);
    parts.difference = 0;
}

/// Vouchers may begin after the balances, or have been put away, and balances may lie beyond the last of
/// them.
std::string CallOpening::beyondVouchers(const Call& call, int first)
{
    std::int64_t begin = 0, end = 0; // as 202501
    try {
        const Recordset ends = m_connection.query(
            "select min(fYear*100+fPeriod) as f,max(fYear*100+fPeriod) as g from tblVoucher");
        begin = ends.integer(0, "f");
        end = ends.integer(0, "g");
    } catch (const ConnectionLost&) {
        throw;
    } catch (const DatabaseError&) {
        return {}; // the suite's procedure reads them from elsewhere
    }
    const std::int64_t year = std::stoll(call.year()) * 100;
    if (year + first >= begin && year + call.last() <= end)
        return {};
    const auto text = [](std::int64_t period) {
        return std::to_string(period / 100) + "年" + std::to_string(period % 100) + "期";
    };
    return "凭证从" + text(begin) + "到" + text(end) + "，此外的期间只有余额";
}

void CallOpening::byVouchers(CallParts& parts, const Call& call, const VouchersPlace& place)
{
    const int first = call.isClosing() ? call.last() : call.first();
    const VoucherPage read = fetchVouchers(m_connection,
                                           {call.account->code, call.items(), call.arguments.currency,
                                            call.year(), std::to_string(first), std::to_string(call.last())},
                                           place.page);
    if (read.state != VoucherPage::State::read) {
        parts.failure = read.reason;
        return;
    }
    if (call.isClosing())
        parts.parts.push_back({.item = "期初",
                               .arguments = call.ofKey(call.kind->column.front() == 'd' ? "9" : "1",
                                                       call.last(), call.last())});
    fetch(parts, call);
    if (!parts.whole && call.kind->column.front() != 'a')
        return; // the account keeps no quantities, or is no profit and loss: its vouchers say nothing of them
    const double opening = parts.sum;
    parts.lines = read.count;
    parts.sum +=
        call.voucherAmount(read.total) - call.voucherAmount(read.carried) * (call.leavesCarried() ? 1 : 0);
    parts.difference = std::round((parts.whole.value_or(0) - parts.sum) * 10'000) / 10'000;
    if (!parts.isWhole())
        parts.reason = beyondVouchers(call, first);
    const bool isOneSided = !call.isClosing() && call.kind->column != "e.fAmount"; // debits or credits alone
    if (call.isClosing())
        parts.balance = place.page == 1 ? opening : place.balance;
    for (const VoucherLine& line : read.lines) {
        const bool counts = !(line.carriesOver && call.leavesCarried());
        const double amount = counts ? call.voucherAmount(line.amounts) : 0;
        if (parts.balance)
            *parts.balance += amount;
        if (isOneSided && call.voucherAmount(line.amounts) == 0)
            continue; // of the other side
        parts.parts.push_back(
            {.item = line.date + " " + line.number + "/" + std::to_string(line.line) + " " + line.text,
             .basis = (counts ? "" : "结转损益，不计入；") + line.account +
                      (parts.balance ? "，余额 " + call.amountText(*parts.balance) : ""),
             .amount = amount});
    }
}

} // namespace selfreport
