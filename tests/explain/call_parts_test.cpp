// What a call is taken apart into adds up to it, whatever the ledger looks like; where the ledger's own rows
// do not add up, the difference is exactly what was put into them.
#include "explain/call_parts.h"

#include "platform/database/dialect/acct_kinds.h"
#include "tests/explain/ExplainedDemo.h"

#include <cmath>
#include <gmock/gmock.h>
#include <iostream>
#include <memory>
#include <random>

namespace selfreport {
namespace {

class Random {
public:
    explicit Random(unsigned seed)
        : m_engine(seed)
    {
    }
    std::size_t below(std::size_t bound) { return m_engine() % bound; }
    template <class Choices>
    auto of(const Choices& choices)
    {
        return choices[below(std::size(choices))];
    }

private:
    std::mt19937 m_engine;
};

std::string text(const LedgerArguments& call)
{
    return call.account + " key " + call.fetchType + " '" + call.currency + "' " + call.year + " " +
           call.firstPeriod + "-" + call.lastPeriod;
}

std::vector<std::string> column(Connection& connection, const std::string& sql)
{
    std::vector<std::string> texts;
    const Recordset rows = connection.query(sql);
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        texts.push_back(rows.text(row, 0));
    return texts;
}

/// Calls of every form over the demo's accounts and items.
class RandomCalls {
public:
    RandomCalls(Connection& connection, unsigned seed)
        : m_random(seed)
        , m_accounts(column(connection, "select fNumber from tblAccount order by fNumber"))
        , m_customers(column(connection, "select fNumber from tblCustomer order by fNumber"))
        , m_departments(column(connection, "select fNumber from tblDepartment order by fNumber"))
    {
    }

    LedgerArguments next()
    {
        LedgerArguments call;
        call.account = accounts() + items();
        call.fetchType = std::to_string(1 + m_random.below(14));
        static constexpr const char* currencies[] = {"", "", "", "RMB", "USD"};
        call.currency = m_random.of(currencies);
        static constexpr const char* years[] = {"2024", "2025"};
        call.year = m_random.of(years);
        const auto last = 1 + m_random.below(13);
        call.firstPeriod = std::to_string(1 + m_random.below(last));
        call.lastPeriod = std::to_string(last);
        return call;
    }

private:
    std::string accounts()
    {
        static constexpr const char* withItems[] = {"1122", "1121", "2203", "6602", "660201", "1122"};
        std::string code = m_random.of(m_accounts);
        switch (m_random.below(6)) {
        case 0:
            return code + ":" + m_random.of(m_accounts);
        case 1:
            return code.substr(0, code.size() - 1) + "*";
        case 2:
            return "****";
        case 3:
            return m_random.of(withItems);
        default:
            return code;
        }
    }
    std::string items()
    {
        switch (m_random.below(8)) {
        case 0:
            return "|客户|" + m_random.of(m_customers);
        case 1:
            return "|部门|" + m_random.of(m_departments);
        case 2:
            return "|客户|" + m_random.of(m_customers) + "|部门|" + m_random.of(m_departments);
        case 3:
            return "|客户|" + m_customers.front() + ":" + m_random.of(m_customers);
        default:
            return "";
        }
    }

