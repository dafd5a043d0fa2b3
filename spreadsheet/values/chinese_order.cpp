#include "spreadsheet/values/chinese_order.h"

#include "spreadsheet/values/characters.h"
#include "spreadsheet/values/folding.h"

#include <bit>
#include <iconv.h>
#include <memory>
#include <utf8proc.h>

namespace spreadsheet {

namespace {

/// Codes of two bytes by character of the basic plane, for example 0xB0A1 for U+554A; 0 where there is none.
using GbkTable = std::array<std::uint16_t, 0x10000>;

std::unique_ptr<const GbkTable> readGbkTable()
{
    auto codes = std::make_unique<GbkTable>();
    const iconv_t converter = iconv_open("GB18030", "UTF-32LE");
    if (converter == std::bit_cast<iconv_t>(std::intptr_t{-1}))
        return codes;
    for (char32_t at = 0x80; at < codes->size(); ++at) {
        if (at >= 0xD800 && at < 0xE000)
            continue; // surrogates are no characters
        char bytes[] = {static_cast<char>(at & 0xFF), static_cast<char>(at >> 8), 0, 0};
        unsigned char code[4];
        char* from = bytes;
        char* to = reinterpret_cast<char*>(code);
        std::size_t left = sizeof bytes;
        std::size_t room = sizeof code;
        iconv(converter, &from, &left, &to, &room);
        if (sizeof code - room == 2)
            (*codes)[at] = static_cast<std::uint16_t>(code[0] << 8 | code[1]);
    }
    iconv_close(converter);
    return codes;
}

std::uint16_t gbkCode(char32_t character)
{
    static const std::unique_ptr<const GbkTable> table = readGbkTable();
    return character < table->size() ? (*table)[character] : std::uint16_t{0};
}

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

/// The mark that repeats a character stands behind all of them: who looks a column up for it finds its last
/// text.
constexpr char32_t repetition = 0x3005; // 々

std::uint32_t chineseWeight(char32_t character)
{
    if (character == repetition)
        return chineseClass | (0x10000 + 0xA000);
    const std::uint32_t code = gbkCode(character);
    const std::uint32_t lead = code >> 8;
    const std::uint32_t trail = code & 0xFF;
    if (lead >= 0xB0 && lead <= 0xF7 && trail >= 0xA1)
        return chineseClass | code; // by pinyin, then by stroke: the order of the national set
    return chineseClass | (0x10000 + character);
}

} // namespace

std::uint32_t characterWeight(char32_t wide)
{
    const char32_t character = wide < 128 ? wide : halfWidth(wide);
    if (character < 128)
        return asciiWeights[character];
    const auto lower = static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(character)));
    if ((lower >= 0x3400 && lower < 0xA000) || lower == repetition)
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

namespace {

/// The letter without its accent; other characters themselves.
char32_t withoutAccent(char32_t character)
{
    constexpr char32_t first = 0xC0;  // À
    constexpr char32_t last = 0x1EFF; // ỿ
    if (character < first || character > last)
        return character;
    utf8proc_int32_t parts[8];
    const auto count = utf8proc_decompose_char(static_cast<utf8proc_int32_t>(character), parts, 8,
                                               UTF8PROC_DECOMPOSE, nullptr);
    return count > 1 ? static_cast<char32_t>(parts[0]) : character;
}

/// A text character by character as it is compared.
class WeightedText {
public:
    explicit WeightedText(std::string_view text)
        : m_text(text)
    {
    }
    bool atEnd() const { return m_at == m_text.size(); }
    /// The weight of the next character without its accent.
    std::uint32_t next()
    {
        const auto byte = static_cast<unsigned char>(m_text[m_at]);
        if (byte < 128) {
            ++m_at;
            return asciiWeights[byte];
        }
        return characterWeight(withoutAccent(foldedCharacter(takeCharacter(m_text, m_at))));
    }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
};

int sign(int order)
{
    return (order > 0) - (order < 0);
}

} // namespace

int compareTexts(std::string_view left, std::string_view right)
{
    WeightedText a(left);
    WeightedText b(right);
    while (!a.atEnd() && !b.atEnd()) {
        const std::uint32_t weight = a.next();
        const std::uint32_t other = b.next();
        if (weight != other)
            return weight < other ? -1 : 1;
    }
    if (!a.atEnd() || !b.atEnd())
        return a.atEnd() ? -1 : 1;
    // Nothing but accents is left to tell them apart.
    return sign(foldedText(left).compare(foldedText(right)));
}

} // namespace spreadsheet
