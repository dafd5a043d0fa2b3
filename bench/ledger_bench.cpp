// Times ledger and inter-report fetches on a ledger of a million balance rows, and a whole report run.
// Usage: ledger_bench [FILE]    FILE keeps the ledger for the next run; it is made if it is missing.
#include "bench/acct_cells.h"
#include "bench/bench_table.h"
#include "demo/demo_report.h"
#include "demo/demo_reports.h"
#include "demo/ledger/demo_ledger.h"
#include "fetch/ledger_fetch.h"
#include "fetch/ReportEvaluation.h"
#include "platform/database/sqlite/AcctProcedure.h"
#include "reports/report_run.h"
#include "state/fetch_procedures.h"
#include "state/report_procedures.h"
#include "state/shared_state.h"

#include <cmath>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sqlite3.h>
#include <stdexcept>
#include <sys/wait.h>
#include <tuple>
#include <unistd.h>

extern char** environ;

using namespace selfreport;

namespace {

constexpr int balanceRows = 1'000'000;
constexpr std::size_t distinctFetches = 400;

std::string connectionTo(const std::filesystem::path& file)
{
    return "Provider=SQLite;Data Source=" + file.string();
}

/// A folder of its own, removed at the end.
class TemporaryFolder {
public:
    TemporaryFolder()
        : path(std::filesystem::temp_directory_path() / ("ledger_bench-" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(path);
    }
    ~TemporaryFolder()
    {
        closeIdleSessions();
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path path;
};

/// A report that stands in the shared database while this lives.
class StoredReport {
public:
    StoredReport(const std::string& name, const spreadsheet::Workbook& workbook)
    {
        if (!insertReport(sharedContext, name, workbook))
            throw std::runtime_error("cannot store " + name);
        id = gReportId;
    }
    ~StoredReport()
    {
        gReportId = id;
        std::ignore =
            deleteInfo(sharedContext); // a report that stays behind lies in the bench's own database
    }
    StoredReport(const StoredReport&) = delete;
    StoredReport& operator=(const StoredReport&) = delete;

    std::int32_t id = 0;
};

std::vector<std::string> codesOf(const std::string& table)
{
    const Recordset rows = openConnection(gConnString)->query("select fNumber from " + table + " order by 1");
    std::vector<std::string> codes;
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        codes.push_back(rows.text(row, "fNumber"));
    return codes;
}

/// Each account's closing balance of the year, then each one's opening balance, and so on.
std::vector<LedgerArguments> exactFetches()
{
    const std::vector<std::string> accounts = codesOf("tblAccount");
    std::vector<LedgerArguments> fetches;
    for (const char* kind : {"2", "1", "3", "4"})
        for (const std::string& account : accounts)
            if (fetches.size() < distinctFetches)
                fetches.push_back({account, kind, "", "2025", "1", "12"});
    return fetches;
}

/// Account expressions with ranges, patterns and item conditions, from one item to all of a class.
std::vector<std::string> mixedExpressions()
{
    std::vector<std::string> expressions{"1001:1012",
                                         "1001:1901",
                                         "2001:2999",
                                         "1001:6999",
                                         "6001:6999",
                                         "660101:660299",
                                         "10**",
                                         "1***",
                                         "66**",
                                         "****",
                                         "6601**",
                                         "******",
                                         "1122|客户|0***",
                                         "1122|客户|****",
                                         "1405|商品|*1**",
                                         "1001:2999|客户|00**",
                                         "66**|部门|01:05",
                                         "6601**|部门|01",
                                         "****|部门|**"};
    const auto addItems = [&](const std::string& account, const char* className, const char* table) {
        const std::vector<std::string> codes = codesOf(table);
        const std::string head = account + "|" + className + "|";
        const std::string middle = codes[codes.size() / 2];
        expressions.insert(expressions.end(), {head + middle, head + codes.front() + ":" + middle,
                                               head + codes.front() + ":" + codes.back()});
    };
    addItems("1122", "客户", "tblCustomer");
    addItems("1001:1901", "客户", "tblCustomer");
    addItems("2202", "供应商", "tblSupplier");
    addItems("1405", "商品", "tblGoods");
    addItems("66**", "部门", "tblDepartment");
    const std::string department = codesOf("tblDepartment").front();
    for (const char* customers : {"0001:0050", "00**", "****"})
        expressions.push_back("1122|客户|" + std::string(customers) + "|部门|" + department);
    return expressions;
}

std::vector<LedgerArguments> mixedFetches()
{
    const std::vector<std::string> expressions = mixedExpressions();
    std::vector<LedgerArguments> fetches;
    for (const char* year : {"2025", "2024"})
        for (const char* kind : {"2", "3", "4", "1", "6", "13"})
            for (const std::string& expression : expressions)
                if (fetches.size() < distinctFetches)
                    fetches.push_back({expression, kind, "", year, "1", "12"});
    return fetches;
}

void putFormula(spreadsheet::Sheet& sheet, int row, const std::string& formula)
{
    if (sheet.setFormula({1, row}, formula))
        throw std::runtime_error("refused: " + formula);
}

std::vector<std::string> finalTexts(const SqliteDatabase& database,
                                    const std::vector<LedgerArguments>& fetches)
{
    std::vector<std::string> texts;
    for (const LedgerArguments& fetch : fetches) {
        const std::string sql = ledgerQuery(parseAccountExpression(fetch.account), {});
        texts.push_back(finalAcctSql(database, ledgerProcedureCall(fetch, sql)).value());
    }
    return texts;
}

/// The first column of each text's one row, 0 where there is none.
std::vector<double> runStraight(sqlite3* database, const std::vector<std::string>& texts)
{
    std::vector<double> amounts;
    for (const std::string& text : texts) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database, text.data(), static_cast<int>(text.size()), &statement, nullptr) !=
            SQLITE_OK)
            throw std::runtime_error(sqlite3_errmsg(database));
        amounts.push_back(sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_double(statement, 0) : 0);
        sqlite3_finalize(statement);
    }
    return amounts;
}