    Random m_random;
    std::vector<std::string> m_accounts, m_customers, m_departments;
};

struct Counted {
    std::size_t openings = 0, parts = 0;
    bool hasVouchers = true;
};

/// Opens a call by each of its ways, and one of the parts in turn.
void expectWhole(CallOpening& opening, const LedgerArguments& call, int levels, Random& random,
                 Counted& counted)
{
    for (const PartsWay& way : opening.waysOf(call)) {
        if (way.by == PartsBy::vouchers && !counted.hasVouchers)
            continue;
        const CallParts parts = opening.partsOf(call, way);
        ASSERT_EQ(parts.failure, "") << text(call) << " by " << way.text();
        EXPECT_TRUE(parts.isWhole()) << text(call) << " by " << way.text() << ": " << parts.whole.value_or(0)
                                     << " of " << parts.parts.size() << " parts, " << parts.sum;
        ++counted.openings;
        counted.parts += parts.parts.size();
        if (levels > 1 && !parts.parts.empty())
            if (const CallPart& part = parts.parts[random.below(parts.parts.size())];
                !part.arguments.account.empty() && !part.less)
                expectWhole(opening, part.arguments, levels - 1, random, counted);
    }
}

/// Ledgers that are sound in other ways than the demo's.
struct AlteredLedger {
    const char* what;
    std::vector<std::string> changes;
    std::uint64_t seed = 0; ///< of another company; 0: the demo's
};

/// Closing balances go on into a period of the auditors, without movement.
std::string thirteenthPeriod(int year)
{
    const std::string sums = "fYtdDebitFor,fYtdDebit,fYtdCreditFor,fYtdCredit,fEndBalFor,fEndBal";
    return "insert into "
           "tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fBeginBalFor,fBeginBal," +
           sums + ") select faccountid,fDetailId,fYear,13,fCurrencyid,fEndBalFor,fEndBal," + sums +
           " from tblAccountBal where fPeriod=12 and fYear=" + std::to_string(year);
}

std::vector<AlteredLedger> alteredLedgers()
{
    return {
        {"as it is", {}},
        {"children on the other side",
         {"update tblAccount set fDirection=-fDirection where fNumber in ('100202','222101','22210103')",
          "update tblProfitAndLoss set fAmount=-fAmount,fAmountFor=-fAmountFor,fYtdAmount=-fYtdAmount,"
          "fYtdAmountFor=-fYtdAmountFor where fAccountId=(select fitemid from tblAccount where "
          "fNumber='660302')",
          "update tblAccount set fDirection=-fDirection where fNumber='660302'"}},
        {"combinations without a customer",
         {"delete from tblItemDetailV where fitemclassid=1 and fdetailId%3=0"}},
        {"no customers at all", {"delete from tblItemDetailV where fitemclassid=1"}},
        {"begins in July",
         {"delete from tblAccountBal where fYear=2024 and fPeriod<7",
          "delete from tblProfitAndLoss where fYear=2024 and fPeriod<7",
          "delete from tblQtyBalance where fYear=2024 and fPeriod<7",
          "delete from tblVoucher where fYear=2024 and fPeriod<7",
          "delete from tblVoucherEntry where fvoucherid not in (select fvoucherid from tblVoucher)"}},
        {"a thirteenth period", {thirteenthPeriod(2024), thirteenthPeriod(2025)}},
        {"no departments",
         {"delete from tblItemDetailV where fitemclassid=(select fitemclassid from "
          "tblItemClass where fItemname='部门')"}},
        {"everything on the other side",
         {"update tblAccount set fDirection=-fDirection",
          "update tblProfitAndLoss set fAmount=-fAmount,fAmountFor=-fAmountFor,fYtdAmount=-fYtdAmount,"
          "fYtdAmountFor=-fYtdAmountFor"}},
        {"codes with dots",
         {"update tblAccount set fNumber=substring(fNumber,1,4)||'.'||substring(fNumber,5,10) where "
          "fLevel>1"}},
        {"codes that are patterns of others",
         {"update tblCustomer set fNumber=substring(fNumber,1,3)||'*' where fitemid=(select min(fitemid) "
          "from "
          "tblCustomer)",
          "update tblAccount set fNumber='10020*' where fNumber='100201'",
          "update tblAccount set fNumber='660*' where fNumber='6601'"}},
        {"another company", {}, 4711},
        {"a third company, without vouchers", {"delete from tblVoucher", "delete from tblVoucherEntry"}, 99},
    };
}

TEST(CallParts, AddUpToTheCallOnEveryLedger)
{
    const std::vector<AlteredLedger> ledgers = alteredLedgers();
    const std::size_t wanted = test::manyBy("SELFREPORT_TREES", 1000) / ledgers.size();
    Counted all;
    for (const AlteredLedger& altered : ledgers) {
        SCOPED_TRACE(altered.what);
        const auto demo =
            altered.seed == 0
                ? std::make_unique<test::ExplainedDemo>()
                : std::make_unique<test::ExplainedDemo>(DemoLedgerOptions{.seed = altered.seed,
                                                                          .customers = 9,
                                                                          .suppliers = 5,
                                                                          .goods = 7,
                                                                          .salesPerPeriod = 40});
        const auto connection = demo->open();
        for (const std::string& change : altered.changes)
            ASSERT_GT(connection->execute(change), 0) << change;
        const AccountChart chart(*connection);
        CallOpening opening(*connection, chart);
        RandomCalls calls(*connection, 27);
        Random random(4);
        Counted counted;
        counted.hasVouchers = !connection->query("select top 1 fvoucherid from tblVoucher").isEmpty();
        for (std::size_t call = 0; call < wanted; ++call)
            expectWhole(opening, calls.next(), 3, random, counted);
        EXPECT_GT(counted.openings, wanted) << "else there was little to open";
        EXPECT_GT(counted.parts, wanted * 3);
        all.openings += counted.openings;
        all.parts += counted.parts;
    }
    std::cout << wanted * ledgers.size() << " trees on " << ledgers.size() << " ledgers, " << all.openings
              << " openings, " << all.parts << " parts\n";
}

/// Where parents have no rows their children count, each once.
TEST(CallParts, ARangeTakesTheTopmostAccountsThatHaveRows)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    connection->execute("delete from tblAccountBal where faccountid in (select fitemid from tblAccount where "
                        "fNumber in ('1002','6602')) and fYear=2025");
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    for (const AcctKind& kind : acctKinds) {
        const LedgerArguments call{"1001:9999", std::string(kind.key), "", "2025", "1", "6"};
        const CallParts parts = opening.partsOf(call, {PartsBy::accounts, ""});
        EXPECT_TRUE(parts.isWhole()) << kind.name;
        std::vector<std::string> codes;
        for (const CallPart& part : parts.parts)
            codes.push_back(part.arguments.account);
        EXPECT_THAT(codes, ::testing::AllOf(::testing::Contains("1001"), ::testing::Contains("100201"),
                                            ::testing::Not(::testing::Contains("1002")),
                                            ::testing::Not(::testing::Contains("10020101"))))
            << kind.name;
    }
}

/// A cent more in one balance shows in every opening that reads it, and in no other.
TEST(CallParts, ShowACentThatWasPutIntoOneBalance)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    const Recordset rows = connection->query(
        "select a.faccountid,a.fPeriod,b.fNumber,b.fDirection,p.fNumber as fparent,p.fDirection as fabove "
        "from "
        "tblAccountBal as a join tblAccount as b on b.fitemid=a.faccountid join tblAccount as p on "
        "p.fitemid=b.fParentId where a.fYear=2025 and a.fDetailId=0 and a.fCurrencyid=1 order by "
        "b.fNumber,a.fPeriod");
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    Random random(9);
    for (int drawn = 0; drawn < 40; ++drawn) {
        const std::size_t row = random.below(rows.rowCount());
        const Transaction undone(*connection);
        connection->execute(
            "update tblAccountBal set fEndBal=fEndBal+0.01 where fYear=2025 and fDetailId=0 and "
            "fCurrencyid=1 and fPeriod=? and faccountid=?",
            {rows.integer(row, "fPeriod"), rows.integer(row, "faccountid")});
        const std::string period = rows.text(row, "fPeriod");
        const std::string code = rows.text(row, "fNumber");
        const LedgerArguments above{rows.text(row, "fparent"), "2", "", "2025", "1", period};
        const LedgerArguments own{code, "2", "", "2025", "1", period};
        EXPECT_NEAR(opening.partsOf(above, {PartsBy::subaccounts, ""}).difference,
                    -0.01 * rows.number(row, "fabove"), 1e-9)
            << code << ' ' << period;
        for (const PartsWay& way : opening.waysOf(own))
            EXPECT_NEAR(opening.partsOf(own, way).difference, 0.01 * rows.number(row, "fDirection"), 1e-9)
                << code << ' ' << period << " by " << way.text();
        EXPECT_TRUE(opening.partsOf(above, {PartsBy::movement, ""}).isWhole()) << code;
    }
}

