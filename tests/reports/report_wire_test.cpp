#include "reports/report_list.h"
#include "reports/report_texts.h"
#include "state/mdlMain.h"
#include "state/report_procedures.h"
#include "tests/fetch/TestLedger.h"
#include "tests/golden_texts.h"
#include "tests/platform/database/PoolTime.h"
#include "tests/tdsserver/TdsServer.h"
#include "windows/designer/EditedReport.h"

#include <algorithm>
#include <array>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::Workbook;
using tds::Cut;
using tds::Ending;
using tds::Step;

/// A ledger behind a server, with report 7 stored.
struct ServedReports : test::TestLedger {
    ServedReports()
        : server(file())
    {
        run("insert into tblCWSelfReport(noid,fname,fisshow) values(6,'前一张',1)");
        run("insert into tblsystemprivillenge(fitemid,fnumber,fname) values(20,'RSelf6','前一张')");
        gConnString = server.connectionString();
        Workbook workbook;
        workbook.sheet(1).setText({1, 1}, "旧");
        EXPECT_TRUE(insertReport(sharedContext, "  利润表 ", workbook, &remembered));
    }
    ~ServedReports() { closeIdleSessions(); }
    ServedReports(const ServedReports&) = delete;
    ServedReports& operator=(const ServedReports&) = delete;

    bool replace(const char* text)
    {
        Workbook workbook;
        workbook.sheet(1).setText({1, 1}, text);
        return std::holds_alternative<ReportSaved>(
            updateReport(sharedContext, "利润表", workbook, remembered));
    }

    static std::string stored()
    {
        std::string name;
        Workbook workbook;
        return loadReport(sharedContext, name, workbook) ? workbook.sheet(1).displayText({1, 1}) : "";
    }

    tds::TdsServer server;
    RememberedReport remembered; ///< report 7
};

TEST(ReportWire, StatementsTravelLetterByLetter)
{
    const test::GoldenTexts golden("sql_texts.golden");
    ServedReports reports;
    ASSERT_EQ(gReportId, 7);
    EXPECT_TRUE(reports.replace("新"));
    EXPECT_EQ(ServedReports::stored(), "新");
    EXPECT_EQ(storedReports(*openConnection(gConnString)).size(), 2U);
    EXPECT_TRUE(deleteInfo(sharedContext));
    std::vector<std::string> texts;
    std::vector<std::string> before; // what else was asked, and how many of the texts had gone out by then
    for (const tds::Request& request : reports.server.journal.requests()) {
        if (request.step != Step::batch || request.text.ends_with(" as sign"))
            continue;
        const bool isCheck = std::ranges::any_of(
            std::to_array({"fisshow=fisshow", "datalength(", "count(*)", "INFORMATION_SCHEMA"}),
            [&](const char* part) { return request.text.find(part) != std::string::npos; });
        if (isCheck)
            before.push_back(std::to_string(texts.size()) + " " + request.text.substr(0, 12));
        else
            texts.push_back(request.text);
    }
    EXPECT_EQ(before, (std::vector<std::string>{"0 select TABLE", "0 update tblCW", "3 select count",
                                                "3 select count",
                                                "3 select fdate", // of the new report
                                                "3 update tblCW", "3 select fdate", "5 select count",
                                                "5 select fdate",    // of the replaced one
                                                "7 select count"})); // whether the deleted one is there
    const char* expected[] = {"last report",   "last menu item",  "insert menu item",
                              "page setup",    "delete report", // replaced
                              "report by id",                   // loaded
                              "report list",                    //
                              "delete report", "delete menu item"};
    ASSERT_EQ(texts.size(), std::size(expected));
    for (std::size_t at = 0; at < texts.size(); ++at)
        EXPECT_EQ(texts[at], golden[expected[at]]) << expected[at];
}

