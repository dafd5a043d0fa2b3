#pragma once
#include "spreadsheet/values/Value.h"

#include <optional>
#include <string_view>

namespace spreadsheet {

// Coercion, one rule for operators and functions.

/// A value as a number: empty 0, truth values 1 and 0, a text that reads as a number, percentage, date
/// or time counts as it; any other text is #VALUE!.
Value toNumber(const Value& value);
/// The same; with `from1904` dates in texts come in the count of days from 1904, #VALUE! before its first
/// day.
Value toNumber(const Value& value, bool from1904);
/// A value as text: numbers in general form, TRUE and FALSE; errors stay errors.
Value toText(const Value& value);
/// A value as truth value: numbers other than 0, the texts "TRUE" and "FALSE".
Value toBoolean(const Value& value);

/// A text as a figure: plain or grouped digits, currency sign, brackets for minus, percentage; nothing if it
/// reads as none of them.
std::optional<double> figureOfText(std::string_view text);
/// A text as a number: a figure or a fraction, blanks around them or not; a date or time without.
std::optional<double> numberOfText(std::string_view text);

/// The number that a value is where ranges are summed: a number, or a text that counts as one.
std::optional<double> countedNumber(const Value& value);

/// Less than 0, 0 or more than 0, in the order numbers, texts (as compareTexts has them), FALSE, TRUE.
/// Numbers are equal but for noise in the last binary places. Empty equals 0, "" and FALSE. Not for errors.
int compareValues(const Value& a, const Value& b);

/// The same where lines are sorted: errors stand behind all values, alike among themselves, and empty cells
/// last, whichever way it goes.
int compareSorted(const Value& a, const Value& b, bool descends);

} // namespace spreadsheet
