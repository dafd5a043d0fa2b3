#pragma once
#include "text/ascii.h"

#include <array>
#include <optional>
#include <string_view>

namespace spreadsheet {

inline constexpr std::array<std::string_view, 12> englishMonths{
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

/// Sunday first.
inline constexpr std::array<std::string_view, 7> englishWeekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                                 "Thursday", "Friday", "Saturday"};

inline constexpr std::array<std::string_view, 7> chineseWeekdays{"日", "一", "二", "三", "四", "五", "六"};

/// 1 to 12 for the name of a month or its first three letters, of either case.
constexpr std::optional<int> monthOfName(std::string_view name)
{
    for (std::size_t month = 0; month < englishMonths.size(); ++month) {
        const std::string_view candidate = englishMonths[month];
        if (name.size() != 3 && name.size() != candidate.size())
            continue;
        if (ascii::equalFolded(name, candidate.substr(0, name.size())))
            return static_cast<int>(month) + 1;
    }
    return std::nullopt;
}

} // namespace spreadsheet
