// Each way in which a ledger can be wrong is found by the identity that it breaks, and placed; a sound ledger
// raises no alarm.
#include "explain/ledger_proof.h"

#include "explain/proof_text.h"
#include "tests/explain/ExplainedDemo.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace selfreport {
namespace {

using State = ProvedIdentity::State;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> broken(const LedgerProof& proof)
{
    std::vector<std::string> names;
    for (const ProvedIdentity& one : proof.identities)
        if (one.state != State::holds)
            names.push_back(one.name + (one.reason.empty() ? "" : ": " + one.reason));
    return names;
}

const ProvedIdentity* named(const LedgerProof& proof, const std::string& name)
{
    const auto found = std::ranges::find(proof.identities, name, &ProvedIdentity::name);
    return found == proof.identities.end() ? nullptr : &*found;
}

/// Whether a row begins with those texts in these columns: "2025/5/1122" for year, period, account.
bool places(const ProvedIdentity& proved, const std::string& place)
{
    return std::ranges::any_of(proved.firstRows, [&](const std::vector<std::string>& row) {
        return row.size() > 2 && row[0] + "/" + row[1] + "/" + row[2] == place;
    });
}

class LedgerProofTest : public ::testing::Test {
protected:
    static std::string of(const char* code)
    {
        return "=(select fitemid from tblAccount where fNumber='" + std::string(code) + "')";
    }
    test::ExplainedDemo demo;
};

TEST_F(LedgerProofTest, ASoundLedgerRaisesNoAlarm)
{
    const LedgerProof proof = proveLedger(*demo.open(), 0);
    EXPECT_THAT(broken(proof), IsEmpty());
    EXPECT_TRUE(proof.isOfOneMoment);
    EXPECT_GT(proof.identities.size(), 28U);
    EXPECT_EQ(proof.faults(), 0);
    EXPECT_THAT(broken(proveLedger(*demo.open(), 2024)), IsEmpty());
}

TEST_F(LedgerProofTest, WithoutVouchersTheRestIsProved)
{
    demo.open()->execute("drop table tblVoucher");
    const LedgerProof proof = proveLedger(*demo.open(), 0);
    EXPECT_THAT(broken(proof), ElementsAre("凭证 = 发生额: 账套中没有可以成批读取的凭证"));
    EXPECT_EQ(proof.faults(), 0);
}

TEST_F(LedgerProofTest, FindsAndPlacesEachKindOfCorruption)
{
    struct Case {
        std::string damage;
        const char* identity;
        const char* place; ///< of its first rows; "" where no account tells it
        double difference; ///< of all rows; 0: not told
    };
    const std::string leaf = " and fYear=2025 and fPeriod=5 and fDetailId=0 and faccountid" + of("10020101");
    const std::string items = "fYear=2025 and fPeriod=5 and fDetailId<>0 and faccountid" + of("1122");
    const std::string first = " and fDetailId=(select min(fDetailId) from tblAccountBal where " + items + ")";
    const Case cases[] = {
        {"update tblAccountBal set fEndBal=fEndBal+0.01 where 1=1" + leaf, "期初 + 借方 − 贷方 = 期末",
         "2025/5/10020101", 0.01},
        {"update tblAccountBal set fBeginBal=fBeginBal+7,fEndBal=fEndBal+7 where 1=1" + leaf,
         "上期期末 = 本期期初（含跨年）", "2025/4/10020101", 14},
        {"update tblAccountBal set fBeginBal=fBeginBal+3 where fYear=2025 and fPeriod=1 and fDetailId=0 and "
         "fCurrencyid=1 and faccountid" +
             of("1001"),
         "上期期末 = 本期期初（含跨年）", "2024/12/1001", 3},
        {"delete from tblAccountBal where fYear=2025 and fPeriod=5 and fDetailId=0 and faccountid" +
             of("10020101"),
         "上级科目 = 下级科目之和", "2025/5/100201", 0},
        {"update tblAccountBal set fYtdCredit=fYtdCredit-1 where 1=1" + leaf, "累计发生额 = 各期发生额之和",
         "2025/5/10020101", 2},
        {"update tblAccountBal set fDebit=fDebit+2,fCredit=fCredit+2 where 1=1" + leaf,
         "上级科目 = 下级科目之和", "2025/5/100201", 4},
        {"update tblAccountBal set fEndBal=fEndBal+0.01 where " + items + first, "科目 = 核算项目之和",
         "2025/5/1122", 0.01},
        {"update tblAccountBal set fEndBal=fEndBal+5 where fYear=2025 and fPeriod=12 and fDetailId=0 and "
         "fCurrencyid=1 and faccountid" +
             of("1001"),
         "一级科目合计 = 0（试算平衡）", "", 5},
        {"update tblProfitAndLoss set fAmount=fAmount+1 where fYear=2025 and fPeriod=4 and fDetailid=0 and "
         "fAccountId" +
             of("6001"),
         "损益：累计 = 各期之和", "2025/4/6001", 1},
        {"update tblProfitAndLoss set fAmount=fAmount+1,fYtdAmount=fYtdAmount+1 where fYear=2025 and "
         "fPeriod=12 and fDetailid=0 and fAccountId" +
             of("660303"),
         "损益：上级科目 = 下级科目之和", "2025/12/6603", 0},
        {"delete from tblProfitAndLoss where fYear=2025 and fPeriod=4 and fDetailid=(select max(fDetailid) "
         "from tblProfitAndLoss where fYear=2025 and fPeriod=4 and fAmount<>0 and fAccountId" +
             of("6001") + ") and fAccountId" + of("6001"),
         "损益：科目 = 核算项目之和", "2025/4/6001", 0},
        {"update tblProfitAndLoss set fAmount=fAmount+1,fYtdAmount=fYtdAmount+1 where fYear=2025 and "
         "fPeriod=12 and fDetailid=0 and fAccountId" +
             of("6711"),
         "损益：上级科目 = 下级科目之和", "2025/12/6711", 0},
        {"update tblQtyBalance set fEndQty=fEndQty+1 where fYear=2025 and fPeriod=12 and fDetailid=0 and "
         "fAccountId" +
             of("1405"),
         "数量：期初 + 借方 − 贷方 = 期末", "2025/12/1405", 1},
        {"update tblQtyBalance set fBeginQty=fBeginQty+1,fEndQty=fEndQty+1 where fYear=2025 and fPeriod=6 "
         "and fDetailid=0 and fAccountId" +
             of("1405"),
         "数量：上期期末 = 本期期初（含跨年）", "2025/5/1405", 2},
        {"update tblQtyBalance set fYtdDebitQty=fYtdDebitQty+1 where fYear=2025 and fPeriod=12 and "
         "fDetailid=0 and fAccountId" +
             of("1405"),
         "数量：累计发生额 = 各期发生额之和", "2025/12/1405", 1},
        {"update tblQtyBalance set fEndQty=fEndQty+1,fBeginQty=fBeginQty+1 where fYear=2025 and fPeriod=12 "
         "and fDetailid=0 and fAccountId" +
             of("1405"),
         "数量：科目 = 核算项目之和", "2025/12/1405", 2},
        {"insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid) values(99999,0,2025,3,1)",
         "余额的科目、币别在档案中", "2025/3/", 0},
        {"delete from tblCurrency where fnumber='USD'", "余额的科目、币别在档案中", "2024/1/1002", 0},
        {"delete from tblItemDetailV where fdetailId in (select fDetailId from tblAccountBal where " + items +
             ")",
         "余额的项目组合在档案中", "2024/1/1121", 0},
        {"update tblAccount set fParentId=4711 where fNumber='100201'", "上级科目在档案中", "0/0/100201",
         4711},
        {"delete from tblCustomer where fNumber=(select min(fNumber) from tblCustomer)", "客户在档案中", "",
         0},
        {"delete from tblAccountBal where fYear=2025 and fPeriod=4 and fDetailId=0 and faccountid" +
             of("6001"),
         "损益：每行都有余额行", "2025/4/6001", 0},
        {"delete from tblAccountBal where fYear=2025 and fPeriod=4 and fDetailId=0 and faccountid" +
             of("1405"),
         "数量：每行都有余额行", "2025/4/1405", 0},
        {"update tblVoucherEntry set fDebit=fDebit+0.01 where fvoucherid=5 and fentryid=1",
         "每张凭证借贷相等", "2024/1/记-5", 0.01},
        {"delete from tblVoucherEntry where fvoucherid=5", "凭证 = 发生额", "", 0},
        {"update tblVoucherEntry set fCreditQty=fCreditQty+1 where fvoucherid=(select min(fvoucherid) from "
         "tblVoucherEntry where fCreditQty>0 and faccountid" +
             of("1405") + ") and fCreditQty>0 and faccountid" + of("1405"),
         "数量：凭证 = 收入、发出", "2024/1/1405", 0},
        {"update tblVoucher set fcarryover=0 where fcarryover=1 and fYear=2025 and fPeriod=3",
         "损益表 = 科目发生额（不含结转）", "2025/3/6001", 0},
        {"update tblSelfReportFieldKey set fKeyName='贷方发生额' where fKey='3'",
         "取数：14 种取数类型与余额表一致", "", 0},
    };
    for (const Case& c : cases) {
        const test::ExplainedDemo damaged;
        const auto connection = damaged.open();
        ASSERT_GT(connection->execute(c.damage), 0) << c.damage;
        const LedgerProof proof = proveLedger(*connection, 0);
        const ProvedIdentity* const found = named(proof, c.identity);
        ASSERT_TRUE(found) << c.identity;
        EXPECT_EQ(found->state, State::broken)
            << c.damage << "\nfound: " << ::testing::PrintToString(broken(proof));
        if (*c.place != 0) {
            EXPECT_TRUE(places(*found, c.place)) << c.damage << ::testing::PrintToString(found->firstRows);
        }
        if (c.difference != 0) {
            EXPECT_NEAR(found->difference, c.difference, 0.001) << c.damage;
        }
    }
}

TEST_F(LedgerProofTest, ShowsTenRowsAndTheStatementForAll)
{
    const auto connection = demo.open();
    connection->execute("update tblAccountBal set fEndBal=fEndBal+0.01 where fYear=2025 and fDetailId=0");
    const LedgerProof proof = proveLedger(*connection, 0);
    const ProvedIdentity& closing = *named(proof, "期初 + 借方 − 贷方 = 期末");
    EXPECT_EQ(closing.firstRows.size(), 10U);
    const auto wanted = connection->query("select count(*) as n from tblAccountBal where fYear=2025 and "
                                          "fDetailId=0");
    EXPECT_EQ(closing.rows, wanted.integer(0, "n"));
    EXPECT_EQ(static_cast<std::int64_t>(connection->query(closing.statement).rowCount()), closing.rows);
    EXPECT_THAT(closing.columns,
                ElementsAre("年度", "期间", "科目", "科目名称", "项目组合", "币别", "本位币", "原币"));
    EXPECT_EQ(named(proveLedger(*connection, 2024), "期初 + 借方 − 贷方 = 期末")->state, State::holds)
        << "of another year";
}

/// A ledger may begin within a year, and a thirteenth period may hold adjustments of some accounts only.
TEST_F(LedgerProofTest, SoundLedgersOfOtherShapesRaiseNoAlarm)
{
    const auto connection = demo.open();
    for (const char* table : {"tblAccountBal", "tblQtyBalance", "tblProfitAndLoss", "tblVoucher"})
        connection->execute("delete from " + std::string(table) + " where fYear=2024 and fPeriod<7");
    connection->execute(
        "delete from tblVoucherEntry where fvoucherid not in (select fvoucherid from tblVoucher)");
    EXPECT_THAT(broken(proveLedger(*connection, 0)), IsEmpty()) << "begins in July";
    const std::string adjusted =
        "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fBeginBalFor,fBeginBal,"
        "fYtdDebitFor,fYtdDebit,fYtdCreditFor,fYtdCredit,fEndBalFor,fEndBal) select "
        "faccountid,fDetailId,fYear,13,fCurrencyid,fEndBalFor,fEndBal,fYtdDebitFor,fYtdDebit,fYtdCreditFor,"
        "fYtdCredit,fEndBalFor,fEndBal from tblAccountBal where fYear=2024 and fPeriod=12 and fDetailId=0 "
        "and "
        "faccountid in (select fitemid from tblAccount where fNumber like '1001%' or fNumber='4103')";
    ASSERT_GT(connection->execute(adjusted), 0);
    const auto alarms = broken(proveLedger(*connection, 0));
    EXPECT_THAT(alarms, IsEmpty());
}

TEST_F(LedgerProofTest, OnlyReads)
{
    std::ifstream before(demo.file(), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(before), {}};
    proofJson(proveLedger(*demo.open(), 0));
    closeIdleSessions();
    std::ifstream after(demo.file(), std::ios::binary);
    EXPECT_TRUE(content == std::string(std::istreambuf_iterator<char>(after), {}));
}

} // namespace
} // namespace selfreport
