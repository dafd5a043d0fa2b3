// What a window does with the database, disturbed at every step of it: what the user is told, and what is
// stored.
#include "access/driver_call.h"
#include "tests/tdsserver/TdsServer.h"
#include "tests/torture/EmbeddedSteps.h"
#include "tests/torture/FaultyFiles.h"
#include "tests/torture/ImpatientUser.h"
#include "tests/torture/WindowActions.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <span>
#include <sstream>
#include <string_view>

namespace selfreport::torture {
namespace {

using namespace std::chrono_literals;
using tds::Cut;
using tds::Ending;
using tds::Step;

struct Outcome {
    std::string told; ///< by boxes, else what came of it
    std::string stored; ///< "旧" as before, "新" as the action leaves it, "他" as another user leaves it, …
};

enum class Disturbance { failure, cut, silence, otherSaves, otherDeletes, otherInserts };
constexpr Disturbance allDisturbances[] = {Disturbance::failure,      Disturbance::cut,
                                           Disturbance::silence,      Disturbance::otherSaves,
                                           Disturbance::otherDeletes, Disturbance::otherInserts};
constexpr const char* disturbanceNames[] = {"failure", "cut", "silence", "save", "delete", "insert"};

void refuse(tds::Reply& reply)
{
    reply.tokens.clear();
    reply.error(50000, "磁盘已满。");
    reply.done(tds::Reply::Done::statement, -1, true);
    reply.finish();
}

/// One action on a server, with what every step of it was.
class DisturbedAction {
public:
    explicit DisturbedAction(const WindowAction& action)
        : m_action(action)
        , m_server(m_reports.ledger().file())
        , m_inUse(m_user)
    {
        m_reports.goThrough(m_server.connectionString());
        m_reports.ledger().boxes.said.clear();
        m_server.journal.clear();
    }
    ~DisturbedAction() { closeIdleSessions(); }
    DisturbedAction(const DisturbedAction&) = delete;
    DisturbedAction& operator=(const DisturbedAction&) = delete;

    Outcome undisturbed() { return outcome(m_action.act(m_reports)); }

    /// The steps that were taken, from the first word of the greeting on.
    std::vector<Step> steps() const
    {
        std::vector<Step> all{Step::preLogin, Step::login};
        for (const tds::Request& request : m_server.journal.requests())
            all.push_back(request.step);
        return all;
    }

    /// Disturbs the step at a place, or what another user does comes before it.
    Outcome disturbed(Disturbance how, const std::vector<Step>& steps, std::size_t at)
    {
        if (how < Disturbance::otherSaves) {
            order(steps, at, faultOf(how, steps[at]));
        } else if (at < 2) {
            doOther(how);
        } else {
            order(steps, at - 1,
                  {steps[at - 1], Cut::none, Ending::closed, [this, how](tds::Reply&) { doOther(how); }, {}});
        }
        const std::string came = m_action.act(m_reports);
        closeIdleSessions();
        if (m_otherWaits)
            doOther(how);
        return outcome(came);
    }

private:
    void order(const std::vector<Step>& steps, std::size_t at, tds::Fault fault)
    {
        for (std::size_t before = 0; before < at; ++before)
            if (steps[before] == steps[at])
                m_server.faults.order({steps[at], Cut::none, Ending::closed, {}, {}}); // lets it pass
        m_server.faults.order(std::move(fault));
    }

    tds::Fault faultOf(Disturbance how, Step step)
    {
        if (how == Disturbance::failure)
            return {step, Cut::none, Ending::closed, refuse, {}};
        if (how == Disturbance::cut)
            return {step, Cut::beforeReply, Ending::reset, {}, {}};
        return {step, Cut::beforeReply, Ending::silent, [this](tds::Reply&) { m_user.isSilent = true; }, {}};
    }

    void doOther(Disturbance how)
    {
        m_otherWaits = !otherUserDoes(m_reports, disturbanceNames[static_cast<int>(how)]);
    }

    Outcome outcome(const std::string& came)
    {
        m_user.isSilent = false;
        closeIdleSessions();
        EXPECT_EQ(m_reports.damage(), "");
        EXPECT_FALSE(gCnn);
        const std::string told = m_reports.told();
        return {told.empty() ? came : told, m_reports.everything()};
    }

