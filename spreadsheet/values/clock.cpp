#include "spreadsheet/values/clock.h"

#include "spreadsheet/values/date_serial.h"

#include <chrono>
#include <ctime>

namespace spreadsheet {

double presentSerial()
{
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &seconds);
#else
    localtime_r(&seconds, &local);
#endif
    const auto fraction = std::chrono::duration<double>(now - system_clock::from_time_t(seconds)).count();
    const double day = serialOfDay(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday).value_or(0);
    return day + (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + fraction) / 86400;
}

} // namespace spreadsheet
