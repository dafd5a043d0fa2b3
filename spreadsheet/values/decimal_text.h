#pragma once
#include "spreadsheet/values/decimal.h"

#include <string>

namespace spreadsheet {

/// A number in at most 15 significant digits, as cells without a number type show it; with an exponent
/// from 1E+21 on and where a number below 1 would take more than 20 characters.
std::string generalNumberText(double number);

/// `decimals` (0 to 15) places after the point, rounded half away from zero on the decimal digits.
std::string fixedNumberText(double number, int decimals, bool grouped = false);

// The same for decimals.

/// `decimals` places after the point, filled up with zeros.
std::string fixedText(Decimal number, int decimals, bool grouped);
/// d.dd…E±xx with `places` digits after the point; all digits if places is negative.
std::string scientificText(Decimal number, int places);

} // namespace spreadsheet
