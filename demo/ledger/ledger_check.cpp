#include "demo/ledger/demo_ledger.h"
#include "platform/database/Connection.h"

#include <array>

namespace selfreport {

// The generated ledger must be sound before any figure of it is compared with another. Each identity is one
// statement that lists what breaks it, so that the check asks the database alone and not the code that made
// the rows.

namespace {

struct Identity {
    const char* name;
    std::string sql; ///< counts the rows that break it
};

std::string count(const std::string& rows)
{
    return "select count(*) as n from " + rows;
}

/// "a.x=b.x and ..." over the key columns of balances.
std::string sameKey(const std::string& left, const std::string& right, bool withPeriod)
{
    std::string condition = left + ".faccountid=" + right + ".faccountid and " + left +
                            ".fDetailId=" + right + ".fDetailId and " + left + ".fCurrencyid=" + right +
                            ".fCurrencyid";
    if (withPeriod)
        condition +=
            " and " + left + ".fYear=" + right + ".fYear and " + left + ".fPeriod=" + right + ".fPeriod";
    return condition;
}

constexpr const char* amounts[] = {"fBeginBalFor",  "fBeginBal",  "fDebitFor",    "fDebit",
                                   "fCreditFor",    "fCredit",    "fYtdDebitFor", "fYtdDebit",
                                   "fYtdCreditFor", "fYtdCredit", "fEndBalFor",   "fEndBal"};

/// "sum(a.x) as x,..." over the amounts.
std::string sums()
{
    std::string text;
    for (const char* column : amounts)
        text += std::string(",sum(a.") + column + ") as " + column;
    return text;
}

/// "round(s.x-p.x,2)<>0 or ..." over the amounts; sums of doubles carry noise far below a fen.
std::string anyDiffers(const std::string& left, const std::string& right)
{
    std::string text;
    for (const char* column : amounts)
        text += std::string(text.empty() ? "" : " or ") + "round(" + left + "." + column + "-" + right + "." +
                column + ",2)<>0";
    return text;
}

const std::string keyColumns = "a.fDetailId,a.fYear,a.fPeriod,a.fCurrencyid";

std::vector<Identity> balanceIdentities()
{
    const std::string nextPeriod = " (n.fYear=a.fYear and n.fPeriod=a.fPeriod+1)";
    const std::string nextYear = " (n.fYear=a.fYear+1 and n.fPeriod=1)";
    const auto continues = [](const std::string& next, const std::string& where) {
        return count("tblAccountBal as a left outer join tblAccountBal as n on " + sameKey("a", "n", false) +
                     " and" + next + " where " + where +
                     " and (round(isnull(n.fBeginBal,0)-a.fEndBal,2)<>0 or "
                     "round(isnull(n.fBeginBalFor,0)-a.fEndBalFor,2)<>0)");
    };
    return {
        {"opening + debit - credit = closing",
         count("tblAccountBal where round(fBeginBal+fDebit-fCredit-fEndBal,2)<>0 or "
               "round(fBeginBalFor+fDebitFor-fCreditFor-fEndBalFor,2)<>0")},
        {"opening + in - out = closing quantity",
         count("tblQtyBalance where fBeginQty+fDebitQty-fCreditQty<>fEndQty")},
        {"a period opens with the last closing", continues(nextPeriod, "a.fPeriod<12")},
        {"a year opens with the last closing",
         continues(nextYear, "a.fPeriod=12 and a.fYear<(select max(fYear) from tblAccountBal)")},
        {"year to date = earlier + movement",
         count("tblAccountBal as a left outer join tblAccountBal as p on " + sameKey("a", "p", false) +
               " and p.fYear=a.fYear and p.fPeriod=a.fPeriod-1 where "
               "round(isnull(p.fYtdDebit,0)+a.fDebit-a.fYtdDebit,2)<>0 or "
               "round(isnull(p.fYtdCredit,0)+a.fCredit-a.fYtdCredit,2)<>0 or "
               "round(isnull(p.fYtdDebitFor,0)+a.fDebitFor-a.fYtdDebitFor,2)<>0 or "
               "round(isnull(p.fYtdCreditFor,0)+a.fCreditFor-a.fYtdCreditFor,2)<>0")},
        {"balances of a period add up to 0",
         count(
             "(select a.fYear,a.fPeriod from tblAccountBal as a inner join tblAccount as b on "
             "b.fitemid=a.faccountid where b.fIsDetail=1 and a.fDetailId=0 group by a.fYear,a.fPeriod having "
             "round(sum(a.fEndBal),2)<>0 or round(sum(a.fDebit)-sum(a.fCredit),2)<>0) as x")},
    };
}

std::vector<Identity> rollUpIdentities()
{
    const std::string children = "(select b.fParentId as faccountid," + keyColumns + sums() +
                                 " from tblAccountBal as a inner join tblAccount as b on "
                                 "b.fitemid=a.faccountid where b.fParentId<>0 group "
                                 "by b.fParentId," +
                                 keyColumns + ") as s";
    const std::string items = "(select a.faccountid,0 as fDetailId,a.fYear,a.fPeriod,a.fCurrencyid" + sums() +
                              " from tblAccountBal as a where a.fDetailId<>0 group by "
                              "a.faccountid,a.fYear,a.fPeriod,a.fCurrencyid) as s";
    const auto missing = [](const std::string& rolled) {
        return rolled + " left outer join tblAccountBal as p on " + sameKey("s", "p", true) +
               " where p.faccountid is null or " + anyDiffers("s", "p");
    };
    return {
        {"parents = children", count(missing(children))},
        {"a parent has children", count("tblAccountBal as p inner join tblAccount as b on "
                                        "b.fitemid=p.faccountid where b.fIsDetail=0 and not "
                                        "exists(select 1 from tblAccount as k inner join tblAccountBal as a "
                                        "on a.faccountid=k.fitemid where "
                                        "k.fParentId=p.faccountid and a.fDetailId=p.fDetailId and "
                                        "a.fYear=p.fYear and a.fPeriod=p.fPeriod and "
                                        "a.fCurrencyid=p.fCurrencyid)")},
        {"items = account", count(missing(items))},
        {"an account kept by items has items",
         count("tblAccountBal as p where p.fDetailId=0 and p.faccountid in (select fDetailId from "
               "tblAccountHSDetail) and not exists(select 1 from tblAccountBal as a where "
               "a.faccountid=p.faccountid "
               "and a.fDetailId<>0 and a.fYear=p.fYear and a.fPeriod=p.fPeriod and "
               "a.fCurrencyid=p.fCurrencyid)")},
        {"items = account in quantities",
         count("(select a.fAccountId,a.fYear,a.fPeriod,a.fCurrencyid from tblQtyBalance as a group by "
               "a.fAccountId,a.fYear,a.fPeriod,a.fCurrencyid having sum(case when a.fDetailid=0 then "
               "a.fEndQty else "
               "-a.fEndQty end)<>0 or sum(case when a.fDetailid=0 then a.fDebitQty else -a.fDebitQty "
               "end)<>0) as x")},
    };
}

std::vector<Identity> voucherIdentities()
{
    const std::string posted =
        "(select e.faccountid,e.fDetailId,v.fYear,v.fPeriod,e.fCurrencyid,sum(e.fDebit) as "
        "fDebit,sum(e.fCredit) "
        "as fCredit,sum(e.fDebitFor) as fDebitFor,sum(e.fCreditFor) as fCreditFor from tblVoucherEntry as e "
        "inner "
        "join tblVoucher as v on v.fvoucherid=e.fvoucherid group by "
        "e.faccountid,e.fDetailId,v.fYear,v.fPeriod,e.fCurrencyid) as s";
    return {
        {"vouchers balance", count("(select fvoucherid from tblVoucherEntry group by fvoucherid having "
                                   "round(sum(fDebit)-sum(fCredit),2)<>0) as x")},
        {"a voucher has entries",
         count("tblVoucher as v where not exists(select 1 from tblVoucherEntry as e where "
               "e.fvoucherid=v.fvoucherid)")},
        {"movements = vouchers",
         count(posted + " left outer join tblAccountBal as p on " + sameKey("s", "p", true) +
               " where p.faccountid is null or round(s.fDebit-p.fDebit,2)<>0 or "
               "round(s.fCredit-p.fCredit,2)<>0 or "
               "round(s.fDebitFor-p.fDebitFor,2)<>0 or round(s.fCreditFor-p.fCreditFor,2)<>0")},
        {"all movements come from vouchers", count("(select 1 as one where round((select sum(fDebit) from "
                                                   "tblVoucherEntry)-(select sum(a.fDebit) from "
                                                   "tblAccountBal as a inner join tblAccount as b on "
                                                   "b.fitemid=a.faccountid where b.fIsDetail=1 and "
                                                   "a.fDetailId=0),2)<>0) as x")},
        {"there are two years of vouchers", count("(select 1 as one where (select count(*) from (select "
                                                  "distinct fYear,fPeriod from tblVoucher) as "
                                                  "y)<>24) as x")},
    };
}

std::vector<Identity> profitIdentities()
{
    return {
        {"profit and loss is carried over", count("tblAccountBal as a inner join tblAccount as b on "
                                                  "b.fitemid=a.faccountid where b.fNumber like '6%' "
                                                  "and round(a.fEndBal,2)<>0")},
        {"profit and loss amounts = the result carried over",
         count("(select e.fYear,e.fPeriod from tblProfitAndLoss as e inner join tblAccount as b on "
               "b.fitemid=e.fAccountId where b.fLevel=1 and e.fDetailid=0 group by e.fYear,e.fPeriod having "
               "round(sum(-b.fDirection*e.fAmount)-(select sum(r.fCredit-r.fDebit) from tblVoucherEntry as r "
               "inner "
               "join tblVoucher as v on v.fvoucherid=r.fvoucherid inner join tblAccount as p on "
               "p.fitemid=r.faccountid where p.fNumber='4103' and v.fcarryover=1 and "
               "v.fYear=e.fYear and v.fPeriod=e.fPeriod),2)<>0) as x")},
        {"profit and loss amounts = vouchers that carry nothing over",
         count("(select e.faccountid,e.fDetailId,v.fYear,v.fPeriod,e.fCurrencyid,sum(e.fDebit-e.fCredit) as "
               "f from tblVoucherEntry as e inner join tblVoucher as v on v.fvoucherid=e.fvoucherid where "
               "v.fcarryover=0 group by e.faccountid,e.fDetailId,v.fYear,v.fPeriod,e.fCurrencyid) as s inner "
               "join tblAccount as b on b.fitemid=s.faccountid left outer join tblProfitAndLoss as p on " +
               sameKey("s", "p", true) +
               " where b.fNumber like '6%' and round(isnull(p.fAmount,0)-b.fDirection*s.f,2)<>0")},
        {"profit and loss to date = earlier + amount",
         count("tblProfitAndLoss as a left outer join tblProfitAndLoss as p on " + sameKey("a", "p", false) +
               " and p.fYear=a.fYear and p.fPeriod=a.fPeriod-1 where "
               "round(isnull(p.fYtdAmount,0)+a.fAmount-a.fYtdAmount,2)<>0")},
    };
}

} // namespace

std::vector<std::string> checkDemoLedger(Connection& connection)
{
    std::vector<std::string> broken;
    for (const auto& identities :
         {voucherIdentities(), balanceIdentities(), rollUpIdentities(), profitIdentities()})
        for (const Identity& identity : identities) {
            const std::int64_t rows = connection.query(identity.sql).integer(0, "n");
            if (rows != 0)
                broken.push_back(std::string(identity.name) + " (" + std::to_string(rows) + ")");
        }
    return broken;
}

} // namespace selfreport
