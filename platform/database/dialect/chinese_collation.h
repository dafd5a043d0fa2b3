#pragma once
#include "spreadsheet/values/chinese_order.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace selfreport {

/// Compares two UTF-8 texts like the suite's server under its Chinese collation: letter case, full or half
/// width and trailing blanks make no difference. Indexes are kept in this order, so it must stay what it is.
int compareChinese(std::string_view left, std::string_view right);

/// Weight of the character at byte `at`, which moves behind it; 0 at the end. Characters that compare equal
/// have equal weights, others the order of theirs. Blanks, full-width ones too, weigh `blankWeight`.
std::uint32_t nextWeight(std::string_view text, std::size_t& at);
using spreadsheet::blankWeight;

/// Whether nothing but blanks stands from byte `at` to the end.
bool onlyBlanksFrom(std::string_view text, std::size_t at);

} // namespace selfreport