void benchExactAccounts(BenchTable& table, const std::string& file)
{
    constexpr int cells = 1000;
    const std::vector<LedgerArguments> fetches = exactFetches();
    spreadsheet::Workbook workbook;
    putAcctCells(workbook, fetches, cells);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    closeIdleSessions();
    const double first = bestSeconds(
        1, [] {}, [&] { evaluation.recalculate(); });
    const double engine = bestSeconds(
        9, [] {}, [&] { evaluation.recalculate(); });

    const SqliteDatabase database(file);
    const std::vector<std::string> texts = finalTexts(database, fetches);
    std::vector<double> amounts;
    const double straight = bestSeconds(
        10, [] {}, [&] { amounts = runStraight(database.handle(), texts); });
    double worst = 0;
    for (int row = 1; row <= cells; ++row)
        worst = std::max(worst, std::fabs(workbook.sheet(1).value({1, row}).number() -
                                          amounts[static_cast<std::size_t>(row - 1) % amounts.size()]));
    std::printf("   (recalculated in %.2f ms, the first time on a new session %.2f ms; %zu texts straight "
                "%.2f ms; greatest difference %g)\n",
                engine * 1e3, first * 1e3, texts.size(), straight * 1e3, worst);
    table.row("1,000 Acct cells, 400 distinct, times the SQL run straight", engine / straight, 1.2, "x");
    if (worst > 0.005)
        throw std::runtime_error("the cells and the straight queries differ");
}

/// What keeping and completing the record of a run adds to it.
void benchRecord(BenchTable& table, const std::string& what, const std::vector<LedgerArguments>& fetches)
{
    constexpr int cells = 1000;
    spreadsheet::Workbook workbook, recorded;
    putAcctCells(workbook, fetches, cells);
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    const double run = bestSeconds(
        9, [] {}, [&] { evaluation.recalculate(); });
    std::vector<std::pair<spreadsheet::CallPlace, RecordedCall>> calls;
    evaluation.record().eachCall([&](const spreadsheet::SheetCell& at, const RecordedCall& call) {
        calls.push_back({{1, at.cell.column, at.cell.row}, call});
        calls.back().second.filled = nullptr;
    });
    RunRecord record(recorded);
    std::unique_ptr<Connection> left; // by the run, as its waves leave it
    const double kept = bestSeconds(
        9, [&] { left = openConnection(sharedContext.database.connectionString); },
        [&] {
            for (const auto& [place, call] : calls)
                record.add(place, call);
            record.takeAll();
            record.explain([&left](const FetchesToExplain& open) {
                return explainFetches(open, sharedContext.database, std::move(left));
            });
        });
    std::printf("   (%zu calls, the run %.2f ms, its record %.3f ms)\n", calls.size(), run * 1e3, kept * 1e3);
    table.row("record of 1,000 Acct cells " + what + ", part of the run", kept / run, 0.02, "x");
}

void benchRecords(BenchTable& table)
{
    std::vector<LedgerArguments> fetches = exactFetches();
    benchRecord(table, "with year and periods", fetches);
    for (LedgerArguments& fetch : fetches)
        fetch.year = fetch.firstPeriod = fetch.lastPeriod = "0";
    benchRecord(table, "without", fetches);
}

/// Each fetch alone: open, look the classes up, call, close.
void benchMixedFetches(BenchTable& table)
{
    const std::vector<LedgerArguments> fetches = mixedFetches();
    std::vector<std::pair<double, const LedgerArguments*>> taken;
    std::size_t found = 0;
    for (const LedgerArguments& fetch : fetches) {
        LedgerAnswer answer;
        taken.emplace_back(bestSeconds(
                               5, [] {}, [&] { answer = changeAcctInfo(fetch); }) *
                               1e3,
                           &fetch);
        found += answer.amount.has_value();
    }
    std::ranges::sort(taken);
    std::printf("   (%zu distinct fetches, best of 5 runs each, %zu with an amount; slowest:", fetches.size(),
                found);
    for (std::size_t i = 1; i <= 3; ++i)
        std::printf(" %s type %s %.2f ms;", taken[taken.size() - i].second->account.c_str(),
                    taken[taken.size() - i].second->fetchType.c_str(), taken[taken.size() - i].first);
    std::printf(")\n");
    table.row("a fetch with range, pattern or items, the worst of 400", taken.back().first, 10, "ms");
    table.row("the same, median", taken[taken.size() / 2].first, 1, "ms");
}

