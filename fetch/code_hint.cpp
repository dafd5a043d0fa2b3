#include "fetch/code_hint.h"

#include "fetch/quoted_text.h"
#include "spreadsheet/workbook/typed_text.h"

#include <algorithm>
#include <string_view>

namespace selfreport {

namespace {

/// The first letter, digit or sign of full width, which takes three bytes; empty without one.
std::string_view fullWidthIn(std::string_view code)
{
    for (std::size_t at = code.find_first_of("\xEF\xE3"); at != code.npos;
         at = code.find_first_of("\xEF\xE3", at + 1))
        if (const std::string_view sign = code.substr(at, 3); spreadsheet::inPlainWidth(sign).size() == 1)
            return sign;
    return {};
}

bool isPlain(std::string_view code)
{
    return !code.empty() && std::ranges::all_of(code, [](char c) { return c > ' ' && c <= '~'; });
}

} // namespace

std::string codeHint(std::span<const std::string> codes)
{
    for (const std::string& code : codes)
        if (const std::string_view sign = fullWidthIn(code); !sign.empty())
            return "，" + quoted(sign) + "是全角字符，应为半角的" + quoted(spreadsheet::inPlainWidth(sign));
    const bool isBackwards =
        codes.size() > 1 && isPlain(codes[0]) && isPlain(codes[1]) && codes[0] > codes[1];
    return isBackwards ? "，区间的起点大于终点" : "";
}

} // namespace selfreport