TEST(CallParts, SayWhyCombinationsWithTwoCustomersCountTwice)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    const std::string two = column(*connection, "select max(fitemid) from tblCustomer").front();
    const std::string combination =
        column(*connection, "select min(fDetailId) from tblAccountBal where fDetailId<>0 and fEndBal<>0 and "
                            "fYear=2025 and fPeriod=6 and faccountid=(select fitemid from tblAccount where "
                            "fNumber='1122')")
            .front();
    connection->execute("insert into tblItemDetailV values(" + combination + ",1," + two + ")");
    const double twice =
        connection
            ->query("select sum(fEndBal) as f from tblAccountBal where fYear=2025 and fPeriod=6 "
                    "and faccountid=(select fitemid from tblAccount where fNumber='1122') and "
                    "fDetailId=" +
                    combination)
            .number(0, "f");
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    const CallParts parts = opening.partsOf({"1122", "2", "", "2025", "6", "6"}, {PartsBy::items, "客户"});
    EXPECT_NEAR(parts.difference, -twice, 0.001);
    EXPECT_EQ(parts.reason, "1 个项目组合中有两个以上的客户，各算了一次");
}

TEST(CallParts, OfferNoWayThatIsNoSum)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    const auto ways = [&](const std::string& account, const std::string& key, const std::string& last = "3") {
        std::string all;
        for (const PartsWay& way : opening.waysOf({account, key, "", "2025", "1", last}))
            all += (all.empty() ? "" : " ") + way.text();
        return all;
    };
    const struct {
        const char *account, *key, *ways;
    } cases[] = {
        {"1002", "2", "下级科目 期初、借方和贷方 凭证"},
        {"1002", "13", ""}, // one side of each account: parents are no sum of children
        {"1122", "2", "客户 部门 期初、借方和贷方 凭证"},
        {"1122", "13", ""}, // one side of each combination, not of each customer
        {"1122|客户|C001", "13", "部门"},
        {"1122|客户|C001|部门|01", "13", ""},
        {"1122|客户|C0*", "13", "客户 部门"},
        {"1001:1122", "13", "匹配科目"},
        {"1001:1122", "2", "匹配科目 期初、借方和贷方"},
        {"1001:2202", "2", "匹配科目"}, // on both sides
        {"6001", "3", "商品 期间 凭证"},
        {"6001", "5", "商品 期间"},
        {"100101", "1", "上期期末"},
        {"1001", "1", "下级科目 上期期末"},
        {"1122|客户|C001", "1", "部门"}, // of the first period: a year may end for some items only
        {"100101", "4", "期间 凭证"},
        {"没有", "2", ""},
        {"1001", "99", ""},
        {"", "2", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ways(c.account, c.key), c.ways) << c.account << ' ' << c.key;
    EXPECT_EQ(ways("100101", "4", "1"), "凭证") << "one period";
}

