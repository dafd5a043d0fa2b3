#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace selfreport {

/// Whether a page field's text is a number at all: digits with sign, point, blanks around.
bool isNumber(std::string_view text);

/// A page field's number, halves rounded to even; nothing if it is no number or does not fit.
std::optional<std::int16_t> pageNumber(std::string_view text);

} // namespace selfreport
