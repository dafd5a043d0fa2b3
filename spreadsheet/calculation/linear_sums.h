#pragma once
#include "spreadsheet/calculation/TracedCall.h"

namespace spreadsheet {

// How functions that go down ranges make sums of what the cells are made of.

FigureParts partsOfSum(const TracedCall& call);
FigureParts partsOfAverage(const TracedCall& call);
FigureParts partsOfSubtotal(const TracedCall& call);
FigureParts partsOfProducts(const TracedCall& call);
FigureParts partsOfSumIf(const TracedCall& call);
FigureParts partsOfSumIfs(const TracedCall& call);
FigureParts partsOfChosen(const TracedCall& call); ///< MAX and MIN: of what holds the result

} // namespace spreadsheet
