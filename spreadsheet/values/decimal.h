#pragma once
#include <cstdint>
#include <string>

namespace spreadsheet {

/// Where a number between two others goes.
enum class Rounding {
    toward, ///< toward zero
    half,   ///< to the nearer one, from the middle away from zero
    away,   ///< away from zero
};

/// The way to the next number below or above.
inline Rounding downward(double number)
{
    return number < 0 ? Rounding::away : Rounding::toward;
}
inline Rounding upward(double number)
{
    return number < 0 ? Rounding::toward : Rounding::away;
}

/// A decimal number: coefficient × 10^exponent with a sign.
struct Decimal {
    std::uint64_t coefficient = 0;
    int exponent = 0;
    bool negative = false;

    /// To `places` digits after the decimal point (negative: before it).
    void roundTo(int places, Rounding rounding = Rounding::half);
    /// Half away from zero to so many digits in all, at least 1.
    void roundToSignificant(int count);

    /// Without leading and trailing zeros; empty for zero.
    std::string digits() const;
    /// Those before the point, empty if there are none, and those behind it.
    std::string whole() const;
    std::string fraction() const;
    /// How many digits stand before the point; negative: how many zeros behind it before the first one.
    /// 0 for zero.
    int wholeDigits() const;
    /// The double that is nearest to it; infinite beyond the largest ones. Zero has no sign.
    double number() const;
};

/// The decimal that a number shows, which decides how it is displayed and rounded: the text of its 15
/// significant digits, so that 1.005 and 0.1 + 0.2 round as they read. Zero for what is not finite.
Decimal shownDecimal(double number);

/// The double nearest to what the shown decimal is rounded to, `places` after the point (negative: before).
/// Numbers that are not finite stay as they are.
double roundDecimal(double number, int places, Rounding rounding = Rounding::half);

/// The double nearest to the multiple of `step` (its sign does not count; of 0 it is 0) beside a number, both
/// taken as they show. Infinite beyond the largest doubles.
double roundToMultiple(double number, double step, Rounding rounding);

} // namespace spreadsheet
