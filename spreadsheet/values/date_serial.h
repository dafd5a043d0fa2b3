#pragma once
#include <optional>

namespace spreadsheet {

/// A day of the calendar that spreadsheets count: serial 1 is 1900-01-01, and 1900 counts as a leap
/// year (serial 60 is the day 1900-02-29, which never was), as all common spreadsheets have it.
struct CalendarDay {
    int year = 1900;
    int month = 1; ///< 1 to 12
    int day = 1;   ///< 1 to 31
    friend bool operator==(const CalendarDay&, const CalendarDay&) = default;
};

inline constexpr int daysFrom1900To1904 = 1462; ///< between the counts that begin in these years
inline constexpr int lastSerial = 2'958'465;    ///< 9999-12-31

/// The day of a serial number from 0 (shown as 1900-01-00) to lastSerial; nothing outside.
std::optional<CalendarDay> dayOfSerial(double serial);

/// The serial of a day whose month and day may lie outside their ranges (month 13 is the next
/// January, day 0 the last of the month before); nothing if it falls outside 0 to lastSerial.
std::optional<int> serialOfDay(int year, int month, int day);

/// Days of a month, 1900-02 having 29.
int daysOfMonth(int year, int month);

} // namespace spreadsheet
