#include "spreadsheet/functions/Call.h"
#include "spreadsheet/functions/clock.h"
#include "spreadsheet/functions/day_counts.h"
#include "spreadsheet/functions/FunctionTable.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr int secondsOfDay = 86400;

/// The serial day of an argument without its time; #NUM! outside the calendar.
int dayArgument(Call& call, std::size_t argument)
{
    const double serial = std::floor(call.number(argument));
    if (serial >= 0 && serial <= lastSerial)
        return static_cast<int>(serial);
    call.fail(CellError::num);
    return 0;
}

Operand serialResult(int serial)
{
    return serial < 0 ? Operand(CellError::num) : Operand(static_cast<double>(serial));
}

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
    return serialResult(serialOfDay(year, month, day).value_or(-1));
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
    return dayPart ? std::floor(*serial) : *serial - std::floor(*serial);
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
    const int serial = dayArgument(call, 0);
    const int type = call.integer(1, 1);
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

Operand sameDayMonthsLater(Call& call)
{
    const int serial = dayArgument(call, 0);
    const int months = call.integer(1);
    return call.failed() ? call.error() : serialResult(addMonths(*dayOfSerial(serial), months));
}

Operand endOfMonth(Call& call)
{
    const int serial = dayArgument(call, 0);
    const int months = call.integer(1);
    if (call.failed())
        return call.error();
    CalendarDay day = *dayOfSerial(serial);
    day.day = 31; // cut down to the month's last day
    return serialResult(addMonths(day, months));
}

/// Days from the latest day before or at `end` that has the start's day (and month, for `yearly`).
int daysSinceAnniversary(const CalendarDay& start, const CalendarDay& end, int endSerial, bool yearly)
{
    if (yearly) {
        int year = end.year;
        if (end.month < start.month || (end.month == start.month && end.day < start.day))
            --year;
        return endSerial - *serialOfDay(year, start.month, start.day);
    }
    const int month = end.day < start.day ? end.month - 1 : end.month;
    return endSerial - *serialOfDay(end.year, month, start.day);
}

Operand dateDifference(Call& call)
{
    const int first = dayArgument(call, 0);
    const int last = dayArgument(call, 1);
    const std::string unit = foldedText(call.text(2));
    if (call.failed())
        return call.error();
    if (first > last)
        return CellError::num;
    const CalendarDay start = *dayOfSerial(first);
    const CalendarDay end = *dayOfSerial(last);
    const int months = wholeMonths(start, end);
    if (unit == "y")
        return static_cast<double>(months / 12);
    if (unit == "m")
        return static_cast<double>(months);
    if (unit == "ym")
        return static_cast<double>(months % 12);
    if (unit == "d")
        return static_cast<double>(last - first);
    if (unit == "md" || unit == "yd")
        return static_cast<double>(daysSinceAnniversary(start, end, last, unit == "yd"));
    return CellError::num;
}

Operand daysBetween(Call& call)
{
    const int end = dayArgument(call, 0);
    const int start = dayArgument(call, 1);
    return call.failed() ? call.error() : Operand(static_cast<double>(end - start));
}

Operand daysBetween360(Call& call)
{
    const int start = dayArgument(call, 0);
    const int end = dayArgument(call, 1);
    const bool european = call.logical(2, false);
    if (call.failed())
        return call.error();
    return static_cast<double>(days360(*dayOfSerial(start), *dayOfSerial(end), european));
}

