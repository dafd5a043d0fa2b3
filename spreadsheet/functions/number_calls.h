#pragma once
#include "spreadsheet/functions/Call.h"

#include <algorithm>

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

/// A function of a number and a count of decimal places, 0 if left out.
template <auto function>
Operand ofPlaces(Call& call)
{
    const double number = call.number(0);
    const int places = std::clamp(call.integer(1, 0), -400, 400);
    return call.failed() ? call.error() : checked(function(number, places));
}

} // namespace spreadsheet