/// A balance is followed back to where it arose; a ledger's first period, and one that the books did not
/// carry on, stop it.
TEST(CallParts, AnOpeningIsTheClosingOfThePeriodBefore)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    const auto before = [&](const std::string& year, const std::string& period) {
        const CallParts parts =
            opening.partsOf({"1001", "1", "", year, period, period}, {PartsBy::previous, ""});
        EXPECT_EQ(parts.parts.size(), 1U);
        return parts.parts.front().item + (parts.isWhole() ? "" : " ≠");
    };
    EXPECT_EQ(before("2025", "6"), "2025 年 5 期期末");
    EXPECT_EQ(before("2025", "1"), "2024 年 12 期期末");
    EXPECT_EQ(before("2024", "1"), "期初");
    connection->execute(thirteenthPeriod(2024));
    EXPECT_EQ(before("2025", "1"), "2024 年 13 期期末");
    connection->execute("update tblAccountBal set fEndBal=fEndBal+0.01 where fYear=2024 and fPeriod=13");
    EXPECT_EQ(before("2025", "1"), "2024 年 13 期期末 ≠");
}

/// Whoever types a day for a period gets the right figure, and no more parts than the ledger has.
TEST(CallParts, AreOfPeriodsThatThereAre)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    connection->execute("insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid) select "
                        "faccountid,fDetailId,fYear,99999999,fCurrencyid from tblAccountBal where fYear=2025 "
                        "and fPeriod=12");
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    for (const char* key : {"3", "5"}) {
        const CallParts parts =
            opening.partsOf({"100101", key, "", "2025", "1", "2147483647"}, {PartsBy::periods, ""});
        EXPECT_EQ(parts.failure, "");
        EXPECT_LE(parts.parts.size(), 13U) << key;
    }
    EXPECT_TRUE(
        opening.partsOf({"100101", "3", "", "2025", "1", "20251231"}, {PartsBy::periods, ""}).isWhole());
}

