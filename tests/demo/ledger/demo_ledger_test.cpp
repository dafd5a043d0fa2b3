#include "demo/ledger/demo_ledger.h"

#include "tests/platform/database/database_folder.h"

#include <algorithm>
#include <fstream>

namespace selfreport {
namespace {

using testing::DatabaseFolder;

std::string contentOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(DemoLedger, HoldsAWholeCompany)
{
    const DatabaseFolder folder;
    createDemoLedger(folder.file());
    const auto connection = openConnection(folder.connectionString());
    EXPECT_EQ(checkDemoLedger(*connection), std::vector<std::string>());

    struct Case {
        const char* what;
        const char* sql;
        std::int64_t least, most;
    };
    const Case cases[] = {
        {"accounts", "select count(*) as n from tblAccount", 150, 200},
        {"levels", "select max(fLevel) as n from tblAccount", 3, 3},
        {"currencies with balances",
         "select count(*) as n from (select distinct fCurrencyid from tblAccountBal) as x", 2, 2},
        {"periods", "select count(*) as n from (select distinct fYear,fPeriod from tblAccountBal) as x", 24,
         24},
        {"goods sold", "select count(*) as n from tblQtyBalance where fCreditQty>0 and fDetailid<>0", 100,
         100000},
        {"no negative stock",
         "select count(*) as n from tblQtyBalance as q inner join tblAccount as b on "
         "b.fitemid=q.fAccountId where b.fNumber='1405' and q.fEndQty<0",
         0, 0},
        {"no overdrawn bank or cash",
         "select count(*) as n from tblAccountBal as a inner join tblAccount as b on "
         "b.fitemid=a.faccountid where b.fNumber like '100%' and a.fEndBal<0",
         0, 0},
        {"report menu node",
         "select count(*) as n from tblsystemprivillenge where fitemid=521 and fparentid=520", 1, 1},
        {"a profit in the first year",
         "select sum(fYtdAmount) as n from tblProfitAndLoss as e inner join tblAccount "
         "as b on b.fitemid=e.fAccountId where b.fNumber='6801' and e.fPeriod=12 and e.fDetailid=0",
         1, 100000000},
        {"combinations of two classes",
         "select count(*) as n from (select fdetailId from tblItemDetailV group by "
         "fdetailId having count(*)=2) as x",
         24, 24},
    };
    for (const Case& c : cases) {
        const std::int64_t n = connection->query(c.sql).integer(0, "n");
        EXPECT_TRUE(c.least <= n && n <= c.most) << c.what << ": " << n;
    }
}

TEST(DemoLedger, SameSeedGivesTheSameBytes)
{
    const DatabaseFolder folder;
    createDemoLedger(folder.file("one"));
    createDemoLedger(folder.file("two"));
    createDemoLedger(folder.file("other"), {.seed = 7});
    // Not EXPECT_EQ: a difference would print both files.
    EXPECT_TRUE(contentOf(folder.file("one")) == contentOf(folder.file("two")));
    EXPECT_FALSE(contentOf(folder.file("one")) == contentOf(folder.file("other")));
}

TEST(DemoLedger, TheCheckFindsWhatIsBroken)
{
    const DatabaseFolder folder;
    createDemoLedger(folder.file());
    const auto connection = openConnection(folder.connectionString());
    const std::string leaf = "(select fitemid from tblAccount where fNumber='10020101')";
    struct Case {
        const char* damage;
        std::string sql;
        std::string identity;
    };
    const Case cases[] = {
        {"a fen in a voucher",
         "update tblVoucherEntry set fDebit=fDebit+0.01 where fvoucherid=5 and fentryid=1",
         "vouchers balance"},
        {"a closing balance",
         "update tblAccountBal set fEndBal=fEndBal+0.01 where fPeriod=5 and faccountid=" + leaf,
         "opening + debit - credit = closing"},
        {"an opening balance",
         "update tblAccountBal set fBeginBal=fBeginBal+1,fEndBal=fEndBal+1 where fPeriod=5 and "
         "faccountid=" +
             leaf,
         "a period opens with the last closing"},
        {"an amount to date",
         "update tblAccountBal set fYtdCredit=fYtdCredit-1 where fPeriod=12 and faccountid=" + leaf,
         "year to date = earlier + movement"},
        {"a parent's row",
         "delete from tblAccountBal where fPeriod=3 and faccountid=(select fitemid from tblAccount "
         "where fNumber='1002')",
         "parents = children"},
        {"the children's rows",
         "delete from tblAccountBal where fPeriod=12 and faccountid in (select fitemid from "
         "tblAccount where fNumber like '1601__')",
         "a parent has children"},
        {"a customer's balance",
         "update tblAccountBal set fEndBal=fEndBal+1 where fDetailId<>0 and fPeriod=12 and "
         "faccountid=(select fitemid from tblAccount where fNumber='1122')",
         "items = account"},
        {"a whole voucher", "delete from tblVoucherEntry where fvoucherid=9", "a voucher has entries"},
        {"a quantity", "update tblQtyBalance set fEndQty=fEndQty+1 where fPeriod=2 and fDetailid<>0",
         "items = account in quantities"},
        {"a cost not carried over",
         "update tblAccountBal set fEndBal=1 where fPeriod=4 and faccountid=(select fitemid "
         "from tblAccount where fNumber='6711')",
         "profit and loss is carried over"},
        {"an income amount",
         "update tblProfitAndLoss set fAmount=fAmount+1 where fDetailid=0 and fPeriod=4 and "
         "fAccountId=(select fitemid from tblAccount where fNumber='6001')",
         "profit and loss amounts = the result carried over"},
    };
    for (const Case& c : cases) {
        const Transaction undone(*connection);
        EXPECT_GT(connection->execute(c.sql), 0) << c.damage;
        const auto broken = checkDemoLedger(*connection);
        EXPECT_TRUE(std::ranges::any_of(
            broken, [&](const std::string& name) { return name.starts_with(c.identity + " ("); }))
            << c.damage << ": " << ::testing::PrintToString(broken);
    }
}

TEST(DemoLedger, ARefusedLedgerLeavesWhatWasThere)
{
    const DatabaseFolder folder;
    std::ofstream(folder.file()) << "kept";
    EXPECT_THROW(createDemoLedger(folder.file(), {.customers = 0}), DatabaseError);
    EXPECT_THROW(createDemoLedger(folder.file("no/such/folder/ledger")), DatabaseError);
    EXPECT_EQ(contentOf(folder.file()), "kept");
    EXPECT_FALSE(std::filesystem::exists(folder.file() + ".new"));

    const auto connection = folder.create("other");
    connection->execute("insert into tblAccount values(900,'1001','占用',0,1,1,1)");
    EXPECT_THROW(writeDemoLedger(*connection), DatabaseError);
    EXPECT_EQ(connection->query("select * from tblCurrency").rowCount(), 0U);
}

} // namespace
} // namespace selfreport
