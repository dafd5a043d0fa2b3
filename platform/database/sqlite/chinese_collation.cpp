#include "platform/database/sqlite/chinese_collation.h"

#include "platform/database/code_page.h"

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
constexpr std::uint32_t blankWeight = 1;
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

/// Weight of the character at `at`, which moves behind it; endWeight at the end.
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

} // namespace

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

namespace {

/// Characters of a pattern with the weights that they compare by.
struct PatternReader {
    std::string_view text;
    std::size_t at = 0;

    bool atEnd() const { return at >= text.size(); }

    /// The wildcard character here if it is one of ASCII, else 0. Full-width signs are no wildcards.
    char peek() const { return static_cast<unsigned char>(text[at]) < 128 ? text[at] : '\0'; }

    std::uint32_t weight() { return nextWeight(text, at); }
};

} // namespace

LikePattern::LikePattern(std::string_view pattern, char32_t escape)
{
    PatternReader reader{pattern};
    while (!reader.atEnd()) {
        const char sign = reader.peek();
        if (escape != 0 && static_cast<char32_t>(sign) == escape) {
            reader.weight();
            if (!reader.atEnd())
                m_elements.push_back({Element::Kind::literal, reader.weight(), false, {}});
            continue;
        }
        if (sign == '%' || sign == '_') {
            m_elements.push_back({sign == '%' ? Element::Kind::many : Element::Kind::one, 0, false, {}});
            reader.weight();
            continue;
        }
        if (sign != '[') {
            m_elements.push_back({Element::Kind::literal, reader.weight(), false, {}});
            continue;
        }
        reader.weight();
        Element set{Element::Kind::set, 0, false, {}};
        set.negated = !reader.atEnd() && reader.peek() == '^';
        if (set.negated)
            reader.weight();
        while (!reader.atEnd() && reader.peek() != ']') {
            const std::uint32_t first = reader.weight();
            std::uint32_t last = first;
            const bool isRange =
                reader.at + 1 < pattern.size() && reader.peek() == '-' && pattern[reader.at + 1] != ']';
            if (isRange) {
                reader.weight();
                last = reader.weight();
            }
            set.ranges.push_back({first, last});
        }
        if (reader.atEnd())
            m_matchesNothing = true;
        reader.weight();
        m_elements.push_back(std::move(set));
    }
}

bool LikePattern::accepts(const Element& element, std::uint32_t weight)
{
    if (element.kind == Element::Kind::one)
        return true;
    if (element.kind == Element::Kind::literal)
        return element.weight == weight;
    const bool listed = std::ranges::any_of(
        element.ranges, [&](const Range& range) { return range.first <= weight && weight <= range.last; });
    return listed != element.negated;
}

bool LikePattern::matches(std::string_view text) const
{
    if (m_matchesNothing)
        return false;
    std::size_t at = 0;
    std::size_t element = 0;
    std::size_t lastMany = m_elements.size(); // the last "%" passed, and where the text stood then
    std::size_t retry = 0;
    for (;;) {
        if (element == m_elements.size() && onlyBlanksFrom(text, at))
            return true;
        if (element < m_elements.size() && m_elements[element].kind == Element::Kind::many) {
            lastMany = element++;
            retry = at;
            continue;
        }
        if (at < text.size() && element < m_elements.size() &&
            accepts(m_elements[element], nextWeight(text, at))) {
            ++element;
            continue;
        }
        if (lastMany == m_elements.size() || retry >= text.size())
            return false;
        nextWeight(text, retry); // let "%" take one character more
        at = retry;
        element = lastMany + 1;
    }
}

} // namespace selfreport
