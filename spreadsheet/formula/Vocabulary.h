#pragma once
#include "spreadsheet/formula/CustomFunctions.h"
#include "spreadsheet/formula/FunctionDescriptor.h"
#include "spreadsheet/formula/NameTable.h"

namespace spreadsheet {

/// What the words of a formula mean.
struct Vocabulary {
    FunctionFinder findFunction;
    CustomFunctions customs; ///< what a call is that no function of the language answers
    NameTable names;
};

} // namespace spreadsheet
