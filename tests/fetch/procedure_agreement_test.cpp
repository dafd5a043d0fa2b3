// The ledger's procedure in its two bodies, the embedded database's and the server's, and a third reading of
// docs/ledger.md: over plain rows, without a statement.
#include "fetch/ledger_fetch.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "tests/own_files.h"
#include "tests/tdsserver/RealServer.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace selfreport {
namespace {

using Amounts = std::vector<std::int64_t>; // ten thousandths

struct Account {
    int id;
    std::string code;
    int parent, direction;
};
struct Key {
    int account, detail, year, period, currency;
    auto operator<=>(const Key&) const = default;
};
struct Item {
    int id;
    const char* table;
    const char* code;
};

const std::array<Item, 6> items{{{501, "tblCustomer", "001"},
                                 {502, "tblCustomer", "002"},
                                 {503, "tblCustomer", "013"},
                                 {601, "tblDepartment", "01"},
                                 {602, "tblDepartment", "02"},
                                 {603, "tblDepartment", "11"}}};
/// Items of each combination: of one class, of two, two of one class.
const std::map<int, std::vector<int>> combinations{
    {71, {501}}, {72, {502}}, {73, {501, 601}}, {74, {503, 602}}, {75, {601}}, {76, {501, 502}}, {77, {603}}};

class Random {
public:
    explicit Random(unsigned seed)
        : m_engine(seed)
    {
    }
    int below(int bound) { return static_cast<int>(m_engine() % static_cast<unsigned>(bound)); }
    bool chance(int percent) { return below(100) < percent; }
    template <class Choices>
    auto of(const Choices& choices)
    {
        return choices[static_cast<std::size_t>(below(static_cast<int>(std::size(choices))))];
    }

private:
    std::mt19937 m_engine;
};

/// Rows without any order among them: parents with rows and without, sums that do not add up.
struct Rows {
    std::vector<Account> accounts;
    std::map<Key, Amounts> balances, quantities, results;

    explicit Rows(unsigned seed)
    {
        Random random(seed);
        for (const char* code : {"1001", "1002", "1122", "2202", "6601", "6602"})
            grow(code, 0, 1, random);
        for (const Account& account : accounts)
            fill(account, random);
        balances[{accounts.front().id, 0, 2025, 3, 1}] = amounts(12, random);
    }

    void grow(const std::string& code, int parent, int level, Random& random)
    {
        const int id = static_cast<int>(accounts.size()) + 1;
        accounts.push_back({id, code, parent, random.chance(50) ? 1 : -1});
        for (int child = 1; level < 4 && random.chance(60) && child < 4; ++child)
            grow(code + "0" + std::to_string(child), id, level + 1, random);
    }

    static Amounts amounts(int count, Random& random)
    {
        Amounts made;
        while (count-- > 0)
            made.push_back((random.below(4'000'000) - 2'000'000) * 100);
        return made;
    }

