#include "explain/reading_proof.h"

#include "explain/call_parts.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/acct_kinds.h"
#include "text/amount_text.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <random>

namespace selfreport {

// A sound ledger can still be read wrongly. So the same figure is asked for in several ways that share no
// code: by the procedure and from the tables, a range and its accounts, a batch and single calls, a figure
// and its parts. The calls are drawn from what the ledger has, with a fixed seed: who repeats the proof sees
// the same.

namespace {

using State = ProvedIdentity::State;

constexpr std::size_t mostRowsShown = 10;

/// "Acct(1122|客户|K001, 2, , 2025, 1, 3)"
std::string callText(const LedgerArguments& call)
{
    return "Acct(" + call.account + ", " + call.fetchType + ", " + call.currency + ", " + call.year + ", " +
           call.firstPeriod + ", " + call.lastPeriod + ")";
}

std::string answerText(const LedgerAnswer& answer)
{
    if (!answer.failure.empty())
        return answer.failure;
    return answer.amount ? amountText(*answer.amount) : "无数据";
}

void addRow(ProvedIdentity& proved, std::string what, std::string wanted, std::string found,
            double difference)
{
    proved.columns = {"取数", "应为", "实为", "差额"};
    proved.state = State::broken;
    proved.difference += std::abs(difference);
    if (++proved.rows <= static_cast<std::int64_t>(mostRowsShown))
        proved.firstRows.push_back(
            {std::move(what), std::move(wanted), std::move(found), amountText(difference)});
}

/// Calls drawn from what a ledger has.
class DrawnCalls {
public:
    DrawnCalls(Connection& connection, const LedgerOutline& ledger, int year)
        : m_year(year != 0                ? year
                 : ledger.periods.empty() ? 0
                                          : ledger.periods.back().year)
    {
        for (const LedgerPeriod& period : ledger.periods)
            if (period.year == m_year)
                m_lastPeriod = period.period;
        const Recordset accounts = connection.query("select fNumber from tblAccount order by fNumber");
        for (std::size_t row = 0; row < accounts.rowCount(); ++row)
            m_accounts.push_back(accounts.text(row, 0));
        readClasses(connection, ledger);
    }

    bool isEmpty() const { return m_accounts.empty() || m_lastPeriod == 0; }
    int lastPeriod() const { return m_lastPeriod; }
    std::string allAccounts() const { return m_accounts.front() + ":" + m_accounts.back(); }

    LedgerArguments next()
    {
        LedgerArguments call;
        call.account = of(m_accounts);
        const auto classes = m_classesOf.find(call.account);
        const auto kind = below(3);
        if (kind == 0 && call.account.size() > 1)
            call.account = call.account.substr(0, call.account.size() - 1) + "*";
        else if (kind == 1 && classes != m_classesOf.end()) {
            const std::string& name = of(classes->second);
            if (!m_items[name].empty())
                call.account += "|" + name + "|" + of(m_items[name]);
        }
        call.fetchType = of(acctKinds).key;
        return inPeriods(std::move(call));
    }
    LedgerArguments ofKey(std::string account, std::string_view key)
    {
        LedgerArguments call;
        call.account = std::move(account);
        call.fetchType = key;
        return inPeriods(std::move(call));
    }
    std::string account() { return of(m_accounts); }

private:
    void readClasses(Connection& connection, const LedgerOutline& ledger)
    {
        const Recordset rows = connection.query(
            "select b.fNumber,k.fItemname from tblAccountHSDetail as h join tblAccount as b on "
            "b.fitemid=h.fDetailId join tblItemClass as k on k.fitemclassid=h.fitemclassid order by "
            "b.fNumber,k.fitemclassid");
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            m_classesOf[rows.text(row, 0)].push_back(rows.text(row, 1));
        for (const ItemClassTable& one : ledger.classes) {
            const Recordset items =
                connection.query("select top 50 fNumber from " + one.table + " order by fNumber");
            for (std::size_t row = 0; row < items.rowCount(); ++row)
                m_items[one.name].push_back(items.text(row, 0));
        }
    }
    std::size_t below(std::size_t bound) { return m_engine() % bound; }
    template <class Choices>
    const typename Choices::value_type& of(const Choices& choices)
    {
        return choices[below(choices.size())];
    }
    LedgerArguments inPeriods(LedgerArguments call)
    {
        const auto last = 1 + below(static_cast<std::size_t>(m_lastPeriod));
        call.year = std::to_string(m_year);
        call.firstPeriod = std::to_string(1 + below(last));
        call.lastPeriod = std::to_string(last);
        return call;
    }

