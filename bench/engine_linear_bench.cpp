// Times what figures are made of: the linear forms of totals over many calls.
#include "bench/bench_table.h"
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/workbook/Workbook.h"

#include <string>

using namespace spreadsheet;

namespace {

constexpr int calls = 15'000;

/// @param before, behind  what stands around each call
void benchTotal(BenchTable& table, const char* what, const std::string& before, const std::string& behind,
                double bound)
{
    Workbook workbook;
    workbook.registerFunction("Acct", 6, [](FunctionCall& call) { call.setResult(12.5); });
    for (int row = 1; row <= calls; ++row)
        demand(workbook.sheet(1).setFormula({1, row}, before + "Acct(\"" + std::to_string(row) +
                                                          "\",\"2\",\"\",\"2025\",\"1\",\"12\")" + behind));
    demand(workbook.sheet(1).setFormula({2, 1}, "SUM(A1:A15000)"));
    workbook.recalculate();
    const CallAnswers answers = [](const CallPlace&, int) { return Value(12.5); };
    std::size_t terms = 0;
    const double seconds = bestSeconds(
        20, [] {},
        [&] {
            terms = linearForm(workbook.book(), {1, 2, 1}, answers).terms.size();
        });
    table.row(std::string(what) + ", " + std::to_string(terms) + " terms", seconds * 1e3, bound, "ms");
}

} // namespace

int main()
{
    BenchTable table("linear forms");
    benchTotal(table, "a total over 15,000 calls", "", "", 10);
    benchTotal(table, "a total over 15,000 rounded products of calls", "ROUND(", "*2,2)", 20);
    return table.finish();
}
