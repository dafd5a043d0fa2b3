#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// A number's decimal digits: 0.d1d2d3… × 10^exponent. Zero has no digits.
struct DecimalDigits {
    std::string digits; ///< without leading and trailing zeros
    int exponent = 0;
    bool negative = false;

    /// Rounds half away from zero to `places` digits after the decimal point (negative: before it).
    void roundTo(int places);
    /// Rounds half away from zero to so many digits in all.
    void roundToSignificant(int count);
};

/// The digits that decide how a number shows and rounds: 15 significant ones, so that 1.005 and sums
/// such as 0.1 + 0.2 round as they read; whole numbers of 15 and more digits keep all of theirs.
DecimalDigits decimalDigits(double number);

/// The number that the digits name.
double numberOf(const DecimalDigits& digits);

/// Rounds half away from zero on the decimal digits, to `places` after the point (negative: before).
double roundDecimal(double number, int places);

/// Reads a whole text as a plain number: optional sign, digits, point, exponent; blanks around it
/// ignored. No locale. Nothing for an empty text or if anything else stands in it.
std::optional<double> parseNumber(std::string_view text);

/// A text in ordinary or full-width blanks trimmed from both ends.
std::string_view trimmedBlanks(std::string_view text);

} // namespace spreadsheet
