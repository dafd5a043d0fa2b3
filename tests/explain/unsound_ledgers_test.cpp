// On a ledger whose rows do not add up, each way to open a figure shows exactly the difference that separate
// statements find in the tables.
#include "explain/call_parts.h"
#include "platform/database/dialect/acct_kinds.h"
#include "tests/explain/ExplainedDemo.h"

#include <gmock/gmock.h>
#include <iostream>
#include <map>
#include <random>

namespace selfreport {
namespace {

struct Account {
    std::string id, code;
    int direction;
};

class UnsoundLedger : public ::testing::Test {
protected:
    UnsoundLedger()
        : connection(demo.open())
    {
        for (const char* damage :
             {// rows are missing, totals and items alike
              "delete from tblAccountBal where (faccountid*7+fDetailId*3+fPeriod+fCurrencyid)%11=0",
              // a thirteenth period of some accounts, with adjustments that nobody carried into parents
              "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fBeginBal,fDebit,"
              "fCredit,fYtdDebit,fEndBal) select faccountid,fDetailId,fYear,13,fCurrencyid,fEndBal,5,2,"
              "fYtdDebit+5,fEndBal+3 from tblAccountBal where fYear=2025 and fPeriod=12 and "
              "(faccountid+fDetailId)%3=0",
              // and amounts that were changed
              "update tblAccountBal set fEndBal=fEndBal+0.01 where (faccountid+fDetailId+fPeriod)%13=0",
              "update tblAccountBal set fDebit=fDebit-7 where (faccountid+fDetailId*5+fPeriod)%17=0",
              "update tblAccountBal set fYtdDebit=fYtdDebit+1 where (faccountid*3+fDetailId+fPeriod)%19=0",
              "delete from tblVoucherEntry where (fvoucherid*5+fentryid)%23=0"})
            connection->execute(damage);
        const Recordset rows =
            connection->query("select fitemid,fNumber,fDirection from tblAccount order by fNumber");
        for (std::size_t row = 0; row < rows.rowCount(); ++row)
            accounts.push_back(
                {rows.text(row, 0), rows.text(row, 1), static_cast<int>(rows.integer(row, 2))});
    }

    double sum(const std::string& columns, const std::string& rows) const
    {
        return connection
            ->query("select coalesce(sum(" + columns + "),0) as f from tblAccountBal where fYear=2025 and " +
                    rows)
            .number(0, "f");
    }
    /// What the tables hold for the call less what they hold for its parts; nothing: not looked at here.
    std::optional<double> wanted(const Account& account, const std::string& key, int last,
                                 const PartsWay& way) const
    {
        const std::string column = key == "2" ? "fEndBal" : key == "3" ? "fDebit" : "fYtdDebit";
        const int sign = key == "2" ? account.direction : 1;
        const std::string until = std::to_string(last);
        const std::string when = key == "3" ? " and fPeriod<=" + until : " and fPeriod=" + until;
        const std::string total = "fDetailId=0 and faccountid=" + account.id;
        const double whole = sum(column, total + when);
        switch (way.by) {
        case PartsBy::subaccounts:
            return sign * (whole - sum(column, "fDetailId=0 and faccountid in (select fitemid from "
                                               "tblAccount where fParentId=" +
                                                   account.id + ")" + when));
        case PartsBy::items:
            return sign * (whole - sum(column, "fDetailId<>0 and faccountid=" + account.id + when));
        case PartsBy::movement:
            return sign * (whole - sum("fBeginBal+fDebit-fCredit", total + when));
        case PartsBy::periods: {
            if (key == "3")
                return 0;
            const std::string first = " and fPeriod=(select min(fPeriod) from tblAccountBal where "
                                      "fYear=2025 and " +
                                      total + " and fPeriod<=" + until + ")";
            return whole - sum("fDebit", total + " and fPeriod<=" + until) -
                   sum("fYtdDebit-fDebit", total + first);
        }
        case PartsBy::vouchers: {
            const std::string lines =
                "from tblVoucherEntry as e join tblVoucher as v on v.fvoucherid=e.fvoucherid join tblAccount "
                "as b on b.fitemid=e.faccountid where v.fYear=2025 and b.fNumber like '" +
                account.code + "%'";
            const std::string amount = key == "2" ? "e.fDebit-e.fCredit" : "e.fDebit";
            const std::string posted = key == "2" ? " and v.fPeriod=" + until : " and v.fPeriod<=" + until;
            const double moved =
                connection->query("select coalesce(sum(" + amount + "),0) as f " + lines + posted)
                    .number(0, "f");
            return sign * (whole - moved - (key == "2" ? sum("fBeginBal", total + when) : 0));
        }
        default:
            return std::nullopt;
        }
    }

    test::ExplainedDemo demo;
    std::unique_ptr<Connection> connection;
    std::vector<Account> accounts;
};

TEST_F(UnsoundLedger, EachWayShowsTheDifferenceThatSeparateStatementsFind)
{
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    std::mt19937 random(13);
    std::map<std::string, int> checked, different;
    for (std::size_t drawn = 0; drawn < test::manyBy("SELFREPORT_TREES", 400); ++drawn) {
        const Account& account = accounts[random() % accounts.size()];
        const std::string key = std::array{"2", "3", "5"}[random() % 3];
        const int last = 1 + static_cast<int>(random() % 13);
        const LedgerArguments call{account.code, key, "", "2025", "1", std::to_string(last)};
        for (const PartsWay& way : opening.waysOf(call)) {
            const CallParts parts = opening.partsOf(call, way);
            ASSERT_EQ(parts.failure, "");
            const auto difference = wanted(account, key, last, way);
            if (!difference)
                continue;
            ++checked[way.text()];
            different[way.text()] += std::abs(*difference) >= 0.005 ? 1 : 0;
            EXPECT_NEAR(parts.difference, *difference, 0.001)
                << account.code << " key " << key << " until " << last << " by " << way.text();
        }
    }
    for (const auto& [way, count] : checked)
        std::cout << way << ": " << count << " openings, " << different[way] << " that do not add up\n";
    for (const char* way : {"下级科目", "客户", "凭证", "期初、借方和贷方", "期间"})
        EXPECT_GT(checked[way], 5) << way;
}

} // namespace
} // namespace selfreport
