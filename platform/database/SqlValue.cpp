#include "platform/database/SqlValue.h"

#include <cstdio>
#include <ctime>

namespace selfreport {

SqlDateTime localNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

std::string dateTimeText(const SqlDateTime& moment)
{
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", moment.year, moment.month, moment.day,
                  moment.hour, moment.minute, moment.second);
    return text;
}

} // namespace selfreport