TEST(ReportWire, WhatColumnsCannotHoldIsRefusedBeforeAnythingIsSent)
{
    const auto times = [](int count, const char* text) {
        std::string all;
        for (int at = 0; at < count; ++at)
            all += text;
        return all;
    };
    const struct {
        std::string name, user;
        int codePage;
        const char* refusal; ///< part of it; "" for none
    } cases[] = {
        {"镕€ 利润表", "wang", 936, ""},
        {times(50, "表"), "wang", 936, ""}, // 100 bytes of the column's 100
        {times(50, "表") + "a", "wang", 936, "报表名称过长：占 101 字节，最多 100 字节"},
        {"镕㐂😀", "wang", 936, "报表名称中的“㐂”"},
        {"镕㐂😀", "wang", 65001, ""},
        {"表", times(51, "u"), 936, "用户编号过长"},
        {"表", "王😀", 936, "用户编号中的“😀”"},
        {"表", "wang", 1252, "报表名称中的“表”"},
    };
    for (const auto& c : cases) {
        ServedReports reports;
        closeIdleSessions();
        reports.server.codePage = c.codePage;
        gLoginUserId = c.user;
        reports.boxes.said.clear();
        reports.server.journal.clear();
        const bool isStored = insertReport(sharedContext, c.name, Workbook());
        EXPECT_EQ(isStored, *c.refusal == 0) << c.name;
        EXPECT_THAT(reports.boxes.said.empty() ? std::string() : reports.boxes.said[0].text,
                    testing::HasSubstr(c.refusal));
        const auto sent = reports.server.journal.requests();
        const auto asksCatalogue = [](const tds::Request& request) {
            return request.text.find("INFORMATION_SCHEMA") != std::string::npos;
        };
        EXPECT_EQ(std::ranges::count_if(sent, asksCatalogue), 1);
        if (!isStored) {
            EXPECT_EQ(sent.size(), 1U) << c.name;
            continue;
        }
        reports.server.journal.clear();
        EXPECT_TRUE(insertReport(sharedContext, "另一张", Workbook()) || c.codePage == 1252);
        EXPECT_EQ(std::ranges::count_if(reports.server.journal.requests(), asksCatalogue),
                  0); // once a session
    }
    ServedReports reports;
    const auto connection = openConnection(gConnString);
    EXPECT_EQ(headerRefusal(*connection, false, times(1000, "页")), "");
    EXPECT_THAT(headerRefusal(*connection, true, times(1001, "页")),
                testing::StartsWith("页脚过长：占 2002 字节，最多 2000 字节"));
    EXPECT_THAT(headerRefusal(*connection, false, "/l页㐂"), testing::StartsWith("页眉中的“㐂”"));
}

TEST(ReportWire, BlankNamesAreNone)
{
    for (const char* const name : {"", " ", "　", " 　 "})
        EXPECT_TRUE(isBlankName(name)) << '"' << name << '"';
    for (const char* const name : {"a", "　表 ", "-"})
        EXPECT_FALSE(isBlankName(name)) << name;
}

TEST(ReportWire, OpeningThatFailsIsToldApart)
{
    ServedReports reports;
    const struct {
        const char* more;
        const char* text;
    } cases[] = {{"Password=falsch", "用户名或密码错误!"},
                 {"Initial Catalog=nowhere", "数据库文件不存在或读取错误!"}};
    for (const auto& c : cases) {
        gConnString = reports.server.connectionString(c.more);
        reports.boxes.said.clear();
        EXPECT_FALSE(openDB());
        ASSERT_EQ(reports.boxes.said.size(), 1U) << c.more;
        EXPECT_EQ(reports.boxes.said[0].text, c.text);
    }
}

/// A server that has gone since the last session: soon after, and long after.
TEST(ReportWire, AServerThatHasGoneIsAFailedOpening)
{
    const std::function<bool(Workbook&)> works[] = {
        [](Workbook&) { return openDB(); },
        [](Workbook& workbook) {
            std::string name;
            return loadReport(sharedContext, name, workbook);
        },
        [](Workbook& workbook) { return insertReport(sharedContext, "新表", workbook); },
        [](Workbook&) { return deleteInfo(sharedContext); },
        [](Workbook&) {
            return databaseProcedure(Icon::exclamation, [](Connection& open) { storedReports(open); });
        },
    };
    for (const auto later : {std::chrono::seconds(5), std::chrono::seconds(11)})
        for (std::size_t at = 0; at < std::size(works); ++at) {
            test::TestLedger ledger;
            {
                const tds::TdsServer server(ledger.file());
                gConnString = server.connectionString();
                openConnection(gConnString);
            }
            const test::PoolTime time(later);
            Workbook workbook;
            const bool opened = works[at](workbook);
            EXPECT_EQ(opened, at == 0 && later.count() == 5) << at; // nothing was asked of it yet
            closeDB();
            if (opened)
                continue;
            ASSERT_EQ(ledger.boxes.said.size(), 1U) << at;
            EXPECT_EQ(ledger.boxes.said[0],
                      (RecordingDialogs::Said{Icon::critical, gTitle, "数据库文件不存在或读取错误!"}))
                << at;
        }
}

