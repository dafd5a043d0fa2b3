#include "spreadsheet/values/characters.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

namespace {

/// Code page 1252 from 0x80 to 0x9F, where it differs from Unicode; 0 where it has no character.
constexpr std::array<char16_t, 32> westernCharacters{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

} // namespace

char32_t takeCharacter(std::string_view text, std::size_t& at)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    const std::size_t size = lead < 0xC2 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 1;
    if (size == 1 || at + size > text.size())
        return byte(at++);
    char32_t c = lead & (0xFFu >> (size + 1));
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return byte(at++);
        c = (c << 6) | (byte(at + i) & 0x3Fu);
    }
    at += size;
    return c;
}

void appendCharacter(std::string& text, char32_t c)
{
    const auto put = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

char32_t characterOfByte(unsigned char code)
{
    const bool differs = code >= 0x80 && code < 0xA0 && westernCharacters[code - 0x80u] != 0;
    return differs ? westernCharacters[code - 0x80u] : code;
}

unsigned char byteOfCharacter(char32_t c)
{
    const auto found = std::ranges::find(westernCharacters, c);
    if (c > 0 && found != westernCharacters.end())
        return static_cast<unsigned char>(0x80 + (found - westernCharacters.begin()));
    return c < 0x100 ? static_cast<unsigned char>(c) : static_cast<unsigned char>('?');
}

std::size_t unitCount(std::string_view text)
{
    return unitOfByte(text, text.size());
}

std::size_t byteOfUnit(std::string_view text, std::size_t units)
{
    std::size_t at = 0;
    for (std::size_t unit = 0; at < text.size();) {
        std::size_t next = at;
        unit += static_cast<std::size_t>(unitsOf(takeCharacter(text, next)));
        if (unit > units)
            return at;
        at = next;
    }
    return text.size();
}

std::size_t unitOfByte(std::string_view text, std::size_t byte)
{
    std::size_t units = 0;
    for (std::size_t at = 0; at < std::min(byte, text.size());)
        units += static_cast<std::size_t>(unitsOf(takeCharacter(text, at)));
    return units;
}

} // namespace spreadsheet
