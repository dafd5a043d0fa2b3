#include "spreadsheet/functions/dates/day_counts.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"
#include "spreadsheet/values/folding.h"

#include <algorithm>

namespace spreadsheet {

namespace {

Operand sameDayMonthsLater(Call& call)
{
    const int serial = plainDay(call, 0);
    const int months = plainInteger(call, 1);
    return call.failed() ? call.error() : dayResult(call, addMonths(*dayOfSerial(serial), months));
}

Operand endOfMonth(Call& call)
{
    const int serial = plainDay(call, 0);
    const int months = plainInteger(call, 1);
    if (call.failed())
        return call.error();
    CalendarDay day = *dayOfSerial(serial);
    day.day = 31; // cut down to the month's last day
    return dayResult(call, addMonths(day, months));
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

Operand partOfYear(Call& call)
{
    const int start = plainDay(call, 0);
    const int end = plainDay(call, 1);
    const int basis = plainInteger(call, 2, 0);
    if (call.failed())
        return call.error();
    if (basis < 0 || basis > 4)
        return CellError::num;
    return yearFraction(std::min(start, end), std::max(start, end), static_cast<DayCountBasis>(basis));
}

constexpr auto dateSpanFamily = FunctionFamily::dateAndTime;

const FunctionDescriptor dateSpanTable[] = {
    {"EDATE", 2, 2, "vv", dateSpanFamily, "日期,月数", "返回若干月之前或之后的同一日", sameDayMonthsLater},
    {"EOMONTH", 2, 2, "vv", dateSpanFamily, "日期,月数", "返回若干月之前或之后的月末日", endOfMonth},
    {"DATEDIF", 3, 3, "vvv", dateSpanFamily, "开始日期,结束日期,单位", "返回两个日期之间的年数、月数或天数",
     dateDifference},
    {"DAYS", 2, 2, "vv", dateSpanFamily, "结束日期,开始日期", "返回两个日期之间的天数", daysBetween},
    {"DAYS360", 2, 3, "vvv", dateSpanFamily, "开始日期,结束日期,[欧洲方法]",
     "按一年360天返回两个日期之间的天数", daysBetween360},
    {"YEARFRAC", 2, 3, "vvv", dateSpanFamily, "开始日期,结束日期,[基准]",
     "返回两个日期之间的天数占一年的比例", partOfYear},
};

} // namespace

std::span<const FunctionDescriptor> dateSpanFunctions()
{
    return dateSpanTable;
}

} // namespace spreadsheet
