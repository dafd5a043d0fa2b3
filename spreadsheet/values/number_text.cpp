#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <charconv>

namespace spreadsheet {

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
    if (digits.empty() || !(digits.front() == '.' || ascii::isDigit(digits.front())))
        return std::nullopt; // from_chars would take "inf" and "nan"
    double number = 0;
    const auto [stop, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || stop != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::optional<double> numberOfGroupedText(std::string_view text)
{
    text = trimmedBlanks(text);
    if (text.find(',') == std::string_view::npos)
        return parseNumber(text);
    std::string plain;
    std::size_t group = 0; // digits since the last comma
    bool grouped = false;
    bool whole = true; // before the point
    for (const char c : text) {
        const bool digit = ascii::isDigit(c);
        if (c == ',') {
            if (!whole || group == 0 || group > 3 || (grouped && group != 3))
                return std::nullopt;
            grouped = true;
            group = 0;
            continue;
        }
        if (whole && !digit && c != '-' && c != '+') {
            if (grouped && group != 3)
                return std::nullopt;
            whole = false;
        }
        group += digit;
        plain += c;
    }
    if (whole && grouped && group != 3)
        return std::nullopt;
    return parseNumber(plain);
}

} // namespace spreadsheet
