#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A value as a number format code shows it: numbers, dates and times by up to four sections
/// (positive; negative; zero; text), conditions such as "[>100]", Chinese digits by "[DBNum1]" and
/// "[DBNum2]", amounts in words by "[人民币大写]", in tens of thousands by "[万元]". Nothing if the code
/// means nothing or a date lies outside the calendar. A text that reads as a number is shown as that number.
/// `from1904`: how days are counted.
std::optional<std::string> formattedText(const Value& value, std::string_view code, bool from1904 = false);

/// The same for a number, text or truth value of a cell, where a text is a text unless it counts as a number,
/// and a number of which only zeros are shown is a zero.
std::optional<std::string> formattedCell(const Value& value, std::string_view code, bool from1904 = false);

/// The colour that a code gives to a number ("#,##0;[Red]-#,##0"); nothing if it gives none, and to whatever
/// is no number.
std::optional<Colour> formatColour(const Value& value, std::string_view code);

} // namespace spreadsheet
