#pragma once
#include <optional>
#include <string_view>

namespace spreadsheet {

/// A number of day and time that a text names ("2026-12-31", "2026/12/31 8:30", "12/31/2026", "26-12-31",
/// "31-Dec-2026", "12:30:15", "2026年12月31日"); nothing if it names none. Two digits of a year count from
/// 1930 to 2029; of three short numbers the first is the month, or else the year.
std::optional<double> parseDateTime(std::string_view text);

} // namespace spreadsheet
