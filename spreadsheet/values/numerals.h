#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace spreadsheet {

/// The numbers are those of "[DBNum1]" to "[DBNum3]" in format codes.
enum class NumeralStyle : std::uint8_t {
    ordinary = 0,
    chinese = 1,       ///< 一二三
    chineseFormal = 2, ///< 壹贰叁, as amounts are written on vouchers
    fullWidth = 3,     ///< １２３
};

/// Every digit of a text in a style; everything else stays.
std::string numeralDigits(std::string_view text, NumeralStyle style);

/// A whole number's digits as they are read: "1204" is 一千二百〇四 or 壹仟贰佰零肆. A text that is no
/// row of at most 16 digits is taken digit by digit.
std::string numeralText(std::string_view digits, NumeralStyle style);

/// The same as days and months are read: "12" is 十二, not 一十二.
std::string shortNumeralText(std::string_view digits, NumeralStyle style);

/// An amount as it is written out on cheques and vouchers: 壹佰元零伍分, 壹元整, 负伍角整.
/// @param yuan  rounded to cents; below 10^15 in size
std::string writtenAmount(double yuan);

} // namespace spreadsheet
