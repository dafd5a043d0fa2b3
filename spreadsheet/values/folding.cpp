#include "spreadsheet/values/folding.h"

#include "spreadsheet/values/characters.h"

#include <array>
#include <utf8proc.h>

namespace spreadsheet {

namespace {

/// Full-width forms of U+FF61 to U+FF9F, the half-width punctuation and katakana.
constexpr std::array<char16_t, 63> wideKatakana{
    0x3002, 0x300C, 0x300D, 0x3001, 0x30FB, 0x30F2, 0x30A1, 0x30A3, 0x30A5, 0x30A7, 0x30A9, 0x30E3, 0x30E5,
    0x30E7, 0x30C3, 0x30FC, 0x30A2, 0x30A4, 0x30A6, 0x30A8, 0x30AA, 0x30AB, 0x30AD, 0x30AF, 0x30B1, 0x30B3,
    0x30B5, 0x30B7, 0x30B9, 0x30BB, 0x30BD, 0x30BF, 0x30C1, 0x30C4, 0x30C6, 0x30C8, 0x30CA, 0x30CB, 0x30CC,
    0x30CD, 0x30CE, 0x30CF, 0x30D2, 0x30D5, 0x30D8, 0x30DB, 0x30DE, 0x30DF, 0x30E0, 0x30E1, 0x30E2, 0x30E4,
    0x30E6, 0x30E8, 0x30E9, 0x30EA, 0x30EB, 0x30EC, 0x30ED, 0x30EF, 0x30F3, 0x309B, 0x309C};

char32_t foldedWidth(char32_t c)
{
    if (c >= 0xFF01 && c <= 0xFF5E)
        return c - 0xFF01 + '!';
    if (c >= 0xFF61 && c <= 0xFF9F)
        return wideKatakana[c - 0xFF61];
    if (c == 0x3000)
        return ' ';
    return c == 0xFFE5 ? char32_t{0xA5} : c;
}

} // namespace

char32_t foldedCharacter(char32_t c)
{
    if (c < 0x80)
        return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
    return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(foldedWidth(c))));
}

char32_t upperCharacter(char32_t c)
{
    constexpr char32_t sharpS = 0xDF; // its capital is no part of ordinary spelling
    return c == sharpS ? c : static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(c)));
}

char32_t lowerCharacter(char32_t c)
{
    return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(c)));
}

bool isLetter(char32_t c)
{
    switch (utf8proc_category(static_cast<utf8proc_int32_t>(c))) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
        return true;
    default:
        return false;
    }
}

std::string foldedText(std::string_view text)
{
    std::string folded;
    folded.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (static_cast<unsigned char>(text[at]) < 0x80)
            folded += static_cast<char>(foldedCharacter(static_cast<unsigned char>(text[at++])));
        else
            appendCharacter(folded, foldedCharacter(takeCharacter(text, at)));
    }
    return folded;
}

} // namespace spreadsheet
