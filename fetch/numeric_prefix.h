#pragma once
#include <string_view>

namespace selfreport {

/// The number that a text begins with: leading blanks (U+0020) skipped, then an optional sign, digits,
/// decimal point and exponent up to the first other character. 0 if it begins with none or it is beyond a
/// double. No locale: the decimal sign is a point, a grouping comma ends the number.
double numericPrefix(std::string_view text);

} // namespace selfreport