    const WindowAction& m_action;
    OpenedReport m_reports;
    tds::TdsServer m_server;
    ImpatientUser m_user;
    UserWaitInUse m_inUse;
    bool m_otherWaits = false;
};

/// One action on the embedded database.
Outcome embedded(const WindowAction& action, Disturbance how, int place, int& count)
{
    OpenedReport reports;
    closeIdleSessions();
    ImpatientUser user;
    user.longestWait = 60ms;
    const UserWaitInUse inUse(user);
    const auto gate = std::make_shared<std::promise<void>>();
    const std::shared_future<void> opened = gate->get_future().share();
    Outcome outcome;
    bool otherWaits = false;
    {
        const EmbeddedSteps steps(place, [&, opened] {
            if (how == Disturbance::failure)
                return false;
            if (how == Disturbance::silence) {
                user.isSilent = true;
                opened.wait();
                return true;
            }
            otherWaits = !otherUserDoes(reports, disturbanceNames[static_cast<int>(how)]);
            return true;
        });
        outcome.told = action.act(reports);
        count = EmbeddedSteps::count();
        gate->set_value();
        user.awaitLeftBehind();
    }
    closeIdleSessions();
    if (otherWaits)
        otherUserDoes(reports, disturbanceNames[static_cast<int>(how)]);
    if (!reports.told().empty())
        outcome.told = reports.told();
    outcome.stored = reports.everything();
    return outcome;
}

/// What a disturbed action says and leaves, for some of its steps: "2-10 12".
struct Cell {
    const char* action;
    const char* disturbance;
    const char* steps;
    const char* told;
    const char* stored;
};

constexpr const char* kept = "1甲表:旧 RSelf1甲表 ";
constexpr const char* his = "1甲表:他 RSelf1甲表 ";
constexpr const char* withHisNew = "1甲表:旧 2丙表:他 RSelf1甲表 RSelf2丙表 ";
constexpr const char* withNew = "1甲表:旧 2乙表:新 RSelf1甲表 RSelf2乙表 ";
constexpr const char* replaced = "1甲表:新 RSelf1甲表 1{,0.6} ";
constexpr const char* withMargins = "1甲表:旧 RSelf1甲表 1{,3} ";
constexpr const char* withHeader = "1甲表:旧 RSelf1甲表 1{新页眉,} ";

constexpr const char* notOpened = "数据库文件不存在或读取错误!";
constexpr const char* isLost = "与数据库的连接已断开，请再试一次";
constexpr const char* serverRefuses = "数据库报告了错误";
constexpr const char* notSaved = "报表没有保存。";
constexpr const char* savingCancelled = "操作已取消，报表没有保存。";
constexpr const char* notDeleted = "报表没有删除。";
constexpr const char* setupOfNone = "页面设置和页眉页脚没有存入数据库。";
constexpr const char* setupCancelled = "操作已取消，页面设置和页眉页脚没有存入数据库。";

/// Through the driver. Steps: 0 greeting, 1 login, then the requests. What another user does where the rows
/// are locked waits, and is left out here.
constexpr Cell onServer[] = {
    {"list", "failure", "2", serverRefuses, kept},
    {"list", "cut", "0-1", notOpened, kept},
    {"list", "cut", "2", isLost, kept},
    {"list", "silence", "0-2", "", kept},
    {"list", "save", "0-2", "1张", his},
    {"list", "delete", "0-2", "0张", ""},
    {"list", "insert", "0-2", "2张", withHisNew},

    {"load", "failure", "2", serverRefuses, kept},
    {"load", "cut", "0-1", notOpened, kept},
    {"load", "cut", "2", isLost, kept},
    {"load", "silence", "0-2", "操作已取消，报表没有读出。", kept},
    {"load", "save", "0-2", "甲表他", his},
    {"load", "delete", "0-2", "报表不存在!", ""},
    {"load", "insert", "0-2", "甲表旧", withHisNew},

    // 2 asks what columns hold, 3 begins, 4 queues, 5 the id, 6 the row, 7-9 the menu item, 10-11 the
    // version, 12 commits, 13 ends
    {"insert", "failure", "2", "保存", withNew},
    {"insert", "failure", "3-11", notSaved, kept},
    {"insert", "failure", "12-13", "保存", withNew},
    {"insert", "cut", "0-1", notOpened, kept},
    {"insert", "cut", "2-11", notSaved, kept},
    {"insert", "cut", "12-13", "保存", withNew},
    {"insert", "silence", "0-11", savingCancelled, kept},
    {"insert", "silence", "12-13", "保存", withNew},
    {"insert", "save", "0-13", "保存", "1甲表:他 2乙表:新 RSelf1甲表 RSelf2乙表 "},
    {"insert", "delete", "0-4", "保存", "1乙表:新 RSelf1乙表 "},
    {"insert", "delete", "5-13", "保存", "2乙表:新 RSelf2乙表 "},
    {"insert", "insert", "0-4", "保存", "1甲表:旧 2丙表:他 3乙表:新 RSelf1甲表 RSelf2丙表 RSelf3乙表 "},
    {"insert", "insert", "5-13", "保存", "1甲表:旧 2乙表:新 3丙表:他 RSelf1甲表 RSelf2乙表 RSelf3丙表 "},

    // 2 asks what columns hold, 3 begins, 4 locks, 5 compares, 6 the page set-up, 7-8 the row, 9-10 the
    // version, 11 commits, 12 ends
    {"update", "failure", "2", "保存", replaced},
    {"update", "failure", "3-10", notSaved, kept},
    {"update", "failure", "11-12", "保存", replaced},
    {"update", "cut", "0-1", notOpened, kept},
    {"update", "cut", "2-10", notSaved, kept},
    {"update", "cut", "11-12", "保存", replaced},
    {"update", "silence", "0-10", savingCancelled, kept},
    {"update", "silence", "11-12", "保存", replaced},
    {"update", "save", "0-4", "问：他人已保存", his},
    {"update", "save", "5-12", "保存", "1甲表:他 RSelf1甲表 1{,0.6} "},
    {"update", "delete", "0-4", "问：已被删除", ""},
    {"update", "delete", "5-12", "保存", ""},
    {"update", "insert", "0-12", "保存", "1甲表:新 2丙表:他 RSelf1甲表 RSelf2丙表 1{,0.6} "},

    // 2 begins, 3 looks, 4 the row, 5 the menu item, 6 commits, 7 ends
    {"delete", "failure", "2-5", notDeleted, kept},
    {"delete", "failure", "6-7", "删除", ""},
    {"delete", "cut", "0-1", notOpened, kept},
    {"delete", "cut", "2-5", notDeleted, kept},
    {"delete", "cut", "6-7", "删除", ""},
    {"delete", "silence", "0-5", "操作已取消，报表没有删除。", kept},
    {"delete", "silence", "6-7", "删除", ""},
    {"delete", "save", "0-7", "删除", ""},
    {"delete", "delete", "0-3", notDeleted, ""},
    {"delete", "delete", "4-7", "删除", ""},
    {"delete", "insert", "0-3", "删除", "2丙表:他 RSelf2丙表 "},
    {"delete", "insert", "4-7", "删除", "1丙表:他 RSelf1丙表 "},

    // 2 begins, 3-4 find the row, 5 changes it, 6 commits, 7 ends
    {"page setup", "failure", "2-5", serverRefuses, kept},
    {"page setup", "failure", "6-7", "存入", withMargins},
    {"page setup", "cut", "0-1", notOpened, kept},
    {"page setup", "cut", "2-5", isLost, kept},
    {"page setup", "cut", "6-7", "存入", withMargins},
    {"page setup", "silence", "0-5", setupCancelled, kept},
    {"page setup", "silence", "6-7", "存入", withMargins},
    {"page setup", "save", "0-7", "存入", "1甲表:他 RSelf1甲表 1{,3} "},
    {"page setup", "delete", "0-3", setupOfNone, ""},
    {"page setup", "delete", "4-7", "存入", ""},
    {"page setup", "insert", "0-7", "存入", "1甲表:旧 2丙表:他 RSelf1甲表 RSelf2丙表 1{,3} "},

    {"header", "failure", "2-5", serverRefuses, kept},
    {"header", "failure", "6-7", "存入", withHeader},
    {"header", "cut", "0-1", notOpened, kept},
    {"header", "cut", "2-5", isLost, kept},
    {"header", "cut", "6-7", "存入", withHeader},
    {"header", "silence", "0-5", setupCancelled, kept},
    {"header", "silence", "6-7", "存入", withHeader},
    {"header", "save", "0-7", "存入", "1甲表:他 RSelf1甲表 1{新页眉,} "},
    {"header", "delete", "0-3", setupOfNone, ""},
    {"header", "delete", "4-7", "存入", ""},
    {"header", "insert", "0-7", "存入", "1甲表:旧 2丙表:他 RSelf1甲表 RSelf2丙表 1{新页眉,} "},

    {"open", "cut", "0-1", notOpened, kept},
    {"open", "silence", "0-1", "", kept},
    {"open", "save", "0-1", "打开", his},
    {"open", "delete", "0-1", "打开", ""},
    {"open", "insert", "0-1", "打开", withHisNew},

    // 2 looks a class up, 3 calls the procedure
    {"fetch", "failure", "2", "项目类别“客户”没有查到", kept},
    {"fetch", "failure", "3", serverRefuses, kept},
    {"fetch", "cut", "0-1", notOpened, kept},
    {"fetch", "cut", "2", "项目类别“客户”没有查到", kept},
    {"fetch", "cut", "3", isLost, kept},
    {"fetch", "silence", "0-3", "", kept},
    {"fetch", "save", "0-3", "120", his},
    {"fetch", "delete", "0-3", "120", ""},
    {"fetch", "insert", "0-3", "120", withHisNew},
};

/// Whether "2-10 12" names a number.
bool names(std::string_view steps, std::size_t number)
{
    std::istringstream parts{std::string(steps)};
    for (std::string part; parts >> part;) {
        const std::size_t first = std::stoul(part);
        const std::size_t dash = part.find('-');
        const std::size_t last = dash == std::string::npos ? first : std::stoul(part.substr(dash + 1));
        if (number >= first && number <= last)
            return true;
    }
    return false;
}

void expectAsInTable(std::span<const Cell> table, const char* action, Disturbance how, std::size_t step,
                     const Outcome& got)
{
    const char* const disturbance = disturbanceNames[static_cast<int>(how)];
    const std::string where = std::string(action) + ", " + disturbance + " " + std::to_string(step);
    const auto isThere = [&](const Cell& cell) {
        return std::string_view(cell.action) == action && std::string_view(cell.disturbance) == disturbance &&
               names(cell.steps, step);
    };
    ASSERT_EQ(std::ranges::count_if(table, isThere), 1)
        << where << " has no entry: " << got.told << " [" << got.stored << "]";
    const Cell& cell = *std::ranges::find_if(table, isThere);
    EXPECT_EQ(got.told, cell.told) << where;
    EXPECT_EQ(got.stored, cell.stored) << where;
}

TEST(ActionsTorture, EveryStepThroughTheDriver)
{
    faulty_files::beginWatching(); // for its speed
    for (const WindowAction& action : windowActions()) {
        std::vector<Step> steps;
        {
            DisturbedAction once(action);
            once.undisturbed();
            steps = once.steps();
        }
        for (const Disturbance how : allDisturbances)
            for (std::size_t at = 0; at < steps.size(); ++at)
                if (how != Disturbance::failure || at >= 2) // what greets has no such tokens
                    expectAsInTable(onServer, action.name, how, at,
                                    DisturbedAction(action).disturbed(how, steps, at));
    }
}

constexpr const char* savingUnknown = "操作已取消，数据库没有答复，无法确定更改是否已保存。";
constexpr const char* commitFailed = "提交更改时出错, 更改没有保存。";
constexpr const char* noRight = "没有权限";

/// On the embedded database. Step 1 opens the file; transactions begin with 2 and are committed with the
/// last.
constexpr Cell embeddedCells[] = {
    {"list", "failure", "1", notOpened, kept},
    {"list", "failure", "2-4", noRight, kept},
    {"list", "silence", "1-4", "", kept},
    {"list", "save", "1-4", "1张", his},
    {"list", "delete", "1-4", "0张", ""},
    {"list", "insert", "1-4", "2张", withHisNew},

    {"load", "failure", "1", notOpened, kept},
    {"load", "failure", "2", noRight, kept},
    {"load", "silence", "1-2", "操作已取消，报表没有读出。", kept},
    {"load", "save", "1-2", "甲表他", his},
    {"load", "delete", "1-2", "报表不存在!", ""},
    {"load", "insert", "1-2", "甲表旧", withHisNew},

    {"insert", "failure", "1", notOpened, kept},
    {"insert", "failure", "2-16", notSaved, kept},
    {"insert", "failure", "17", commitFailed, kept},
    {"insert", "silence", "1-16", savingCancelled, kept},
    {"insert", "silence", "17", savingUnknown, withNew},
    {"insert", "save", "1-17", "保存", "1甲表:他 2乙表:新 RSelf1甲表 RSelf2乙表 "},
    {"insert", "delete", "1-2", "保存", "1乙表:新 RSelf1乙表 "},
    {"insert", "delete", "3-17", "保存", "2乙表:新 RSelf2乙表 "},
    {"insert", "insert", "1-2", "保存", "1甲表:旧 2丙表:他 3乙表:新 RSelf1甲表 RSelf2丙表 RSelf3乙表 "},
    {"insert", "insert", "3-17", "保存", "1甲表:旧 2乙表:新 3丙表:他 RSelf1甲表 RSelf2乙表 RSelf3丙表 "},

    {"update", "failure", "1", notOpened, kept},
    {"update", "failure", "2-11", notSaved, kept},
    {"update", "failure", "12", commitFailed, kept},
    {"update", "silence", "1-11", savingCancelled, kept},
    {"update", "silence", "12", savingUnknown, replaced},
    {"update", "save", "1-2", "问：他人已保存", his},
    {"update", "save", "3-12", "保存", "1甲表:他 RSelf1甲表 1{,0.6} "},
    {"update", "delete", "1-2", "问：已被删除", ""},
    {"update", "delete", "3-12", "保存", ""},
    {"update", "insert", "1-12", "保存", "1甲表:新 2丙表:他 RSelf1甲表 RSelf2丙表 1{,0.6} "},

    {"delete", "failure", "1", notOpened, kept},
    {"delete", "failure", "2-6", notDeleted, kept},
    {"delete", "failure", "7", commitFailed, kept},
    {"delete", "silence", "1-6", "操作已取消，报表没有删除。", kept},
    {"delete", "silence", "7", "操作已取消，数据库没有答复，无法确定报表是否已删除。", ""},
    {"delete", "save", "1-7", "删除", ""},
    {"delete", "delete", "1-2", notDeleted, ""},
    {"delete", "delete", "3-7", "删除", ""},
    {"delete", "insert", "1-2", "删除", "2丙表:他 RSelf2丙表 "},
    {"delete", "insert", "3-7", "删除", "1丙表:他 RSelf1丙表 "},

    {"page setup", "failure", "1", notOpened, kept},
    {"page setup", "failure", "2-10", noRight, kept},
    {"page setup", "failure", "11", commitFailed, kept},
    {"page setup", "silence", "1-10", setupCancelled, kept},
    {"page setup", "silence", "11", savingUnknown, withMargins},
    {"page setup", "save", "1-11", "存入", "1甲表:他 RSelf1甲表 1{,3} "},
    {"page setup", "delete", "1-2", setupOfNone, ""},
    {"page setup", "delete", "3-11", "存入", ""},
    {"page setup", "insert", "1-11", "存入", "1甲表:旧 2丙表:他 RSelf1甲表 RSelf2丙表 1{,3} "},

    {"header", "failure", "1", notOpened, kept},
    {"header", "failure", "2-6", noRight, kept},
    {"header", "failure", "7", commitFailed, kept},
    {"header", "silence", "1-6", setupCancelled, kept},
    {"header", "silence", "7", savingUnknown, withHeader},
    {"header", "save", "1-7", "存入", "1甲表:他 RSelf1甲表 1{新页眉,} "},
    {"header", "delete", "1-2", setupOfNone, ""},
    {"header", "delete", "3-7", "存入", ""},
    {"header", "insert", "1-7", "存入", "1甲表:旧 2丙表:他 RSelf1甲表 RSelf2丙表 1{新页眉,} "},

    {"open", "failure", "1", notOpened, kept},
    {"open", "silence", "1", "", kept},
    {"open", "save", "1", "打开", his},
    {"open", "delete", "1", "打开", ""},
    {"open", "insert", "1", "打开", withHisNew},

    // 2-3 look a class up, then the procedure reads all in one transaction
    {"fetch", "failure", "1", notOpened, kept},
    {"fetch", "failure", "2-3", "项目类别“客户”没有查到", kept},
    {"fetch", "failure", "4-99", noRight, kept},
    {"fetch", "silence", "1-99", "", kept},
    {"fetch", "save", "1-99", "120", his},
    {"fetch", "delete", "1-99", "120", ""},
    {"fetch", "insert", "1-99", "120", withHisNew},
};

TEST(ActionsTorture, EveryStepOnTheEmbeddedDatabase)
{
    for (const WindowAction& action : windowActions()) {
        int places = 0;
        embedded(action, Disturbance::failure, 0, places);
        for (const Disturbance how : allDisturbances)
            for (int place = 1; place <= places && how != Disturbance::cut; ++place) {
                int unused = 0;
                expectAsInTable(embeddedCells, action.name, how, static_cast<std::size_t>(place),
                                embedded(action, how, place, unused));
            }
    }
}

} // namespace
} // namespace selfreport::torture
