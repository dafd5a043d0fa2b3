// What recalculating the demo reports asks of a server.
#include "access/DatabaseAccess.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/evaluation.h"
#include "platform/database/Connection.h"
#include "reports/ReportStore.h"
#include "tests/own_files.h"
#include "tests/tdsserver/TdsServer.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace selfreport {
namespace {

TEST(DemoRoundTrips, ARecalculationTakesAHandful)
{
    const auto file = test::ownFile("trips.db");
    createDemoLedger(file.string());
    storeDemoReports("Provider=SQLite;Data Source=" + file.string());
    const struct {
        int id;
        std::size_t most;
        bool hasEmptyCells;
    } reports[] = {
        {1, 6, true}, {2, 6, true}, {3, 6, true}, {4, 6, false}, {5, 6, false}, {6, 18, true},
    };
    tds::TdsServer server(file.string());
    for (const auto& report : reports) {
        closeIdleSessions();
        DatabaseAccess database(server.connectionString());
        spreadsheet::Workbook workbook;
        RememberedReport unwanted;
        ReportStore(database, {}).load(report.id, workbook, unwanted);
        ReportEvaluation evaluation(workbook, database);
        evaluation.addSelfFunction();
        for (const char* const time : {"first", "second"}) {
            server.journal.clear();
            ASSERT_TRUE(evaluation.recalculate());
            EXPECT_LE(server.journal.requests().size(), report.most) << report.id << ' ' << time;
            EXPECT_EQ(!evaluation.diagnostics().empty(), report.hasEmptyCells) << report.id;
        }
    }
    closeIdleSessions();
    std::filesystem::remove(file);
}

} // namespace
} // namespace selfreport
