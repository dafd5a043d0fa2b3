#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/files/exchange/Warnings.h"

#include <optional>
#include <string>
#include <string_view>

namespace spreadsheet {

/// For whose country a file was made, as far as formats named by number only depend on it.
enum class FileCountry { china, america };

/// The code of a number format that files name by number only (14 is "yyyy/m/d"); "General" for
/// numbers that are not known.
std::string_view builtInFormatCode(int number, FileCountry country = FileCountry::china);

/// The number of a code that files name by number only; nothing if there is none.
std::optional<int> builtInFormatNumber(std::string_view code);

/// Sets type and decimals of a style to the nearest that a code means. A code that the type does not
/// show exactly is kept as `numberFormat`.
void applyFormatCode(std::string_view code, CellStyle& style);

/// The code that shows a number as the style does.
std::string formatCodeOf(const CellStyle& style);

/// The same as other programs understand it: what only this one knows gives way to what is nearest, and a
/// warning names the format.
std::string exportedFormatCode(const CellStyle& style, Warnings& warnings);

} // namespace spreadsheet
