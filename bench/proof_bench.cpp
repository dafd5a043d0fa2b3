// Times the proof of a ledger of a million balance rows, and what figures of it are made of.
// Usage: proof_bench [FILE]    FILE keeps the ledger for the next run; it is made if it is missing.
#include "bench/bench_table.h"
#include "demo/ledger/demo_ledger.h"
#include "explain/call_parts.h"
#include "explain/ledger_proof.h"
#include "platform/database/Connection.h"
#include "platform/database/sqlite/sqlite_provider.h"

#include <filesystem>
#include <unistd.h>

using namespace selfreport;

namespace {

constexpr int balanceRows = 1'000'000;

void openingRow(BenchTable& table, CallOpening& opening, const char* what, const LedgerArguments& call,
                const PartsWay& way)
{
    CallParts parts;
    const double seconds = bestSeconds(
        3, [] {}, [&] { parts = opening.partsOf(call, way); });
    table.row(std::string(what) + ", " + std::to_string(parts.parts.size()) + " parts", seconds * 1000, 200,
              "ms");
}

} // namespace

int main(int count, char** arguments)
{
    const bool isKept = count > 1;
    const std::string file =
        isKept
            ? arguments[1]
            : (std::filesystem::temp_directory_path() / ("proof_bench-" + std::to_string(::getpid()) + ".db"))
                  .string();
    if (!std::filesystem::exists(file))
        createDemoLedger(file, DemoLedgerOptions::ofBalanceRows(balanceRows));
    int code = 0;
    {
        const auto connection = openConnection(fileConnectionString(file));
        BenchTable table("a ledger of a million balance rows");
        const auto nothing = [] {};
        table.row("prove it", bestSeconds(1, nothing, [&] { proveLedger(*connection, 0); }), 10, "s");
        table.row("prove one year of it", bestSeconds(1, nothing, [&] { proveLedger(*connection, 2025); }),
                  10, "s");
        const AccountChart chart(*connection);
        CallOpening opening(*connection, chart);
        openingRow(table, opening, "open a range of accounts", {"1001:9999", "2", "", "2025", "1", "12"},
                   {PartsBy::accounts, ""});
        openingRow(table, opening, "open an account by customers", {"1122", "2", "", "2025", "1", "12"},
                   {PartsBy::items, "客户"});
        openingRow(table, opening, "open an account by periods", {"6001", "3", "", "2025", "1", "12"},
                   {PartsBy::periods, ""});
        openingRow(table, opening, "open a page of vouchers", {"1122", "3", "", "2025", "12", "12"},
                   {PartsBy::vouchers, ""});
        code = table.finish();
    }
    closeIdleSessions();
    if (!isKept)
        std::filesystem::remove(file);
    return code;
}
