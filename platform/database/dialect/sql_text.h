#pragma once
#include <string>
#include <string_view>

namespace selfreport {

/// The value with every apostrophe doubled, to stand between two apostrophes of a statement. Only U+0027 is
/// doubled: typographic and full-width apostrophes end no literal.
std::string sqlQuoted(std::string_view value);

/// Whether the text can stand in a statement as a table or column name without quotes: a letter, "_" or a
/// character beyond ASCII first, then also digits; 1 to 128 bytes.
bool isPlainIdentifier(std::string_view name);

} // namespace selfreport
