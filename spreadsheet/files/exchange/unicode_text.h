#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace spreadsheet {

/// Appends a code point; what is none (a lone surrogate, beyond U+10FFFF) becomes U+FFFD.
void appendUtf8(char32_t point, std::string& text);

/// UTF-8 of UTF-16; lone surrogates become U+FFFD.
std::string utf8Of(std::u16string_view text);

/// UTF-16 of UTF-8; bytes that are none become U+FFFD.
std::u16string utf16Of(std::string_view text);

/// True if every byte belongs to a well-formed character.
bool isUtf8(std::string_view text);

} // namespace spreadsheet
