#include "spreadsheet/display/display_text.h"

#include "spreadsheet/display/number_format.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/decimal_text.h"

#include <algorithm>
#include <cmath>

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
        Decimal share = shownDecimal(number);
        share.exponent += 2;
        return fixedText(share, 2, false) + "%";
    }
    case CellType::scientific:
        return scientificText(shownDecimal(number), 2);
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
