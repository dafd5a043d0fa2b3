#include "spreadsheet/values/decimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace spreadsheet {

// People check reports against what they see, so rounding works on the decimal that a number shows, not on
// the binary number behind it: 1.005 rounds to 1.01. Everything is done on whole coefficients, which no step
// can spoil, and goes back to the nearest double at the end.

namespace {

constexpr int shownDigits = 15;

/// 10^0 to the highest power that the type holds exactly.
template <typename Number, std::size_t count>
constexpr std::array<Number, count> powersOfTen()
{
    std::array<Number, count> powers{1};
    for (std::size_t i = 1; i < count; ++i)
        powers[i] = powers[i - 1] * 10;
    return powers;
}
constexpr auto wholePowers = powersOfTen<std::uint64_t, 20>();
constexpr auto exactPowers = powersOfTen<double, 23>();
constexpr std::uint64_t mostExact = std::uint64_t{1} << std::numeric_limits<double>::digits;

std::uint64_t wholePower(int exponent)
{
    return wholePowers[static_cast<std::size_t>(exponent)];
}

int digitCount(std::uint64_t number)
{
    return static_cast<int>(std::ranges::upper_bound(wholePowers, number) - wholePowers.begin());
}

double numberOfDigits(std::string text, int exponent)
{
    const std::int64_t whole = static_cast<std::int64_t>(text.size()) + exponent;
    text += 'e';
    text += std::to_string(exponent);
    double number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc())
        return number;
    return whole > 0 ? std::numeric_limits<double>::infinity() : 0;
}

/// "d.ddde±xx"
Decimal scientificDecimal(std::string_view text)
{
    Decimal result;
    const std::size_t mark = text.find('e');
    for (const char c : text.substr(0, mark)) {
        if (c != '.')
            result.coefficient = result.coefficient * 10 + static_cast<unsigned>(c - '0');
    }
    const std::size_t sign = text[mark + 1] == '+' ? 1 : 0; // from_chars takes none
    std::from_chars(text.data() + mark + 1 + sign, text.data() + text.size(), result.exponent);
    result.exponent -= std::max(static_cast<int>(mark) - 2, 0);
    return result;
}

/// A number that is nearest to a decimal of at most 15 digits shows that decimal: whole numbers and
/// amounts are found without writing their digits. Zero if it is none of these.
Decimal simpleDecimal(double size)
{
    constexpr double beyond = 1e15;
    if (size >= beyond)
        return {};
    const auto whole = static_cast<std::uint64_t>(size);
    if (static_cast<double>(whole) == size)
        return {whole, 0};
    for (const int places : {6, 2}) {
        const double unit = exactPowers[static_cast<std::size_t>(places)];
        const double scaled = size * unit + 0.5;
        if (scaled >= beyond)
            continue;
        const auto coefficient = static_cast<std::uint64_t>(scaled);
        if (static_cast<double>(coefficient) / unit == size)
            return {coefficient, -places};
    }
    return {};
}

/// The 15 digits of a size above 0. They come from the shortest digits that read as the number, which
/// are written faster; these round alike unless they lie just in the middle. Numbers too small for all
/// of a double's bits have fewer digits of their own than they show.
Decimal digitsOf(double size)
{
    std::array<char, 40> buffer;
    const auto decimal = [&](std::to_chars_result written) {
        return scientificDecimal({buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data())});
    };
    char* const end = buffer.data() + buffer.size();
    Decimal shortest = decimal(std::to_chars(buffer.data(), end, size, std::chars_format::scientific));
    const bool inMiddle =
        digitCount(shortest.coefficient) == shownDigits + 1 && shortest.coefficient % 10 == 5;
    if (inMiddle || size < std::numeric_limits<double>::min())
        return decimal(
            std::to_chars(buffer.data(), end, size, std::chars_format::scientific, shownDigits - 1));
    shortest.roundToSignificant(shownDigits);
    return shortest;
}

/// Adds to a number of so many decimal digits; the sum is not negative.
void addTo(std::string& digits, std::int64_t amount)
{
    for (auto digit = digits.rbegin(); amount != 0 && digit != digits.rend(); ++digit) {
        amount += *digit - '0';
        const std::int64_t rest = (amount % 10 + 10) % 10;
        *digit = static_cast<char>('0' + rest);
        amount = (amount - rest) / 10;
    }
    if (amount != 0)
        digits.insert(0, std::to_string(amount));
}

/// A step in units of the last digit of the finer one of a number and the step, and what remains of the
/// number behind the multiple below it. A step too large for that counts as none: the number is far
/// below its half.
struct Remainder {
    std::uint64_t step = 0;
    std::uint64_t rest = 0;
};

