#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace selfreport {

// Print area and repeated columns as users type them. Either letter case, full-width commas and colons and
// blanks are taken.

/// "A1:F20,A30:F40"; "" for none.
std::string areaText(const std::vector<spreadsheet::CellRange>& ranges);
/// Nothing if a part of the text names no cells.
std::optional<std::vector<spreadsheet::CellRange>> readArea(std::string_view text);

/// "A:B", "A" for one column, "" for none (0).
std::string columnsText(int first, int last);
/// {0, 0} for an empty text; nothing if the text names no columns.
std::optional<std::pair<int, int>> readColumns(std::string_view text);

} // namespace selfreport
