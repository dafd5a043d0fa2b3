#include "platform/database/sqlite/acct_sql.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/sqlite/HandedText.h"
#include "platform/database/sqlite/tsql_rewriter.h"
#include "text/ascii.h"

#include <algorithm>

namespace selfreport {

namespace {

/// Most accounts of a range are kept by no items or by those of other classes. Without this each of them is
/// searched for every combination that meets the conditions, of which there may be thousands.
constexpr std::string_view accountMayMatch =
    " and exists(select 1 from tblAccountBal as h where h.faccountid=b.fitemid and "
    "h.fDetailId>=(select min(fdetailId) from i) and h.fDetailId<=(select max(fdetailId) from i))";

/// Lets a fetch read the index of movements alone. Only there, since other amounts have no such index.
std::string_view whereMoved(std::string_view amount)
{
    return amount == "a.fDebit" || amount == "a.fCredit" ? " and (a.fDebit<>0 or a.fCredit<>0)" : "";
}

std::string periodCondition(const AcctSelection& selection, const std::string& alias)
{
    const std::string period = " and " + alias + ".fPeriod";
    switch (selection.kind->periods) {
    case AcctPeriods::first:
        return period + "=" + selection.firstPeriod;
    case AcctPeriods::last:
        return period + "=" + selection.lastPeriod;
    case AcctPeriods::all:
        break;
    }
    return period + ">=" + selection.firstPeriod + period + "<=" + selection.lastPeriod;
}

/// Which balances count, whatever the account: each with " and " before it, for the alias of the balances.
/// @param firstItem  the first condition on items that is not met already
std::string rowConditions(const HandedText& handed, const AcctSelection& selection, const std::string& alias,
                          std::size_t firstItem)
{
    std::string conditions = " and " + alias + (handed.joinsItems() ? ".fDetailId<>0" : ".fDetailId=0");
    for (std::size_t at = firstItem; at < handed.combinations().size(); ++at)
        conditions += " and " + alias + ".fDetailId in (" +
                      (at == 0 ? "select fdetailId from i" : handed.combinations()[at]) + ")";
    conditions += " and " + alias + ".fYear=" + selection.year + periodCondition(selection, alias);
    if (!selection.currency.empty())
        conditions += " and " + alias + ".fCurrencyid=" + selection.currency;
    return conditions;
}

/// An account is in the amount of a matched one above it, if that has such a row itself.
std::string countsForItself(const HandedText& handed, const AcctSelection& selection)
{
    return " and (b.fParentId=0 or not exists(with recursive u(id) as (select b.fParentId union select "
           "x.fParentId from u cross join tblAccount as x where x.fitemid=u.id) select 1 from u cross join "
           "tblAccount as p cross join tblAccountBal as h where p.fitemid=u.id" +
           handed.accountCondition("p") + " and h.faccountid=p.fitemid" +
           rowConditions(handed, selection, "h", 0) + "))";
}

/// What is joined to the balances for an amount.
std::string_view joinFor(std::string_view amount)
{
    switch (amount.front()) {
    case 'd':
        return " left outer join tblQtyBalance as d on (a.fAccountId=d.fAccountId and a.fYear=d.fYear and "
               "a.fPeriod=d.fPeriod and a.fDetailId=d.fDetailid and a.fCurrencyid=d.fCurrencyid)";
    case 'e':
        return " left outer join tblProfitAndLoss as e on (a.fAccountId=e.fAccountId and a.fYear=e.fYear and "
               "a.fPeriod=e.fPeriod and a.fDetailId=e.fDetailid and a.fCurrencyid=e.fCurrencyid)";
    default:
        return "";
    }
}

/// Balances are found through their accounts, of which there are few, and those of items through the listed
/// combinations: the order is forced, because without statistics the library may scan the whole ledger
/// instead.
std::string selectedRows(const HandedText& handed, const AcctSelection& selection, std::string_view amount)
{
    const bool isListed = !handed.combinations().empty();
    std::string rows = " from tblAccount as b";
    rows += isListed ? " cross join i" : "";
    rows += " cross join tblAccountBal as a on a.faccountid=b.fitemid";
    rows += joinFor(amount);
    rows += isListed ? " where a.fDetailId=i.fdetailId" : " where 1=1";
    rows += handed.accountCondition("b");
    if (isListed && !handed.namesOneAccount())
        rows += accountMayMatch;
    rows += rowConditions(handed, selection, "a", 1);
    return handed.namesOneAccount() ? rows : rows + countsForItself(handed, selection);
}

} // namespace

std::string acctSql(std::string_view fromAndWhere, const AcctSelection& selection)
{
    const AcctKind& kind = *selection.kind;
    const std::string amount(selection.currency.empty() ? kind.column : kind.original);
    const HandedText handed(fromAndWhere);
    const std::string items = handed.combinations().empty()
                                  ? ""
                                  : toEmbeddedSql("with i as materialized (select distinct" +
                                                  handed.combinations().front().substr(6) + ") ");
    const std::string rows = toEmbeddedSql(selectedRows(handed, selection, amount));
    // Four decimals hold every amount and quantity and take the noise of binary sums away.
    if (kind.side == AcctSide::both) {
        const std::string signedAmount = kind.byDirection ? amount + "*b.fDirection" : amount;
        const std::string sum = "sum(" + signedAmount + ")";
        const std::string moved(whereMoved(amount));
        // The same sum again costs nothing; a count would be kept for every row.
        std::string sql = items + "select round(coalesce(" + sum + ",0),4) as f" + rows + moved + " having " +
                          sum + " is not null";
        if (!moved.empty()) // rows that hold nothing but 0 are a figure too
            sql += " or exists(select 1" + rows + ")";
        return sql;
    }
    const std::string sign = kind.side == AcctSide::debit ? "" : "-";
    return items + "select round(sum(max(" + sign + "s,0)),4) as f from (select sum(" + amount + ") as s" +
           rows + " group by a.faccountid,a.fDetailId) having count(*)>0";
}

LiftedSql liftTexts(std::string_view sql)
{
    LiftedSql lifted;
    lifted.shape.reserve(sql.size());
    for (std::size_t at = 0; at < sql.size();) {
        const std::size_t quote = std::min(sql.find('\'', at), sql.size());
        lifted.shape += sql.substr(at, quote - at);
        if (quote == sql.size())
            break;
        std::string text;
        for (at = quote + 1;; ++at) {
            const std::size_t end = sql.find('\'', at);
            if (end == std::string_view::npos)
                throw DatabaseError(unspecifiedError, "取数条件中的引号没有结束");
            text += sql.substr(at, end - at);
            at = end + 1;
            if (at == sql.size() || sql[at] != '\'')
                break;
            text += '\''; // doubled
        }
        lifted.texts.emplace_back(ascii::trimmed(text, " "));
        lifted.shape += "?" + std::to_string(lifted.texts.size());
    }
    return lifted;
}

} // namespace selfreport