/// The days of an argument in ascending order, each once.
std::vector<int> holidaysArgument(Call& call, std::size_t argument)
{
    std::vector<int> days;
    if (!call.given(argument))
        return days;
    call.eachValue(argument, [&](const Value& value) {
        const Value number = toNumber(value);
        if (number.isError())
            call.fail(number.error());
        else if (!value.isEmpty())
            days.push_back(static_cast<int>(std::clamp(number.number(), -1.0, lastSerial + 1.0)));
    });
    std::ranges::sort(days);
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

Operand workingDayCount(Call& call)
{
    const int start = dayArgument(call, 0);
    const int end = dayArgument(call, 1);
    const std::vector<int> holidays = holidaysArgument(call, 2);
    return call.failed() ? call.error() : Operand(static_cast<double>(workingDays(start, end, holidays)));
}

Operand workingDay(Call& call)
{
    const int start = dayArgument(call, 0);
    const int days = call.integer(1);
    const std::vector<int> holidays = holidaysArgument(call, 2);
    return call.failed() ? call.error() : serialResult(workingDayAfter(start, days, holidays));
}

Operand partOfYear(Call& call)
{
    const int start = dayArgument(call, 0);
    const int end = dayArgument(call, 1);
    const int basis = call.integer(2, 0);
    if (call.failed())
        return call.error();
    if (basis < 0 || basis > 4)
        return CellError::num;
    return yearFraction(std::min(start, end), std::max(start, end), static_cast<DayCountBasis>(basis));
}

constexpr auto family = FunctionFamily::dateAndTime;

const FunctionDescriptor table[] = {
    {"DATE", 3, 3, "vvv", family, "年,月,日", "返回由年月日组成的日期", date},
    {"TIME", 3, 3, "vvv", family, "时,分,秒", "返回由时分秒组成的时间", time},
    {"YEAR", 1, 1, "v", family, "日期", "返回日期的年份",
     ofDay<[](const CalendarDay& day) { return day.year; }>},
    {"MONTH", 1, 1, "v", family, "日期", "返回日期的月份（1到12）",
     ofDay<[](const CalendarDay& day) { return day.month; }>},
    {"DAY", 1, 1, "v", family, "日期", "返回日期在当月中的日数（1到31）",
     ofDay<[](const CalendarDay& day) { return day.day; }>},
    {"HOUR", 1, 1, "v", family, "时间", "返回时间的小时数（0到23）",
     ofTime<[](int seconds) { return seconds / 3600; }>},
    {"MINUTE", 1, 1, "v", family, "时间", "返回时间的分钟数（0到59）",
     ofTime<[](int seconds) { return seconds / 60 % 60; }>},
    {"SECOND", 1, 1, "v", family, "时间", "返回时间的秒数（0到59）",
     ofTime<[](int seconds) { return seconds % 60; }>},
    {"TODAY", 0, 0, "", family, "", "返回当前日期",
     [](Call&) -> Operand { return std::floor(presentSerial()); }, isVolatile},
    {"NOW", 0, 0, "", family, "", "返回当前日期和时间", [](Call&) -> Operand { return presentSerial(); },
     isVolatile},
    {"DATEVALUE", 1, 1, "v", family, "日期文本", "将表示日期的文本转换为日期", ofDateText<true>},
    {"TIMEVALUE", 1, 1, "v", family, "时间文本", "将表示时间的文本转换为时间", ofDateText<false>},
    {"WEEKDAY", 1, 2, "vv", family, "日期,[类型]", "返回日期是星期几", weekday},
    {"WEEKNUM", 1, 2, "vv", family, "日期,[类型]", "返回日期在一年中的周数", weekNumber},
    {"ISOWEEKNUM", 1, 1, "v", family, "日期", "返回日期在一年中的周数，每周从星期一开始，以星期四定年",
     isoWeekNumber},
    {"EDATE", 2, 2, "vv", family, "日期,月数", "返回若干月之前或之后的同一日", sameDayMonthsLater},
    {"EOMONTH", 2, 2, "vv", family, "日期,月数", "返回若干月之前或之后的月末日", endOfMonth},
    {"DATEDIF", 3, 3, "vvv", family, "开始日期,结束日期,单位", "返回两个日期之间的年数、月数或天数",
     dateDifference},
    {"DAYS", 2, 2, "vv", family, "结束日期,开始日期", "返回两个日期之间的天数", daysBetween},
    {"DAYS360", 2, 3, "vvv", family, "开始日期,结束日期,[欧洲方法]", "按一年360天返回两个日期之间的天数",
     daysBetween360},
    {"NETWORKDAYS", 2, 3, "vvr", family, "开始日期,结束日期,[假日]", "返回两个日期之间的工作日天数",
     workingDayCount},
    {"WORKDAY", 2, 3, "vvr", family, "开始日期,天数,[假日]", "返回若干个工作日之前或之后的日期", workingDay},
    {"YEARFRAC", 2, 3, "vvv", family, "开始日期,结束日期,[基准]", "返回两个日期之间的天数占一年的比例",
     partOfYear},
};

} // namespace

std::span<const FunctionDescriptor> dateFunctions()
{
    return table;
}

} // namespace spreadsheet
