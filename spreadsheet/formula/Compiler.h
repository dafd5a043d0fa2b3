#pragma once
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/formula_grammar.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/values/Refusal.h"

#include <optional>

namespace spreadsheet {

struct Vocabulary;

/// Compiles tokens into `formula` (pieces and slots are moved over).
Refusal compileFormula(LexedFormula& lexed, Vocabulary& vocabulary, bool asArray, Unions unions,
                       Formula& formula);

} // namespace spreadsheet
