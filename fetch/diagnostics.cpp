#include "fetch/diagnostics.h"

#include <algorithm>

namespace selfreport {

std::optional<CellDiagnostic> firstFailed(std::span<const CellDiagnostic> diagnostics)
{
    const auto found = std::ranges::find_if(diagnostics, &CellDiagnostic::hasFailed);
    return found == diagnostics.end() ? std::nullopt : std::optional(*found);
}

namespace {

/// The number of cells, each once, and what it means; "" if there are none.
template <typename Counts>
std::string cellsText(std::span<const CellDiagnostic> diagnostics, Counts&& counts, const char* meaning)
{
    int cells = 0;
    const CellDiagnostic* last = nullptr;
    for (const CellDiagnostic& diagnostic : diagnostics) {
        if (!counts(diagnostic))
            continue;
        cells += !last || last->place != diagnostic.place ? 1 : 0;
        last = &diagnostic;
    }
    return cells == 0 ? std::string() : std::to_string(cells) + meaning;
}

} // namespace

std::string failedFetchesText(std::span<const CellDiagnostic> diagnostics)
{
    return cellsText(
        diagnostics, [](const CellDiagnostic& each) { return each.hasFailed(); }, " 处取数失败，数字不可用");
}

std::string strictRefusalText(std::span<const CellDiagnostic> diagnostics)
{
    return cellsText(
        diagnostics, [](const CellDiagnostic& each) { return isRefusedByStrictRuns(each.state); },
        " 处未取到数据");
}

} // namespace selfreport
