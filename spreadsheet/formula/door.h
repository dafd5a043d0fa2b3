#pragma once
// The language: from a formula's text to code in relative form, each formula once, and back to its text
// letter by letter. What a function does is not known here, only what the compiler must know of it
// (`FunctionDescriptor`). What other rooms may include:
#include "spreadsheet/formula/CustomFunction.h"
#include "spreadsheet/formula/CustomFunctions.h"
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/formula_grammar.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/FunctionDescriptor.h"
#include "spreadsheet/formula/Lexer.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/formula/Operand.h"
#include "spreadsheet/formula/operator_table.h"
#include "spreadsheet/formula/ReferenceSlot.h"
