// Ledgers of random content: sound ones raise no alarm, and a cent more in any amount of theirs is found.
#include "explain/ledger_proof.h"
#include "tests/explain/ExplainedDemo.h"
#include "tests/tdsserver/RealServer.h"

#include <array>
#include <gmock/gmock.h>
#include <iostream>
#include <random>

namespace selfreport {
namespace {

std::vector<std::string> broken(Connection& connection)
{
    std::vector<std::string> names;
    for (const ProvedIdentity& one : proveLedger(connection, 0).identities)
        if (one.state == ProvedIdentity::State::broken || one.state == ProvedIdentity::State::failed)
            names.push_back(one.name + " " + one.reason);
    return names;
}

struct Amounts {
    std::string table;
    std::vector<std::string> key, columns;
    std::string rows{}; ///< the condition of those that count
};

const std::array amounts{
    Amounts{"tblAccountBal",
            {"faccountid", "fDetailId", "fYear", "fPeriod", "fCurrencyid"},
            {"fBeginBal", "fBeginBalFor", "fDebit", "fDebitFor", "fCredit", "fCreditFor", "fYtdDebit",
             "fYtdDebitFor", "fYtdCredit", "fYtdCreditFor", "fEndBal", "fEndBalFor"}},
    Amounts{"tblProfitAndLoss",
            {"fAccountId", "fDetailid", "fYear", "fPeriod", "fCurrencyid"},
            {"fAmount", "fAmountFor", "fYtdAmount", "fYtdAmountFor"}},
    Amounts{"tblQtyBalance",
            {"fAccountId", "fDetailid", "fYear", "fPeriod", "fCurrencyid"},
            {"fBeginQty", "fDebitQty", "fCreditQty", "fYtdDebitQty", "fYtdCreditQty", "fEndQty"}},
    Amounts{"tblVoucherEntry", {"fvoucherid", "fentryid"}, {"fDebit", "fDebitFor", "fCredit", "fCreditFor"}},
    Amounts{"tblVoucherEntry",
            {"fvoucherid", "fentryid"},
            {"fDebitQty", "fCreditQty"},
            " where faccountid in (select fAccountId from tblQtyBalance)"},
};

std::string listed(const std::vector<std::string>& names, const char* between)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : between) + name;
    return text;
}

/// A cent more in an amount, to the end of its scope.
class PlantedCent {
public:
    PlantedCent(Connection& connection, std::mt19937& random)
        : m_connection(connection)
        , m_amounts(amounts[random() % amounts.size()])
        , m_column(m_amounts.columns[random() % m_amounts.columns.size()])
    {
        const Recordset rows = connection.query("select " + listed(m_amounts.key, ",") + " from " +
                                                m_amounts.table + m_amounts.rows);
        const std::size_t row = random() % rows.rowCount();
        for (std::size_t column = 0; column < m_amounts.key.size(); ++column)
            m_row.emplace_back(rows.integer(row, column));
        m_before = connection.query("select " + m_column + " from " + m_amounts.table + where(), m_row)
                       .number(0, std::size_t{0});
        set(m_before + 0.01);
    }
    ~PlantedCent() { set(m_before); }
    PlantedCent(const PlantedCent&) = delete;
    PlantedCent& operator=(const PlantedCent&) = delete;

    std::string what() const { return m_amounts.table + "." + m_column + " of " + place(); }

private:
    std::string where() const { return " where " + listed(m_amounts.key, "=? and ") + "=?"; }
    std::string place() const
    {
        std::string text;
        for (const SqlValue& part : m_row)
            text += std::to_string(std::get<std::int64_t>(part)) + " ";
        return text;
    }
    void set(double amount)
    {
        std::vector<SqlValue> values{amount};
        values.insert(values.end(), m_row.begin(), m_row.end());
        m_connection.execute("update " + m_amounts.table + " set " + m_column + "=?" + where(), values);
    }

    Connection& m_connection;
    const Amounts& m_amounts;
    std::string m_column;
    std::vector<SqlValue> m_row;
    double m_before = 0;
};

TEST(ProveRandomLedgers, SoundOnesRaiseNoAlarmAndACentAnywhereDoes)
{
    const std::size_t ledgers = test::manyBy("SELFREPORT_LEDGERS", 2);
    constexpr int centsInEach = 3;
    std::size_t found = 0;
    for (std::size_t number = 1; number <= ledgers; ++number) {
        std::mt19937 random(static_cast<unsigned>(number));
        const auto drawn = [&](int least, int choices) {
            return least + static_cast<int>(random() % static_cast<unsigned>(choices));
        };
        const test::ExplainedDemo demo(DemoLedgerOptions{.seed = number * 7919,
                                                         .firstYear = drawn(1998, 30),
                                                         .departments = drawn(8, 5),
                                                         .customers = drawn(4, 20),
                                                         .suppliers = drawn(4, 12),
                                                         .goods = drawn(4, 20),
                                                         .salesPerPeriod = drawn(10, 60)});
        const auto connection = demo.open();
        EXPECT_THAT(broken(*connection), ::testing::IsEmpty()) << number;
        for (int cent = 0; cent < centsInEach; ++cent) {
            const PlantedCent planted(*connection, random);
            const bool isFound = !broken(*connection).empty();
            EXPECT_TRUE(isFound) << number << ": " << planted.what();
            found += isFound ? 1 : 0;
        }
    }
    std::cout << ledgers << " ledgers, " << found << " of " << ledgers * centsInEach << " cents found\n";
}

TEST(ProveRandomLedgers, TheSameOnARealServer)
{
    if (!tds::RealServer::isThere())
        GTEST_SKIP() << "SELFREPORT_TEST_SERVER names no server";
    tds::RealServer server;
    const auto connection = openConnection(server.connectionString());
    writeDemoLedger(*connection,
                    {.seed = 27, .customers = 6, .suppliers = 5, .goods = 6, .salesPerPeriod = 15});
    EXPECT_THAT(broken(*connection), ::testing::IsEmpty());
    std::mt19937 random(27);
    const std::size_t cents = test::manyBy("SELFREPORT_CENTS", 8);
    for (std::size_t cent = 0; cent < cents; ++cent) {
        const PlantedCent planted(*connection, random);
        EXPECT_FALSE(broken(*connection).empty()) << planted.what();
    }
}

} // namespace
} // namespace selfreport
