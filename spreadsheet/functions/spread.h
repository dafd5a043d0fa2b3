#pragma once
#include "spreadsheet/formula/Operand.h"

#include <span>

namespace spreadsheet {

/// Variance about the mean; `ofSample` divides by one less than the count. #DIV/0! for too few numbers.
Operand variance(std::span<const double> numbers, bool ofSample);
/// The square root of the variance.
Operand deviation(std::span<const double> numbers, bool ofSample);

} // namespace spreadsheet
