#pragma once
#include "spreadsheet/calculation/Call.h"

#include <vector>

namespace spreadsheet {

// How the functions that were once an analysis add-in read their arguments: a truth value, or a range
// where one value is asked for, is #VALUE! there; everything else is coerced as usual.

Value plainValue(const Call& call, std::size_t argument);
double plainNumber(Call& call, std::size_t argument);
double plainNumber(Call& call, std::size_t argument, double otherwise);
/// Cut off toward zero; #NUM! beyond 32 bits.
int plainInteger(Call& call, std::size_t argument);
int plainInteger(Call& call, std::size_t argument, int otherwise);
std::string plainText(Call& call, std::size_t argument);
/// All numbers of an argument, which may be a range; empty cells are passed over, other texts than
/// numbers are #VALUE!.
std::vector<double> plainNumbers(Call& call, std::size_t argument);

/// The day of an argument without its time, in the count from 1900 whatever the workbook's count is;
/// #NUM! outside the calendar.
int dayArgument(Call& call, std::size_t argument);
int plainDay(Call& call, std::size_t argument);
/// The days of an argument, which may be a range, in its order.
std::vector<int> plainDays(Call& call, std::size_t argument);
/// A serial day in the count from 1900 as a result in the workbook's count; #NUM! if negative.
Operand dayResult(const Call& call, int serial);

/// What serial numbers of the workbook lie behind those of the count from 1900: 0, or 1462 days.
double serialShift(const Call& call);

/// What a call of checked arguments gives: its error if it failed, #NUM! unless `inRange`.
template <typename Compute>
Operand inRangeOrNum(Call& call, bool inRange, Compute&& compute)
{
    if (call.failed())
        return call.error();
    return inRange ? Operand(compute()) : Operand(CellError::num);
}

} // namespace spreadsheet
