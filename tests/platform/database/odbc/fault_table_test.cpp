#include "platform/database/Connection.h"

#include "tests/platform/database/database_folder.h"
#include "tests/tdsserver/TdsServer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <random>
#include <thread>

namespace selfreport {
namespace {

using testing::DatabaseFolder;
using namespace std::chrono_literals;
using tds::Cut;
using tds::Ending;
using tds::Step;

constexpr std::size_t contentSize = 100'000;

/// Runs the works on threads of their own, as most of their time is waiting.
void atOnce(std::size_t count, const std::function<void(std::size_t)>& work)
{
    constexpr int threads = 16;
    std::atomic<std::size_t> next = 0;
    std::vector<std::jthread> running;
    for (int thread = 0; thread < threads; ++thread)
        running.emplace_back([&] {
            for (std::size_t at = next++; at < count; at = next++)
                work(at);
        });
}

ProcedureCall closingBalance()
{
    ProcedureCall call{"sp_GS_AcctProc", {}};
    call.append("strSql", 2000, testing::ledgerFrom + " where  1=1   and (b.fNumber='1001')");
    for (const char* name : {"strField", "currenct", "fYear", "fPeriod1", "fPeriod2"})
        call.append(name, 10, std::string_view(name) == "strField" ? "2" : "");
    return call;
}

Recordset readReport(Connection& connection)
{
    return connection.query("select * from tblCWSelfReport", BinaryColumns::fetched);
}

/// A database with one report and one balance, and its server.
struct ServedReport {
    explicit ServedReport(const DatabaseFolder& folder, const std::string& name = "ledger.db")
        : file(folder.connectionString(name))
        , server(filled(folder, name))
        , connectionString(server.connectionString("Connect Timeout=1;Command Timeout=1"))
    {
    }

    static std::string filled(const DatabaseFolder& folder, const std::string& name)
    {
        const std::vector<std::byte> content(contentSize, std::byte{7});
        const auto connection = folder.create(name);
        connection->execute("insert into tblCWSelfReport(noid,fname,fFileContent) values(1,'old',?)",
                            {std::span<const std::byte>(content)});
        connection->execute("insert into tblAccount(fitemid,fNumber,fName) values(1,'1001','库存现金')");
        connection->execute(
            "insert into tblAccountBal(faccountid,fDetailId,fYear,fPeriod,fCurrencyid,fEndBal) "
            "values(1,0,2025,1,1,7.5)");
        return folder.file(name);
    }

    /// Name of the report as it stands in the file. The content must be whole.
    std::string storedName() const
    {
        const Recordset rows = readReport(*openConnection(file));
        EXPECT_EQ(rows.rowCount(), 1U);
        EXPECT_EQ(rows.binary(0, "fFileContent").size(), contentSize);
        return rows.text(0, "fname");
    }

    /// Whether a new connection, taken from the pool or not, works.
    void expectNextToWork(const std::string& what) const
    {
        try {
            const auto connection = openConnection(connectionString);
            EXPECT_EQ(readReport(*connection).rowCount(), 1U) << what;
            const ProcedureResult result = connection->call(closingBalance());
            ASSERT_TRUE(result.rows && !result.rows->isEmpty()) << what;
            EXPECT_EQ(result.rows->number(0, "f"), 7.5) << what;
        } catch (const DatabaseError& error) {
            ADD_FAILURE() << what << ": " << error.description;
        }
    }

    std::string file; ///< connection string past the server
    tds::TdsServer server;
    std::string connectionString;
};

void rename(Connection& connection)
{
    connection.execute("update tblCWSelfReport set fname=? where noid=1", {"new"});
}

/// Does what contains the step; a failed call throws like all others.
void operate(const std::string& connectionString, Step step)
{
    const auto connection = openConnection(connectionString);
    switch (step) {
    case Step::preLogin:
    case Step::login:
        break;
    case Step::batch:
        readReport(*connection);
        break;
    case Step::statement:
        rename(*connection);
        break;
    case Step::procedure: {
        const ProcedureResult result = connection->call(closingBalance());
        if (result.error)
            throw *result.error;
        break;
    }
    case Step::begin:
    case Step::commit:
    case Step::rollBack: {
        Transaction transaction(*connection);
        rename(*connection);
        if (step == Step::commit)
            transaction.commit();
        break;
    }
    case Step::attention: {
        const std::jthread canceller([&] {
            std::this_thread::sleep_for(50ms);
            connection->cancel();
        });
        readReport(*connection);
    }
    }
}

constexpr const char* stepNames[] = {"pre-login", "login",  "batch",     "statement", "procedure call",
                                     "begin",     "commit", "roll back", "attention"};
constexpr const char* cutNames[] = {"", "before the reply", "in a header", "inside a token",
                                    "last byte missing"};
constexpr const char* endingNames[] = {"closed", "reset", "silent"};

struct Case {
    Step step;
    Cut cut;
    Ending ending;

