#pragma once
#include "spreadsheet/formula/Operand.h"

#include <span>

namespace spreadsheet {

/// Not a number for no numbers.
double meanOf(std::span<const double> numbers);
/// Sum of the squared distances from the mean.
double squaredDeviations(std::span<const double> numbers);
/// Variance about the mean; `ofSample` divides by one less than the count. #DIV/0! for too few numbers.
Operand variance(std::span<const double> numbers, bool ofSample);
/// The square root of the variance.
Operand deviation(std::span<const double> numbers, bool ofSample);

} // namespace spreadsheet
