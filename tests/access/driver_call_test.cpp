#include "access/driver_call.h"

#include "platform/database/session/DatabaseError.h"
#include "state/mdlMain.h"
#include "tests/fetch/TestLedger.h"
#include "tests/tdsserver/TdsServer.h"
#include "tests/torture/ImpatientUser.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace selfreport {
namespace {

/// A user who cancels during the call, or does not.
class ScriptedWait : public UserWait {
public:
    explicit ScriptedWait(bool cancels)
        : m_cancels(cancels)
    {
    }
    CallEnd runApart(std::function<void()> call, std::function<void()>) override
    {
        ++calls;
        std::thread(std::move(call)).join();
        m_isCancelled = m_cancels;
        return m_cancels ? CallEnd::cancelled : CallEnd::done;
    }
    bool pause() override { return m_isCancelled; }
    bool isCancelled() const override { return m_isCancelled; }

    int calls = 0;

private:
    bool m_cancels;
    bool m_isCancelled = false;
};

std::size_t rowsOf(std::unique_ptr<Connection>& connection, const std::string& sql)
{
    return driverCall<std::size_t>(connection,
                                   [sql](Connection& open) { return open.query(sql).rowCount(); });
}

TEST(DriverCall, GivesTheConnectionBackUnlessItWasCancelled)
{
    const test::TestLedger ledger;
    auto connection = openConnection(gConnString);
    {
        ScriptedWait patient(false);
        const UserWaitInUse inUse(patient);
        EXPECT_EQ(rowsOf(connection, "select * from tblAccount"), 4u);
        ASSERT_NE(connection, nullptr);
        EXPECT_THROW(rowsOf(connection, "select * from tblNowhere"), DatabaseError);
        EXPECT_NE(connection, nullptr);
    }
    ScriptedWait impatient(true);
    const UserWaitInUse inUse(impatient);
    EXPECT_THROW(rowsOf(connection, "select * from tblAccount"), WorkCancelled);
    EXPECT_EQ(connection, nullptr);
    EXPECT_THROW(openDB(), WorkCancelled); // nothing is tried any more, and no box says so
    EXPECT_EQ(impatient.calls, 1);
    EXPECT_TRUE(ledger.boxes.said.empty());
}

/// Lets something happen on the waiting thread while a call is under way.
class DuringCall : public ScriptedWait {
public:
    explicit DuringCall(std::function<void()> act)
        : ScriptedWait(false)
        , m_act(std::move(act))
    {
    }
    CallEnd runApart(std::function<void()> call, std::function<void()> stop) override
    {
        m_act();
        return ScriptedWait::runApart(std::move(call), std::move(stop));
    }

private:
    std::function<void()> m_act;
};

TEST(DriverCall, NoOtherOneBeginsMeanwhile)
{
    const test::TestLedger ledger;
    auto connection = openConnection(gConnString);
    const std::int64_t opens = databaseCounters().opens;
    DuringCall host([] {
        auto other = std::unique_ptr<Connection>();
        EXPECT_THROW(rowsOf(other, "select * from tblAccount"), DatabaseError);
        EXPECT_FALSE(openDB());
        EXPECT_FALSE(sharedContext.database.run(Icon::critical, [](Connection&) { FAIL(); }));
        EXPECT_TRUE(isDriverCallUnderWay());
    });
    const UserWaitInUse inUse(host);
    EXPECT_EQ(rowsOf(connection, "select * from tblAccount"), 4u);
    EXPECT_FALSE(isDriverCallUnderWay());
    EXPECT_EQ(databaseCounters().opens, opens);
    ASSERT_EQ(ledger.boxes.said.size(), 2u);
    for (const auto& box : ledger.boxes.said)
        EXPECT_EQ(box.text, "另一项数据库操作还没有结束，请稍后再试。");
}

/// A place in a call at which it waits until the test lets it go on.
struct Gate {
    std::atomic<bool> isReached = false;
    std::atomic<bool> isOpen = false;
    std::atomic<bool> isOver = false; ///< the call has ended
    void pass()
    {
        for (isReached = true; !isOpen;)
            std::this_thread::yield();
    }
};

/// A user who cancels when a call has come to the gate.
class CancelsAtGate : public UserWait {
public:
    CancelsAtGate(std::shared_ptr<Gate> gate, bool leaves)
        : m_gate(std::move(gate))
        , m_leaves(leaves)
    {
    }
    CallEnd runApart(std::function<void()> call, std::function<void()> stop) override
    {
        std::thread thread([call = std::move(call), gate = m_gate] {
            call();
            gate->isOver = true;
        });
        while (!m_gate->isReached)
            std::this_thread::yield();
        stop();
        m_gate->isOpen = !m_leaves;
        if (m_leaves)
            thread.detach();
        else
            thread.join();
        return m_leaves ? CallEnd::leftBehind : CallEnd::cancelled;
    }
    bool pause() override { return false; }
    bool isCancelled() const override { return false; }

private:
    std::shared_ptr<Gate> m_gate;
    bool m_leaves;
};

/// Between two of its calls the driver waits by itself until the server has confirmed a cancellation. This
/// one never does, and the user cancels while rows are read.
TEST(DriverCall, ReadingManyRowsIsLeftThoughTheServerConfirmsNothing)
{
    using namespace std::chrono_literals;
    using torture::ImpatientUser;
    const std::string manyRows =
        "select a.*,b.*,c.* from tblSelfReportFieldKey as a,tblSelfReportFieldKey as "
        "b,tblSelfReportFieldKey as c,tblSelfReportFieldKey as d";
    const test::TestLedger ledger;
    tds::TdsServer server(ledger.file());
    auto connection = openConnection(server.connectionString());
    const auto begun = ImpatientUser::Clock::now();
    ASSERT_EQ(rowsOf(connection, manyRows), 14U * 14 * 14 * 14);
    const auto whole = ImpatientUser::Clock::now() - begun;
    int cancelled = 0;
    for (int percent = 95; percent > 20 && cancelled < 4; percent -= 5) {
        server.faults.clear();
        server.faults.order({tds::Step::attention, tds::Cut::beforeReply, tds::Ending::silent});
        connection = openConnection(server.connectionString());
        ImpatientUser user;
        const UserWaitInUse inUse(user);
        std::thread clock([&] {
            std::this_thread::sleep_for(whole * percent / 100);
            user.isSilent = true;
        });
        try {
            rowsOf(connection, manyRows);
        } catch (const WorkCancelled&) {
            ++cancelled;
        }
        clock.join();
        EXPECT_LT(user.waited, 500ms) << percent;
    }
    EXPECT_GT(cancelled, 2);
}

enum class Expected { result, cancelled, unknown };

TEST(DriverChange, TellsACancelledChangeByItsCommit)
{
    const struct {
        bool leaves, gateIsBehindCommit, fails;
        Expected expected;
        std::int64_t level; ///< in the end, the call left behind having ended
    } cases[] = {
        {false, false, true, Expected::cancelled, 1}, {false, false, false, Expected::result, 2},
        {false, true, false, Expected::result, 2},    {true, false, false, Expected::cancelled, 1},
        {true, true, false, Expected::unknown, 2},
    };
    for (const auto& c : cases) {
        const test::TestLedger ledger;
        ledger.run("update tblAccount set fLevel=1");
        const auto gate = std::make_shared<Gate>();
        CancelsAtGate user(gate, c.leaves);
        const UserWaitInUse inUse(user);
        auto connection = openConnection(gConnString);
        const auto change = [gate, behind = c.gateIsBehindCommit, fails = c.fails](Connection& open) {
            Transaction transaction(open);
            open.execute("update tblAccount set fLevel=2");
            if (!behind)
                gate->pass();
            if (fails)
                throw DatabaseError(unspecifiedError, "操作已取消");
            transaction.commit();
            if (behind)
                gate->pass();
            return 7;
        };
        Expected got{};
        try {
            EXPECT_EQ(driverChange<int>(connection, change), 7);
            got = Expected::result;
        } catch (const WorkCancelled&) {
            got = Expected::cancelled;
        } catch (const ChangeLeftBehind&) {
            got = Expected::unknown;
        }
        EXPECT_EQ(got, c.expected) << c.leaves << c.gateIsBehindCommit;
        EXPECT_EQ(connection, nullptr);
        for (gate->isOpen = true; !gate->isOver;)
            std::this_thread::yield();
        EXPECT_EQ(ledger.query("select max(fLevel) as n from tblAccount").integer(0, "n"), c.level)
            << c.leaves << c.gateIsBehindCommit;
    }
}

} // namespace
} // namespace selfreport
