// Calls one function after the other with what no report hands it; the bytes draw function and arguments.
#include "tests/spreadsheet/functions/HostileCalls.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>

using namespace spreadsheet;

namespace {

/// Each input leaves the cells as they were. Now and then they are filled anew, since a workbook keeps
/// the formulas that it has once had.
Workbook& filledWorkbook()
{
    constexpr int inputsEach = 20'000;
    static std::unique_ptr<Workbook> workbook;
    static int inputs = 0;
    if (inputs++ % inputsEach == 0) {
        workbook = std::make_unique<Workbook>();
        HostileCalls::fill(*workbook);
    }
    return *workbook;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t longest = 64; // a call needs fewer
    if (size < 2 || size > longest)
        return 0;
    std::size_t at = 0;
    const auto byte = [&]() -> std::size_t { return at < size ? data[at++] : 0; };
    const bool asArray = byte() % 2 == 1;
    const auto functions = allFunctions();
    const std::size_t high = byte();
    const FunctionDescriptor& function = *functions[(high * 256 + byte()) % functions.size()];
    HostileCalls hostile([&](std::size_t count) { return byte() % count; });

    Workbook& workbook = filledWorkbook();
    Sheet& sheet = workbook.sheet(1);
    const std::string call = hostile.call(function);
    const CellRange cells{2, 2, 4, 4};
    if (asArray ? sheet.setArrayFormula(cells, call) : sheet.setFormula({2, 2}, call))
        return 0;
    workbook.recalculate();
    const Value value = sheet.value({2, 2});
    if (value.isNumber() && !std::isfinite(value.number()))
        std::abort();
    sheet.clearContents(cells);
    return 0;
}
