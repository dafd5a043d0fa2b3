#include "spreadsheet/values/numerals.h"

#include "spreadsheet/values/decimal_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr std::array<std::array<std::string_view, 10>, 4> digitsOfStyles{
    {{"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"},
     {"〇", "一", "二", "三", "四", "五", "六", "七", "八", "九"},
     {"零", "壹", "贰", "叁", "肆", "伍", "陆", "柒", "捌", "玖"},
     {"０", "１", "２", "３", "４", "５", "６", "７", "８", "９"}}};
constexpr std::array<std::array<std::string_view, 4>, 2> places{
    {{"", "十", "百", "千"}, {"", "拾", "佰", "仟"}}};
constexpr std::array<std::string_view, 4> myriads{"", "万", "亿", "兆"};

} // namespace

std::string numeralDigits(std::string_view text, NumeralStyle style)
{
    const auto& digits = digitsOfStyles[static_cast<std::size_t>(style)];
    std::string result;
    for (const char c : text) {
        if (ascii::isDigit(c))
            result += digits[static_cast<std::size_t>(c - '0')];
        else
            result += c;
    }
    return result;
}

std::string numeralText(std::string_view digits, NumeralStyle style)
{
    const bool formal = style == NumeralStyle::chineseFormal;
    if (style == NumeralStyle::ordinary || digits.empty() || digits.size() > 16 ||
        !std::ranges::all_of(digits, ascii::isDigit))
        return numeralDigits(digits, style);
    std::string text;
    bool zero = false;  // zeros are waiting for a digit behind them
    bool group = false; // the present four digits hold anything but zeros
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const std::size_t place = digits.size() - 1 - i;
        if (digits[i] == '0') {
            zero = true;
        } else {
            if (zero && !text.empty())
                text += numeralDigits("0", style);
            zero = false;
            group = true;
            text += numeralDigits(digits.substr(i, 1), style);
            text += places[formal][place % 4];
        }
        if (place % 4 == 0 && group) {
            text += myriads[place / 4];
            group = false;
        }
    }
    return text.empty() ? numeralDigits("0", style) : text;
}

std::string shortNumeralText(std::string_view digits, NumeralStyle style)
{
    const std::string text = numeralText(digits, style);
    return style == NumeralStyle::chinese && text.starts_with("一十")
               ? text.substr(std::string_view("一").size())
               : text;
}

std::string writtenAmount(double yuan)
{
    const std::string text = fixedNumberText(std::fabs(yuan), 2);
    const std::string whole = text.substr(0, text.size() - 3);
    const char jiao = text[text.size() - 2];
    const char fen = text[text.size() - 1];
    const auto digit = [](char c) { return numeralDigits(std::string(1, c), NumeralStyle::chineseFormal); };
    std::string written;
    if (whole != "0" || (jiao == '0' && fen == '0'))
        written = numeralText(whole, NumeralStyle::chineseFormal) + "元";
    if (jiao != '0')
        written += digit(jiao) + "角";
    else if (fen != '0' && !written.empty())
        written += "零";
    written += fen != '0' ? digit(fen) + "分" : "整";
    const bool isZero = text.find_first_of("123456789") == text.npos;
    return yuan < 0 && !isZero ? "负" + written : written;
}

} // namespace spreadsheet
