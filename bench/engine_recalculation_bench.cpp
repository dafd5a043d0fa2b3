// Times the engine's recalculation, memory and structural edits against their bounds.
#include "bench/bench_table.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cmath>
#include <malloc.h>
#include <memory>
#include <random>

using namespace spreadsheet;

namespace {

constexpr int rows = 100'000;
constexpr int inputs = 5;    // columns A to E
constexpr int formulas = 10; // columns F to O

void fillInputs(Sheet& sheet)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> amounts(1, 1000);
    for (int column = 1; column <= inputs; ++column) {
        for (int row = 1; row <= rows; ++row)
            sheet.setNumber({column, row}, std::round(amounts(random) * 100) / 100);
    }
}

/// The ten formulas of one row, three to five references each.
std::vector<std::string> rowFormulas(int row)
{
    const std::string n = std::to_string(row);
    return {"A" + n + "+B" + n + "*C" + n,
            "F" + n + "-A" + n + "/D" + n + "+E" + n,
            "(A" + n + "+B" + n + "+C" + n + ")*0.17",
            "G" + n + "+H" + n + "-B" + n,
            "A" + n + "*B" + n + "-C" + n + "*D" + n,
            "J" + n + "-I" + n + "+A" + n + "+B" + n + "-E" + n,
            "(K" + n + "+F" + n + ")/(A" + n + "+1)",
            "L" + n + "+G" + n + "+H" + n,
            "M" + n + "-J" + n + "*2%+D" + n,
            "N" + n + "+F" + n + "+I" + n + "-K" + n};
}

void typeFormulas(Sheet& sheet)
{
    for (int row = 1; row <= rows; ++row) {
        int column = inputs;
        for (const std::string& formula : rowFormulas(row))
            demand(sheet.setFormula({++column, row}, formula));
    }
}

void fillFormulas(Sheet& sheet)
{
    int column = inputs;
    for (const std::string& formula : rowFormulas(1))
        demand(sheet.setFormula({++column, 1}, formula));
    demand(sheet.fillDown({inputs + 1, 1, inputs + formulas, rows}));
}

/// The same work on plain arrays, column by column.
struct PlainLoop {
    std::vector<std::vector<double>> column{15, std::vector<double>(rows)};

    explicit PlainLoop(const Sheet& sheet)
    {
        for (int c = 0; c < inputs; ++c) {
            for (int row = 1; row <= rows; ++row)
                column[static_cast<std::size_t>(c)][static_cast<std::size_t>(row) - 1] =
                    sheet.value({c + 1, row}).number();
        }
    }
    void run()
    {
        const double *a = column[0].data(), *b = column[1].data(), *c = column[2].data(),
                     *d = column[3].data(), *e = column[4].data();
        double *f = column[5].data(), *g = column[6].data(), *h = column[7].data(), *i = column[8].data(),
               *j = column[9].data(), *k = column[10].data(), *l = column[11].data(), *m = column[12].data(),
               *n = column[13].data(), *o = column[14].data();
        for (int r = 0; r < rows; ++r)
            f[r] = a[r] + b[r] * c[r];
        for (int r = 0; r < rows; ++r)
            g[r] = f[r] - a[r] / d[r] + e[r];
        for (int r = 0; r < rows; ++r)
            h[r] = (a[r] + b[r] + c[r]) * 0.17;
        for (int r = 0; r < rows; ++r)
            i[r] = g[r] + h[r] - b[r];
        for (int r = 0; r < rows; ++r)
            j[r] = a[r] * b[r] - c[r] * d[r];
        for (int r = 0; r < rows; ++r)
            k[r] = j[r] - i[r] + a[r] + b[r] - e[r];
        for (int r = 0; r < rows; ++r)
            l[r] = (k[r] + f[r]) / (a[r] + 1);
        for (int r = 0; r < rows; ++r)
            m[r] = l[r] + g[r] + h[r];
        for (int r = 0; r < rows; ++r)
            n[r] = m[r] - j[r] * 0.02 + d[r];
        for (int r = 0; r < rows; ++r)
            o[r] = n[r] + f[r] + i[r] - k[r];
    }
};

/// A full recalculation that builds the order anew.
double fullSeconds(Workbook& workbook, int runs = 5)
{
    return bestSeconds(
        runs, [&] { workbook.recalculation().noteFormulas(); }, [&] { workbook.recalculate(); });
}

double heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// Heap bytes that a workbook takes, allocator and all.
double bytesOf(const std::function<void(Workbook&)>& build)
{
    const double before = heapBytes();
    auto workbook = std::make_unique<Workbook>();
    build(*workbook);
    return heapBytes() - before;
}

