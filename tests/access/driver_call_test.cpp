#include "access/driver_call.h"

#include "platform/database/session/DatabaseError.h"
#include "state/mdlMain.h"
#include "tests/fetch/TestLedger.h"

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
    bool runApart(std::function<void()> call, std::function<void()>) override
    {
        ++calls;
        std::thread(std::move(call)).join();
        m_isCancelled = m_cancels;
        return true;
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

} // namespace
} // namespace selfreport
