#pragma once
#include <array>
#include <cstdint>
#include <string_view>

namespace spreadsheet {

// The order of characters that cells and the suite's databases share: blank, symbols, digits, letters,
// Chinese characters by their GBK code (so the common ones by pinyin), the rest. Letter case and full or half
// width make no difference. It depends on nothing outside this program but the GBK table: no locale, no
// library's version.

/// The place of a character: equal for characters that make no difference, never 0.
std::uint32_t characterWeight(char32_t character);
inline constexpr std::uint32_t blankWeight = 1;

// The class of a character stands above its place within the class.
inline constexpr std::uint32_t symbolClass = 1U << 24;
inline constexpr std::uint32_t digitClass = 2U << 24;
inline constexpr std::uint32_t letterClass = 3U << 24;
inline constexpr std::uint32_t chineseClass = 4U << 24;
inline constexpr std::uint32_t brokenClass = 5U << 24; ///< bytes that are no UTF-8
inline constexpr std::uint32_t otherClass = 6U
                                            << 24; ///< U+10FFFF, the last of all, bounds ranges of patterns

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

/// Of the characters of ASCII.
inline constexpr auto asciiWeights = [] {
    std::array<std::uint32_t, 128> weights{};
    for (std::uint32_t at = 0; at < weights.size(); ++at)
        weights[at] = asciiWeight(at);
    return weights;
}();

/// Less than 0, 0 or more than 0, as texts in cells stand before or behind each other: by their characters,
/// with accents beside their letter. 0 exactly for texts that are folded alike.
int compareTexts(std::string_view left, std::string_view right);

} // namespace spreadsheet
