#pragma once
#include "spreadsheet/values/date_serial.h"

#include <bitset>
#include <vector>

namespace spreadsheet {

/// Days between two days of a year of twelve months of 30 days. In the European way a 31st is a 30th;
/// in the American way it is so at the end only behind a 30th or 31st, else it is the next 1st, and the
/// last of February counts as a 30th at the start.
int days360(const CalendarDay& start, const CalendarDay& end, bool european);

/// The same for bonds: the last of February counts as a 30th at the start, and at the end only behind
/// such a start. A 31st at the end is cut off only behind a 30th or 31st. In a whole coupon period both
/// count as a 30th at its end.
int bondDays360(const CalendarDay& start, const CalendarDay& end, bool wholePeriod = false);

/// Days of the year of two days that lie at most a year apart: 366 if a leap day lies between them or
/// in the one year that both share; else the mean of all years that are touched.
double yearLength(const CalendarDay& start, const CalendarDay& end);

/// How a part of a year is counted; the numbers are those of YEARFRAC.
enum class DayCountBasis { american360 = 0, actual = 1, actual360 = 2, actual365 = 3, european360 = 4 };

/// The part of a year between two serial days, `start` not after `end`.
double yearFraction(int start, int end, DayCountBasis basis);

/// Whole months from one day to another, which is not before it.
int wholeMonths(const CalendarDay& start, const CalendarDay& end);

/// The same day some months later (earlier if negative), or that month's last day if it has no such.
/// -1 outside the calendar.
int addMonths(const CalendarDay& day, int months);

/// 0 for Sunday to 6 for Saturday.
constexpr int weekdayOf(int serial)
{
    return (serial + 6) % 7;
}

/// Days off of a week, by weekdayOf.
using WeekendDays = std::bitset<7>;
inline constexpr WeekendDays saturdayAndSunday{0b1000001};

/// Days other than the weekend and holidays (ascending, each once), both ends counted; negative if the
/// end lies before the start.
int workingDays(int start, int end, WeekendDays weekend, const std::vector<int>& holidays);

/// The working day so many working days after (before) a day; -1 outside the calendar. Some day of the
/// week must not belong to the weekend.
int workingDayAfter(int start, int days, WeekendDays weekend, const std::vector<int>& holidays);

} // namespace spreadsheet
