#pragma once
#include <cstdint>
#include <string>

namespace selfreport::tds {

struct Moment {
    std::int64_t days = 0;  ///< since 1900-01-01
    std::int64_t ticks = 0; ///< of the day, each a 300th of a second, as datetime counts
};

inline constexpr std::int64_t ticksPerSecond = 300;

/// Of "2009-12-31 08:05:09", "2009-12-31 08:05:09.123" or "2009-12-31"; other texts throw ProtocolError.
Moment momentOf(const std::string& text);
std::string momentText(const Moment& moment);

/// Days from 0001-01-01, where datetime2 counts from, to 1900-01-01.
inline constexpr std::int64_t daysBefore1900 = 693595;

} // namespace selfreport::tds
