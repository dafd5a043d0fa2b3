#include "spreadsheet/engine/display_text.h"

#include "spreadsheet/engine/date_serial.h"
#include "spreadsheet/engine/number_text.h"
#include "spreadsheet/functions/number_format.h"

#include <cmath>
#include <cstdio>

namespace spreadsheet {

namespace {

std::string paddedNumber(int number, int width)
{
    std::string text = std::to_string(number);
    if (static_cast<int>(text.size()) < width)
        text.insert(0, static_cast<std::size_t>(width) - text.size(), '0');
    return text;
}

std::string dateText(double serial, bool from1904)
{
    constexpr double daysFrom1900To1904 = 1462;
    const auto day = dayOfSerial(from1904 && serial >= 0 ? serial + daysFrom1900To1904 : serial);
    if (!day)
        return generalNumberText(serial);
    return paddedNumber(day->year, 4) + "-" + paddedNumber(day->month, 2) + "-" + paddedNumber(day->day, 2);
}

std::string timeText(double serial)
{
    if (!(serial >= 0 && serial <= lastSerial))
        return generalNumberText(serial);
    const auto seconds = static_cast<int>(std::llround((serial - std::floor(serial)) * 86400.0)) % 86400;
    return paddedNumber(seconds / 3600, 2) + ":" + paddedNumber(seconds / 60 % 60, 2) + ":" +
           paddedNumber(seconds % 60, 2);
}

/// d.dd…E±xx with `places` digits after the point; all digits if places is negative.
std::string scientificText(DecimalDigits digits, int places)
{
    if (places >= 0)
        digits.roundToSignificant(places + 1);
    std::string mantissa = digits.digits.empty() ? "0" : digits.digits;
    const int exponent = digits.digits.empty() ? 0 : digits.exponent - 1;
    if (places > 0 && static_cast<int>(mantissa.size()) < places + 1)
        mantissa.append(static_cast<std::size_t>(places) + 1 - mantissa.size(), '0');
    if (mantissa.size() > 1)
        mantissa.insert(1, ".");
    return (digits.negative && !digits.digits.empty() ? "-" : "") + mantissa + (exponent < 0 ? "E-" : "E+") +
           paddedNumber(std::abs(exponent), 2);
}

/// The whole part of the digits, at least "0".
std::string wholePart(const DecimalDigits& digits)
{
    if (digits.digits.empty() || digits.exponent <= 0)
        return "0";
    std::string whole = digits.digits.substr(0, static_cast<std::size_t>(digits.exponent));
    whole.append(static_cast<std::size_t>(digits.exponent) - whole.size(), '0');
    return whole;
}

std::string fraction(const DecimalDigits& digits)
{
    if (digits.digits.empty())
        return {};
    if (digits.exponent <= 0)
        return std::string(static_cast<std::size_t>(-digits.exponent), '0') + digits.digits;
    if (digits.exponent >= static_cast<int>(digits.digits.size()))
        return {};
    return digits.digits.substr(static_cast<std::size_t>(digits.exponent));
}

std::string numberText(double number, const CellStyle& style, bool from1904)
{
    switch (style.type) {
    case CellType::date:
        return dateText(number, from1904);
    case CellType::time:
        return timeText(number);
    case CellType::currency: {
        const std::string text = fixedNumberText(number, 2, true);
        return text.starts_with('-') ? "-￥" + text.substr(1) : "￥" + text;
    }
    case CellType::number:
        return fixedNumberText(number, style.decimals);
    case CellType::percent: {
        // The point moves two places on the decimal digits: a product by 100 would bring its own error.
        DecimalDigits digits = decimalDigits(number);
        digits.exponent += 2;
        return fixedNumberText(numberOf(digits), 2) + "%";
    }
    case CellType::scientific:
        return scientificText(decimalDigits(number), 2);
    case CellType::edit:
    case CellType::staticText:
    case CellType::button:
    case CellType::dropDown:
    case CellType::checkBox:
        break;
    }
    return generalNumberText(number);
}

} // namespace

std::string fixedNumberText(double number, int decimals, bool grouped)
{
    DecimalDigits digits = decimalDigits(number);
    digits.roundTo(decimals);
    std::string text = wholePart(digits);
    if (grouped) {
        for (int place = static_cast<int>(text.size()) - 3; place > 0; place -= 3)
            text.insert(static_cast<std::size_t>(place), ",");
    }
    if (decimals > 0) {
        std::string places = fraction(digits);
        places.resize(static_cast<std::size_t>(decimals), '0');
        text += "." + places;
    }
    const bool shownNegative = digits.negative && !digits.digits.empty();
    return shownNegative ? "-" + text : text;
}

std::string generalNumberText(double number)
{
    constexpr int widest = 20; // "0." and what follows it
    DecimalDigits digits = decimalDigits(number);
    digits.roundToSignificant(15);
    if (digits.digits.empty())
        return "0";
    const int width = digits.exponent > 0 ? 0 : 2 - digits.exponent + static_cast<int>(digits.digits.size());
    if (digits.exponent > widest + 1 || width > widest)
        return scientificText(digits, -1);
    std::string text = wholePart(digits);
    const std::string places = fraction(digits);
    if (!places.empty())
        text += "." + places;
    return digits.negative ? "-" + text : text;
}

std::string displayText(const Value& value, const CellStyle& style, bool from1904)
{
    if (!style.numberFormat.empty() && !value.isEmpty() && !value.isError()) {
        if (auto text = formattedCell(value, style.numberFormat.view(), from1904))
            return std::move(*text);
    }
    return textByType(value, style, from1904);
}

std::string textByType(const Value& value, const CellStyle& style, bool from1904)
{
    switch (value.kind()) {
    case ValueKind::empty:
        return {};
    case ValueKind::error:
        return std::string(errorText(value.error()));
    case ValueKind::number:
        return numberText(value.number(), style, from1904);
    case ValueKind::boolean:
        return value.boolean() ? "TRUE" : "FALSE";
    case ValueKind::text:
        break;
    }
    return std::string(value.textView());
}

} // namespace spreadsheet
