#include "tests/tdsserver/moments.h"

#include "tests/tdsserver/bytes.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace selfreport::tds {

namespace {

using namespace std::chrono;
constexpr sys_days firstDay{year(1900) / 1 / 1};

/// Nearest ticks of what stands behind a text's point.
std::int64_t fractionTicks(const std::string& text)
{
    const auto point = text.find('.');
    double fraction = 0;
    if (point != std::string::npos)
        std::from_chars(text.data() + point, text.data() + text.size(), fraction);
    return std::llround(fraction * ticksPerSecond);
}

} // namespace

Moment momentOf(const std::string& text)
{
    int y = 0;
    unsigned month = 0;
    unsigned d = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    const int fields =
        std::sscanf(text.c_str(), "%d-%u-%u %d:%d:%d", &y, &month, &d, &hour, &minute, &second);
    const year_month_day date{year(y), std::chrono::month(month), day(d)};
    if ((fields != 3 && fields != 6) || !date.ok())
        throw ProtocolError("no moment: " + text);
    return {(sys_days(date) - firstDay).count(),
            ((hour * 60 + minute) * 60 + second) * ticksPerSecond + fractionTicks(text)};
}

std::string momentText(const Moment& moment)
{
    const year_month_day date{firstDay + days(moment.days)};
    const hh_mm_ss<seconds> time{seconds(moment.ticks / ticksPerSecond)};
    const double fraction = double(moment.ticks % ticksPerSecond) / ticksPerSecond;
    char text[80];
    const int size = std::snprintf(text, sizeof text, "%04d-%02u-%02u %02d:%02d:%02d", int(date.year()),
                                   unsigned(date.month()), unsigned(date.day()), int(time.hours().count()),
                                   int(time.minutes().count()), int(time.seconds().count()));
    if (fraction > 0)
        std::snprintf(text + size, sizeof text - std::size_t(size), ".%03d",
                      int(std::lround(fraction * 1000)));
    return text;
}

} // namespace selfreport::tds
