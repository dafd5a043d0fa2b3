#pragma once
#include <string>
#include <string_view>

namespace selfreport::tds {

// Conversions between the texts of the wire and UTF-8, by iconv and not by the code under test.
// A text that cannot be converted throws ProtocolError.

std::string utf16Of(std::string_view utf8);
std::string utf8OfUtf16(std::string_view utf16);

/// The Chinese code page; GB18030, so that no character is lost.
std::string codePageOf(std::string_view utf8);
std::string utf8OfCodePage(std::string_view text);

/// Puts the text as UTF-16 behind its count of code units in `countSize` bytes.
void putText(std::string& bytes, std::string_view utf8, std::size_t countSize);

} // namespace selfreport::tds
