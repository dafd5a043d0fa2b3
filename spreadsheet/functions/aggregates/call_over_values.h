#pragma once
#include "spreadsheet/calculation/Call.h"

#include <string_view>
#include <vector>

namespace spreadsheet {

/// What a function of the table gives for a list of values, as if they stood in a range; `rank` is its
/// second argument if it takes one.
Operand calledOver(const EvaluationPlace& place, std::string_view function, const std::vector<Value>& values,
                   const std::optional<Operand>& rank = std::nullopt);

} // namespace spreadsheet
