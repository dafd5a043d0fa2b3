// Each way in which a ledger can be wrong is found by the identity that it breaks, and placed; a sound ledger
// raises no alarm.
#include "explain/ledger_proof.h"

#include "explain/ledger_identities.h"
#include "explain/proof_text.h"
#include "tests/explain/ExplainedDemo.h"
#include "tests/tdsserver/RealServer.h"
#include "text/amount_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <gmock/gmock.h>
#include <map>
#include <set>

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

std::string of(const char* code)
{
    return "=(select fitemid from tblAccount where fNumber='" + std::string(code) + "')";
}

/// Something wrong in a ledger, and what must say so.
struct Corruption {
    std::string damage;
    const char* identity;
    const char* place; ///< of its first rows; "" where no account tells it
    double difference; ///< of all rows; 0: not told
};

std::vector<Corruption> corruptions()
{
    const std::string leaf = " and fYear=2025 and fPeriod=5 and fDetailId=0 and faccountid" + of("10020101");
    const std::string items = "fYear=2025 and fPeriod=5 and fDetailId<>0 and faccountid" + of("1122");
    const std::string first = " and fDetailId=(select min(fDetailId) from tblAccountBal where " + items + ")";
    return {
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
}

void expectFound(const Corruption& c, const LedgerProof& proof)
{
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

class LedgerProofTest : public ::testing::Test {
protected:
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

/// Of no rows at all every identity holds: that must not pass for a proof.
TEST_F(LedgerProofTest, AYearWithoutBalancesIsNotProved)
{
    const auto connection = demo.open();
    EXPECT_EQ(proveLedger(*connection, 2025).faults(), 0);
    const LedgerProof none = proveLedger(*connection, 2030);
    EXPECT_EQ(none.faults(), 1);
    EXPECT_EQ(none.identities.front().reason, "账上没有2030年的余额，其余各项没有可查的数");
    for (const char* table :
         {"tblAccountBal", "tblQtyBalance", "tblProfitAndLoss", "tblVoucherEntry", "tblVoucher"})
        connection->execute("delete from " + std::string(table));
    EXPECT_EQ(proveLedger(*connection, 0).faults(), 1);
}

TEST_F(LedgerProofTest, WithoutVouchersTheRestIsProved)
{
    demo.open()->execute("drop table tblVoucher");
    const LedgerProof proof = proveLedger(*demo.open(), 0);
    EXPECT_THAT(broken(proof), ElementsAre("凭证 = 发生额: 账套中没有可以成批读取的凭证"));
    EXPECT_EQ(proof.faults(), 0);
}

TEST_F(LedgerProofTest, WithoutClassesTheRestIsProved)
{
    const auto connection = demo.open();
    const std::size_t all = proveLedger(*connection, 0).identities.size();
    connection->execute("drop table tblItemClass");
    const LedgerProof proof = proveLedger(*connection, 0);
    EXPECT_EQ(proof.identities.front().name, "核算项目类别");
    EXPECT_THAT(proof.identities.front().reason, ::testing::HasSubstr("tblItemClass"));
    EXPECT_GT(std::ranges::count(proof.identities, State::holds, &ProvedIdentity::state), all / 2);
}

TEST_F(LedgerProofTest, FindsAndPlacesEachKindOfCorruption)
{
    for (const Corruption& corruption : corruptions()) {
        const test::ExplainedDemo damaged;
        const auto connection = damaged.open();
        ASSERT_GT(connection->execute(corruption.damage), 0) << corruption.damage;
        expectFound(corruption, proveLedger(*connection, 0));
    }
}

/// What a table holds, put back at the end.
class KeptTable {
public:
    KeptTable(Connection& connection, std::string table)
        : m_connection(connection)
        , m_table(std::move(table))
    {
        m_connection.execute("select * into kept" + m_table + " from " + m_table);
    }
    ~KeptTable()
    {
        m_connection.execute("delete from " + m_table);
        m_connection.execute("insert into " + m_table + " select * from kept" + m_table);
        m_connection.execute("drop table kept" + m_table);
    }
    KeptTable(const KeptTable&) = delete;
    KeptTable& operator=(const KeptTable&) = delete;

private:
    Connection& m_connection;
    std::string m_table;
};

/// Calls take the server their time, so of identities with a statement only that is asked.
LedgerProof provedBy(Connection& connection, const ProvedIdentity& sound)
{
    if (sound.statement.empty())
        return proveLedger(connection, 0);
    LedgerProof proof{.identities = {sound}};
    ProvedIdentity& asked = proof.identities.front();
    const Recordset rows = connection.query(sound.statement);
    asked.state = rows.isEmpty() ? State::holds : State::broken;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        auto& texts = asked.firstRows.emplace_back();
        for (std::size_t column = 0; column < rows.columnCount(); ++column) {
            texts.push_back(rows.text(row, column));
            if (rows.columnName(column).starts_with("d"))
                asked.difference += std::abs(rows.number(row, column));
        }
    }
    return proof;
}

/// One in so many of them is planted on a server, where each takes seconds; SELFREPORT_ALL_FAULTS=1 plants
/// all.
TEST(LedgerProofOnARealServer, FindsAndPlacesEachKindOfCorruption)
{
    constexpr std::size_t usualStep = 4;
    if (!tds::RealServer::isThere())
        GTEST_SKIP() << "SELFREPORT_TEST_SERVER names no server";
    tds::RealServer server;
    const auto connection = openConnection(server.connectionString());
    writeDemoLedger(*connection, {.customers = 12, .suppliers = 6, .goods = 10, .salesPerPeriod = 60});
    const LedgerProof sound = proveLedger(*connection, 0);
    EXPECT_THAT(broken(sound), IsEmpty());
    const std::vector<Corruption> all = corruptions();
    for (std::size_t at = 0; at < all.size(); at += std::getenv("SELFREPORT_ALL_FAULTS") ? 1 : usualStep) {
        const Corruption& corruption = all[at];
        const std::string& sql = corruption.damage;
        const std::size_t name = sql.find("tbl");
        const KeptTable kept(*connection, sql.substr(name, sql.find_first_of(" (", name) - name));
        ASSERT_GT(connection->execute(sql), 0) << sql;
        const ProvedIdentity* const identity = named(sound, corruption.identity);
        ASSERT_TRUE(identity) << corruption.identity;
        expectFound(corruption, provedBy(*connection, *identity));
    }
    EXPECT_THAT(broken(proveLedger(*connection, 0)), IsEmpty()) << "all is put back";
}

/// A line's balances by year and period, and what of them does not go on, as somebody walks along it.
struct Line {
    struct Balance {
        double opening = 0, closing = 0;
    };
    std::map<LedgerPeriod, Balance> rows;
};

using Key = std::array<std::int64_t, 3>;            ///< account, combination, currency
using Break = std::pair<LedgerPeriod, std::string>; ///< where, and account, combination, currency, difference

std::multiset<Break> breaksAlong(const std::map<Key, Line>& lines, const std::vector<LedgerPeriod>& periods,
                                 int year)
{
    std::multiset<Break> found;
    for (const auto& [key, line] : lines) {
        const auto tell = [&, &lineKey = key](const LedgerPeriod& at, double difference, int from, int to) {
            if (std::abs(difference) >= 0.005 && (year == 0 || from == year || to == year))
                found.insert({at, std::to_string(lineKey[0]) + "/" + std::to_string(lineKey[1]) + "/" +
                                      std::to_string(lineKey[2]) + "/" + amountText(difference)});
        };
        // Periods that the line goes through: all but thirteenths in which it was not adjusted.
        std::vector<LedgerPeriod> own;
        for (const LedgerPeriod& period : periods)
            if (period.period != 13 || line.rows.contains(period))
                own.push_back(period);
        for (std::size_t at = 1; at < own.size(); ++at) {
            const auto before = line.rows.find(own[at - 1]);
            const auto after = line.rows.find(own[at]);
            const int from = own[at - 1].year, to = own[at].year;
            const bool isAdjusted = own[at].period == 13 || own[at - 1].period == 13;
            if (before != line.rows.end())
                tell(own[at - 1],
                     (after == line.rows.end() ? 0 : after->second.opening) - before->second.closing, from,
                     to);
            else if (after != line.rows.end() && !isAdjusted)
                tell(own[at], after->second.opening, from, to);
        }
    }
    return found;
}

/// The statement looks for neighbours; here each line is gone along.
TEST_F(LedgerProofTest, OpeningsAreThoseThatAWalkAlongEachLineFinds)
{
    const auto connection = demo.open();
    const auto damage = [&](const std::string& sql) { ASSERT_GT(connection->execute(sql), 0) << sql; };
    const std::string cents = "fBeginBal=fBeginBal+0.01*((faccountid*7+fDetailId*3+fPeriod)%5)";
    damage("update tblAccountBal set " + cents + " where (faccountid+fDetailId*5+fPeriod*11+fYear)%17=0");
    damage("update tblAccountBal set fEndBal=fEndBal-3 where (faccountid+fDetailId+fPeriod+fYear)%23=0");
    damage("delete from tblAccountBal where (faccountid*3+fDetailId+fPeriod*7+fYear)%19=0");
    for (const char* year : {"2024", "2025"})
        damage("insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fBeginBal,fEndBal) "
               "select faccountid,fDetailId,fYear,13,fCurrencyid,fEndBal+faccountid%2,fEndBal+faccountid%3 "
               "from tblAccountBal where fPeriod=12 and (faccountid+fDetailId)%4=0 and fYear=" +
               std::string(year));
    damage("delete from tblAccountBal where fPeriod=12 and fYear=2024 and faccountid%8=0");
    for (const bool hasGap : {false, true}) {
        if (hasGap) // nothing at all in a period
            damage("delete from tblAccountBal where fYear=2025 and fPeriod=4");
        std::map<Key, Line> lines;
        std::set<LedgerPeriod> periods;
        const Recordset rows = connection->query(
            "select faccountid,fDetailId,fCurrencyid,fYear,fPeriod,fBeginBal,fEndBal from tblAccountBal");
        for (std::size_t row = 0; row < rows.rowCount(); ++row) {
            const LedgerPeriod period{static_cast<int>(rows.integer(row, 3)),
                                      static_cast<int>(rows.integer(row, 4))};
            periods.insert(period);
            lines[{rows.integer(row, 0), rows.integer(row, 1), rows.integer(row, 2)}].rows[period] = {
                rows.number(row, 5), rows.number(row, 6)};
        }
        for (const int year : {0, 2024, 2025}) {
            const auto wanted = breaksAlong(lines, {periods.begin(), periods.end()}, year);
            const LedgerProof proof = proveLedger(*connection, year);
            const Recordset found =
                connection->query("select x.*,b.fitemid,c.fitemid as fmoney from (" +
                                  named(proof, "上期期末 = 本期期初（含跨年）")->statement +
                                  ") as x join tblAccount as b on b.fNumber=x.fNumber join tblCurrency as c "
                                  "on c.fnumber=x.fcurrency where abs(x.d0)>0.001");
            std::multiset<Break> breaks;
            for (std::size_t row = 0; row < found.rowCount(); ++row)
                breaks.insert({{static_cast<int>(found.integer(row, "fYear")),
                                static_cast<int>(found.integer(row, "fPeriod"))},
                               found.text(row, "fitemid") + "/" + found.text(row, "fDetailId") + "/" +
                                   found.text(row, "fmoney") + "/" + amountText(found.number(row, "d0"))});
            EXPECT_GT(wanted.size(), 100U);
            EXPECT_EQ(breaks.size(), wanted.size()) << year << hasGap;
            EXPECT_TRUE(breaks == wanted) << year << hasGap;
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

TEST_F(LedgerProofTest, WritesOneRowALineWhateverTheNames)
{
    const auto connection = demo.open();
    connection->execute("update tblAccount set fName='库存\n现\r金\t'||fName");
    connection->execute("update tblAccountBal set fEndBal=fEndBal+0.01 where fYear=2025 and fDetailId=0");
    const LedgerProof proof = proveLedger(*connection, 0);
    const std::string text = identityDetails(*named(proof, "期初 + 借方 − 贷方 = 期末"));
    EXPECT_EQ(std::ranges::count(text, '\n'), 1 + 10 + 2) << text; // captions, rows, how many, the statement
    const std::size_t captions = text.find('\n');
    const std::string_view row =
        std::string_view(text).substr(captions + 1, text.find('\n', captions + 1) - captions - 1);
    EXPECT_EQ(std::ranges::count(row, '\t'), std::ranges::count(text.substr(0, captions), '\t')) << row;
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
    EXPECT_THAT(broken(proveLedger(*connection, 0)), IsEmpty()) << "a thirteenth period";
    const std::string contra = "=(select min(b.fitemid) from tblAccount as b join tblProfitAndLoss as p on "
                               "p.faccountid=b.fitemid where b.fParentId<>0)";
    ASSERT_GT(connection->execute("update tblProfitAndLoss set fAmount=-fAmount,fAmountFor=-fAmountFor,"
                                  "fYtdAmount=-fYtdAmount,fYtdAmountFor=-fYtdAmountFor where faccountid" +
                                  contra),
              0);
    connection->execute("update tblAccount set fDirection=-fDirection where fitemid" + contra);
    EXPECT_THAT(broken(proveLedger(*connection, 0)), IsEmpty()) << "one against its parent's side";
}

/// Vouchers of former years may have been put away, and suites differ in what stands for "no parent".
TEST_F(LedgerProofTest, LedgersOfOtherSuitesAreProvedAsOurs)
{
    const auto connection = demo.open();
    connection->execute("delete from tblVoucher where fYear=2024");
    connection->execute(
        "delete from tblVoucherEntry where fvoucherid not in (select fvoucherid from tblVoucher)");
    for (const int year : {0, 2024, 2025})
        EXPECT_THAT(broken(proveLedger(*connection, year)), IsEmpty()) << year;
    for (const char* change : {"create table charted as select * from tblAccount", "drop table tblAccount",
                               "alter table charted rename to tblAccount",
                               "update tblAccount set fParentId=null where fParentId=0"})
        connection->execute(change);
    EXPECT_THAT(broken(proveLedger(*connection, 0)), IsEmpty()) << "no parent is null";
    connection->execute("update tblAccountBal set fEndBal=fEndBal+5 where fDetailId=0 and fYear=2025 and "
                        "fPeriod=12 and faccountid=(select fitemid from tblAccount where fNumber='4001')");
    EXPECT_EQ(named(proveLedger(*connection, 0), "一级科目合计 = 0（试算平衡）")->state, State::broken);
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
