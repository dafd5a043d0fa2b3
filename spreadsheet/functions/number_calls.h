#pragma once
#include "spreadsheet/calculation/Call.h"

namespace spreadsheet {

// Table entries made of plain functions on numbers.

/// A function of one number; infinite and undefined results are #NUM!.
template <auto function>
Operand ofNumber(Call& call)
{
    const double number = call.number(0);
    return call.failed() ? call.error() : checked(function(number));
}

/// A function of two numbers that may itself give an error.
template <auto function>
Operand ofNumbers(Call& call)
{
    const double a = call.number(0);
    const double b = call.number(1);
    return call.failed() ? call.error() : Operand(function(a, b));
}

} // namespace spreadsheet
