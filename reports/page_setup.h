#pragma once
#include <cstdint>
#include <string>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class Recordset;

/// The page set-up of a report's row.
struct StoredPageSetup {
    static constexpr double defaultMargin = 0.6;

    std::string header, footer; ///< code strings, placeholders unfilled
    double top = defaultMargin, bottom = defaultMargin, left = defaultMargin,
           right = defaultMargin; ///< inches
    std::int64_t direction = 1;   ///< 1: portrait; any other value: landscape

    friend bool operator==(const StoredPageSetup&, const StoredPageSetup&) = default;
};

/// Of the first row, each null as its default; the defaults if there is no row.
StoredPageSetup pageSetupOf(const Recordset& rows);

/// Gives every sheet the margins, the orientation, and header and footer with their placeholders filled from
/// the settings.
void applyPageSetup(spreadsheet::Workbook& workbook, const StoredPageSetup& setup);

} // namespace selfreport
