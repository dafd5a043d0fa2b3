#include "spreadsheet/functions/aggregates/call_over_values.h"

#include "spreadsheet/functions/FunctionTable.h"

namespace spreadsheet {

Operand calledOver(const EvaluationPlace& place, std::string_view function, const std::vector<Value>& values,
                   const std::optional<Operand>& rank)
{
    const FunctionDescriptor* descriptor = findFunction(function);
    if (!descriptor)
        return CellError::name;
    auto array = std::make_shared<Array>(static_cast<int>(values.size()), 1);
    for (std::size_t i = 0; i < values.size(); ++i)
        array->at(static_cast<int>(i), 0) = values[i];
    std::vector<Operand> arguments{std::shared_ptr<const Array>(std::move(array))};
    if (rank)
        arguments.push_back(*rank);
    Call call(place, arguments);
    return answer(*descriptor, call);
}

} // namespace spreadsheet
