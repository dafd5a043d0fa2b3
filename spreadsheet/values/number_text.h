#pragma once
#include <optional>
#include <string_view>

namespace spreadsheet {

/// Reads a whole text as a plain number: optional sign, digits, point, exponent; blanks around it
/// ignored. No locale. Nothing for an empty text or if anything else stands in it.
std::optional<double> parseNumber(std::string_view text);

/// A text that wholly reads as a number, with or without grouping commas ("-1,234.50"), as that number.
std::optional<double> numberOfGroupedText(std::string_view text);

/// A text in ordinary or full-width blanks trimmed from both ends.
std::string_view trimmedBlanks(std::string_view text);

} // namespace spreadsheet
