// What recalculating the demo reports asks of a server.
#include "access/DatabaseAccess.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/ReportEvaluation.h"
#include "platform/database/Connection.h"
#include "reports/ReportStore.h"
#include "tests/own_files.h"
#include "tests/tdsserver/TdsServer.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>

namespace selfreport {
namespace {

/// What was sent, and of it what is asked only to tell kinds of nothing apart.
struct Sent {
    std::size_t requests = 0, questions = 0, kinds = 0;
};

Sent sentTo(const tds::TdsServer& server)
{
    Sent sent;
    const auto count = [](const std::string& text, std::string_view part) {
        std::size_t found = 0;
        for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
            ++found;
        return found;
    };
    for (const tds::Request& request : server.journal.requests()) {
        ++sent.requests;
        sent.questions += count(request.text, " as fordinal");
        for (const char* const kind :
             {"max(a.fYear*100+a.fPeriod)", "from tblQtyBalance as q", "from tblProfitAndLoss as p"})
            sent.kinds += count(request.text, kind);
    }
    return sent;
}

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
        const Sent told = sentTo(server);
        EXPECT_EQ(told.kinds > 0, report.hasEmptyCells) << report.id;
        evaluation.setKindsTold(false);
        server.journal.clear();
        ASSERT_TRUE(evaluation.recalculate());
        const Sent plain = sentTo(server);
        EXPECT_EQ(plain.kinds, 0U) << report.id << ": a report that is only run";
        EXPECT_LE(plain.requests, told.requests) << report.id;
        std::cout << "report " << report.id << ": " << plain.requests << " requests, " << plain.questions
                  << " questions, " << told.questions << " with kinds of nothing\n";
    }
    closeIdleSessions();
    std::filesystem::remove(file);
}

} // namespace
} // namespace selfreport
