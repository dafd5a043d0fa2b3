#include "platform/database/session/SqlValue.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace selfreport {

SqlDateTime localNow()
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const auto second = floor<seconds>(now);
    const std::time_t time = system_clock::to_time_t(second);
    std::tm parts{};
    localtime_r(&time, &parts);
    const nanoseconds fraction = floor<milliseconds>(now - second);
    return {parts.tm_year + 1900,
            parts.tm_mon + 1,
            parts.tm_mday,
            parts.tm_hour,
            parts.tm_min,
            parts.tm_sec,
            static_cast<int>(fraction.count())};
}

std::string dateTimeText(const SqlDateTime& moment)
{
    char text[100];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%09d", moment.year, moment.month,
                  moment.day, moment.hour, moment.minute, moment.second, moment.nanosecond);
    std::string shortest = text;
    shortest.erase(shortest.find_last_not_of('0') + 1);
    if (shortest.ends_with('.'))
        shortest.pop_back();
    return shortest;
}

} // namespace selfreport
