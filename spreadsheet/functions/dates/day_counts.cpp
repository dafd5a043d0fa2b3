#include "spreadsheet/functions/dates/day_counts.h"

#include <algorithm>

namespace spreadsheet {

namespace {

bool isLeap(int year)
{
    return daysOfMonth(year, 2) == 29;
}

bool isLastOfFebruary(const CalendarDay& day)
{
    return day.month == 2 && day.day == daysOfMonth(day.year, 2);
}

int difference360(const CalendarDay& start, int startDay, const CalendarDay& end, int endDay)
{
    return (end.year - start.year) * 360 + (end.month - start.month) * 30 + endDay - startDay;
}

bool isWorkingDay(int serial, WeekendDays weekend, const std::vector<int>& holidays)
{
    return !weekend[static_cast<std::size_t>(weekdayOf(serial))] &&
           !std::ranges::binary_search(holidays, serial);
}

} // namespace

int days360(const CalendarDay& start, const CalendarDay& end, bool european)
{
    if (european)
        return difference360(start, std::min(start.day, 30), end, std::min(end.day, 30));
    const int startDay = isLastOfFebruary(start) ? 30 : std::min(start.day, 30);
    const int endDay = end.day == 31 && startDay == 30 ? 30 : end.day;
    return difference360(start, startDay, end, endDay);
}

int bondDays360(const CalendarDay& start, const CalendarDay& end, bool wholePeriod)
{
    int endDay = end.day;
    if (isLastOfFebruary(end) && (wholePeriod || isLastOfFebruary(start)))
        endDay = 30;
    if (endDay == 31 && (wholePeriod || start.day >= 30))
        endDay = 30;
    const int startDay = isLastOfFebruary(start) ? 30 : std::min(start.day, 30);
    return difference360(start, startDay, end, endDay);
}

double yearLength(const CalendarDay& start, const CalendarDay& end)
{
    if (start.year == end.year)
        return isLeap(start.year) ? 366 : 365;
    const bool withinAYear = end.year == start.year + 1 &&
                             (start.month > end.month || (start.month == end.month && start.day >= end.day));
    if (withinAYear) {
        const bool leapDay = (isLeap(start.year) && start.month <= 2) ||
                             (isLeap(end.year) && (end.month > 2 || isLastOfFebruary(end)));
        return leapDay ? 366 : 365;
    }
    double days = 0;
    for (int year = start.year; year <= end.year; ++year)
        days += isLeap(year) ? 366 : 365;
    return days / (end.year - start.year + 1);
}

double yearFraction(int start, int end, DayCountBasis basis)
{
    const CalendarDay first = *dayOfSerial(start);
    const CalendarDay last = *dayOfSerial(end);
    const double days = end - start;
    switch (basis) {
    case DayCountBasis::american360:
        return bondDays360(first, last) / 360.0;
    case DayCountBasis::actual:
        return days / yearLength(first, last);
    case DayCountBasis::actual360:
        return days / 360;
    case DayCountBasis::actual365:
        return days / 365;
    case DayCountBasis::european360:
        return days360(first, last, true) / 360.0;
    }
    return 0;
}

int wholeMonths(const CalendarDay& start, const CalendarDay& end)
{
    return (end.year - start.year) * 12 + end.month - start.month - (end.day < start.day);
}

int addMonths(const CalendarDay& day, int months)
{
    constexpr int mostMonths = 12 * 10000;
    if (months < -mostMonths || months > mostMonths)
        return -1;
    const int count = day.year * 12 + day.month - 1 + months;
    if (count < 1900 * 12 || count >= mostMonths)
        return -1;
    const int year = count / 12;
    const int month = count % 12 + 1;
    return serialOfDay(year, month, std::min(day.day, daysOfMonth(year, month))).value_or(-1);
}

int workingDays(int start, int end, WeekendDays weekend, const std::vector<int>& holidays)
{
    if (end < start)
        return -workingDays(end, start, weekend, holidays);
    const int weeks = (end - start + 1) / 7;
    int days = weeks * (7 - static_cast<int>(weekend.count()));
    for (int day = start + weeks * 7; day <= end; ++day)
        days += isWorkingDay(day, weekend, {});
    for (const int holiday : holidays)
        days -= holiday >= start && holiday <= end && isWorkingDay(holiday, weekend, {});
    return days;
}

int workingDayAfter(int start, int days, WeekendDays weekend, const std::vector<int>& holidays)
{
    const int step = days < 0 ? -1 : 1;
    const int ofWeek = 7 - static_cast<int>(weekend.count());
    int day = start;
    while (days != 0) {
        // All weeks but the last one at once; holidays leave days for another leap.
        const int weeks = ofWeek == 0 ? 0 : std::min(std::abs(days / ofWeek) - 1, lastSerial / 7);
        if (weeks > 0) {
            const int goal = day + step * 7 * weeks;
            if (goal < 0 || goal > lastSerial)
                return -1;
            days -= workingDays(day + step, goal, weekend, holidays);
            day = goal;
            continue;
        }
        day += step;
        if (day < 0 || day > lastSerial)
            return -1;
        if (isWorkingDay(day, weekend, holidays))
            days -= step;
    }
    return day;
}

} // namespace spreadsheet
