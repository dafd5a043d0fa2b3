#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/Value.h"

#include <string>

namespace spreadsheet {

/// What a cell of this style shows for a value. It depends on nothing else: neither on the column's
/// width nor on a locale. A value that does not fit the type shows as it is (a text in a number cell).
///
/// date "2026-12-31" of a serial day number; time "13:45:00" of a day's fraction;
/// currency "￥1,234.50" with two decimals; number with the style's decimals, no grouping;
/// percent "12.50%"; scientific "1.23E+04". Decimals are rounded half away from zero. A number format code
/// of the style goes before its type, unless it means nothing or the value is no day of its calendar.
/// `from1904`: how the workbook counts days.
std::string displayText(const Value& value, const CellStyle& style, bool from1904 = false);

/// The same by type and decimals alone: what a cell hands on where its text may be read as a number again.
/// A number format code changes only what is seen and printed.
std::string textByType(const Value& value, const CellStyle& style, bool from1904 = false);

/// The colour of what displayText shows: a number format code may have one of its own ("[Red]").
Colour textColour(const Value& value, const CellStyle& style);

} // namespace spreadsheet
