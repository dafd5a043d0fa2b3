#pragma once
#include "spreadsheet/formula/Lexer.h"

#include <string>
#include <string_view>

namespace spreadsheet {

/// A formula text as .xlsx files spell it: ASCII signs, newer functions with the prefix "_xlfn.".
/// The text as it stands if it cannot be split into tokens.
std::string portableFormula(std::string_view text, CellAddress base, const SheetResolver& sheetId);

/// Takes such prefixes away.
std::string plainFormula(std::string_view text);

} // namespace spreadsheet