Remainder remainder(const Decimal& number, const Decimal& step)
{
    const int finer = number.exponent - step.exponent;
    if (finer < 0) {
        const int power = -finer;
        const bool fits = power < static_cast<int>(wholePowers.size()) &&
                          step.coefficient <= std::numeric_limits<std::uint64_t>::max() / wholePower(power);
        if (!fits)
            return {0, number.coefficient};
        const std::uint64_t units = step.coefficient * wholePower(power);
        return {units, number.coefficient % units};
    }
    std::uint64_t rest = number.coefficient % step.coefficient;
    for (int i = 0; i < finer && rest != 0; ++i)
        rest = rest * 10 % step.coefficient;
    return {step.coefficient, rest};
}

/// The multiple beside a number, sizes only.
double multipleOf(const Decimal& number, const Decimal& step, Rounding rounding)
{
    const auto [units, rest] = remainder(number, step);
    const bool up = rest != 0 && (rounding == Rounding::away ||
                                  (rounding == Rounding::half && units != 0 && rest >= units - rest));
    if (units == 0)
        return up ? Decimal{step.coefficient, step.exponent}.number() : 0;
    const int power = std::max(number.exponent - step.exponent, 0);
    const int exponent = std::min(number.exponent, step.exponent);
    constexpr int mostDigits = 18;
    if (digitCount(number.coefficient) + power > mostDigits) {
        std::string digits =
            std::to_string(number.coefficient) + std::string(static_cast<std::size_t>(power), '0');
        addTo(digits, (up ? static_cast<std::int64_t>(units) : 0) - static_cast<std::int64_t>(rest));
        return numberOfDigits(std::move(digits), exponent);
    }
    const std::uint64_t below = number.coefficient * wholePower(power) - rest;
    return Decimal{below + (up ? units : 0), exponent}.number();
}

} // namespace

void Decimal::roundTo(int places, Rounding rounding)
{
    const std::int64_t dropped = -std::int64_t{exponent} - places;
    if (dropped <= 0 || coefficient == 0)
        return;
    std::uint64_t kept = 0;
    bool up = rounding == Rounding::away;
    if (dropped < static_cast<std::int64_t>(wholePowers.size())) {
        const std::uint64_t unit = wholePower(static_cast<int>(dropped));
        const std::uint64_t rest = coefficient % unit;
        kept = coefficient / unit;
        up = rest != 0 && (up || (rounding == Rounding::half && rest >= unit - rest));
    }
    coefficient = kept + (up ? 1 : 0);
    exponent = -places;
}

void Decimal::roundToSignificant(int count)
{
    const int dropped = digitCount(coefficient) - count;
    if (dropped > 0)
        roundTo(-exponent - dropped);
}

std::string Decimal::digits() const
{
    std::string text = coefficient == 0 ? std::string() : std::to_string(coefficient);
    while (text.ends_with('0'))
        text.pop_back();
    return text;
}

std::string Decimal::whole() const
{
    std::string text = digits();
    text.resize(static_cast<std::size_t>(std::max(wholeDigits(), 0)), '0');
    return text;
}

std::string Decimal::fraction() const
{
    const std::string text = digits();
    const int before = wholeDigits();
    if (before < 0)
        return std::string(static_cast<std::size_t>(-before), '0') + text;
    return text.substr(std::min(static_cast<std::size_t>(before), text.size()));
}

int Decimal::wholeDigits() const
{
    return coefficient == 0 ? 0 : digitCount(coefficient) + exponent;
}

double Decimal::number() const
{
    if (coefficient == 0)
        return 0;
    constexpr int mostPower = static_cast<int>(exactPowers.size()) - 1;
    double size = 0;
    if (coefficient <= mostExact && std::abs(exponent) <= mostPower) { // one operation on exact numbers
        const double power = exactPowers[static_cast<std::size_t>(std::abs(exponent))];
        size = exponent < 0 ? static_cast<double>(coefficient) / power
                            : static_cast<double>(coefficient) * power;
    } else if (coefficient == 179769313486232 && exponent == 294) {
        size = std::numeric_limits<double>::max(); // whose 15 digits lie a bit above it
    } else {
        size = numberOfDigits(std::to_string(coefficient), exponent);
    }
    return negative ? -size : size;
}

Decimal shownDecimal(double number)
{
    const double size = std::fabs(number);
    Decimal result;
    if (size > 0 && std::isfinite(size)) {
        result = simpleDecimal(size);
        if (result.coefficient == 0)
            result = digitsOf(size);
    }
    result.negative = std::signbit(number);
    return result;
}

double roundDecimal(double number, int places, Rounding rounding)
{
    if (!std::isfinite(number))
        return number;
    Decimal decimal = shownDecimal(number);
    decimal.roundTo(places, rounding);
    return decimal.number();
}

double roundToMultiple(double number, double step, Rounding rounding)
{
    const Decimal decimal = shownDecimal(number), unit = shownDecimal(step);
    const double size = unit.coefficient == 0 ? 0 : multipleOf(decimal, unit, rounding);
    return decimal.negative && size != 0 ? -size : size;
}

} // namespace spreadsheet
