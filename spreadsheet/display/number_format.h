#pragma once
#include "spreadsheet/values/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A value as a number format code shows it: numbers, dates and times by up to four sections
/// (positive; negative; zero; text), conditions such as "[>100]", Chinese digits by "[DBNum1]" and
/// "[DBNum2]". Nothing if the code means nothing or a date lies outside the calendar.
/// A text that reads as a number is shown as that number. `from1904`: how days are counted.
std::optional<std::string> formattedText(const Value& value, std::string_view code, bool from1904 = false);

/// The same for a number, text or truth value of a cell, where a text is a text whatever it reads as.
std::optional<std::string> formattedCell(const Value& value, std::string_view code, bool from1904 = false);

} // namespace spreadsheet
