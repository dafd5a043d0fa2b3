#pragma once
#include "spreadsheet/formula/FunctionDescriptor.h"

namespace spreadsheet {

/// The function of that name, letter case ignored; null if there is none.
const FunctionDescriptor* findFunction(std::string_view name);

/// All functions in the order of their names.
std::span<const FunctionDescriptor* const> allFunctions();

} // namespace spreadsheet
