#pragma once
#include "spreadsheet/calculation/TracedCall.h"
#include "spreadsheet/formula/Formula.h"

#include <string_view>

namespace spreadsheet {

/// How a function makes a sum of what its arguments are made of.
struct LinearRule {
    std::string_view function;
    /// Handed a call of which some argument depends on calls, and that came to a value.
    FigureParts (*parts)(const TracedCall& call);
    bool ofEach = false; ///< takes single values: where it is handed arrays, each element follows the rule
};

/// Null: a value that depends on calls through this function is no sum of them.
const LinearRule* linearRule(std::string_view function);

/// "+"; "" of what is no operator.
std::string_view operatorText(Op op);

/// Of an operator between two values, some of which depend on calls, or of a sign or percent of one.
FigureParts partsOfOperator(Op op, TracedCall::Element left, TracedCall::Element right, const Value& result,
                            bool from1904);
FigureParts partsOfSign(Op op, FigureParts operand);

/// Whether it depends on calls which cell a function has found that came to a reference.
bool searchDependsOnCalls(const TracedCall& call);

} // namespace spreadsheet
