// Times saving and loading of content files against their bounds.
#include "bench/bench_table.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/workbook/Workbook.h"

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

    Workbook formulas; // ten columns over one of amounts, so that their values hardly compress either
    for (int row = 1; row <= 100'000; ++row)
        formulas.sheet(1).setNumber({1, row}, amounts(random));
    for (int column = 2; column <= 11; ++column) {
        demand(formulas.sheet(1).setFormula({column, 1}, "$A1*1.37+" + std::to_string(column)));
        demand(formulas.sheet(1).fillDown({column, 1, column, 100'000}));
    }
    formulas.recalculate();
    bench(table, ".ss7 of 1,000,000 filled-down formulas", formulas);
    return table.finish();
}
