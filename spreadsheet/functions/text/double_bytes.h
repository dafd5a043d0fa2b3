#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

// Texts as the double-byte functions see them: an ASCII character takes one byte, any other character two
// (four beyond U+FFFF), as in the Chinese code page 936 (GBK).

int bytesOf(char32_t c);
std::size_t byteCount(std::string_view text);
/// `count` bytes of a text from byte `first` on, from 0. Half a character reads as a blank.
std::string bytesOf(std::string_view text, std::size_t first, std::size_t count);

/// The character of a double-byte code of GBK (0x8140 to 0xFEFE); nothing if the code has none.
std::optional<char32_t> characterOfDoubleByte(int code);
/// The double-byte code of a character; nothing if it has none.
std::optional<int> doubleByteOfCharacter(char32_t c);

/// Full-width letters, digits, signs and katakana in their half-width form.
std::string halfWidth(std::string_view text);
/// Half-width letters, digits, signs and katakana in their full-width form.
std::string fullWidth(std::string_view text);

} // namespace spreadsheet
