// Times saving and loading of content files against their bounds.
#include "bench/bench_table.h"
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/content.h"

#include <random>

using namespace spreadsheet;

namespace {

void bench(BenchTable& table, const std::string& what, const Workbook& workbook)
{
    std::vector<std::byte> bytes;
    table.row(what + ": save",
              bestSeconds(
                  5, [] {}, [&] { bytes = saveContent(workbook); }),
              0.15, "s");
    table.row(what + ": load",
              bestSeconds(
                  5, [] {},
                  [&] {
                      Workbook loaded;
                      loadContent(loaded, bytes);
                  }),
              0.1, "s");
    std::printf("   (%zu bytes)\n", bytes.size());
}

} // namespace

int main()
{
    BenchTable table("content files");
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> amounts(-1e6, 1e6);
    Workbook numbers;
    for (int row = 1; row <= 1'000'000; ++row)
        numbers.sheet(1).setNumber({1, row}, amounts(random));
    bench(table, ".ss7 of 1,000,000 numbers", numbers);

    Workbook formulas;
    formulas.sheet(1).setFormula({2, 1}, "A1*2+1");
    formulas.sheet(1).fillDown({2, 1, 2, 1'000'000});
    formulas.recalculate();
    bench(table, ".ss7 of 1,000,000 filled-down formulas", formulas);
    return table.finish();
}
