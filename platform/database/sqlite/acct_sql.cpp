#include "platform/database/sqlite/acct_sql.h"

#include "platform/database/session/DatabaseError.h"
#include "platform/database/sqlite/HandedText.h"
#include "platform/database/sqlite/tsql_rewriter.h"

#include <algorithm>
#include <utility>

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

std::string periodCondition(const AcctSelection& selection)
{
    switch (selection.kind->periods) {
    case AcctPeriods::first:
        return " and a.fPeriod=" + selection.firstPeriod;
    case AcctPeriods::last:
        return " and a.fPeriod=" + selection.lastPeriod;
    case AcctPeriods::all:
        break;
    }
    return " and a.fPeriod>=" + selection.firstPeriod + " and a.fPeriod<=" + selection.lastPeriod;
}

/// Conditions besides the handed ones, each with " and " before it.
std::string selectionConditions(const HandedText& handed, std::string_view items,
                                const AcctSelection& selection)
{
    std::string conditions;
    if (!handed.joinsItems())
        conditions += " and a.fDetailId=0";
    else if (!items.empty() && !handed.namesOneAccount())
        conditions += accountMayMatch;
    conditions += " and a.fYear=" + selection.year + periodCondition(selection);
    if (!selection.currency.empty())
        conditions += " and a.fCurrencyid=" + selection.currency;
    if (!handed.namesOneAccount())
        conditions += " and not exists(select 1 from tblAccount as p where p.fitemid=b.fParentId" +
                      handed.accountConditions("p") + ")";
    return conditions;
}

/// Whether a literal's N stands at the end, and not the last letter of a word.
bool endsWithPrefix(std::string_view shape)
{
    if (!shape.ends_with('N') && !shape.ends_with('n'))
        return false;
    shape.remove_suffix(1);
    return shape.empty() || std::string_view(" =<>(,").find(shape.back()) != std::string_view::npos;
}

} // namespace

std::string acctSql(std::string_view fromAndWhere, const AcctSelection& selection)
{
    const AcctKind& kind = *selection.kind;
    const std::string amount(selection.currency.empty() ? kind.column : kind.original);
    const HandedText handed(fromAndWhere);
    const std::string items = toEmbeddedSql(handed.itemList());
    const std::string rows =
        toEmbeddedSql(handed.changed(amount) + selectionConditions(handed, items, selection));
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
        if (endsWithPrefix(lifted.shape))
            lifted.shape.pop_back();
        lifted.texts.push_back(std::move(text));
        lifted.shape += "?" + std::to_string(lifted.texts.size());
    }
    return lifted;
}

} // namespace selfreport