    std::mt19937 m_engine{27};
    int m_year = 0;
    int m_lastPeriod = 0; ///< of the year
    std::vector<std::string> m_accounts;
    std::map<std::string, std::vector<std::string>> m_classesOf, m_items;
};

/// What the tables hold for one account: no procedure has a say.
std::optional<double> heldAmount(Connection& connection, const LedgerArguments& call)
{
    const AcctKind& kind = *acctKindOf(call.fetchType);
    std::string amount(kind.column);
    if (kind.byDirection)
        amount = "case when b.fDirection<0 then -" + amount + " else " + amount + " end";
    std::string periods = " and a.fPeriod>=" + call.firstPeriod + " and a.fPeriod<=" + call.lastPeriod;
    if (kind.periods != AcctPeriods::all)
        periods =
            " and a.fPeriod=" + (kind.periods == AcctPeriods::first ? call.firstPeriod : call.lastPeriod);
    const auto joined = [](const char* table, const char* alias) {
        const std::string as(alias);
        return std::string(" left join ") + table + " as " + as + " on " + as +
               ".fAccountId=a.faccountid and " + as + ".fDetailid=a.fDetailId and " + as +
               ".fYear=a.fYear and " + as + ".fPeriod=a.fPeriod and " + as + ".fCurrencyid=a.fCurrencyid";
    };
    const std::string from = " from tblAccountBal as a join tblAccount as b on b.fitemid=a.faccountid" +
                             joined("tblQtyBalance", "d") + joined("tblProfitAndLoss", "e") +
                             " where a.fDetailId=0 and a.fYear=" + call.year + periods + " and b.fNumber=?";
    std::string sum = "sum(" + amount + ") as f" + from;
    if (kind.side != AcctSide::both) {
        const std::string side = kind.side == AcctSide::debit ? "x.f>0 then x.f" : "x.f<0 then -x.f";
        sum = "sum(case when " + side + " else 0 end) as f from (select sum(a.fEndBal) as f" + from +
              " group by a.faccountid,a.fDetailId) as x";
    }
    const Recordset rows = connection.query("select " + sum, {call.account});
    if (rows.isEmpty() || rows.isNull(0, "f"))
        return std::nullopt;
    return rows.number(0, "f");
}

void proveFetchTypes(Connection& connection, DrawnCalls& calls, ProvedIdentity& proved)
{
    std::map<std::string, std::string> names;
    const Recordset keys = connection.query("select fKey,fKeyName from tblSelfReportFieldKey");
    for (std::size_t row = 0; row < keys.rowCount(); ++row)
        names[std::string(trimmed(keys.text(row, 0)))] = keys.text(row, 1);
    for (const AcctKind& kind : acctKinds)
        if (const std::string& name = names[std::string(kind.key)]; trimmed(name) != kind.name)
            addRow(proved, "取数类型 " + std::string(kind.key), std::string(kind.name),
                   name.empty() ? "没有" : name, 0);
    for (int account = 0; account < 15; ++account) {
        const std::string code = calls.account();
        for (const AcctKind& kind : acctKinds) {
            const LedgerArguments call = calls.ofKey(code, kind.key);
            const std::optional<double> held = heldAmount(connection, call);
            const LedgerAnswer found = fetchLedgerAlone(connection, call);
            const double difference = found.amount.value_or(0) - held.value_or(0);
            if (std::abs(difference) >= 0.005 || !found.failure.empty())
                addRow(proved, callText(call), held ? amountText(*held) : "无数据", answerText(found),
                       difference);
        }
    }
}

void proveParts(CallOpening& opening, const LedgerArguments& call, const PartsWay& way,
                ProvedIdentity& proved)
{
    const CallParts parts = opening.partsOf(call, way);
    if (parts.failure.empty() && parts.isWhole())
        return;
    const bool isUnread = way.by == PartsBy::vouchers && !parts.failure.empty() && !parts.whole;
    if (isUnread || !parts.reason.empty())
        return; // there are no vouchers, which is told elsewhere, or it is known why the parts are not all
    addRow(proved, callText(call) + " 按" + way.text(), amountText(parts.whole.value_or(0)),
           parts.failure.empty() ? amountText(parts.sum) : parts.failure, parts.difference);
}

void proveRanges(CallOpening& opening, DrawnCalls& calls, ProvedIdentity& proved)
{
    for (const AcctKind& kind : acctKinds)
        proveParts(opening, calls.ofKey(calls.allAccounts(), kind.key), {PartsBy::accounts, {}}, proved);
}

void proveBatches(Connection& connection, DrawnCalls& calls, ProvedIdentity& proved)
{
    constexpr std::size_t many = 200;
    std::vector<LedgerArguments> drawn;
    while (drawn.size() < many)
        drawn.push_back(calls.next());
    const auto together = fetchLedger(connection, drawn);
    for (std::size_t at = 0; at < drawn.size(); ++at) {
        const LedgerAnswer alone = fetchLedgerAlone(connection, drawn[at]);
        const std::string wanted = answerText(alone);
        const std::string found = together[at] ? answerText(*together[at]) : wanted; // it is made alone, too
        if (found != wanted)
            addRow(proved, callText(drawn[at]), wanted, found,
                   together[at]->amount.value_or(0) - alone.amount.value_or(0));
    }
}

void proveExplanations(CallOpening& opening, DrawnCalls& calls, ProvedIdentity& proved)
{
    for (int call = 0; call < 50; ++call) {
        const LedgerArguments drawn = calls.next();
        for (const PartsWay& way : opening.waysOf(drawn))
            proveParts(opening, drawn, way, proved);
    }
}

} // namespace

std::vector<ReadingIdentity> readingIdentities()
{
    using Of = ReadingIdentity::Of;
    return {{"取数：14 种取数类型与余额表一致", Of::fetchTypes},
            {"取数：科目区间 = 各科目之和", Of::ranges},
            {"取数：成批取数 = 逐个取数（200 个）", Of::batches},
            {"取数：联查各级 = 取数（50 个）", Of::explanations}};
}

void proveReading(Connection& connection, const ReadingIdentity& identity, const LedgerOutline& ledger,
                  int year, ProvedIdentity& proved)
{
    using Of = ReadingIdentity::Of;
    DrawnCalls calls(connection, ledger, year);
    if (calls.isEmpty()) {
        proved.state = State::skipped;
        proved.reason = "账套在这一年没有余额";
        return;
    }
    const AccountChart chart(connection);
    CallOpening opening(connection, chart);
    if (identity.of == Of::fetchTypes)
        proveFetchTypes(connection, calls, proved);
    else if (identity.of == Of::ranges)
        proveRanges(opening, calls, proved);
    else if (identity.of == Of::batches)
        proveBatches(connection, calls, proved);
    else
        proveExplanations(opening, calls, proved);
}

} // namespace selfreport
