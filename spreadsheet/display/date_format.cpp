#include "spreadsheet/display/date_format.h"

#include "spreadsheet/display/number_format_code.h"
#include "spreadsheet/values/date_names.h"
#include "spreadsheet/values/date_serial.h"
#include "spreadsheet/values/numerals.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace spreadsheet {

namespace {

using Kind = FormatPart::Kind;

/// Day and time split up.
struct Moment {
    long long days = 0;
    CalendarDay day;
    long long seconds = 0; ///< of the day
    int fraction = 0;      ///< in units of the last shown digit behind the seconds
    bool twelveHours = false;
};

std::string padded(long long number, int width)
{
    std::string text = std::to_string(number);
    if (static_cast<int>(text.size()) < width)
        text.insert(0, static_cast<std::size_t>(width) - text.size(), '0');
    return text;
}

/// Seconds are rounded to the last shown digit; without seconds the time is cut off.
std::optional<Moment> momentOf(const FormatSection& section, double serial)
{
    int digits = 0;
    bool showsSeconds = false;
    Moment moment;
    for (const FormatPart& part : section.parts) {
        digits = part.kind == Kind::secondFraction ? std::min(part.count, 6) : digits;
        showsSeconds = showsSeconds || part.kind == Kind::second || part.kind == Kind::elapsedSeconds;
        moment.twelveHours = moment.twelveHours || part.kind == Kind::halfDay;
    }
    if (serial < 0 || serial >= lastSerial + 1.0)
        return std::nullopt;
    const auto units = static_cast<long long>(std::pow(10, digits));
    const double exact = serial * 86400 * static_cast<double>(units);
    constexpr double noise = 1e-4; // of a second: what a serial of 1900 to 9999 cannot hold
    const auto total = static_cast<long long>(showsSeconds ? std::round(exact) : std::floor(exact + noise));
    moment.fraction = static_cast<int>(total % units);
    moment.seconds = total / units % 86400;
    moment.days = total / units / 86400;
    const auto day = dayOfSerial(static_cast<double>(moment.days));
    if (!day)
        return std::nullopt;
    moment.day = *day;
    return moment;
}

constexpr std::array<std::string_view, 12> chineseMonths{"一月", "二月", "三月", "四月", "五月",   "六月",
                                                         "七月", "八月", "九月", "十月", "十一月", "十二月"};

std::string monthText(int month, int count, bool inChinese)
{
    if (count <= 2)
        return padded(month, count);
    const auto index = static_cast<std::size_t>(month - 1);
    if (inChinese)
        return count == 3 ? std::to_string(month) + "月" : std::string(chineseMonths[index]);
    const std::string_view name = englishMonths[index];
    return std::string(name.substr(0, count == 3 ? 3 : count == 5 ? 1 : name.size()));
}

std::string dayText(const Moment& moment, int count, bool inChinese)
{
    if (count <= 2)
        return padded(moment.day.day, count);
    const auto weekday = static_cast<std::size_t>((moment.days + 6) % 7);
    if (inChinese)
        return (count == 3 ? "周" : "星期") + std::string(chineseWeekdays[weekday]);
    const std::string_view name = englishWeekdays[weekday];
    return std::string(name.substr(0, count == 3 ? 3 : name.size()));
}

std::string halfDayText(const Moment& moment, std::string_view halves, bool inChinese)
{
    if (inChinese)
        halves = "上午/下午";
    const std::size_t slash = halves.find('/');
    return std::string(moment.seconds < 43200 ? halves.substr(0, slash) : halves.substr(slash + 1));
}

std::string partText(const FormatPart& part, const Moment& moment, bool inChinese)
{
    const long long hours = moment.seconds / 3600;
    const long long seconds = moment.days * 86400 + moment.seconds;
    const int width = std::min(part.count, 2);
    switch (part.kind) {
    case Kind::year:
        return part.count <= 2 ? padded(moment.day.year % 100, 2) : padded(moment.day.year, 4);
    case Kind::month:
        return monthText(moment.day.month, part.count, inChinese);
    case Kind::day:
        return dayText(moment, part.count, inChinese);
    case Kind::chineseWeekday:
        return (part.count > 3 ? "星期" : "") +
               std::string(chineseWeekdays[static_cast<std::size_t>((moment.days + 6) % 7)]);
    case Kind::hour:
        return padded(moment.twelveHours ? (hours + 11) % 12 + 1 : hours, width);
    case Kind::minute:
        return padded(moment.seconds / 60 % 60, width);
    case Kind::second:
        return padded(moment.seconds % 60, width);
    case Kind::secondFraction:
        return "." + padded(moment.fraction, std::min(part.count, 6));
    case Kind::halfDay:
        return halfDayText(moment, part.text, inChinese);
    case Kind::elapsedHours:
        return padded(seconds / 3600, part.count);
    case Kind::elapsedMinutes:
        return padded(seconds / 60, part.count);
    case Kind::elapsedSeconds:
        return padded(seconds, part.count);
    default:
        return part.text;
    }
}

} // namespace

std::optional<std::string> dateText(const FormatSection& section, double serial)
{
    const auto moment = momentOf(section, serial);
    if (!moment)
        return std::nullopt;
    std::string text;
    for (const FormatPart& part : section.parts) {
        const std::string plain = partText(part, *moment, section.inChinese);
        const bool digitwise =
            part.kind == Kind::year || plain.starts_with('0') || part.kind == Kind::literal;
        text +=
            digitwise ? numeralDigits(plain, section.numerals) : shortNumeralText(plain, section.numerals);
    }
    return text;
}

} // namespace spreadsheet