void benchRecalculation(BenchTable& table)
{
    Workbook typed;
    fillInputs(typed.sheet(1));
    typeFormulas(typed.sheet(1));
    table.row("recalculate 1,000,000 formulas typed one by one, order included", fullSeconds(typed), 0.08,
              "s");

    Workbook filled;
    fillInputs(filled.sheet(1));
    fillFormulas(filled.sheet(1));
    const double engine = fullSeconds(filled);
    PlainLoop loop(filled.sheet(1));
    const double plain = bestSeconds(
        5, [] {}, [&] { loop.run(); });
    double worst = 0;
    for (int row = 1; row <= rows; row += 997)
        worst = std::max(worst, std::fabs(filled.sheet(1).value({15, row}).number() -
                                          loop.column[14][static_cast<std::size_t>(row) - 1]));
    std::printf("   (filled down %.4f s, plain loop %.4f s, greatest difference %g)\n", engine, plain, worst);
    table.row("the same filled down, times the plain loop", engine / plain, 8, "x");

    filled.setUndoEnabled(true);
    table.row("row inserted above 1,000,000 formulas",
              bestSeconds(
                  3, [] {},
                  [&] {
                      demand(filled.sheet(1).insertRows(1, 1));
                      filled.recalculateChanged();
                  }) *
                  1e3,
              20, "ms");
    table.row("and undone",
              bestSeconds(
                  3, [] {}, [&] { filled.undo(); }) *
                  1e3,
              20, "ms");
    demand(filled.sheet(1).setFormula({20, 1}, "A500*1"));
    demand(filled.sheet(1).fillDown({20, 1, 20, 1}));
    filled.recalculateChanged();
    double amount = 1;
    // One input of column A in the middle reaches the formulas of its row.
    table.row("one changed input under 1,000,000 formulas, 10 dependents",
              bestSeconds(
                  200,
                  [&] {
                      filled.sheet(1).setNumber({1, 50'000}, amount += 1);
                  },
                  [&] { filled.recalculateChanged(); }) *
                  1e6,
              50, "us");
}

void benchShapes(BenchTable& table)
{
    {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        sheet.setNumber({1, 1}, 1);
        demand(sheet.setFormula({1, 2}, "A1+1"));
        demand(sheet.fillDown({1, 2, 1, 1'000'000}));
        table.row("chain of 1,000,000 cells, order included", fullSeconds(workbook, 3) * 1e3, 60, "ms");
        if (sheet.value({1, 1'000'000}).number() != 1'000'000)
            std::printf("WRONG chain\n");
    }
    {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        std::vector<double> numbers(1'000'000);
        for (int row = 1; row <= 1'000'000; ++row)
            sheet.setNumber({1, row}, numbers[static_cast<std::size_t>(row) - 1] = 0.01 * row);
        demand(sheet.setFormula({2, 1}, "SUM(A1:A1000000)"));
        workbook.recalculate();
        const double engine = bestSeconds(
            9, [] {}, [&] { workbook.recalculate(); });
        volatile double result = 0;
        const double plain = bestSeconds(
            9, [] {},
            [&] {
                double sum = 0;
                for (const double number : numbers)
                    sum += number;
                result = sum;
            });
        std::printf("   (SUM %.5f s, plain loop %.5f s)\n", engine, plain);
        table.row("SUM over 1,000,000 numbers, times a plain loop", engine / plain, 2, "x");
    }
    for (const bool growing : {true, false}) {
        Workbook workbook;
        Sheet& sheet = workbook.sheet(1);
        for (int row = 1; row <= rows + 12; ++row)
            sheet.setNumber({2, row}, row % 97);
        demand(sheet.setFormula({3, 1}, growing ? "SUM(B$1:B1)" : "SUM(B1:B12)"));
        demand(sheet.fillDown({3, 1, 3, rows}));
        table.row(growing ? "100,000 running sums SUM(B$1:Bn)" : "100,000 sliding sums of 12",
                  fullSeconds(workbook, 3), 0.1, "s");
    }
}

void benchMemory(BenchTable& table)
{
    table.row("1,000,000 numbers, bytes a cell", bytesOf([](Workbook& workbook) {
                                                     for (int row = 1; row <= 1'000'000; ++row)
                                                         workbook.sheet(1).setNumber({1, row}, row * 1.5);
                                                     workbook.recalculate();
                                                 }) / 1e6,
              24, "B");
    table.row("1,000,000 filled-down formulas, bytes a cell",
              bytesOf([](Workbook& workbook) {
                  demand(workbook.sheet(1).setFormula({2, 1}, "A1*2+1"));
                  demand(workbook.sheet(1).fillDown({2, 1, 2, 1'000'000}));
                  workbook.recalculate();
              }) / 1e6,
              64, "B");
    table.row("1,000,000 sliding SUMs, bytes a cell",
              bytesOf([](Workbook& workbook) {
                  demand(workbook.sheet(1).setFormula({2, 1}, "SUM(A1:A12)"));
                  demand(workbook.sheet(1).fillDown({2, 1, 2, 1'000'000}));
                  workbook.recalculate();
              }) / 1e6,
              100, "B");
    table.row("16,384 cells on a diagonal", bytesOf([](Workbook& workbook) {
                                                for (int i = 1; i <= 16'384; ++i)
                                                    workbook.sheet(1).setNumber({i, i}, i);
                                            }) / (1 << 20),
              4, "MB");
}

} // namespace

int main()
{
    BenchTable table("engine");
    benchRecalculation(table);
    benchShapes(table);
    benchMemory(table);
    return table.finish();
}
