#pragma once
#include "spreadsheet/engine/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A value as a number format code shows it: numbers, dates and times by up to four sections
/// (positive; negative; zero; text), conditions such as "[>100]", Chinese digits by "[DBNum1]" and
/// "[DBNum2]". Nothing if the code means nothing or a date lies outside the calendar.
std::optional<std::string> formattedText(const Value& value, std::string_view code);

} // namespace spreadsheet
