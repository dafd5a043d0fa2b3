// Times recalculations over the driver and the wire, against the test server with half a millisecond of added
// latency for each round trip.
#include "access/DatabaseAccess.h"
#include "bench/acct_cells.h"
#include "bench/bench_table.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/ledger_fetch.h"
#include "fetch/ledger_query.h"
#include "fetch/ReportEvaluation.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/AcctProcedure.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "reports/report_list.h"
#include "reports/ReportStore.h"
#include "state/shared_state.h"
#include "tests/tdsserver/TdsServer.h"

#include <filesystem>
#include <stdexcept>
#include <unistd.h>

using namespace selfreport;

namespace {

constexpr int balanceRows = 300'000;

/// The procedure's own time for the calls of the fetches, without driver, wire and batches.
double procedureSeconds(const std::string& file, const std::vector<LedgerArguments>& fetches)
{
    const SqliteDatabase database(file);
    AcctProcedure procedure(database);
    std::vector<ProcedureCall> calls;
    for (const LedgerArguments& fetch : fetches) {
        const AccountExpression expression = parseAccountExpression(fetch.account);
        const std::vector<std::optional<std::string>> tables(expression.qualifiers.size(), "tblCustomer");
        calls.push_back(ledgerProcedureCall(fetch, ledgerQuery(expression, tables)));
    }
    return bestSeconds(
        5, [] {},
        [&] {
            for (const ProcedureCall& call : calls)
                procedure.run(call);
        });
}

void benchRecalculation(BenchTable& table, tds::TdsServer& server, const std::string& file)
{
    const std::vector<LedgerArguments> fetches = fetchesOfAReport(4);
    spreadsheet::Workbook workbook;
    putAcctCells(workbook, fetches, 1000);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    evaluation.recalculate(); // the session lies in the pool
    server.journal.clear();
    evaluation.recalculate();
    table.row("round trips of 1,000 Acct cells, 400 distinct",
              static_cast<double>(server.journal.requests().size()), 4, "");
    const double work = procedureSeconds(file, fetches);
    const double whole = bestSeconds(
        5, [] {}, [&] { evaluation.recalculate(); });
    std::printf("   (recalculated in %.1f ms, the procedure alone %.1f ms)\n", whole * 1e3, work * 1e3);
    table.row("1,000 Acct cells with 0.5 ms a round trip, times the procedure", whole / work, 1.3, "x");
}

double recalculationSeconds(const std::string& target, int report)
{
    DatabaseAccess database(target);
    spreadsheet::Workbook workbook;
    RememberedReport unwanted;
    const std::string name = ReportStore(database, {}).load(report, workbook, unwanted);
    ReportEvaluation evaluation(workbook, database);
    evaluation.addSelfFunction();
    return bestSeconds(
        3, [] {}, [&] { evaluation.recalculate(); });
}

/// The demo reports with 20 ms a reply, against the embedded database, where the procedure is the same.
void benchDemoReports(BenchTable& table, const std::string& file)
{
    const std::string embedded = "Provider=SQLite;Data Source=" + file;
    createDemoLedger(file);
    storeDemoReports(embedded);
    tds::TdsServer server(file);
    server.replyDelay = std::chrono::milliseconds(20);
    const struct {
        int id;
        const char* name;
        double mostTrips;
    } reports[] = {{1, "资产负债表", 6},         {2, "利润表", 6},         {3, "部门费用明细表", 6},
                   {4, "应收账款客户分析表", 6}, {5, "商品数量金额表", 6}, {6, "财务摘要", 18}};
    for (const auto& [id, name, mostTrips] : reports) {
        const double over = recalculationSeconds(server.connectionString(), id);
        server.journal.clear();
        recalculationSeconds(server.connectionString(), id);
        const double trips =
            static_cast<double>(server.journal.requests().size() - 2) / 3; // load, sign of life
        table.row(std::string("round trips of ") + name, trips, mostTrips, "");
        if (id != 6)
            table.row(std::string("… with 20 ms a reply, beyond the procedure's own time"),
                      over - recalculationSeconds(embedded, id), 0.3, "s");
    }
    closeIdleSessions();
}

void benchPool(BenchTable& table)
{
    constexpr int times = 1000;
    const double seconds = bestSeconds(
        5, [] {},
        [] {
            for (int i = 0; i < times; ++i)
                openConnection(gConnString);
        });
    table.row("open and close through the pool", seconds / times * 1e6, 20, "us");
}

/// A value of 64 MiB stored and read back, without added latency; no bound is set.
void benchContent(tds::TdsServer& server)
{
    server.replyDelay = std::chrono::microseconds(0);
    const std::vector<std::byte> content(64U << 20U, std::byte{7});
    const auto connection = openConnection(gConnString);
    connection->execute("insert into tblCWSelfReport(noid,fname,fFileContent) values(9999,'大',?)",
                        {std::span<const std::byte>(content)});
    const double read = bestSeconds(
        3, [] {},
        [&] {
            connection->query("select fFileContent from tblCWSelfReport where noid=9999",
                              BinaryColumns::fetched);
        });
    const double listed = bestSeconds(
        3, [] {}, [&] { storedReports(*connection); });
    std::printf("   (64 MiB read in %.0f ms, listed without them in %.0f ms)\n", read * 1e3, listed * 1e3);
}

} // namespace

int main()
{
    const auto file =
        std::filesystem::temp_directory_path() / ("wire_bench-" + std::to_string(::getpid()) + ".db");
    BenchTable table("over the wire");
    try {
        createDemoLedger(file.string(), DemoLedgerOptions::ofBalanceRows(balanceRows));
        tds::TdsServer server(file.string());
        gConnString = server.connectionString();
        server.replyDelay = std::chrono::microseconds(500);
        benchRecalculation(table, server, file.string());
        benchPool(table);
        benchContent(server);
        closeIdleSessions();
        std::filesystem::remove(file);
        benchDemoReports(table, file.string());
    } catch (const std::exception& error) {
        std::printf("failed: %s\n", error.what());
        std::filesystem::remove(file);
        return 2;
    }
    std::filesystem::remove(file);
    return table.finish();
}
