#pragma once
#include "spreadsheet/formula/Operand.h"

namespace spreadsheet {

class Call;

// What the table rows of sums, counts and averages call.

Operand sum(Call& call);
Operand product(Call& call);
Operand sumOfSquares(Call& call);
Operand sumProduct(Call& call);
Operand average(Call& call);
Operand smallest(Call& call);
Operand largest(Call& call);
Operand countNumbers(Call& call);
Operand countFilled(Call& call);
Operand countBlank(Call& call);

Operand sumIf(Call& call);
Operand sumIfs(Call& call);
Operand countIf(Call& call);
Operand countIfs(Call& call);
Operand averageIf(Call& call);
Operand averageIfs(Call& call);
Operand smallestIfs(Call& call);
Operand largestIfs(Call& call);

/// Passes over cells whose formulas hold a SUBTOTAL or AGGREGATE themselves, and over hidden rows if its code
/// is beyond 100.
Operand subtotal(Call& call);
/// The same with more summaries; an option says whether hidden rows, errors and such cells are passed over.
Operand aggregate(Call& call);

} // namespace spreadsheet
