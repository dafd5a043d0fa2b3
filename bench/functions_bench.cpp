// Times sheet-eval, lookups, conditional sums, rounding and calls that no report has against their bounds.
#include "bench/bench_table.h"
#include "spreadsheet/workbook/Workbook.h"
#include "tests/spreadsheet/functions/HostileCalls.h"
#include "tools/sheet_eval/answer.h"

#include <fstream>
#include <random>
#include <sstream>

using namespace spreadsheet;

namespace {

constexpr int dataRows = 100'000;
constexpr int formulaRows = 10'000;

/// A: numbers 1 to 100,000 in disorder; B: one of 500 names; C: one of 12 months; D: an amount.
void fillLedger(Sheet& sheet)
{
    std::mt19937 random(1);
    std::vector<int> keys(dataRows);
    for (int i = 0; i < dataRows; ++i)
        keys[static_cast<std::size_t>(i)] = i + 1;
    std::ranges::shuffle(keys, random);
    for (int row = 1; row <= dataRows; ++row) {
        sheet.setNumber({1, row}, keys[static_cast<std::size_t>(row - 1)]);
        sheet.setText({2, row}, "客户" + std::to_string(random() % 500));
        sheet.setNumber({3, row}, static_cast<double>(random() % 12 + 1));
        sheet.setNumber({4, row}, static_cast<double>(random() % 1'000'000) / 100);
    }
}

/// The same formula in `count` rows of column F; "#" stands for the row's number.
void fillFormulas(Sheet& sheet, const std::string& formula, int count)
{
    for (int row = 1; row <= count; ++row) {
        std::string text;
        for (const char c : formula)
            text += c == '#' ? std::to_string(row) : std::string(1, c);
        if (const auto problem = sheet.setFormula({6, row}, text))
            std::printf("%s: %s\n", text.c_str(), problem.reason().c_str());
    }
}

/// Seconds that a recalculation of such formulas over the ledger takes, the order included.
double secondsOf(const std::string& formula, int count)
{
    Workbook workbook;
    fillLedger(workbook.sheet(1));
    fillFormulas(workbook.sheet(1), formula, count);
    const double seconds = bestSeconds(
        3, [] {}, [&] { workbook.recalculate(); });
    std::printf("(%s = %.10g)\n", formula.c_str(), workbook.sheet(1).value({6, 1}).number());
    return seconds;
}

/// The loop that SUMIFS stands beside: two comparisons a row over plain arrays.
double plainLoopSeconds()
{
    Workbook workbook;
    fillLedger(workbook.sheet(1));
    std::vector<double> months, amounts;
    for (int row = 1; row <= dataRows; ++row) {
        months.push_back(workbook.sheet(1).value({3, row}).number());
        amounts.push_back(workbook.sheet(1).value({4, row}).number());
    }
    volatile double sum = 0;
    return bestSeconds(
        20, [] {},
        [&] {
            double total = 0;
            for (std::size_t i = 0; i < months.size(); ++i) {
                if (months[i] == 5 && amounts[i] > 500)
                    total += amounts[i];
            }
            sum = total;
        });
}

/// Requests that sheet-eval answers in a second, one after the other.
double casesPerSecond(const char* file)
{
    std::vector<std::string> requests;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        requests.push_back(line);
    if (requests.empty())
        return 0;
    constexpr int rounds = 100;
    std::ostringstream notes;
    const double seconds = bestSeconds(
        3, [] {},
        [&] {
            for (int round = 0; round < rounds; ++round) {
                for (const std::string& request : requests)
                    answerTo(request, notes);
            }
        });
    return static_cast<double>(requests.size()) * rounds / seconds;
}

/// Seconds of the longest of many calls with extreme arguments, plain ones and array formulas in turn.
double longestHostileCall()
{
    constexpr int callsEach = 50;
    std::mt19937 random(2);
    HostileCalls hostile([&](std::size_t count) { return random() % count; });
    Workbook workbook;
    HostileCalls::fill(workbook);
    Sheet& sheet = workbook.sheet(1);
    double longest = 0;
    std::string slowest;
    for (const FunctionDescriptor* function : allFunctions()) {
        for (int i = 0; i < callsEach; ++i) {
            const std::string call = hostile.call(*function);
            const CellRange cells{2, 2, 4, 4};
            if (i % 2 == 1 ? sheet.setArrayFormula(cells, call) : sheet.setFormula({2, 2}, call))
                continue;
            const double seconds = bestSeconds(
                1, [] {}, [&] { workbook.recalculate(); });
            if (seconds > longest) {
                longest = seconds;
                slowest = call;
            }
            sheet.clearContents(cells);
        }
    }
    std::printf("(%s)\n", slowest.c_str());
    return longest;
}

} // namespace

int main()
{
    BenchTable table("functions");
    table.row("sheet-eval: one small case (20,000 a second)", 1e6 / casesPerSecond(FORMULAS_FILE), 50, "us");

    const double plain = plainLoopSeconds();
    const double sumIfs = secondsOf("SUMIFS(D$1:D$100000,C$1:C$100000,5,D$1:D$100000,\">500\")", 1);
    std::printf("(SUMIFS %.5f s, plain loop %.5f s)\n", sumIfs, plain);
    table.row("SUMIFS, two criteria over 100,000 rows, times a plain loop", sumIfs / plain, 6, "x");
    table.row("10,000 exact VLOOKUPs into 100,000 unsorted rows",
              1e3 * secondsOf("VLOOKUP(#,A$1:D$100000,4,FALSE)", formulaRows), 50, "ms");
    table.row("10,000 SUMIFs on one range, by text",
              1e3 * secondsOf("SUMIF(B$1:B$100000,\"客户\"&MOD(#,500),D$1:D$100000)", formulaRows), 100,
              "ms");
    table.row("10,000 COUNTIFs on one range, by number",
              1e3 * secondsOf("COUNTIF(A$1:A$100000,#)", formulaRows), 100, "ms");
    table.row("10,000 SUMIFs on one range, \">n\"",
              1e3 * secondsOf("SUMIF(A$1:A$100000,\">\"&#,D$1:D$100000)", formulaRows), 100, "ms");
    table.row("10,000 COUNTIFs on one range, \"<=n\"",
              1e3 * secondsOf("COUNTIF(D$1:D$100000,\"<=\"&#)", formulaRows), 100, "ms");
    table.row("1,000 COUNTIFs on one range, by wildcard",
              1e3 * secondsOf("COUNTIF(B$1:B$100000,\"客户\"&MOD(#,50)&\"*\")", 1000), 1000, "ms");
    table.row("10,000 ROUNDs of amounts", 1e3 * secondsOf("ROUND(D#,1)", formulaRows), 5, "ms");
    table.row("10,000 ROUNDs of quotients", 1e3 * secondsOf("ROUND(D#/7,2)", formulaRows), 10, "ms");
    table.row("the longest of 50 hostile calls of each function", 1e3 * longestHostileCall(), 500, "ms");
    return table.finish();
}