TEST(CallParts, SayWhereVouchersBeginAndEnd)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    connection->execute("delete from tblVoucher where fYear=2024 or fPeriod in (1,12)");
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    const auto reason = [&](const char* year, const char* first, const char* last) {
        const CallParts parts =
            opening.partsOf({"100101", "3", "", year, first, last}, {PartsBy::vouchers, ""});
        EXPECT_EQ(parts.isWhole(), parts.reason.empty()) << year << first << last;
        return parts.reason;
    };
    const char* const there = "凭证从2025年2期到2025年11期，此外的期间只有余额";
    EXPECT_EQ(reason("2024", "5", "5"), there);
    EXPECT_EQ(reason("2025", "1", "3"), there);
    EXPECT_EQ(reason("2025", "2", "11"), "");
    EXPECT_EQ(reason("2025", "11", "12"), there);
}

TEST(CallParts, NameCodesThatNoFormulaCan)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    connection->execute(
        "update tblCustomer set fNumber='K:1' where fitemid=(select min(fitemid) from tblCustomer)");
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    const CallParts parts = opening.partsOf({"1122", "2", "", "2025", "6", "6"}, {PartsBy::items, "客户"});
    const auto part =
        std::ranges::find_if(parts.parts, [](const CallPart& one) { return one.item.starts_with("K:1 "); });
    ASSERT_NE(part, parts.parts.end());
    EXPECT_EQ(part->amount, std::nullopt);
    EXPECT_NE(part->failure, "");
    const double amount =
        connection
            ->query(
                "select sum(a.fEndBal) as f from tblAccountBal as a join tblItemDetailV as v on "
                "v.fdetailId=a.fDetailId and v.fitemclassid=1 where a.fYear=2025 and a.fPeriod=6 and "
                "a.faccountid=(select fitemid from tblAccount where fNumber='1122') and v.fitemid=(select "
                "min(fitemid) from tblCustomer)")
            .number(0, "f");
    ASSERT_NE(amount, 0);
    EXPECT_NEAR(parts.difference, amount, 0.001);
    EXPECT_EQ(parts.reason, part->failure);
}

TEST(CallParts, SayWhatIsWrongAndKeepTheRest)
{
    const test::ExplainedDemo demo;
    const auto connection = demo.open();
    const AccountChart chart(*connection);
    CallOpening opening(*connection, chart);
    const LedgerArguments call{"100101", "4", "", "2025", "1", "3"};
    connection->execute("delete from tblVoucher");
    EXPECT_THAT(opening.partsOf(call, {PartsBy::vouchers, ""}).failure,
                ::testing::HasSubstr("没有可读的凭证"));
    connection->execute("delete from tblAccount where fNumber='100101'");
    EXPECT_FALSE(opening.partsOf(call, {PartsBy::periods, ""}).whole) << "an account that was deleted since";
    connection->execute("drop table tblAccountBal");
    EXPECT_NE(opening.partsOf(call, {PartsBy::periods, ""}).failure, "");
}

} // namespace
} // namespace selfreport
