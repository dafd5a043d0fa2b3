#include "spreadsheet/functions/dates/day_counts.h"
#include "spreadsheet/functions/function_families.h"
#include "spreadsheet/functions/plain_arguments.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// The days of an argument in ascending order, each once.
std::vector<int> holidaysArgument(Call& call, std::size_t argument)
{
    if (!call.given(argument))
        return {};
    std::vector<int> days = plainDays(call, argument);
    call.pay(4 * static_cast<double>(days.size())); // to put them in order
    std::ranges::sort(days);
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

/// 1 to 7: two days, from Saturday and Sunday on; 11 to 17: one day, from Sunday on.
std::optional<WeekendDays> numberedWeekend(int number)
{
    WeekendDays weekend;
    if (number >= 1 && number <= 7)
        weekend.set(static_cast<std::size_t>((number + 5) % 7)).set(static_cast<std::size_t>(number - 1));
    else if (number >= 11 && number <= 17)
        weekend.set(static_cast<std::size_t>(number - 11));
    else
        return std::nullopt;
    return weekend;
}

/// Seven digits from Monday on, 1 for a day off.
std::optional<WeekendDays> spelledWeekend(std::string_view text)
{
    if (text.size() != 7 || text.find_first_not_of("01") != text.npos)
        return std::nullopt;
    WeekendDays weekend;
    for (std::size_t i = 0; i < 7; ++i)
        weekend.set((i + 1) % 7, text[i] == '1');
    return weekend;
}

WeekendDays weekendArgument(Call& call, std::size_t argument)
{
    if (!call.given(argument))
        return saturdayAndSunday;
    const Value value = plainValue(call, argument);
    if (value.isText()) {
        const auto spelled = spelledWeekend(value.textView());
        if (!spelled)
            call.fail(CellError::value);
        return spelled.value_or(saturdayAndSunday);
    }
    const auto numbered = numberedWeekend(plainInteger(call, argument));
    if (!numbered)
        call.fail(CellError::num);
    return numbered.value_or(saturdayAndSunday);
}

template <bool choosesWeekend>
Operand workingDayCount(Call& call)
{
    const int start = plainDay(call, 0);
    const int end = plainDay(call, 1);
    const WeekendDays weekend = choosesWeekend ? weekendArgument(call, 2) : saturdayAndSunday;
    const std::vector<int> holidays = holidaysArgument(call, choosesWeekend ? 3 : 2);
    if (call.failed())
        return call.error();
    return static_cast<double>(workingDays(start, end, weekend, holidays));
}

template <bool choosesWeekend>
Operand workingDay(Call& call)
{
    const int start = plainDay(call, 0);
    const int days = plainInteger(call, 1);
    const WeekendDays weekend = choosesWeekend ? weekendArgument(call, 2) : saturdayAndSunday;
    const std::vector<int> holidays = holidaysArgument(call, choosesWeekend ? 3 : 2);
    if (call.failed())
        return call.error();
    if (weekend.all())
        return CellError::value;
    return dayResult(call, workingDayAfter(start, days, weekend, holidays));
}

constexpr auto workdayFamily = FunctionFamily::dateAndTime;

const FunctionDescriptor workdayTable[] = {
    {"NETWORKDAYS", 2, 3, "vvr", workdayFamily, "开始日期,结束日期,[假日]", "返回两个日期之间的工作日天数",
     workingDayCount<false>},
    {"NETWORKDAYS.INTL", 2, 4, "vvvr", workdayFamily, "开始日期,结束日期,[周末],[假日]",
     "返回两个日期之间的工作日天数，周末可自定义", workingDayCount<true>},
    {"WORKDAY", 2, 3, "vvr", workdayFamily, "开始日期,天数,[假日]", "返回若干个工作日之前或之后的日期",
     workingDay<false>},
    {"WORKDAY.INTL", 2, 4, "vvvr", workdayFamily, "开始日期,天数,[周末],[假日]",
     "返回若干个工作日之前或之后的日期，周末可自定义", workingDay<true>},
};

} // namespace

std::span<const FunctionDescriptor> workdayFunctions()
{
    return workdayTable;
}

} // namespace spreadsheet