    void fill(const Account& account, Random& random)
    {
        const bool isEmpty = random.chance(25);
        for (int detail : {0, 71, 72, 73, 74, 75, 76, 77})
            for (int year : {2024, 2025})
                for (int period : {1, 2, 3})
                    for (int currency : {1, 2}) {
                        const Key key{account.id, detail, year, period, currency};
                        if (isEmpty || !random.chance(50))
                            continue;
                        balances[key] = amounts(12, random);
                        if (random.chance(70))
                            quantities[key] = amounts(6, random);
                        if (random.chance(70))
                            results[key] = amounts(4, random);
                    }
    }
};

std::string decimalText(std::int64_t tenThousandths)
{
    std::string digits = std::to_string(std::abs(tenThousandths) % 10'000 + 10'000).substr(1);
    return (tenThousandths < 0 ? "-" : "") + std::to_string(std::abs(tenThousandths) / 10'000) + "." + digits;
}

void insertAll(Connection& connection, const std::string& table, const std::map<Key, Amounts>& rows)
{
    std::string values;
    std::size_t count = 0;
    for (const auto& [key, amounts] : rows) {
        values += (values.empty() ? "(" : ",(") + std::to_string(key.account) + "," +
                  std::to_string(key.detail) + "," + std::to_string(key.year) + "," +
                  std::to_string(key.period) + "," + std::to_string(key.currency);
        for (const std::int64_t amount : amounts)
            values += "," + decimalText(amount);
        values += ")";
        if (++count % 200 == 0 || count == rows.size())
            connection.execute("insert into " + table + " values" + std::exchange(values, ""));
    }
}

void store(Connection& connection, const Rows& rows)
{
    Transaction transaction(connection);
    for (const Account& account : rows.accounts)
        connection.execute(
            "insert into tblAccount(fitemid,fNumber,fName,fParentId,fDirection) values(?,?,?,?,?)",
            {std::int64_t{account.id}, account.code, account.code, std::int64_t{account.parent},
             std::int64_t{account.direction}});
    connection.execute("insert into tblCurrency values(1,'RMB','人民币'),(2,'USD','美元')");
    connection.execute("insert into tblItemClass values(1,'客户','tblCustomer'),(2,'部门','tblDepartment')");
    for (const Item& item : items)
        connection.execute("insert into " + std::string(item.table) + " values(?,?,?)",
                           {std::int64_t{item.id}, std::string(item.code), std::string(item.code)});
    for (const auto& [combination, held] : combinations)
        for (const int item : held)
            connection.execute(
                "insert into tblItemDetailV values(?,?,?)",
                {std::int64_t{combination}, std::int64_t{item < 600 ? 1 : 2}, std::int64_t{item}});
    insertAll(connection, "tblAccountBal", rows.balances);
    insertAll(connection, "tblQtyBalance", rows.quantities);
    insertAll(connection, "tblProfitAndLoss", rows.results);
    transaction.commit();
}

/// The rows on a real server.
struct ServedRows {
    /// @param together  calls go to the companion that takes many
    ServedRows(const Rows& rows, bool together)
        : connection(openConnection(server.connectionString()))
    {
        store(*connection, rows);
        if (!together)
            connection->execute("drop procedure sp_GS_SelfReportAmounts");
    }
    tds::RealServer server;
    std::unique_ptr<Connection> connection;
};

std::optional<std::string> tableOf(const std::string& className)
{
    if (className == "客户")
        return "tblCustomer";
    return className == "部门" ? std::optional<std::string>("tblDepartment") : std::nullopt;
}

ProcedureCall callFor(const LedgerArguments& arguments)
{
    const AccountExpression expression = parseAccountExpression(arguments.account);
    std::vector<std::optional<std::string>> tables;
    for (const ItemQualifier& qualifier : expression.qualifiers)
        tables.push_back(tableOf(qualifier.className));
    return ledgerProcedureCall(arguments, ledgerQuery(expression, tables));
}

std::string outcomeText(const ProcedureResult& result)
{
    if (result.error)
        return "error";
    if (result.returnValue != 1 || !result.rows)
        return "returned " + std::to_string(result.returnValue);
    if (result.rows->isEmpty())
        return "none";
    return decimalText(std::llround(result.rows->number(0, "f") * 10'000));
}

std::vector<std::string> outcomes(Connection& connection, const std::vector<LedgerArguments>& fetches)
{
    std::vector<ProcedureCall> calls;
    for (const LedgerArguments& arguments : fetches)
        calls.push_back(callFor(arguments));
    std::vector<std::string> texts;
    for (const ProcedureResult& result : connection.callProcedures(calls))
        texts.push_back(outcomeText(result));
    return texts;
}

/// The third reading.
class Reading {
public:
    explicit Reading(const Rows& rows)
        : m_rows(rows)
    {
    }

    std::string outcome(const LedgerArguments& arguments) const
    {
        const Fetched* const kind = kindOf(std::string(trimmed(arguments.fetchType)));
        const std::string currency(trimmed(arguments.currency));
        if (!kind || (!currency.empty() && currency != "RMB" && currency != "USD" && currency != "usd"))
            return "returned 0";
        Asked asked{parseAccountExpression(arguments.account), *kind,
                    currency.empty()    ? 0
                    : currency == "RMB" ? 1
                                        : 2};
        asked.year = arguments.year.empty() ? 2025 : std::stoi(arguments.year);
        asked.first = arguments.firstPeriod.empty() ? 1 : std::stoi(arguments.firstPeriod);
        asked.last = arguments.lastPeriod.empty() ? lastPeriod(asked.year) : std::stoi(arguments.lastPeriod);
        return sum(asked);
    }

private:
    struct Fetched {
        const char* key;
        char table;      // a balances, d quantities, e profit and loss
        int place;       // of the amount among the table's; base currency, the original stands before it
        char periods;    // First, Last, All
        bool isDirected; // times the account's direction
        int side = 0;    // 1 debit, -1 credit: of each account and combination that side only
    };
    struct Asked {
        AccountExpression expression;
        Fetched kind;
        int currency; // 0: all
        int year = 0, first = 0, last = 0;
    };

    static const Fetched* kindOf(const std::string& key)
    {
        static const Fetched kinds[] = {
            {"1", 'a', 1, 'F', true},       {"2", 'a', 11, 'L', true},      {"3", 'a', 3, 'A', false},
            {"4", 'a', 5, 'A', false},      {"5", 'a', 7, 'L', false},      {"6", 'a', 9, 'L', false},
            {"7", 'e', 1, 'A', false},      {"8", 'e', 3, 'L', false},      {"9", 'd', 0, 'F', true},
            {"10", 'd', 5, 'L', true},      {"11", 'd', 1, 'A', false},     {"12", 'd', 2, 'A', false},
            {"13", 'a', 11, 'L', false, 1}, {"14", 'a', 11, 'L', false, -1}};
        for (const Fetched& kind : kinds)
            if (key == kind.key)
                return &kind;
        return nullptr;
    }

    int lastPeriod(int year) const
    {
        int last = 1;
        for (const auto& [key, amounts] : m_rows.balances)
            if (key.year == year)
                last = std::max(last, key.period);
        return last;
    }

    static bool matches(const std::string& code, const std::vector<std::string>& codes)
    {
        if (codes.empty())
            return true;
        if (codes.size() > 1)
            return codes[0] <= code && code <= codes[1];
        if (codes[0].size() != code.size())
            return false;
        for (std::size_t at = 0; at < code.size(); ++at)
            if (codes[0][at] != '*' && codes[0][at] != code[at])
                return false;
        return true;
    }

    static bool holdsItems(int detail, const AccountExpression& expression)
    {
        if (expression.qualifiers.empty())
            return detail == 0;
        for (const ItemQualifier& qualifier : expression.qualifiers) {
            const auto table = tableOf(qualifier.className);
            if (detail != 0 && table && !qualifier.codes.empty() &&
                !holdsItem(detail, *table, qualifier.codes))
                return false;
        }
        return detail != 0;
    }

    static bool holdsItem(int detail, const std::string& table, const std::vector<std::string>& codes)
    {
        for (const int held : combinations.at(detail))
            for (const Item& item : items)
                if (item.id == held && item.table == table && matches(item.code, codes))
                    return true;
        return false;
    }

    bool isAsked(const Key& key, const Asked& asked) const
    {
        const char periods = asked.kind.periods;
        return matches(account(key.account).code, asked.expression.codes) &&
               holdsItems(key.detail, asked.expression) && key.year == asked.year &&
               (asked.currency == 0 || key.currency == asked.currency) &&
               key.period >= (periods == 'L' ? asked.last : asked.first) &&
               key.period <= (periods == 'F' ? asked.first : asked.last);
    }

    const Account& account(int id) const { return m_rows.accounts[static_cast<std::size_t>(id - 1)]; }

    std::string sum(const Asked& asked) const
    {
        std::set<int> withRows;
        for (const auto& [key, amounts] : m_rows.balances)
            if (isAsked(key, asked))
                withRows.insert(key.account);
        std::map<std::pair<int, int>, std::int64_t> byCombination;
        const auto& table = asked.kind.table == 'a'   ? m_rows.balances
                            : asked.kind.table == 'd' ? m_rows.quantities
                                                      : m_rows.results;
        const int place = asked.kind.place - (asked.currency != 0 && asked.kind.table != 'd' ? 1 : 0);
        for (const auto& [key, amounts] : table) {
            bool counts = isAsked(key, asked);
            for (int above = account(key.account).parent; above != 0; above = account(above).parent)
                counts = counts && !withRows.contains(above);
            if (counts)
                byCombination[{key.account, key.detail}] +=
                    amounts[static_cast<std::size_t>(place)] *
                    (asked.kind.isDirected ? account(key.account).direction : 1);
        }
        if (byCombination.empty())
            return "none";
        std::int64_t total = 0;
        for (const auto& [where, amount] : byCombination)
            total += asked.kind.side == 0 ? amount : std::max<std::int64_t>(0, amount * asked.kind.side);
        return decimalText(total);
    }

    const Rows& m_rows;
};

LedgerArguments randomArguments(const Rows& rows, Random& random)
{
    const auto code = [&] {
        return rows.accounts[static_cast<std::size_t>(random.below(static_cast<int>(rows.accounts.size())))]
            .code;
    };
    const auto withStars = [&](std::string text, int count) {
        while (count-- > 0)
            text[static_cast<std::size_t>(random.below(static_cast<int>(text.size())))] = '*';
        return text;
    };
    LedgerArguments arguments;
    switch (random.below(6)) {
    case 0:
        arguments.account = withStars(code(), 1 + random.below(3));
        break;
    case 1:
        arguments.account = code() + "**";
        break;
    case 2:
    case 3:
        arguments.account = code() + ":" + code() + (random.chance(30) ? "99" : "");
        break;
    case 4:
        arguments.account = random.chance(50) ? "" : "100";
        break;
    default:
        arguments.account = code();
    }
    for (int classes = random.chance(60) ? 0 : 1 + random.below(2); classes > 0; --classes) {
        const bool isCustomer = random.chance(50);
        static constexpr const char* customers[] = {"001", "002", "00*", "001:002", "0*3", "", "999"};
        static constexpr const char* departments[] = {"01", "0*", "01:11", "*1", "", "02"};
        arguments.account += std::string("|") +
                             (random.chance(8) ? "无此类"
                              : isCustomer     ? "客户"
                                               : "部门") +
                             "|" + (isCustomer ? random.of(customers) : random.of(departments));
    }
    static constexpr const char* odd[] = {"15", "x", " 2 ", "0"};
    arguments.fetchType = random.chance(4) ? random.of(odd) : std::to_string(1 + random.below(14));
    static constexpr const char* currencies[] = {"", "", "", " ", "RMB", "USD", "usd", " USD", "EUR"};
    static constexpr const char* years[] = {"", "2024", "2025", "2025", "2025", "2025", "2025", "1999"};
    static constexpr const char* firsts[] = {"", "1", "1", "2"};
    static constexpr const char* lasts[] = {"", "1", "2", "2", "3", "3", "3", "4"};
    arguments.currency = random.of(currencies);
    arguments.year = random.of(years);
    arguments.firstPeriod = random.of(firsts);
    arguments.lastPeriod = random.of(lasts);
    return arguments;
}

/// Both bodies over the same rows; the server's only where there is one.
class ProcedureAgreement : public ::testing::Test {
protected:
    static constexpr int calls = 2'000;

    ProcedureAgreement()
        : m_file(test::ownFile("agreement.db").string())
    {
    }
    ~ProcedureAgreement() override
    {
        closeIdleSessions();
        std::filesystem::remove(m_file);
    }
    std::unique_ptr<Connection> embedded(const Rows& rows)
    {
        std::filesystem::remove(m_file);
        createDatabase(m_file);
        auto connection = openConnection("Provider=SQLite;Data Source=" + m_file);
        store(*connection, rows);
        return connection;
    }
    static void expectReading(Connection& connection, const Rows& rows, unsigned seed)
    {
        Random random(seed);
        std::vector<LedgerArguments> fetches;
        while (fetches.size() < calls)
            fetches.push_back(randomArguments(rows, random));
        const std::vector<std::string> given = outcomes(connection, fetches);
        const Reading reading(rows);
        int figures = 0;
        for (std::size_t at = 0; at < fetches.size(); ++at) {
            const LedgerArguments& f = fetches[at];
            ASSERT_EQ(given[at], reading.outcome(f))
                << '"' << f.account << "\" " << f.fetchType << " '" << f.currency << "' '" << f.year << "' '"
                << f.firstPeriod << "' '" << f.lastPeriod << "'";
            figures += given[at] != "none" && given[at] != "returned 0" ? 1 : 0;
        }
        EXPECT_GT(figures, calls / 4) << "else they hardly ask for anything";
    }

    std::string m_file;
};

TEST_F(ProcedureAgreement, TheEmbeddedBodyCountsWhatTheRowsSay)
{
    const Rows rows(7);
    expectReading(*embedded(rows), rows, 7);
}

/// Call by call, and many at once.
class ServersBodies : public ProcedureAgreement, public ::testing::WithParamInterface<bool> {
protected:
    void SetUp() override
    {
        if (!tds::RealServer::isThere())
            GTEST_SKIP() << "SELFREPORT_TEST_SERVER names no server";
    }
};
INSTANTIATE_TEST_SUITE_P(ProcedureAgreement, ServersBodies, ::testing::Values(false, true),
                         [](const auto& together) { return together.param ? "Together" : "OneByOne"; });

TEST_P(ServersBodies, CountWhatTheRowsSay)
{
    const Rows rows(7);
    const ServedRows served(rows, GetParam());
    expectReading(*served.connection, rows, 7);
}

/// Where letters, wildcards and quotes come in there is no third reading, but still only one meaning.
TEST_P(ServersBodies, TakeOddTextsAsTheEmbeddedOneDoes)
{
    const Rows rows(7);
    const ServedRows served(rows, GetParam());
    const auto other = embedded(rows);
    std::vector<LedgerArguments> fetches;
    for (const char* account : {"1001",
                                "1001 ",
                                " 1001",
                                "10'01",
                                "1001'",
                                "''",
                                "' or '1'='1",
                                "%",
                                "1%",
                                "_001",
                                "[1]001",
                                "[^1]001",
                                "10*1",
                                "**",
                                "１００１",
                                "1001:",
                                ":1001",
                                "1001:1001",
                                "1002:1001",
                                "1:9",
                                "a:z",
                                "银行",
                                "1001;--",
                                "1001＇ or 1=1 --",
                                "?",
                                "@p1",
                                "1001|客户|0'1",
                                "1001|客户|%",
                                "1122|客户|*:*",
                                "1122|客户|'",
                                "|客户|001|客户|002",
                                "|客户|001|部门|01|客户|00*|部门|0*",
                                "1122|客户|001|部门|01|客户|00*|部门|0*|客户|001:002|部门|01:11",
                                "1122|客户|001|部门|01|客户|00*|部门|0*|客户|0'1:002|部门|0''1",
                                "1122|客户|001|客户|*|客户|00*|客户|0*|客户|*01|客户|＇ or 1=1) --|客户|001",
                                "1122|客户",
                                "1122|客户|",
                                "1122||001",
                                "|",
                                "||"})
        for (const char* key : {"2", "3", "13", "10"})
            fetches.push_back({account, key, "", "2025", "1", "3"});
    for (const char* year : {"2025年", " 2025 ", "2025.0", "99999999999", "-1", "0", "+2025", "", " "})
        for (const char* period : {"1", "一", " 1 ", "1e0", "", " "}) {
            fetches.push_back({"1001", "3", "", year, period, "3"});
            fetches.push_back({"1001", "3", "", "2025", "1", period});
        }
    for (const char* key : {"2", "2 ", " 2", "02", "2x", "", " ", "'", "%"})
        for (const char* currency : {"", " ", "RMB", "rmb", "RMB ", " RMB", "R'MB", "%", "美元"})
            fetches.push_back({"1001", key, currency, "2025", "1", "3"});
    const std::vector<std::string> there = outcomes(*served.connection, fetches),
                                   here = outcomes(*other, fetches);
    ASSERT_GE(fetches.size(), 150U);
    for (std::size_t at = 0; at < fetches.size(); ++at)
        EXPECT_EQ(there[at], here[at]) << '"' << fetches[at].account << "\" '" << fetches[at].fetchType
                                       << "' '" << fetches[at].currency << "' '" << fetches[at].year << "' '"
                                       << fetches[at].firstPeriod << "' '" << fetches[at].lastPeriod << "'";
    const LedgerArguments beyondTheCodePage{"1001ʼ or 1=1 --", "2", "", "2025", "1", "3"};
    EXPECT_EQ(outcomes(*served.connection, {beyondTheCodePage}), std::vector<std::string>{"error"})
        << "a code page may make an apostrophe of it, so it is not sent";
}

} // namespace
} // namespace selfreport
