// What windows do with a real server that is killed, loses a session, holds a lock or falls silent:
// afterwards everything is as before or as wanted, the user has been told, and the next action works.
#include "fetch/ReportEvaluation.h"
#include "tests/tdsserver/OwnServer.h"
#include "tests/tdsserver/RealServer.h"
#include "tests/tdsserver/Relay.h"
#include "tests/torture/ImpatientUser.h"
#include "tests/torture/WindowActions.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace selfreport::torture {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using tds::RealServer;
using Moment = tds::Relay::Moment;

/// As many different figures as go to the server together.
std::string recalculate(OpenedReport&)
{
    spreadsheet::Workbook workbook;
    int row = 0;
    for (const char* account : {"1001", "1002", "1122", "2001", "1122|客户|001"})
        for (const char* key : {"1", "2", "3", "4"})
            for (const char* period : {"1", "2"})
                spreadsheet::demand(workbook.sheet(1).setFormula(
                    {1, ++row}, std::string("Acct(\"") + account + "\",\"" + key +
                                    "\",\"\",\"2025\",\"1\",\"" + period + "\")"));
    spreadsheet::demand(workbook.sheet(1).setFormula({2, 1}, "SUM(A1:A" + std::to_string(row) + ")"));
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    if (!evaluation.recalculate())
        return "";
    const auto failed = firstFailed(evaluation.diagnostics());
    return failed ? failed->reason.substr(0, failed->reason.find("："))
                  : workbook.sheet(1).displayText({2, 1});
}

std::vector<WindowAction> disturbedActions()
{
    std::vector<WindowAction> all = windowActions();
    all.push_back({"recalculate", recalculate});
    return all;
}

/// One action through a relay, in a session that was used before.
class RelayedAction {
public:
    RelayedAction(const WindowAction& action, tds::Relay& passesOn)
        : relay(passesOn)
        , m_action(action)
        , m_inUse(user)
    {
        reports.loadThrough(relay.connectionString());
    }
    RelayedAction(const RelayedAction&) = delete;
    RelayedAction& operator=(const RelayedAction&) = delete;

    /// What came of it, or what boxes told, without the driver's words.
    std::string outcome()
    {
        reports.ledger().boxes.said.clear();
        const std::string came = m_action.act(reports);
        std::string told;
        for (const auto& box : reports.ledger().boxes.said)
            told += (told.empty() ? "" : "|") + box.text.substr(0, box.text.find("："));
        return told.empty() ? came : told;
    }

    ImpatientUser user;
    OpenedReport reports;
    tds::Relay& relay;

private:
    const WindowAction& m_action;
    UserWaitInUse m_inUse;
};

/// What an action gives and leaves when nothing disturbs it, and how many requests it takes.
struct Undisturbed {
    Undisturbed(const WindowAction& action, tds::Relay& relay)
    {
        RelayedAction relayed(action, relay);
        before = relayed.reports.everything();
        relay.actAt(0, Moment::asked, {});
        outcome = relayed.outcome();
        requests = relay.requests();
        after = relayed.reports.everything();
        closeIdleSessions(); // the next one knows no more of the server than this one did
    }
    std::string before, outcome, after;
    int requests = 0;
};

bool holds(const std::string& text, const char* part)
{
    return text.find(part) != std::string::npos;
}

/// Something that is done to the server at one request of an action.
struct Disturbance {
    std::function<void(RelayedAction&)> act;
    std::function<void(RelayedAction&)> mend;
    /// What may be told of it, behind what the action says of itself.
    std::set<std::string> reasons;
};

/// What actions that change something say of themselves, before the reason.
constexpr const char* undone[] = {"报表没有保存。\n", "报表没有删除。\n", "提交更改时出错, 更改没有保存。\n"};
constexpr const char* unknown = "提交更改时出错, 无法确定更改是否已保存。\n";

bool isTold(std::string outcome, const std::set<std::string>& reasons)
{
    for (const char* words : {undone[0], undone[1], undone[2], unknown})
        if (outcome.starts_with(words))
            outcome.erase(0, std::string_view(words).size());
    return reasons.contains(outcome);
}

/// Disturbs an action at one of its requests; then it is done again.
void expectNothingLost(RelayedAction& relayed, const Undisturbed& usual, int request, Moment moment,
                       const Disturbance& disturbance)
{
    relayed.relay.actAt(request, moment, [&] { disturbance.act(relayed); });
    const std::string outcome = relayed.outcome();
    disturbance.mend(relayed);
    const std::string left = relayed.reports.everything();
    EXPECT_TRUE(left == usual.before || left == usual.after) << left;
    EXPECT_TRUE(outcome == usual.outcome || isTold(outcome, disturbance.reasons)) << outcome;
    EXPECT_TRUE(outcome != usual.outcome || left == usual.after) << left;
    const bool tellsUndone = holds(outcome, "没有保存") || holds(outcome, "没有删除");
    EXPECT_TRUE(!tellsUndone || left == usual.before) << outcome << left;
    EXPECT_LT(relayed.user.waited, 500ms);
    if (left == usual.before) {
        EXPECT_EQ(relayed.outcome(), usual.outcome) << "the next time, after " << outcome;
    }
    closeIdleSessions();
}

