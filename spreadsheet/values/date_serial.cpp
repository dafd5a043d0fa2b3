#include "spreadsheet/values/date_serial.h"

#include <cmath>

namespace spreadsheet {

namespace {

/// Days from 1970-01-01 of the proleptic Gregorian calendar.
long long civilDays(long long year, int month, int day)
{
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const long long yearOfEra = year - era * 400;
    const long long dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const long long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

CalendarDay civilDay(long long days)
{
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const long long dayOfEra = days - era * 146097;
    const long long yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long part = (5 * dayOfYear + 2) / 153;
    const int month = static_cast<int>(part < 10 ? part + 3 : part - 9);
    return {static_cast<int>(yearOfEra + era * 400 + (month <= 2)), month,
            static_cast<int>(dayOfYear - (153 * part + 2) / 5 + 1)};
}

const long long epoch = civilDays(1899, 12, 31); // serial 0, before the day that never was

} // namespace

std::optional<CalendarDay> dayOfSerial(double serial)
{
    if (!(serial >= 0 && serial < lastSerial + 1.0))
        return std::nullopt;
    const int day = static_cast<int>(std::floor(serial));
    if (day == 0)
        return CalendarDay{1900, 1, 0};
    if (day == 60)
        return CalendarDay{1900, 2, 29};
    return civilDay(epoch + day - (day > 60 ? 1 : 0));
}

std::optional<int> serialOfDay(int year, int month, int day)
{
    if (year < -10000 || year > 20000)
        return std::nullopt;
    long long months = static_cast<long long>(year) * 12 + month - 1;
    const long long normalYear = months >= 0 ? months / 12 : (months - 11) / 12;
    const int normalMonth = static_cast<int>(months - normalYear * 12) + 1;
    long long serial = civilDays(normalYear, normalMonth, 1) - epoch;
    if (serial > 59)
        ++serial;
    // Counted on from the month's first day, so that the day that never was takes its place.
    serial += day - 1;
    if (serial < 0 || serial > lastSerial)
        return std::nullopt;
    return static_cast<int>(serial);
}

int daysOfMonth(int year, int month)
{
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 || year == 1900;
    return month == 2 && leap ? 29 : days[month - 1];
}

} // namespace spreadsheet
