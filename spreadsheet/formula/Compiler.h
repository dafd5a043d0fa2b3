#pragma once
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/values/Refusal.h"

#include <optional>

namespace spreadsheet {

struct Vocabulary;

/// Brackets and calls may be nested this deep.
inline constexpr std::size_t maxNesting = 256;

/// Compiles tokens into `formula` (pieces and slots are moved over). Operators from the tightest:
/// ":" range, blank intersection, "," union inside brackets, sign, "%", "^", "*" "/", "+" "-", "&",
/// comparisons; equal ones group from the left, so -2^2 is 4 and 2^3^2 is 64.
Refusal compileFormula(LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Formula& formula);

} // namespace spreadsheet
