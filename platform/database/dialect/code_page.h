#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace selfreport {

/// Bytes that a UTF-8 text takes in the server's Chinese code page (GBK; GB18030 for what GBK lacks).
/// A byte that is no UTF-8 counts as one.
std::size_t codePageLength(std::string_view text);

/// GBK code of a character of the basic plane, for example 0xB0A1 for U+554A; 0 if it has none of two bytes.
std::uint16_t gbkCode(char32_t character);

} // namespace selfreport
