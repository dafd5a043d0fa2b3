#pragma once
#include <optional>
#include <string>

namespace spreadsheet {

struct FormatSection;

/// A serial number of day and time as a section of date parts shows it. Nothing for a negative number
/// and one beyond the calendar.
std::optional<std::string> dateText(const FormatSection& section, double serial);

} // namespace spreadsheet