    std::string name() const
    {
        return std::string(stepNames[static_cast<int>(step)]) + ", " + cutNames[static_cast<int>(cut)] +
               ", " + endingNames[static_cast<int>(ending)];
    }
};

std::vector<Case> allCases()
{
    std::vector<Case> cases;
    for (const Step step : {Step::preLogin, Step::login, Step::batch, Step::statement, Step::procedure,
                            Step::begin, Step::commit, Step::rollBack, Step::attention})
        for (const Cut cut : {Cut::beforeReply, Cut::inHeader, Cut::insideToken, Cut::lastByteMissing})
            for (const Ending ending : {Ending::closed, Ending::reset, Ending::silent})
                cases.push_back({step, cut, ending});
    return cases;
}

/// What the report may be called afterwards: a change whose answer was lost may have been made.
bool mayBeNamed(const std::string& name, Step step)
{
    const bool changed = step == Step::statement || step == Step::commit;
    return name == (changed ? "new" : "old");
}

void expectFailure(const Case& c, const std::string& connectionString)
{
    const auto start = std::chrono::steady_clock::now();
    try {
        operate(connectionString, c.step);
        // Nobody hears how a transaction that is given up ends.
        EXPECT_EQ(c.step, Step::rollBack) << c.name();
    } catch (const DatabaseError& error) {
        const bool opening = c.step == Step::preLogin || c.step == Step::login;
        EXPECT_TRUE(!opening || error.number == unspecifiedError) << c.name() << error.number;
        EXPECT_NE(error.description, "") << c.name();
        EXPECT_EQ(error.description.find(tds::TdsServer::password), std::string::npos) << c.name();
    }
    // One second of time-out, for some steps another for the attention; the rest is a busy machine.
    EXPECT_LT(std::chrono::steady_clock::now() - start, c.ending == Ending::silent ? 10s : 5s) << c.name();
}

TEST(FaultTable, EveryCutIsAnErrorAndNothingIsLost)
{
    const DatabaseFolder folder;
    const std::vector<Case> cases = allCases();
    atOnce(cases.size(), [&](std::size_t at) {
        const Case& c = cases[at];
        ServedReport served(folder, std::to_string(at));
        if (c.step == Step::attention)
            served.server.faults.order({Step::batch, Cut::beforeReply, Ending::held, {}, {}});
        served.server.faults.order({c.step, c.cut, c.ending, {}, {}});
        expectFailure(c, served.connectionString);
        EXPECT_TRUE(mayBeNamed(served.storedName(), c.step)) << c.name();
        served.expectNextToWork(c.name());
    });
}

TEST(FaultTable, GarbageIsAnErrorAtEveryStep)
{
    const DatabaseFolder folder;
    constexpr std::size_t steps =
        std::size(stepNames) - 1; // what answers an attention is a token like others
    constexpr std::size_t perStep = 6;
    atOnce(steps * perStep, [&](std::size_t at) {
        const Case c{static_cast<Step>(at / perStep), Cut::none, Ending::closed};
        ServedReport served(folder, std::to_string(at));
        std::mt19937 random(static_cast<unsigned>(at));
        std::string garbage(1 + random() % 3000, '\0');
        std::ranges::generate(garbage, [&] { return static_cast<char>(random()); });
        served.server.faults.order({c.step, c.cut, c.ending, {}, garbage});
        expectFailure(c, served.connectionString);
        EXPECT_TRUE(mayBeNamed(served.storedName(), c.step)) << c.name();
        served.expectNextToWork(c.name());
    });
}

/// Tokens dropped, doubled, exchanged or with one byte changed.
void disorder(tds::Reply& reply, std::mt19937& random)
{
    for (auto changes = 1 + random() % 3; changes > 0 && !reply.tokens.empty(); --changes) {
        const std::size_t at = random() % reply.tokens.size();
        const auto place = reply.tokens.begin() + static_cast<std::ptrdiff_t>(at);
        std::string& token = *place;
        switch (random() % 4) {
        case 0:
            reply.tokens.erase(place);
            break;
        case 1:
            reply.tokens.insert(place, std::string(token));
            break;
        case 2:
            std::swap(token, reply.tokens[random() % reply.tokens.size()]);
            break;
        default:
            token[random() % token.size()] = static_cast<char>(random());
            break;
        }
    }
}

TEST(FaultTable, DisorderedTokensNeitherCrashNorHang)
{
    const DatabaseFolder folder;
    constexpr std::size_t streams = 200;
    static constexpr Step steps[] = {Step::login, Step::batch,  Step::statement, Step::procedure,
                                     Step::begin, Step::commit, Step::rollBack};
    atOnce(streams, [&](std::size_t at) {
        const Step step = steps[at % std::size(steps)];
        const std::string what = std::to_string(at) + " " + stepNames[static_cast<int>(step)];
        ServedReport served(folder, std::to_string(at));
        served.server.faults.order({step,
                                    Cut::none,
                                    Ending::closed,
                                    [&](tds::Reply& reply) {
                                        std::mt19937 random(static_cast<unsigned>(at));
                                        disorder(reply, random);
                                    },
                                    {}});
        const auto start = std::chrono::steady_clock::now();
        try {
            operate(served.connectionString, step);
        } catch (const DatabaseError& error) {
            EXPECT_NE(error.description, "") << what;
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << what;
        const std::string name = served.storedName();
        EXPECT_TRUE(name == "old" || name == "new") << what;
        served.expectNextToWork(what);
    });
}

} // namespace
} // namespace selfreport
