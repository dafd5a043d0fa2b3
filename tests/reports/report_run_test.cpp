#include "reports/report_run.h"

#include "spreadsheet/files/content/content.h"
#include "state/shared_state.h"
#include "tests/fetch/TestLedger.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

using spreadsheet::Workbook;

std::vector<std::byte> ledgerReport()
{
    Workbook workbook;
    workbook.sheet(1).setText({1, 1}, "库存现金");
    demand(workbook.sheet(1).setFormula({2, 1}, R"(Acct("1001" ,"2" , "", "2025","1","2"))"));
    demand(workbook.sheet(1).setFormula({2, 2}, R"(Acct("9999" ,"2" , "", "2025","1","2"))"));
    return spreadsheet::saveContent(workbook);
}

std::string reasonFor(const std::string& connectionString, int id)
{
    try {
        runReport(connectionString, id);
    } catch (const ReportRunError& error) {
        return error.what();
    }
    return "";
}

TEST(ReportRun, EvaluatesBesideTheSharedState)
{
    const test::TestLedger ledger;
    ledger.addReport(4, "现金表", ledgerReport());
    gRunMode = false;
    gEditFlag = 0;
    gReportId = 7;
    gConnString = "the windows'";
    const ReportRun run = runReport(ledger.connectionString(), 4);
    EXPECT_EQ(run.name, "现金表");
    EXPECT_EQ(run.workbook->sheet(1).displayText({2, 1}), "100.25");
    ASSERT_EQ(run.diagnostics.size(), 1U);
    EXPECT_EQ(run.diagnostics[0].place, (spreadsheet::CallPlace{1, 2, 2}));
    EXPECT_TRUE(run.messages.empty());
    EXPECT_FALSE(gRunMode);
    EXPECT_EQ(gEditFlag, 0);
    EXPECT_EQ(gReportId, 7);
    EXPECT_EQ(gConnString, "the windows'");
    EXPECT_FALSE(gCnn);
    EXPECT_TRUE(ledger.boxes.said.empty());
    run.workbook->recalculate(); // by then nobody fetches: the cells keep their values
    EXPECT_EQ(run.workbook->sheet(1).displayText({2, 1}), "100.25");
}

TEST(ReportRun, FailuresNameTheThing)
{
    const test::TestLedger ledger;
    ledger.addReport(1, "坏表", std::vector<std::byte>(64, std::byte{7}));
    const std::filesystem::path folder = std::filesystem::temp_directory_path();
    const std::string text = (folder / ("text-" + std::to_string(::getpid()) + ".db")).string();
    std::ofstream(text) << "this is no database at all, but long enough to have a header";
    const std::string empty = (folder / ("empty-" + std::to_string(::getpid()) + ".db")).string();
    std::ofstream(empty).flush();
    const struct {
        std::string connectionString;
        int id;
        std::string part;
    } cases[] = {
        {ledger.connectionString(), 99, "没有编号为99的报表"},
        {ledger.connectionString(), 1, "编号为1的报表无法载入"},
        {"Provider=SQLite;Data Source=/nowhere/账套.db;Password=geheim", 1, "/nowhere/账套.db"},
        {"Provider=SQLite;Data Source=" + text, 1, text},
        {"Provider=SQLite;Data Source=" + empty, 1, empty},
        {"", 1, "无法打开数据库"},
        {"no pairs", 1, "无法打开数据库"},
    };
    for (const auto& c : cases) {
        const std::string reason = reasonFor(c.connectionString, c.id);
        EXPECT_THAT(reason, testing::HasSubstr(c.part));
        EXPECT_THAT(reason, testing::Not(testing::HasSubstr("geheim")));
        EXPECT_FALSE(gCnn);
    }
    std::filesystem::remove(text);
    std::filesystem::remove(empty);
}

} // namespace
} // namespace selfreport