class ServerFaults : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (tds::road() != tds::Road::realServer || !tds::serverIsOurs())
            GTEST_SKIP() << "no server that may be killed";
    }

    /// Disturbs each action at one in so many of its requests; all of them take minutes:
    /// SELFREPORT_ALL_FAULTS=1.
    static void disturbActions(int oneIn, const Disturbance& disturbance)
    {
        if (std::getenv("SELFREPORT_ALL_FAULTS"))
            oneIn = 1;
        tds::Relay relay(RealServer::ofProgram().connectionString());
        int turn = 0;
        for (const WindowAction& action : disturbedActions()) {
            const Undisturbed usual(action, relay);
            for (int request = 1; request <= usual.requests; ++request)
                for (const Moment moment : {Moment::asked, Moment::answered}) {
                    if (++turn % oneIn != 0)
                        continue;
                    SCOPED_TRACE(std::string(action.name) + " request " + std::to_string(request) +
                                 (moment == Moment::asked ? " asked" : " answered"));
                    RelayedAction relayed(action, relay);
                    expectNothingLost(relayed, usual, request, moment, disturbance);
                }
        }
        closeIdleSessions();
        EXPECT_GT(turn, 80) << "requests that could be disturbed";
    }
};

TEST_F(ServerFaults, ASessionEndedByTheAdministrator)
{
    disturbActions(16, {[](RelayedAction&) { RealServer::ofProgram().endOtherSessions(); },
                        [](RelayedAction&) {},
                        {"与数据库的连接已断开，请再试一次", "会话已被数据库管理员结束，请再试一次"}});
}

TEST_F(ServerFaults, AServerThatIsKilled)
{
    disturbActions(
        32, {[](RelayedAction&) { tds::killServer(); },
             [](RelayedAction&) { tds::startServerAgain(); },
             {"与数据库的连接已断开，请再试一次", "数据库文件不存在或读取错误!", "项目类别“客户”没有查到"}});
}

/// Of what the server answers to a request nothing comes through; the user cancels.
TEST_F(ServerFaults, AServerThatFallsSilent)
{
    disturbActions(19, {[](RelayedAction& on) { on.user.isSilent = on.relay.isSilent = true; },
                        [](RelayedAction& on) { on.user.isSilent = on.relay.isSilent = false; },
                        {"", "操作已取消，报表没有保存。", "操作已取消，报表没有读出。",
                         "操作已取消，报表没有删除。", "操作已取消，页面设置和页眉页脚没有存入数据库。",
                         "操作已取消，数据库没有答复，无法确定更改是否已保存。",
                         "操作已取消，数据库没有答复，无法确定报表是否已删除。"}});
}

/// Whether the server ends the wait for a lock or not, the user goes on.
TEST_F(ServerFaults, ALockedTableIsWaitedForUntilTheUserCancels)
{
    const struct {
        const char *action, *table, *told;
    } cases[] = {
        {"list", "tblcwselfreport", ""},
        {"load", "tblcwselfreport", "操作已取消，报表没有读出。"},
        {"insert", "tblcwselfreport", "操作已取消，报表没有保存。"},
        {"insert", "tblsystemprivillenge", "操作已取消，报表没有保存。"},
        {"update", "tblcwselfreport", "操作已取消，报表没有保存。"},
        {"delete", "tblsystemprivillenge", "操作已取消，报表没有删除。"},
        {"page setup", "tblcwselfreport", "操作已取消，页面设置和页眉页脚没有存入数据库。"},
        {"fetch", "tblaccountbal", ""},
        {"recalculate", "tblaccountbal", ""},
    };
    const std::vector<WindowAction> actions = disturbedActions();
    tds::Relay relay(RealServer::ofProgram().connectionString());
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.action) + " " + c.table);
        const auto action = std::ranges::find(actions, std::string_view(c.action), &WindowAction::name);
        const Undisturbed usual(*action, relay);
        RelayedAction relayed(*action, relay);
        {
            const tds::LockedTable locked(RealServer::ofProgram().connectionString(), c.table);
            std::thread impatience([&] {
                std::this_thread::sleep_for(300ms);
                relayed.user.isSilent = true;
            });
            EXPECT_EQ(relayed.outcome(), c.told);
            impatience.join();
            relayed.user.isSilent = false;
            EXPECT_LT(relayed.user.waited, 500ms);
        }
        EXPECT_EQ(relayed.reports.everything(), usual.before);
        const std::int64_t sessions = databaseCounters().sessions;
        EXPECT_EQ(relayed.outcome(), usual.outcome) << "the next time";
        EXPECT_GT(databaseCounters().sessions, sessions) << "a session that was cancelled is used no more";
        closeIdleSessions();
    }
}

} // namespace
} // namespace selfreport::torture
