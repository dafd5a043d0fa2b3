#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace spreadsheet {

// Characters of UTF-8 texts. Positions and lengths that a user sees count UTF-16 units: a character
// beyond U+FFFF counts 2.

/// The character at byte `at`, which moves behind it. A byte that is no UTF-8 stands for itself.
char32_t takeCharacter(std::string_view text, std::size_t& at);
void appendCharacter(std::string& text, char32_t c);

constexpr int unitsOf(char32_t c)
{
    return c > 0xFFFF ? 2 : 1;
}

/// UTF-16 units of a text.
std::size_t unitCount(std::string_view text);
/// Byte offset of the character that holds the unit `units` from 0; the text's size beyond its end.
std::size_t byteOfUnit(std::string_view text, std::size_t units);
/// UTF-16 units before a byte offset.
std::size_t unitOfByte(std::string_view text, std::size_t byte);

/// The character of a code from 128 to 255 in the western code page 1252; below 128 it is ASCII.
char32_t characterOfByte(unsigned char code);
/// The code of a character in that code page; that of "?" if it has none.
unsigned char byteOfCharacter(char32_t c);

} // namespace spreadsheet
