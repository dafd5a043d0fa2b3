#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/dates/day_counts.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/clock.h"
#include "spreadsheet/values/date_text.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr int secondsOfDay = 86400;

Operand date(Call& call)
{
    int year = call.integer(0);
    const int month = call.integer(1);
    const int day = call.integer(2);
    if (call.failed())
        return call.error();
    if (year < 0 || year > 9999)
        return CellError::num;
    if (year < 1900)
        year += 1900;
    constexpr int most = 1'000'000; // beyond it every date leaves the calendar
    if (std::abs(month) > most || std::abs(day) > 4 * most)
        return CellError::num;
    return dayResult(call, serialOfDay(year, month, day).value_or(-1));
}

Operand time(Call& call)
{
    const double hours = std::trunc(call.number(0));
    const double minutes = std::trunc(call.number(1));
    const double seconds = std::trunc(call.number(2));
    if (call.failed())
        return call.error();
    const double total = hours * 3600 + minutes * 60 + seconds;
    if (total < 0 || std::max({hours, minutes, seconds}) > 32767)
        return CellError::num;
    return std::fmod(total, secondsOfDay) / secondsOfDay;
}

/// A part of the day that an argument names.
template <auto part>
Operand ofDay(Call& call)
{
    const int serial = dayArgument(call, 0);
    return call.failed() ? call.error() : Operand(static_cast<double>(part(*dayOfSerial(serial))));
}

/// A part of the time, in seconds of the day, rounded to a second.
template <auto part>
Operand ofTime(Call& call)
{
    const double serial = call.number(0);
    if (call.failed())
        return call.error();
    if (serial < 0 || serial >= lastSerial + 1.0)
        return CellError::num;
    const auto seconds = static_cast<int>(std::round((serial - std::floor(serial)) * secondsOfDay));
    return static_cast<double>(part(seconds % secondsOfDay));
}

/// DATEVALUE and TIMEVALUE.
template <bool dayPart>
Operand ofDateText(Call& call)
{
    const Value value = call.value(0);
    if (value.isError())
        return value;
    const auto serial = value.isText() ? parseDateTime(value.textView()) : std::nullopt;
    if (!serial)
        return CellError::value;
    const double day = std::floor(*serial);
    return dayPart ? dayResult(call, static_cast<int>(day)) : Operand(*serial - day);
}

/// The day as Chinese clerks write it, the year with two digits: 11年03月05日.
Operand dateString(Call& call)
{
    const CalendarDay day = *dayOfSerial(dayArgument(call, 0));
    if (call.failed())
        return call.error();
    const auto twoDigits = [](int number) { return std::to_string(100 + number % 100).substr(1); };
    return Value::text(twoDigits(day.year) + "年" + twoDigits(day.month) + "月" + twoDigits(day.day) + "日");
}

Operand weekday(Call& call)
{
    const int serial = dayArgument(call, 0);
    const int type = call.integer(1, 1);
    if (call.failed())
        return call.error();
    const int day = weekdayOf(serial);
    if (type == 1 || type == 2)
        return static_cast<double>((day + 8 - type) % 7 + 1);
    if (type == 3)
        return static_cast<double>((day + 6) % 7);
    if (type < 11 || type > 17)
        return CellError::num;
    return static_cast<double>((day + 17 - type) % 7 + 1); // 11 begins on Monday, 17 on Sunday
}

/// Weeks that begin on Monday and belong to the year of their Thursday.
int isoWeek(int serial)
{
    const int thursday = serial - (weekdayOf(serial) + 6) % 7 + 3;
    if (thursday < 1)
        return 52; // the days before the first Monday belong to 1899
    const CalendarDay day = *dayOfSerial(thursday);
    return (thursday - *serialOfDay(day.year, 1, 1)) / 7 + 1;
}

Operand weekNumber(Call& call)
{
    const int serial = plainDay(call, 0);
    const int type = plainInteger(call, 1, 1);
    if (call.failed())
        return call.error();
    if (type == 21)
        return static_cast<double>(isoWeek(serial));
    if (!(type == 1 || type == 2 || (type >= 11 && type <= 17)))
        return CellError::num;
    const int firstWeekday = type == 1 ? 0 : type == 2 ? 1 : (type - 10) % 7;
    const int newYear = *serialOfDay(dayOfSerial(serial)->year, 1, 1);
    const int before = (weekdayOf(newYear) - firstWeekday + 7) % 7; // days of week 1 in the old year
    return static_cast<double>((serial - newYear + before) / 7 + 1);
}

Operand isoWeekNumber(Call& call)
{
    const int serial = dayArgument(call, 0);
    return call.failed() ? call.error() : Operand(static_cast<double>(isoWeek(serial)));
}

constexpr auto dateFamily = FunctionFamily::dateAndTime;

const FunctionDescriptor dateTable[] = {
    {"DATE", 3, 3, "vvv", dateFamily, "年,月,日", "返回由年月日组成的日期", date},
    {"TIME", 3, 3, "vvv", dateFamily, "时,分,秒", "返回由时分秒组成的时间", time},
    {"YEAR", 1, 1, "v", dateFamily, "日期", "返回日期的年份",
     ofDay<[](const CalendarDay& day) { return day.year; }>},
    {"MONTH", 1, 1, "v", dateFamily, "日期", "返回日期的月份（1到12）",
     ofDay<[](const CalendarDay& day) { return day.month; }>},
    {"DAY", 1, 1, "v", dateFamily, "日期", "返回日期在当月中的日数（1到31）",
     ofDay<[](const CalendarDay& day) { return day.day; }>},
    {"HOUR", 1, 1, "v", dateFamily, "时间", "返回时间的小时数（0到23）",
     ofTime<[](int seconds) { return seconds / 3600; }>},
    {"MINUTE", 1, 1, "v", dateFamily, "时间", "返回时间的分钟数（0到59）",
     ofTime<[](int seconds) { return seconds / 60 % 60; }>},
    {"SECOND", 1, 1, "v", dateFamily, "时间", "返回时间的秒数（0到59）",
     ofTime<[](int seconds) { return seconds % 60; }>},
    {"TODAY", 0, 0, "", dateFamily, "", "返回当前日期",
     [](Call& call) -> Operand { return std::floor(presentSerial()) - serialShift(call); }, isVolatile},
    {"NOW", 0, 0, "", dateFamily, "", "返回当前日期和时间",
     [](Call& call) -> Operand { return presentSerial() - serialShift(call); }, isVolatile},
    {"DATEVALUE", 1, 1, "v", dateFamily, "日期文本", "将表示日期的文本转换为日期", ofDateText<true>},
    {"TIMEVALUE", 1, 1, "v", dateFamily, "时间文本", "将表示时间的文本转换为时间", ofDateText<false>},
    {"DATESTRING", 1, 1, "v", dateFamily, "日期", "将日期转换为中文日期文本", dateString},
    {"WEEKDAY", 1, 2, "vv", dateFamily, "日期,[类型]", "返回日期是星期几", weekday},
    {"WEEKNUM", 1, 2, "vv", dateFamily, "日期,[类型]", "返回日期在一年中的周数", weekNumber},
    {"ISOWEEKNUM", 1, 1, "v", dateFamily, "日期", "返回日期在一年中的周数，每周从星期一开始，以星期四定年",
     isoWeekNumber},
};

} // namespace

std::span<const FunctionDescriptor> dateFunctions()
{
    return dateTable;
}

} // namespace spreadsheet
