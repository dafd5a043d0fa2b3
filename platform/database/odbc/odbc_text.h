#pragma once
#include <span>
#include <sql.h>
#include <sqltypes.h>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// UTF-16 for the driver manager's W functions, without a terminating zero. Broken UTF-8 becomes U+FFFD.
std::vector<SQLWCHAR> odbcText(std::string_view utf8);

/// UTF-8 of the driver's UTF-16; a lone surrogate becomes U+FFFD.
std::string utf8Text(std::span<const SQLWCHAR> text);

} // namespace selfreport
