#include "explain/ledger_identities.h"

#include "explain/period_succession.h"

#include <algorithm>

namespace selfreport {

// Each identity is one statement over whole tables. Two sides that must be equal are put under each other,
// one of them negative, and added up by their key: so a row that is missing on either side shows as well as
// one that differs. Sums of binary numbers carry noise far below a fen, so what is less than half of the last
// place is none.
//
// A million rows are read in a tenth of a second, looked up in half of one and sorted in one, so each
// statement goes through its table once for each side, and what stands beside a row is looked up by the
// primary key. Rows that cannot matter are left out before anything is sorted.

namespace {

using Texts = std::vector<std::string>;

/// Amounts of one kind in a table: base currency, original currency, or quantities.
struct Series {
    std::string name; ///< "本位币"
    std::string opening, in, out, inToDate, outToDate, closing;
};

struct Balances {
    std::string table, what;
    std::vector<Series> series;
    std::string decimals; ///< that count
};

const Balances& money()
{
    static const Balances balances{
        "tblAccountBal",
        "",
        {{"本位币", "fBeginBal", "fDebit", "fCredit", "fYtdDebit", "fYtdCredit", "fEndBal"},
         {"原币", "fBeginBalFor", "fDebitFor", "fCreditFor", "fYtdDebitFor", "fYtdCreditFor", "fEndBalFor"}},
        "2"};
    return balances;
}

const Balances& quantities()
{
    static const Balances balances{
        "tblQtyBalance",
        "数量：",
        {{"数量", "fBeginQty", "fDebitQty", "fCreditQty", "fYtdDebitQty", "fYtdCreditQty", "fEndQty"}},
        "4"};
    return balances;
}

std::string replaced(std::string text, std::string_view what, std::string_view by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

std::string column(const std::string& alias, const std::string& name)
{
    return alias + "." + name;
}

/// "a.faccountid,a.fDetailId,a.fYear,a.fPeriod,a.fCurrencyid"
std::string keyOf(const std::string& alias)
{
    return replaced("@.faccountid,@.fDetailId,@.fYear,@.fPeriod,@.fCurrencyid", "@", alias);
}

std::string ofYear(const std::string& alias, int year)
{
    return year == 0 ? "" : " and " + alias + ".fYear=" + std::to_string(year);
}

std::string rounded(const std::string& sum, const std::string& decimals)
{
    return "round(" + sum + "," + decimals + ")";
}

/// ",round(…,2) as d0,round(…,2) as d1"
std::string differencesOf(const Texts& sums, const std::string& decimals)
{
    std::string text;
    for (std::size_t at = 0; at < sums.size(); ++at)
        text += "," + rounded(sums[at], decimals) + " as d" + std::to_string(at);
    return text;
}

/// "abs(…)>=0.005": rounding each sum would cost more than reading it.
std::string differs(const std::string& sum, const std::string& decimals)
{
    return "abs(" + sum + ")>=0." + std::string(std::stoul(decimals), '0') + "5";
}

/// "(abs(…)>=0.005 or abs(…)>=0.005)"
std::string anyDiffers(const Texts& sums, const std::string& decimals)
{
    std::string text;
    for (const std::string& sum : sums)
        text += (text.empty() ? "(" : " or ") + differs(sum, decimals);
    return text + ")";
}

/// The rows with what people know their keys by. @param found  gives the five columns of a key and d0, d1 …
std::string named(const std::string& found, std::size_t differences)
{
    std::string sql = "select x.fYear,x.fPeriod,b.fNumber,b.fName,x.fDetailId,c.fnumber as fcurrency";
    for (std::size_t at = 0; at < differences; ++at)
        sql += ",x.d" + std::to_string(at);
    return sql + " from (" + found +
           ") as x left join tblAccount as b on b.fitemid=x.faccountid left join tblCurrency as c on "
           "c.fitemid=x.fCurrencyid";
}

LedgerIdentity identity(std::string name, const std::string& found, Texts differences)
{
    const std::size_t count = differences.size();
    return {std::move(name), named(found, count), std::move(differences)};
}

Texts namesOf(const Balances& balances)
{
    Texts names;
    for (const Series& series : balances.series)
        names.push_back(series.name);
    return names;
}

template <class Sum>
Texts sumsOf(const Balances& balances, const Sum& sum)
{
    Texts sums;
    for (const Series& series : balances.series)
        sums.push_back(sum(series));
    return sums;
}

LedgerIdentity movesToItsClosing(const Balances& balances, int year)
{
    const Texts sums = sumsOf(balances, [](const Series& s) {
        return "a." + s.opening + "+a." + s.in + "-a." + s.out + "-a." + s.closing;
    });
    return identity(balances.what + "期初 + 借方 − 贷方 = 期末",
                    "select " + keyOf("a") + differencesOf(sums, balances.decimals) + " from " +
                        balances.table + " as a where " + anyDiffers(sums, balances.decimals) +
                        ofYear("a", year),
                    namesOf(balances));
}

/// Nothing if there is but one period.
std::vector<LedgerIdentity> opensWithTheLastClosing(const Balances& balances, const LedgerOutline& ledger,
                                                    int year)
{
    const std::string& table = balances.table;
    const Texts forward =
        sumsOf(balances, [](const Series& s) { return "coalesce(n." + s.opening + ",0)-a." + s.closing; });
    const Texts fromNothing = sumsOf(balances, [](const Series& s) { return "n." + s.opening; });
    std::string found;
    const auto add = [&](const std::string& at, const Texts& sums, const std::string& from) {
        found += (found.empty() ? "select " : " union all select ") + keyOf(at) +
                 differencesOf(sums, balances.decimals) + " from " + table + " as " + from + " and " +
                 anyDiffers(sums, balances.decimals);
    };
    std::vector<LedgerPeriod> usual = ledger.periods;
    std::erase_if(usual, isAdjustment);
    if (const Successions all = successionsOf(usual, year); !all.empty()) {
        add("a", forward,
            "a left" + besideIt(table, "n", "a", all, true) + " where a.fPeriod<>13 and " +
                between("a", all.front().from, all.back().from) +
                unlessAdjusted(table, "a", ledger.periods, all, true));
        add("n", fromNothing,
            "n left" + besideIt(table, "a", "n", all, false) +
                " where a.faccountid is null and n.fPeriod<>13 and " +
                between("n", all.front().to, all.back().to) +
                unlessAdjusted(table, "n", ledger.periods, all, false));
    }
    Successions into = successionsOf(ledger.periods, year), outOf = into;
    std::erase_if(into, [](const Succession& one) { return !isAdjustment(one.to); });
    std::erase_if(outOf, [](const Succession& one) { return !isAdjustment(one.from); });
    if (!into.empty())
        add("a", forward,
            "n" + besideIt(table, "a", "n", into, false) + " where n.fPeriod=13 and " +
                between("n", into.front().to, into.back().to));
    if (!outOf.empty())
        add("a", forward,
            "a left" + besideIt(table, "n", "a", outOf, true) + " where a.fPeriod=13 and " +
                between("a", outOf.front().from, outOf.back().from));
    if (found.empty())
        return {};
    return {identity(balances.what + "上期期末 = 本期期初（含跨年）", found, namesOf(balances))};
}

/// Before the first period of a ledger that begins within a year there are movements that it does not hold.
LedgerIdentity accumulates(const Balances& balances, const LedgerOutline& ledger, int year)
{
    const auto toDate = [](const std::string& sum, const std::string& movement) {
        return "coalesce(p." + sum + ",0)+a." + movement + "-a." + sum;
    };
    Texts sums, names;
    for (const Series& s : balances.series) {
        sums.push_back(toDate(s.inToDate, s.in));
        sums.push_back(toDate(s.outToDate, s.out));
        names.push_back(s.name + "借方累计");
        names.push_back(s.name + "贷方累计");
    }
    const LedgerPeriod first = ledger.periods.empty() ? LedgerPeriod{} : ledger.periods.front();
    const std::string beginning =
        first.period > 1 ? " and not (p.faccountid is null and a.fYear=" + std::to_string(first.year) +
                               " and a.fPeriod=" + std::to_string(first.period) + ")"
                         : "";
    return identity(balances.what + "累计发生额 = 各期发生额之和",
                    "select " + keyOf("a") + differencesOf(sums, balances.decimals) + " from " +
                        balances.table + " as a left join " + balances.table + " as p on " +
                        sameLine("a", "p") + " and p.fYear=a.fYear and p.fPeriod=a.fPeriod-1 where " +
                        anyDiffers(sums, balances.decimals) + beginning + ofYear("a", year),
                    names);
}

/// Columns of a table whose sums must agree, with what they are called.
struct Summed {
    std::string table, what, decimals;
    Texts columns, names;
    bool bySides = false;        ///< signed by the account's direction already
    bool parentsMayLack = false; ///< a parent without such rows is none that differs
};

Summed summed(const Balances& balances, bool parentsMayLack)
{
    Summed all{balances.table, balances.what, balances.decimals, {}, {}, false, parentsMayLack};
    for (const Series& s : balances.series) {
        const Texts columns{s.opening, s.in, s.out, s.inToDate, s.outToDate, s.closing};
        const Texts names{"期初", "借方", "贷方", "借方累计", "贷方累计", "期末"};
        for (std::size_t at = 0; at < columns.size(); ++at) {
            all.columns.push_back(columns[at]);
            all.names.push_back(s.name + names[at]);
        }
    }
    return all;
}

Summed income()
{
    return {"tblProfitAndLoss",
            "损益：",
            "2",
            {"fAmount", "fAmountFor", "fYtdAmount", "fYtdAmountFor"},
            {"本期", "原币本期", "累计", "原币累计"},
            true,
            false};
}

/// ",x as v0,y as v1" @param sign  "" or "-"
std::string valuesOf(const Summed& all, const std::string& sign)
{
    std::string text;
    for (std::size_t at = 0; at < all.columns.size(); ++at) {
        const std::string value = column("a", all.columns[at]);
        const std::string other = sign.empty() ? "-" : "";
        text +=
            "," +
            (all.bySides ? "case when b.fDirection<0 then " + other + value + " else " + sign + value + " end"
                         : sign + value) +
            " as v" + std::to_string(at);
    }
    return text;
}

Texts sumsOfValues(std::size_t count)
{
    Texts sums;
    for (std::size_t at = 0; at < count; ++at)
        sums.push_back("sum(u.v" + std::to_string(at) + ")");
    return sums;
}

LedgerIdentity parentsHoldTheirChildren(const Summed& all, int year)
{
    const Texts sums = sumsOfValues(all.columns.size());
    const std::string rest = "a.fDetailId,a.fYear,a.fPeriod,a.fCurrencyid";
    const std::string from =
        " from " + all.table + " as a join tblAccount as b on b.fitemid=a.faccountid where ";
    const std::string children = "select b.fParentId as faccountid," + rest + ",0 as m" + valuesOf(all, "") +
                                 from + "b.fParentId<>0" + ofYear("a", year);
    const std::string parents = "select a.faccountid," + rest + ",1 as m" + valuesOf(all, "-") + from +
                                "b.fitemid in (select fParentId from tblAccount)" + ofYear("a", year);
    // Not every suite keeps items on parents.
    const std::string counted = all.parentsMayLack ? "sum(u.m)>0" : "(u.fDetailId=0 or sum(u.m)>0)";
    return identity(all.what + "上级科目 = 下级科目之和",
                    "select " + keyOf("u") + differencesOf(sums, all.decimals) + " from (" + children +
                        " union all " + parents + ") as u group by " + keyOf("u") + " having " +
                        anyDiffers(sums, all.decimals) + " and " + counted,
                    all.names);
}

LedgerIdentity totalsHoldTheirItems(const Summed& all, int year)
{
    const Texts sums = sumsOfValues(all.columns.size());
    std::string values;
    for (std::size_t at = 0; at < all.columns.size(); ++at) {
        const std::string value = column("a", all.columns[at]);
        values +=
            ",case when a.fDetailId=0 then -" + value + " else " + value + " end as v" + std::to_string(at);
    }
    const std::string rest = ".fYear,u.fPeriod,u.fCurrencyid";
    return identity(all.what + "科目 = 核算项目之和",
                    "select u.faccountid,0 as fDetailId,u" + rest + differencesOf(sums, all.decimals) +
                        " from (select " + keyOf("a") + values + " from " + all.table +
                        " as a where a.faccountid in (select faccountid from " + all.table +
                        " where fDetailId<>0)" + ofYear("a", year) + ") as u group by u.faccountid,u" + rest +
                        " having " + anyDiffers(sums, all.decimals) +
                        (all.parentsMayLack ? " and min(abs(u.fDetailId))=0" : ""),
                    all.names);
}

/// Balances that nothing was adjusted in have no row in a thirteenth period.
LedgerIdentity topAccountsBalance(int year)
{
    const Texts sums{"sum(case when a.fPeriod<13 then a.fBeginBal else 0 end)",
                     "sum(a.fDebit)-sum(a.fCredit)", "sum(case when a.fPeriod<13 then a.fEndBal else 0 end)"};
    return identity("一级科目合计 = 0（试算平衡）",
                    "select 0 as faccountid,0 as fDetailId,a.fYear,a.fPeriod,0 as fCurrencyid" +
                        differencesOf(sums, "2") +
                        " from tblAccount as b join tblAccountBal as a on a.faccountid=b.fitemid where "
                        "coalesce(b.fParentId,0)=0 and a.fDetailId=0" +
                        ofYear("a", year) + " group by a.fYear,a.fPeriod having " + anyDiffers(sums, "2"),
                    {"期初", "借方 − 贷方", "期末"});
}

LedgerIdentity incomeAccumulates(const LedgerOutline& ledger, int year)
{
    const Texts sums{"coalesce(p.fYtdAmount,0)+a.fAmount-a.fYtdAmount",
                     "coalesce(p.fYtdAmountFor,0)+a.fAmountFor-a.fYtdAmountFor"};
    const LedgerPeriod first = ledger.periods.empty() ? LedgerPeriod{} : ledger.periods.front();
    const std::string beginning =
        first.period > 1 ? " and not (p.fAccountId is null and a.fYear=" + std::to_string(first.year) +
                               " and a.fPeriod=" + std::to_string(first.period) + ")"
                         : "";
    return identity("损益：累计 = 各期之和",
                    "select " + keyOf("a") + differencesOf(sums, "2") +
                        " from tblProfitAndLoss as a left join tblProfitAndLoss as p on " +
                        sameLine("a", "p") + " and p.fYear=a.fYear and p.fPeriod=a.fPeriod-1 where " +
                        anyDiffers(sums, "2") + beginning + ofYear("a", year),
                    {"累计", "原币累计"});
}

/// Rows that stand beside no balance are never fetched.
LedgerIdentity standsBesideABalance(const std::string& table, const std::string& what,
                                    const std::string& amount, int year)
{
    return identity(what + "每行都有余额行",
                    "select " + keyOf("a") + ",a." + amount + " as d0 from " + table +
                        " as a left join tblAccountBal as p on " + sameLine("a", "p") +
                        " and p.fYear=a.fYear and p.fPeriod=a.fPeriod where p.faccountid is null and a." +
                        amount + "<>0" + ofYear("a", year),
                    {"金额"});
}

LedgerIdentity knowsTheAccounts(int year)
{
    return identity("余额的科目、币别在档案中",
                    "select " + keyOf("a") +
                        ",a.fEndBal as d0 from tblAccountBal as a where (a.faccountid not in (select fitemid "
                        "from tblAccount) or a.fCurrencyid not in (select fitemid from tblCurrency))" +
                        ofYear("a", year),
                    {"期末"});
}

LedgerIdentity knowsTheCombinations(int year)
{
    return identity(
        "余额的项目组合在档案中",
        "select " + keyOf("a") +
            ",a.fEndBal as d0 from tblAccountBal as a where a.fDetailId<>0 and a.fDetailId not in "
            "(select fdetailId from tblItemDetailV)" +
            ofYear("a", year),
        {"期末"});
}

LedgerIdentity knowsTheParents()
{
    return identity("上级科目在档案中",
                    "select a.fitemid as faccountid,0 as fDetailId,0 as fYear,0 as fPeriod,0 as "
                    "fCurrencyid,a.fParentId as d0 from tblAccount as a where a.fParentId<>0 and a.fParentId "
                    "not in (select fitemid from tblAccount)",
                    {"上级科目编号"});
}

/// A combination that has no item left in its class is found by nobody.
std::vector<LedgerIdentity> knowsTheItems(const LedgerOutline& ledger)
{
    std::vector<LedgerIdentity> all;
    for (const ItemClassTable& one : ledger.classes)
        all.push_back(identity(one.name + "在档案中",
                               "select 0 as faccountid,v.fdetailId as fDetailId,0 as fYear,0 as fPeriod,0 as "
                               "fCurrencyid,v.fitemid as d0 from tblItemDetailV as v where v.fitemclassid=" +
                                   one.id + " and v.fitemid not in (select fitemid from " + one.table + ")",
                               {"项目编号"}));
    return all;
}

/// Lines of balances that vouchers are posted to: of the last level, by items where the account has them.
/// Only from the first period with vouchers to the last.
/// @param columns  at least one of which is not 0
std::string postedTo(const std::string& table, const Texts& columns, int year)
{
    std::string moved;
    for (const std::string& name : columns)
        moved += (moved.empty() ? "a." : " or a.") + name + "<>0";
    return " from " + table + " as a join tblAccount as b on b.fitemid=a.faccountid where (" + moved +
           ") and a.faccountid not in (select fParentId "
           "from tblAccount where fParentId is not null) and (a.fDetailId<>0 or a.faccountid not in (select "
           "faccountid from " +
           table +
           " where fDetailId<>0)) and a.fYear*100+a.fPeriod>=(select min(fYear*100+fPeriod) from tblVoucher) "
           "and "
           "a.fYear*100+a.fPeriod<=(select max(fYear*100+fPeriod) from tblVoucher)" +
           ofYear("a", year);
}

LedgerIdentity vouchersBalance(int year)
{
    return {"每张凭证借贷相等",
            "select v.fYear,v.fPeriod,v.fnumber as fvoucher,round(sum(e.fDebit)-sum(e.fCredit),2) as d0 from "
            "tblVoucherEntry as e join tblVoucher as v on v.fvoucherid=e.fvoucherid where 1=1" +
                ofYear("v", year) +
                " group by v.fvoucherid,v.fYear,v.fPeriod,v.fnumber having "
                "round(sum(e.fDebit)-sum(e.fCredit),2)<>0",
            {"借方 − 贷方"}};
}

/// @param columns    of the lines of vouchers and of the table alike
/// @param condition  of lines
LedgerIdentity vouchersAreTheMovement(const std::string& name, const std::string& table, const Texts& columns,
                                      const std::string& condition, const char* places, const Texts& captions,
                                      int year)
{
    std::string posted, moved;
    for (std::size_t at = 0; at < columns.size(); ++at) {
        const std::string as = " as v" + std::to_string(at);
        posted += ",e." + columns[at] + as;
        moved += ",-a." + columns[at] + as;
    }
    const Texts sums = sumsOfValues(columns.size());
    return identity(
        name,
        "select " + keyOf("u") + differencesOf(sums, places) +
            " from (select e.faccountid,e.fDetailId,v.fYear,v.fPeriod,e.fCurrencyid" + posted +
            " from tblVoucherEntry as e join tblVoucher as v on v.fvoucherid=e.fvoucherid where 1=1" +
            condition + ofYear("v", year) + " union all select " + keyOf("a") + moved +
            postedTo(table, columns, year) + ") as u group by " + keyOf("u") + " having " +
            anyDiffers(sums, places),
        captions);
}

LedgerIdentity vouchersMoveTheBalances(int year)
{
    return vouchersAreTheMovement("凭证 = 发生额", "tblAccountBal",
                                  {"fDebit", "fCredit", "fDebitFor", "fCreditFor"}, "", "2",
                                  {"借方", "贷方", "原币借方", "原币贷方"}, year);
}

/// Lines of accounts that keep no quantities may have some all the same.
LedgerIdentity vouchersMoveTheQuantities(int year)
{
    return vouchersAreTheMovement("数量：凭证 = 收入、发出", "tblQtyBalance", {"fDebitQty", "fCreditQty"},
                                  " and e.faccountid in (select fAccountId from tblQtyBalance)", "4",
                                  {"收入", "发出"}, year);
}

LedgerIdentity vouchersAreTheIncome(int year)
{
    const Texts sums = sumsOfValues(2);
    const std::string posted =
        ",case when b.fDirection<0 then e.fCredit-e.fDebit else e.fDebit-e.fCredit end as "
        "v0,case when b.fDirection<0 then e.fCreditFor-e.fDebitFor else "
        "e.fDebitFor-e.fCreditFor end as v1";
    return identity("损益表 = 科目发生额（不含结转）",
                    "select " + keyOf("u") + differencesOf(sums, "2") +
                        " from (select e.faccountid,e.fDetailId,v.fYear,v.fPeriod,e.fCurrencyid" + posted +
                        " from tblVoucherEntry as e join tblVoucher as v on v.fvoucherid=e.fvoucherid join "
                        "tblAccount as b on b.fitemid=e.faccountid where v.fcarryover=0 and e.faccountid in "
                        "(select fAccountId from tblProfitAndLoss)" +
                        ofYear("v", year) + " union all select " + keyOf("a") +
                        ",-a.fAmount as v0,-a.fAmountFor as v1" +
                        postedTo("tblProfitAndLoss", {"fAmount", "fAmountFor"}, year) + ") as u group by " +
                        keyOf("u") + " having " + anyDiffers(sums, "2"),
                    {"本期", "原币本期"});
}

} // namespace

std::vector<LedgerIdentity> ledgerIdentities(const LedgerOutline& ledger, int year)
{
    std::vector<LedgerIdentity> all;
    const auto add = [&](std::vector<LedgerIdentity> more) {
        std::ranges::move(more, std::back_inserter(all));
    };
    for (const Balances* balances : {&money(), &quantities()}) {
        add({movesToItsClosing(*balances, year)});
        add(opensWithTheLastClosing(*balances, ledger, year));
        add({accumulates(*balances, ledger, year)});
        const Summed amounts = summed(*balances, balances == &quantities());
        add({parentsHoldTheirChildren(amounts, year), totalsHoldTheirItems(amounts, year)});
    }
    add({topAccountsBalance(year)});
    add({incomeAccumulates(ledger, year), parentsHoldTheirChildren(income(), year),
         totalsHoldTheirItems(income(), year)});
    add({standsBesideABalance("tblProfitAndLoss", "损益：", "fAmount", year),
         standsBesideABalance("tblQtyBalance", "数量：", "fEndQty", year)});
    add({knowsTheAccounts(year), knowsTheCombinations(year), knowsTheParents()});
    add(knowsTheItems(ledger));
    if (ledger.hasVouchers)
        add({vouchersBalance(year), vouchersMoveTheBalances(year), vouchersMoveTheQuantities(year),
             vouchersAreTheIncome(year)});
    return all;
}

} // namespace selfreport
