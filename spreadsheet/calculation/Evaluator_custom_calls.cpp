// Calls of functions that the program registers: gathered before they are made, and made.
#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>

namespace spreadsheet {

void Evaluator::gatherCalls(const Formula& formula, const EvaluationPlace& place,
                            std::vector<PreparedCall>& known)
{
    m_gathered = &known;
    run(formula, place);
    m_gathered = nullptr;
}

Operand Evaluator::callCustom(int custom, std::size_t count, const EvaluationPlace& place)
{
    std::vector<Value> parameters;
    parameters.reserve(count);
    bool unknown = false;
    for (std::size_t i = m_stack.size() - count; i < m_stack.size(); ++i) {
        unknown = unknown || m_stack[i].isUnknown();
        parameters.push_back(unknown ? Value() : singleValue(m_stack[i], place));
    }
    m_stack.resize(m_stack.size() - count);
    if (unknown)
        return Operand::unknown();

    const CustomFunctions::Entry& function = m_book.formulas.customs()[custom];
    if (!function.handler)
        return CellError::name;
    if (m_gathered)
        return gatheredCall(function.name, std::move(parameters), place);
    return m_guard ? callOnce(custom, std::move(parameters), place) : handled(custom, parameters, place);
}

/// A call of a cell that may have run before, as far as it could.
Operand Evaluator::callOnce(int custom, std::vector<Value> parameters, const EvaluationPlace& place)
{
    std::vector<MadeCall>& calls = m_guard->calls();
    const auto known = std::ranges::find_if(
        calls, [&](const MadeCall& call) { return call.custom == custom && call.parameters == parameters; });
    if (known != calls.end())
        return known->result;
    Value result = handled(custom, parameters, place);
    if (!m_keep)
        calls.push_back({custom, std::move(parameters), result});
    return result;
}

Value Evaluator::handled(int custom, std::span<const Value> parameters, const EvaluationPlace& place)
{
    const CustomFunctions::Entry& function = m_book.formulas.customs()[custom];
    FunctionCall made(function.name, {place.sheet, place.cell.column, place.cell.row}, parameters);
    const FunctionHandler handler = function.handler; // it may register functions itself
    handler(made);
    if (made.requestedDecimals())
        m_queue.push_back({made.place(), *made.requestedDecimals()});
    if (made.result())
        return *made.result();
    if (made.declined() || m_book.formulasShown)
        m_keep = true;
    return CellError::value;
}

Operand Evaluator::gatheredCall(std::string_view name, std::vector<Value> parameters,
                                const EvaluationPlace& place)
{
    const auto same = [&](const PreparedCall& call) {
        return call.name == name && call.parameters == parameters;
    };
    const auto known = std::ranges::find_if(*m_gathered, same);
    if (known != m_gathered->end())
        return known->expected ? Operand(*known->expected) : Operand::unknown();
    m_gathered->push_back(
        {name, {place.sheet, place.cell.column, place.cell.row}, std::move(parameters), std::nullopt});
    return Operand::unknown();
}

} // namespace spreadsheet
