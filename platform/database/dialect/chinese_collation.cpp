#include "platform/database/dialect/chinese_collation.h"

#include "platform/database/dialect/code_page.h"

#include <algorithm>
#include <array>
#include <utf8proc.h>

namespace selfreport {

namespace {

// The class of a character stands above its place within the class.
constexpr std::uint32_t symbolClass = 1U << 24;
constexpr std::uint32_t digitClass = 2U << 24;
constexpr std::uint32_t letterClass = 3U << 24;
constexpr std::uint32_t chineseClass = 4U << 24;
constexpr std::uint32_t brokenClass = 5U << 24; // bytes that are no UTF-8
constexpr std::uint32_t otherClass = 6U << 24;  // U+10FFFF, the last of all, bounds the ranges of patterns
constexpr std::uint32_t endWeight = 0;

constexpr std::uint32_t asciiWeight(char32_t character)
{
    if (character == ' ')
        return blankWeight;
    if (character >= '0' && character <= '9')
        return digitClass | character;
    if (character >= 'A' && character <= 'Z')
        return letterClass | (character + ('a' - 'A'));
    if (character >= 'a' && character <= 'z')
        return letterClass | character;
    return symbolClass | character;
}

constexpr auto asciiWeights = [] {
    std::array<std::uint32_t, 128> weights{};
    for (std::uint32_t at = 0; at < weights.size(); ++at)
        weights[at] = asciiWeight(at);
    return weights;
}();

char32_t halfWidth(char32_t character)
{
    if (character == 0x3000)
        return ' ';
    if (character >= 0xFF01 && character <= 0xFF5E)
        return character - 0xFEE0;
    static constexpr std::array<char32_t, 7> signs{0xA2, 0xA3, 0xAC, 0xAF, 0xA6, 0xA5, 0x20A9};
    if (character >= 0xFFE0 && character <= 0xFFE6)
        return signs[character - 0xFFE0];
    if (character < 0xFF61 || character > 0xFFDC)
        return character;
    utf8proc_int32_t whole[4]; // half-width kana and jamo
    const auto length = utf8proc_decompose_char(
        static_cast<utf8proc_int32_t>(character), whole, 4,
        static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT), nullptr);
    return length == 1 ? static_cast<char32_t>(whole[0]) : character;
}

std::uint32_t chineseWeight(char32_t character)
{
    const std::uint32_t code = gbkCode(character);
    const std::uint32_t lead = code >> 8;
    const std::uint32_t trail = code & 0xFF;
    if (lead >= 0xB0 && lead <= 0xF7 && trail >= 0xA1)
        return chineseClass | code; // by pinyin, then by stroke: the order of the national set
    return chineseClass | (0x10000 + character);
}

std::uint32_t wideWeight(char32_t wide)
{
    const char32_t character = halfWidth(wide);
    if (character < 128)
        return asciiWeights[character];
    const auto lower = static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(character)));
    if (lower >= 0x3400 && lower < 0xA000)
        return chineseWeight(lower);
    switch (utf8proc_category(static_cast<utf8proc_int32_t>(lower))) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
        return (lower < 0x3400 ? letterClass : otherClass) | lower;
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_CO:
        return otherClass | lower;
    default:
        return symbolClass | lower;
    }
}

std::uint32_t beyondAscii(std::string_view text, std::size_t& at)
{
    utf8proc_int32_t character = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data() + at),
                                         static_cast<utf8proc_ssize_t>(text.size() - at), &character);
    if (length < 1)
        return brokenClass | static_cast<unsigned char>(text[at++]);
    at += static_cast<std::size_t>(length);
    return wideWeight(static_cast<char32_t>(character));
}

} // namespace

std::uint32_t nextWeight(std::string_view text, std::size_t& at)
{
    if (at >= text.size())
        return endWeight;
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 128) {
        ++at;
        return asciiWeights[byte];
    }
    return beyondAscii(text, at);
}

bool onlyBlanksFrom(std::string_view text, std::size_t at)
{
    while (at < text.size())
        if (nextWeight(text, at) != blankWeight)
            return false;
    return true;
}

int compareChinese(std::string_view left, std::string_view right)
{
    std::size_t atLeft = 0;
    std::size_t atRight = 0;
    for (;;) {
        const std::size_t leftBefore = atLeft;
        const std::size_t rightBefore = atRight;
        std::uint32_t ofLeft = nextWeight(left, atLeft);
        std::uint32_t ofRight = nextWeight(right, atRight);
        if (ofLeft == ofRight) {
            if (ofLeft == endWeight)
                return 0;
            continue;
        }
        // A blank differs from the end only if something follows it.
        if (ofLeft == blankWeight && onlyBlanksFrom(left, leftBefore))
            ofLeft = endWeight;
        if (ofRight == blankWeight && onlyBlanksFrom(right, rightBefore))
            ofRight = endWeight;
        if (ofLeft == ofRight)
            return 0;
        return ofLeft < ofRight ? -1 : 1;
    }
}

} // namespace selfreport
