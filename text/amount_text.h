#pragma once
#include <array>
#include <charconv>
#include <string>

namespace selfreport {

/// An amount with two decimals as programs and people read it, without grouping: "-1234.50".
inline std::string amountText(double amount)
{
    std::array<char, 400> digits{}; // the greatest number has 309 before its point
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), amount, std::chars_format::fixed, 2).ptr;
    return {digits.data(), end};
}

} // namespace selfreport
