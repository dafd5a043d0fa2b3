#include "spreadsheet/engine/number_text.h"

#include "spreadsheet/engine/display_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace spreadsheet {

namespace {

void roundAt(DecimalDigits& number, int kept)
{
    if (kept >= static_cast<int>(number.digits.size()))
        return;
    if (kept < 0) {
        number.digits.clear();
        return;
    }
    const bool up = number.digits[static_cast<std::size_t>(kept)] >= '5';
    number.digits.resize(static_cast<std::size_t>(kept));
    if (up) {
        auto digit = number.digits.rbegin();
        while (digit != number.digits.rend() && *digit == '9')
            *digit++ = '0';
        if (digit != number.digits.rend()) {
            ++*digit;
        } else {
            number.digits.insert(number.digits.begin(), '1');
            ++number.exponent;
        }
    }
    while (!number.digits.empty() && number.digits.back() == '0')
        number.digits.pop_back();
}

} // namespace

void DecimalDigits::roundTo(int places)
{
    roundAt(*this, exponent + places);
}

void DecimalDigits::roundToSignificant(int count)
{
    roundAt(*this, count);
}

DecimalDigits decimalDigits(double number)
{
    DecimalDigits result;
    result.negative = std::signbit(number);
    const double size = std::fabs(number);
    if (size == 0 || !std::isfinite(size))
        return result;
    std::array<char, 64> buffer; // d.ddde±xx
    const auto end = size < 1e14 || size != std::floor(size)
                         ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), size,
                                         std::chars_format::scientific, 14)
                         : std::to_chars(buffer.data(), buffer.data() + buffer.size(), size,
                                         std::chars_format::scientific);
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
    const std::size_t mark = text.find('e');
    for (const char c : text.substr(0, mark)) {
        if (c != '.')
            result.digits += c;
    }
    while (!result.digits.empty() && result.digits.back() == '0')
        result.digits.pop_back();
    const char* exponent = text.data() + mark + 1;
    if (*exponent == '+')
        ++exponent;
    std::from_chars(exponent, text.data() + text.size(), result.exponent);
    ++result.exponent;
    return result;
}

double numberOf(const DecimalDigits& number)
{
    if (number.digits.empty())
        return 0;
    const std::string text = "0." + number.digits + "e" + std::to_string(number.exponent);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return number.negative ? -value : value;
}

double roundDecimal(double number, int places)
{
    if (!std::isfinite(number))
        return number;
    DecimalDigits digits = decimalDigits(number);
    const std::size_t before = digits.digits.size();
    const int kept = digits.exponent + places;
    if (kept >= static_cast<int>(before) && before < 15)
        return number; // nothing to cut, and the number keeps bits that its digits do not show
    digits.roundTo(places);
    return numberOf(digits);
}

std::string_view trimmedBlanks(std::string_view text)
{
    static constexpr std::string_view wide = "\u3000";
    for (;;) {
        if (text.starts_with(' '))
            text.remove_prefix(1);
        else if (text.starts_with(wide))
            text.remove_prefix(wide.size());
        else if (text.ends_with(' '))
            text.remove_suffix(1);
        else if (text.ends_with(wide))
            text.remove_suffix(wide.size());
        else
            return text;
    }
}

std::optional<double> parseNumber(std::string_view text)
{
    text = trimmedBlanks(text);
    if (text.starts_with('+'))
        text.remove_prefix(1);
    const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
    if (digits.empty() || !(digits.front() == '.' || (digits.front() >= '0' && digits.front() <= '9')))
        return std::nullopt; // from_chars would take "inf" and "nan"
    double number = 0;
    const auto [stop, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || stop != text.data() + text.size())
        return std::nullopt;
    return number;
}

} // namespace spreadsheet
