#pragma once
#include "spreadsheet/calculation/Call.h"

namespace spreadsheet {

/// The numbers that AVERAGEA and its kind work on: truth values count as 1 and 0, texts in ranges as 0.
std::vector<double> valuesAsNumbers(Call& call);

} // namespace spreadsheet