struct Operation {
    const char* name;
    std::function<bool(ServedReports&)> run;
    std::vector<Step> steps;
    const char* before; ///< first cell of report 7 if nothing was done; "" for no report
    const char* after;
};

const std::vector<Operation>& operations()
{
    static const std::vector<Operation> all{
        {"load",
         [](ServedReports&) { return ServedReports::stored() == "旧"; },
         {Step::login, Step::batch},
         "旧",
         "旧"},
        {"replace",
         [](ServedReports& reports) { return reports.replace("新"); },
         {Step::preLogin, Step::login, Step::begin, Step::batch, Step::statement, Step::commit},
         "旧",
         "新"},
        {"delete",
         [](ServedReports&) { return deleteInfo(sharedContext); },
         {Step::begin, Step::batch, Step::commit},
         "旧",
         ""},
    };
    return all;
}

/// One fault at one step of one operation: it is told in one box unless all was done all the same, and the
/// report is whole, old or new.
void expectWholeReport(const Operation& operation, Step step, Cut cut, Ending ending)
{
    ServedReports reports;
    closeIdleSessions(); // so that the operation logs in
    reports.server.faults.order({step, cut, ending, {}, {}});
    const bool done = operation.run(reports);
    EXPECT_EQ(reports.boxes.said.size(), done ? 0U : 1U);
    EXPECT_FALSE(gCnn);
    const bool opening = step == Step::preLogin || step == Step::login;
    for (const auto& box : reports.boxes.said) {
        EXPECT_EQ(box.icon, opening ? Icon::critical : Icon::exclamation);
        EXPECT_EQ(box.text == "数据库文件不存在或读取错误!", opening) << box.text;
    }
    gReportId = 7;
    EXPECT_EQ(ServedReports::stored(), done ? operation.after : operation.before);
    EXPECT_EQ(done, step == Step::commit) << "after a commit the new connection finds that all was done";
}

TEST(ReportWire, NoFaultLosesAStoredReport)
{
    for (const Operation& operation : operations())
        for (const Step step : operation.steps)
            for (const Cut cut : {Cut::beforeReply, Cut::inHeader, Cut::insideToken, Cut::lastByteMissing})
                for (const Ending ending : {Ending::closed, Ending::reset}) {
                    SCOPED_TRACE(std::string(operation.name) + " step " +
                                 std::to_string(static_cast<int>(step)) + " cut " +
                                 std::to_string(static_cast<int>(cut)));
                    expectWholeReport(operation, step, cut, ending);
                }
}

TEST(ReportWire, ACommitThatIsLostAndUndoneIsToldSo)
{
    ServedReports reports;
    const auto undo = [&](tds::Reply&) {
        reports.run("update tblCWSelfReport set fname='别的' where noid=7");
    };
    reports.server.faults.order({Step::commit, Cut::beforeReply, Ending::closed, undo, {}});
    EXPECT_FALSE(reports.replace("新"));
    ASSERT_EQ(reports.boxes.said.size(), 1U);
    EXPECT_NE(reports.boxes.said[0].text.find("更改没有保存"), std::string::npos)
        << reports.boxes.said[0].text;
}

/// The connection breaks at the commit, and then there is no server for a while.
TEST(ReportWire, WhatNobodyKnowsIsNotDoneTwice)
{
    ServedReports reports;
    Workbook workbook;
    std::string name = "新表";
    EditedReport edited(sharedContext);
    gEditFlag = 0;
    edited.beginNew();
    for (int round = 0; round < 2; ++round) { // inserting, then replacing
        closeIdleSessions();
        gCnn = openConnection(gConnString);
        reports.server.faults.order({Step::commit, Cut::beforeReply, Ending::closed, {}, {}});
        reports.server.faults.order({Step::login, Cut::beforeReply, Ending::closed, {}, {}});
        reports.boxes.said.clear();
        EXPECT_FALSE(edited.save(name, workbook, nullptr)) << round;
        ASSERT_EQ(reports.boxes.said.size(), 1U) << round;
        EXPECT_NE(reports.boxes.said[0].text.find("无法确定更改是否已保存"), std::string::npos);
        EXPECT_TRUE(edited.save(name, workbook, nullptr)) << round; // without a question
        EXPECT_EQ(reports.query("select * from tblCWSelfReport").rowCount(), 3U) << round;
        EXPECT_EQ(gReportId, 8);
    }
}

} // namespace
} // namespace selfreport
