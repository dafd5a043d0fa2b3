#include "spreadsheet/files/exchange/unicode_text.h"

namespace spreadsheet {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// Takes one character from the front of a text that is not empty; nothing well-formed takes one byte.
struct Taken {
    char32_t point;
    std::size_t length;
    bool wellFormed;
};

Taken takePoint(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return {first, 1, true};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return {replacement, 1, false};
    char32_t point = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i]))
            return {replacement, 1, false};
        point = point << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    constexpr char32_t least[]{0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = point >= 0xD800 && point < 0xE000;
    if (point < least[length] || point > 0x10FFFF || surrogate)
        return {replacement, 1, false};
    return {point, length, true};
}

} // namespace

void appendUtf8(char32_t point, std::string& text)
{
    if (point > 0x10FFFF || (point >= 0xD800 && point < 0xE000))
        point = replacement;
    const auto put = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (point < 0x80)
        return put(point);
    if (point < 0x800) {
        put(0xC0 | point >> 6);
    } else {
        if (point < 0x10000) {
            put(0xE0 | point >> 12);
        } else {
            put(0xF0 | point >> 18);
            put(0x80 | (point >> 12 & 0x3F));
        }
        put(0x80 | (point >> 6 & 0x3F));
    }
    put(0x80 | (point & 0x3F));
}

std::string utf8Of(std::u16string_view text)
{
    std::string result;
    result.reserve(text.size() * 3);
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        const bool high = point >= 0xD800 && point < 0xDC00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++i] - 0xDC00u);
        appendUtf8(point, result);
    }
    return result;
}

std::u16string utf16Of(std::string_view text)
{
    std::u16string result;
    while (!text.empty()) {
        const Taken taken = takePoint(text);
        text.remove_prefix(taken.length);
        if (taken.point < 0x10000) {
            result += static_cast<char16_t>(taken.point);
        } else {
            result += static_cast<char16_t>(0xD800 + ((taken.point - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((taken.point - 0x10000) & 0x3FF));
        }
    }
    return result;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const Taken taken = takePoint(text);
        if (!taken.wellFormed)
            return false;
        text.remove_prefix(taken.length);
    }
    return true;
}

} // namespace spreadsheet