/// The widest condition on one account: 12 rows of each customer are read.
void benchAllCustomers(BenchTable& table)
{
    const LedgerArguments fetch{"1122|客户|****", "3", "", "2025", "1", "12"};
    table.row("a fetch over all customers and 12 periods of one account",
              bestSeconds(
                  9, [] {}, [&] { changeAcctInfo(fetch); }) *
                  1e3,
              10, "ms");
}

void benchReferences(BenchTable& table)
{
    constexpr int cells = 200;
    std::vector<LedgerArguments> fetches = exactFetches();
    fetches.resize(cells);
    spreadsheet::Workbook referenced;
    putAcctCells(referenced, fetches, cells);
    const std::string name = "ledger_bench";
    const StoredReport stored(name, referenced);

    spreadsheet::Workbook workbook;
    for (int row = 1; row <= cells; ++row)
        putFormula(workbook.sheet(1), row, "REF_F(\"" + name + "\",\"A" + std::to_string(row) + "\",\"\")");
    ReportEvaluation evaluation(workbook, sharedContext.database);
    evaluation.addSelfFunction();
    const DatabaseCounters before = databaseCounters();
    evaluation.recalculate();
    const DatabaseCounters after = databaseCounters();
    if (after.procedureCalls - before.procedureCalls < cells)
        throw std::runtime_error("the referenced report was not evaluated: " +
                                 evaluation.diagnostics().at(0).reason);
    const double seconds = bestSeconds(
        9, [] {}, [&] { evaluation.recalculate(); });
    std::printf("   (%lld connections, %lld batches, %lld procedure calls, %.2f ms a recalculation)\n",
                static_cast<long long>(after.opens - before.opens),
                static_cast<long long>(after.batches - before.batches),
                static_cast<long long>(after.procedureCalls - before.procedureCalls), seconds * 1e3);
    // An evaluation makes one call for each of the report's distinct cells.
    table.row("200 REF_F cells, evaluations of the one report they read",
              static_cast<double>(after.procedureCalls - before.procedureCalls) / cells, 1, "");
}

/// Runs a program to its end without its output. @return  its exit code, -1 if it did not start or end
int runProgram(std::vector<std::string> words)
{
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int failed = ::posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed || ::waitpid(process, &status, 0) != process || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

double runSeconds(const std::filesystem::path& program, std::int32_t report,
                  const std::filesystem::path& database, const std::filesystem::path& pdf)
{
    return bestSeconds(
        5, [&] { std::filesystem::remove(pdf); },
        [&] {
            const int code = runProgram({program.string(), "run", std::to_string(report), "--db",
                                         database.string(), "--pdf", pdf.string()});
            if (code != 0 || !std::filesystem::exists(pdf))
                throw std::runtime_error(program.string() + " run ended with " + std::to_string(code));
        });
}

void benchProcess(BenchTable& table, const std::filesystem::path& program, const std::string& big,
                  const std::filesystem::path& folder)
{
    {
        const StoredReport stored("ledger_bench", *demo::balanceSheet(2025).workbook);
        table.row("selfreport run of 资产负债表 to PDF, ledger of 1,000,000 rows",
                  runSeconds(program, stored.id, big, folder / "big.pdf"), 0.3, "s");
    }
    const std::filesystem::path small = folder / "demo.db";
    createDemoLedger(small.string());
    storeDemoReports(connectionTo(small));
    const std::vector<ListedReport> reports = listReports(connectionTo(small));
    const auto balance = std::ranges::find(reports, "资产负债表", &ListedReport::name);
    if (balance == reports.end())
        throw std::runtime_error("no balance sheet among the demo reports");
    table.row("the same, demo ledger", runSeconds(program, balance->id, small, folder / "small.pdf"), 0.3,
              "s");
}

void makeLedger(const std::string& file)
{
    const double seconds = bestSeconds(
        1, [] {}, [&] { createDemoLedger(file, DemoLedgerOptions::ofBalanceRows(balanceRows)); });
    std::printf("   (ledger made in %.1f s)\n", seconds);
}

int runBench(const char* program, const char* keptLedger)
{
    const TemporaryFolder folder;
    const std::string file = keptLedger ? keptLedger : (folder.path / "ledger.db").string();
    BenchTable table("ledger");
    if (!std::filesystem::exists(file))
        makeLedger(file);
    gConnString = connectionTo(file);
    const Recordset count = openConnection(gConnString)->query("select count(*) as n from tblAccountBal");
    std::printf("   (%s balance rows)\n", count.text(0, "n").c_str());
    benchExactAccounts(table, file);
    benchRecords(table);
    benchMixedFetches(table);
    benchAllCustomers(table);
    benchReferences(table);
    benchProcess(table, std::filesystem::absolute(program).parent_path() / "selfreport", file, folder.path);
    return table.finish();
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return runBench(argv[0], argc > 1 ? argv[1] : nullptr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
