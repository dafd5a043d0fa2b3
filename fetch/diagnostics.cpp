#include "fetch/diagnostics.h"

#include <algorithm>

namespace selfreport {

std::optional<CellDiagnostic> firstFailed(std::span<const CellDiagnostic> diagnostics)
{
    const auto found = std::ranges::find_if(diagnostics, &CellDiagnostic::hasFailed);
    return found == diagnostics.end() ? std::nullopt : std::optional(*found);
}

std::string failedFetchesText(std::span<const CellDiagnostic> diagnostics)
{
    int cells = 0;
    const CellDiagnostic* last = nullptr;
    for (const CellDiagnostic& diagnostic : diagnostics) {
        if (!diagnostic.hasFailed())
            continue;
        cells += !last || last->place != diagnostic.place ? 1 : 0;
        last = &diagnostic;
    }
    return cells == 0 ? std::string() : std::to_string(cells) + " 处取数失败，数字不可用";
}

} // namespace selfreport
