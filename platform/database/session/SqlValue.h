#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>

namespace selfreport {

/// A date and time of the local clock, as the tables store it.
struct SqlDateTime {
    int year = 1900;
    int month = 1; ///< 1 to 12
    int day = 1;   ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int nanosecond = 0;
};

/// To the millisecond.
SqlDateTime localNow();

/// "2009-12-31 08:05:09", and behind it what there is of a fraction: "2009-12-31 08:05:09.123".
std::string dateTimeText(const SqlDateTime& moment);

/// A value bound to a "?" of a statement; monostate is null. Texts are UTF-8. Bytes are not copied: what the
/// span shows must outlive the call.
using SqlValue =
    std::variant<std::monostate, std::int64_t, double, std::string, SqlDateTime, std::span<const std::byte>>;

} // namespace selfreport
