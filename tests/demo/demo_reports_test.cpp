#include "demo/demo_reports.h"

#include "demo/demo_check.h"
#include "demo/labelled_cell.h"
#include "demo/ledger/demo_ledger.h"
#include "platform/database/Connection.h"
#include "reports/report_run.h"
#include "spreadsheet/files/text/csv.h"
#include "state/shared_state.h"
#include "tests/own_files.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

/// The demo ledger with its reports, made once for all tests.
class DemoReports : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        s_file = test::ownFile("demo.db");
        createDemoLedger(s_file.string());
        storeDemoReports(connectionString());
    }
    static void TearDownTestSuite()
    {
        closeIdleSessions();
        std::filesystem::remove(s_file);
    }
    static std::string connectionString() { return "Provider=SQLite;Data Source=" + s_file.string(); }

    static inline std::filesystem::path s_file;
};

TEST_F(DemoReports, FiguresAgreeWithSeparateQueries)
{
    const std::vector<DemoFigure> figures = demoFigures(connectionString());
    EXPECT_GT(figures.size(), 10U);
    for (const DemoFigure& figure : figures) {
        EXPECT_TRUE(figure.agrees()) << figure.report << " " << figure.figure << ": " << figure.shown << ", "
                                     << figure.queried;
        EXPECT_GT(std::abs(figure.queried), 1)
            << figure.report << " " << figure.figure; // nothing at all agrees too
    }
}

TEST_F(DemoReports, WithoutBalancesThereIsNothingToCheck)
{
    const auto connection = openConnection(connectionString());
    connection->execute("create table kept as select * from tblAccountBal");
    connection->execute("delete from tblAccountBal");
    try {
        demoFigures(connectionString());
        ADD_FAILURE() << "of nothing";
    } catch (const std::exception& error) { // any: the others need the balances back
        EXPECT_STREQ(error.what(), "账上没有余额，没有可核对的数");
    }
    connection->execute("insert into tblAccountBal select * from kept");
    connection->execute("drop table kept");
}

TEST_F(DemoReports, StoredInOrderAndWithoutErrors)
{
    const char* const names[] = {"资产负债表",         "利润表",         "部门费用明细表",
                                 "应收账款客户分析表", "商品数量金额表", "财务摘要"};
    const std::vector<ListedReport> reports = listReports(connectionString());
    ASSERT_EQ(reports.size(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i) {
        EXPECT_EQ(reports[i].name, names[i]);
        EXPECT_EQ(reports[i].savedBy, "系统管理员");
        const ReportRun run = runReport(connectionString(), reports[i].id);
        for (int index = 1; index <= run.workbook->sheetCount(); ++index)
            EXPECT_EQ(spreadsheet::sheetCsv(run.workbook->sheet(index)).find('#'), std::string::npos)
                << names[i];
        EXPECT_NE(run.workbook->sheet(1).settings().print.footer.find("/p"), std::string::npos);
    }
}

/// From column to column, as a statement is read. Lines without a number may be counted or not.
TEST_F(DemoReports, LinesAreNumberedWithoutGaps)
{
    int numbered = 0;
    for (const ListedReport& report : listReports(connectionString())) {
        const ReportRun run = runReport(connectionString(), report.id);
        const spreadsheet::Sheet& sheet = run.workbook->sheet(1);
        int last = 0, without = 0;
        for (int column = 1; column <= sheet.lastDataColumn(); ++column) {
            bool isNumbers = false;
            for (int row = 1; row <= sheet.lastDataRow(); ++row) {
                const spreadsheet::CellAddress cell{column, row};
                if (const std::string text = sheet.displayText(cell); isNumbers && !text.empty()) {
                    const int number = std::stoi(text);
                    EXPECT_GT(number, last) << report.name << ' ' << spreadsheet::cellName(cell);
                    EXPECT_LE(number, last + 1 + without)
                        << report.name << ' ' << spreadsheet::cellName(cell);
                    last = number;
                    without = 0;
                } else {
                    without += isNumbers;
                    isNumbers = isNumbers || text == "行次";
                }
            }
        }
        numbered += last > 5;
    }
    EXPECT_EQ(numbered, 3);
}

TEST_F(DemoReports, BalanceSheetBalancesAndSharingChangesNothing)
{
    const ReportRun shared = runReport(connectionString(), 1);
    RunOptions single;
    single.fetchesShared = false;
    const ReportRun alone = runReport(connectionString(), 1, single);
    const spreadsheet::Sheet& sheet = shared.workbook->sheet(1);
    EXPECT_EQ(spreadsheet::sheetCsv(sheet), spreadsheet::sheetCsv(alone.workbook->sheet(1)));
    for (const int column : {2, 3})
        EXPECT_EQ(sheet.displayText(demo::cellBeside(sheet, "资产总计", column)),
                  sheet.displayText(demo::cellBeside(sheet, "负债和所有者权益总计", column)));
}

/// Statements look as printed ones do; files and checks get the figures as they are.
TEST_F(DemoReports, AmountsAreGroupedOnPaperAndPlainInFiles)
{
    const ReportRun run = runReport(connectionString(), 1);
    const spreadsheet::Sheet& sheet = run.workbook->sheet(1);
    const std::string csv = spreadsheet::sheetCsv(sheet);
    int zeros = 0, groups = 0;
    for (int row = 4; row <= sheet.lastDataRow(); ++row) {
        for (const int column : {3, 4, 7, 8}) {
            const spreadsheet::Value amount = sheet.value({column, row});
            if (!amount.isNumber())
                continue;
            const std::string shown = sheet.displayText({column, row});
            const bool isZero = std::abs(amount.number()) < 0.005;
            const bool isGrouped = std::abs(amount.number()) >= 999.995;
            zeros += isZero;
            groups += isGrouped;
            EXPECT_EQ(shown.find_first_not_of(' ') == shown.npos, isZero) << shown;
            EXPECT_EQ(shown.find(',') != shown.npos, isGrouped) << shown;
            EXPECT_TRUE(shown.ends_with(' ')) << "touches the line: " << shown;
            EXPECT_NE(csv.find("," + sheet.textByType({column, row})), csv.npos) << shown;
        }
    }
    EXPECT_GT(zeros, 3);
    EXPECT_GT(groups, 20);
    EXPECT_EQ(csv.find('"'), csv.npos) << "a figure with a comma would stand in quotes";
}

} // namespace
} // namespace selfreport
