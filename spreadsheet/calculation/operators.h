#pragma once
#include "spreadsheet/formula/Formula.h"
#include "spreadsheet/formula/Operand.h"
#include "spreadsheet/values/Value.h"

namespace spreadsheet {

struct EvaluationPlace;

/// +, -, *, / or ^ on numbers; #NUM! beyond what a number can be.
Value arithmetic(Op op, double a, double b);

/// One operator on two values; errors of the left side win. `from1904`: how dates in texts count.
Value applyOperator(Op op, const Value& left, const Value& right, bool from1904);
/// A sign or percent.
Value applySign(Op op, const Value& value, bool from1904);

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
