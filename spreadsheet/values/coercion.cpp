#include "spreadsheet/values/coercion.h"

#include "spreadsheet/values/cancellation.h"
#include "spreadsheet/values/chinese_order.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/date_text.h"
#include "spreadsheet/values/decimal_text.h"
#include "spreadsheet/values/folding.h"
#include "spreadsheet/values/number_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

// One rule for operators, conditions and functions: what counts as a number in one place must count in all.
// Figures go before fractions and dates, because most texts that are numbers at all are figures and dates are
// the slowest to read.

namespace {

/// Takes one of the currency signs off the front.
bool takeCurrencySign(std::string_view& text)
{
    static constexpr std::array<std::string_view, 4> signs{"$", "¥", "￥", "€"};
    for (const std::string_view sign : signs) {
        if (text.starts_with(sign)) {
            text = trimmedBlanks(text.substr(sign.size()));
            return true;
        }
    }
    return false;
}

/// "(12)", "-￥1,200.50", "12.5%": digits with what may stand around them.
std::optional<double> decoratedNumber(std::string_view text)
{
    double factor = 1;
    if (text.size() > 2 && text.starts_with('(') && text.ends_with(')')) {
        text = trimmedBlanks(text.substr(1, text.size() - 2));
        factor = -1;
        if (text.starts_with('-') || text.starts_with('+'))
            return std::nullopt;
    }
    if (text.ends_with('%')) {
        text = trimmedBlanks(text.substr(0, text.size() - 1));
        factor /= 100;
    } else if (text.starts_with('%')) {
        text.remove_prefix(1);
        factor /= 100;
    }
    const bool negative = text.starts_with('-');
    const std::string_view unsignedText = negative ? text.substr(1) : text;
    std::string_view digits = unsignedText;
    if (takeCurrencySign(digits)) {
        factor = negative ? -factor : factor;
        text = digits;
    }
    const auto number = numberOfGroupedText(text);
    if (!number)
        return std::nullopt;
    return factor == 0.01 ? *number / 100 : *number * factor;
}

/// "1 1/2": whole part, blank, numerator and denominator. A fraction alone reads as a date.
std::optional<double> mixedFraction(std::string_view text)
{
    const bool negative = text.starts_with('-');
    if (negative)
        text.remove_prefix(1);
    const std::size_t blank = text.find(' ');
    const std::size_t slash = text.find('/');
    if (blank == std::string_view::npos || slash == std::string_view::npos || slash < blank)
        return std::nullopt;
    const std::string_view parts[] = {text.substr(0, blank), trimmedBlanks(text.substr(blank, slash - blank)),
                                      text.substr(slash + 1)};
    double numbers[3] = {};
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isDigits = !parts[i].empty() && std::ranges::all_of(parts[i], ascii::isDigit);
        const auto number = isDigits ? parseNumber(parts[i]) : std::nullopt;
        if (!number)
            return std::nullopt;
        numbers[i] = *number;
    }
    if (numbers[2] == 0)
        return std::nullopt;
    const double size = numbers[0] + numbers[1] / numbers[2];
    return negative ? -size : size;
}

int rank(const Value& value)
{
    return value.isText() ? 1 : value.isBoolean() ? 2 : 0;
}

/// What an empty value counts as beside another one.
Value neutral(const Value& other)
{
    if (other.isText())
        return Value::text("");
    return other.isBoolean() ? Value::boolean(false) : Value(0.0);
}

} // namespace

std::optional<double> figureOfText(std::string_view text)
{
    text = trimmedBlanks(text);
    const auto plain = parseNumber(text);
    return plain || text.empty() ? plain : decoratedNumber(text);
}

std::optional<double> numberOfText(std::string_view text)
{
    const std::string_view trimmed = trimmedBlanks(text);
    if (const auto figure = figureOfText(trimmed))
        return figure;
    if (const auto fraction = mixedFraction(trimmed))
        return fraction;
    return trimmed.size() == text.size() ? parseDateTime(text) : std::nullopt;
}

Value toNumber(const Value& value)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return 0.0;
    case ValueKind::boolean:
        return value.boolean() ? 1.0 : 0.0;
    case ValueKind::text: {
        if (const auto counted = countedNumber(value))
            return *counted;
        const auto number = numberOfText(value.textView());
        return number ? Value(*number) : Value(CellError::value);
    }
    default:
        return value;
    }
}

Value toNumber(const Value& value, bool from1904)
{
    Value number = toNumber(value);
    const bool mayBeDate = from1904 && value.isText() && number.isNumber();
    if (!mayBeDate || number.number() < 1 || parseDateTime(value.textView()) != number.number())
        return number; // a time of day alone is the same in both counts
    const double serial = number.number() - daysFrom1900To1904;
    return serial < 0 ? Value(CellError::value) : Value(serial);
}

Value toText(const Value& value)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return Value::text("");
    case ValueKind::number:
        return Value::text(generalNumberText(value.number()));
    case ValueKind::boolean:
        return Value::text(value.boolean() ? "TRUE" : "FALSE");
    default:
        return value;
    }
}

Value toBoolean(const Value& value)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return Value::boolean(false);
    case ValueKind::number:
        return Value::boolean(value.number() != 0);
    case ValueKind::text: {
        const std::string folded = foldedText(value.textView());
        if (folded == "true" || folded == "false")
            return Value::boolean(folded == "true");
        if (const auto counted = countedNumber(value))
            return Value::boolean(*counted != 0);
        return CellError::value;
    }
    default:
        return value;
    }
}

std::optional<double> countedNumber(const Value& value)
{
    if (value.isNumber())
        return value.number();
    if (value.isText()) {
        const Text text = value.text();
        if (text.countsAsNumber())
            return text.number();
    }
    return std::nullopt;
}

int compareValues(const Value& a, const Value& b)
{
    if (a.isEmpty() && b.isEmpty())
        return 0;
    if (a.isEmpty())
        return compareValues(neutral(b), b);
    if (b.isEmpty())
        return compareValues(a, neutral(a));
    if (rank(a) != rank(b))
        return rank(a) - rank(b);
    if (a.isNumber())
        return sameNumber(a.number(), b.number()) ? 0 : a.number() < b.number() ? -1 : 1;
    if (a.isBoolean())
        return a.boolean() - b.boolean();
    return a.textView() == b.textView() ? 0 : compareTexts(a.textView(), b.textView());
}

int compareSorted(const Value& a, const Value& b, bool descends)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() - b.isEmpty();
    const int order = a.isError() || b.isError() ? a.isError() - b.isError() : compareValues(a, b);
    return descends ? -order : order;
}

} // namespace spreadsheet
