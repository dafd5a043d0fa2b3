#pragma once
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/Operand.h"
#include "spreadsheet/values/Value.h"

#include <cmath>

namespace spreadsheet {

struct EvaluationPlace;
class Workbook;

/// Differences this small beside their operands are rounding noise of the last binary places and
/// count as zero, so that 0.5 - 0.4 - 0.1 is 0.
inline constexpr double cancellation = 0x1p-50;

inline double cancelled(double result, double operand)
{
    return std::fabs(result) < std::fabs(operand) * cancellation ? 0.0 : result;
}

/// Equal but for noise in the last binary places: 0.1 + 0.2 equals 0.3.
inline bool sameNumber(double a, double b)
{
    return a == b || cancelled(a - b, a) == 0.0;
}

/// +, -, *, / or ^ on numbers; #NUM! beyond what a number can be.
Value arithmetic(Op op, double a, double b);

/// One operator on two values; errors of the left side win. The workbook says how dates in texts count.
Value applyOperator(Op op, const Value& left, const Value& right, const Workbook& workbook);
/// A sign or percent.
Value applySign(Op op, const Value& value, const Workbook& workbook);

/// The operator on whole operands, element by element; a single row, column or value repeats.
Operand applyToArrays(Op op, const Operand& left, const Operand& right, const EvaluationPlace& place);
Operand applyToArray(Op op, const Operand& operand, const EvaluationPlace& place);

/// What a value counts for an Effort.
inline std::size_t effortOf(const Value& value)
{
    return value.isText() ? 1 + value.textView().size() / 8 : 1;
}

/// Range, intersection and union of references.
Operand combineReferences(Op op, const Operand& left, const Operand& right);

/// The elements of any operand; a reference is read, whole rows and columns up to the used part.
/// #VALUE! as a single element if there are too many.
std::shared_ptr<const Array> toArray(const Operand& operand, const EvaluationPlace& place);

} // namespace spreadsheet
