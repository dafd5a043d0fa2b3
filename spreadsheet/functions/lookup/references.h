#pragma once
#include "spreadsheet/formula/Operand.h"

namespace spreadsheet {

class Call;

// What the table rows of functions that give or describe references call.

Operand indexed(Call& call);
Operand moved(Call& call);
Operand referenceOfText(Call& call);
Operand addressText(Call& call);

} // namespace spreadsheet
