#include "windows/printing/page_number.h"

#include "spreadsheet/workbook/typed_text.h"
#include "text/ascii.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace selfreport {

namespace {

std::optional<double> numberOf(std::string_view typed)
{
    const std::string plain = spreadsheet::inPlainWidth(typed);
    std::string_view text = ascii::trimmed(plain, " ");
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

} // namespace

bool isNumber(std::string_view text)
{
    return numberOf(text).has_value();
}

std::optional<std::int16_t> pageNumber(std::string_view text)
{
    const auto number = numberOf(text);
    if (!number)
        return std::nullopt;
    const double below = std::floor(*number);
    const double rest = *number - below;
    const double whole = below + (rest > 0.5 || (rest == 0.5 && std::fmod(below, 2) != 0) ? 1 : 0);
    if (whole < std::numeric_limits<std::int16_t>::min() || whole > std::numeric_limits<std::int16_t>::max())
        return std::nullopt;
    return static_cast<std::int16_t>(whole);
}

} // namespace selfreport
