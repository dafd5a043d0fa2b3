#include "spreadsheet/calculation/Evaluator.h"

#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/FunctionDescriptor.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/values/coercion.h"

#include <algorithm>

namespace spreadsheet {

// One machine runs each formula in two ways: to compute it, and, before the calls to registered functions are
// made, to find those that are certain. What is not known then is an operand of its own kind that every step
// hands on, so both ways go through the same steps and cannot come apart.

namespace {

/// Calls for the elements of an array, each of which may itself go through a large one.
constexpr std::size_t callsBetweenQuestions = 64;

/// The single value of an operand as operators and cells need it.
Value singleValue(const Operand& operand, const EvaluationPlace& place)
{
    if (operand.isValue())
        return operand.value();
    return Call(place, std::span(&operand, 1)).value(0);
}

/// Outside array mode arrays still go through element by element, ranges beside them do not.
Operand intersected(const Operand& operand, const EvaluationPlace& place)
{
    return operand.isReference() ? Operand(singleValue(operand, place)) : operand;
}

/// In array mode: whether a range or array is gone through element by element. The branches of IF and
/// its like are, although they take whole ranges elsewhere.
bool goesElementwise(const FunctionDescriptor& function, std::size_t argument)
{
    return function.kind(argument) == 'v' || function.has(branches);
}

/// What one of many calls costs that are handed the same long texts.
std::size_t costOfTexts(std::span<const Operand> arguments)
{
    constexpr std::size_t isLong = 2048;
    constexpr std::size_t perByte = 6; // as slow as the functions of texts that count by double bytes
    std::size_t bytes = 0;
    for (const Operand& argument : arguments) {
        if (argument.isValue() && argument.value().isText() && argument.value().textView().size() > isLong)
            bytes += argument.value().textView().size();
    }
    return bytes * perByte;
}

/// What a call comes to; an array that it makes counts against what its cell may spend.
Operand answered(const FunctionDescriptor& function, Call& call)
{
    Operand result = answer(function, call);
    const bool affordable =
        !result.isArray() || call.place().spend(elementsOf(result.array().rows(), result.array().columns()));
    return affordable ? result : Operand(CellError::value);
}

} // namespace

Evaluator::Evaluator(const Book& book)
    : m_book(book)
{
    m_stack.reserve(64);
}

Operand Evaluator::pop()
{
    Operand top = std::move(m_stack.back());
    m_stack.pop_back();
    return top;
}

std::optional<Value> Evaluator::cellValueOf(const Formula& formula, const EvaluationPlace& place)
{
    m_keep = false;
    const Operand result = run(formula, place);
    if (m_keep)
        return std::nullopt;
    Value value = singleValue(result, place);
    if (value.isEmpty())
        return Value(0.0); // a reference to an empty cell shows 0
    return value;
}

std::shared_ptr<const Array> Evaluator::arrayOf(const Formula& formula, const EvaluationPlace& place)
{
    m_keep = false;
    const Operand result = run(formula, place);
    return m_keep ? nullptr : toArray(result, place);
}

void Evaluator::gatherCalls(const Formula& formula, const EvaluationPlace& place,
                            std::vector<PreparedCall>& known)
{
    m_gathered = &known;
    run(formula, place);
    m_gathered = nullptr;
}

Operand Evaluator::run(const Formula& formula, const EvaluationPlace& place)
{
    const std::size_t base = m_stack.size();
    const int end = static_cast<int>(formula.code.size());
    for (int position = 0; position < end;)
        position = step(formula, formula.code[static_cast<std::size_t>(position)], position, place);
    Operand result = m_stack.size() > base ? pop() : Operand();
    m_stack.resize(base);
    return result;
}

/// Does one step and says where the next one stands. A loop over steps with operands on a stack of our own
/// needs no more of the program's stack for a formula nested 256 deep than for A1+1, and branches and the end
/// of a cell that keeps its value are the same thing to it: another position.
int Evaluator::step(const Formula& formula, const Instruction& instruction, int position,
                    const EvaluationPlace& place)
{
    const auto index = static_cast<std::size_t>(instruction.index);
    switch (instruction.op) {
    case Op::number:
        push(formula.numbers[index]);
        break;
    case Op::text:
        push(Value(formula.texts[index]));
        break;
    case Op::boolean:
        push(Value::boolean(instruction.index != 0));
        break;
    case Op::error:
        push(static_cast<CellError>(instruction.index));
        break;
    case Op::missing:
        push(Operand::missing());
        break;
    case Op::array:
        push(formula.arrays[index]);
        break;
    case Op::reference:
        push(reference(formula.slots[index], place));
        break;
    case Op::name:
        push(named(formula.names[index], place));
        if (m_keep)
            return static_cast<int>(formula.code.size());
        break;
    case Op::negate:
    case Op::plus:
    case Op::percent:
        sign(instruction, place);
        break;
    case Op::call:
        call(*formula.functions[index], instruction.count, instruction.arrayMode, place);
        break;
    case Op::callCustom:
        push(callCustom(formula.customs[index], instruction.count, place));
        if (m_keep)
            return static_cast<int>(formula.code.size());
        break;
    case Op::jumpIfFalse:
    case Op::jump:
    case Op::choose:
    case Op::jumpIfOk:
        return branch(formula, instruction, position, place);
    default:
        binary(instruction, place);
        break;
    }
    return position + 1;
}

void Evaluator::binary(const Instruction& instruction, const EvaluationPlace& place)
{
    const Operand right = pop();
    const Operand left = pop();
    if (left.isUnknown() || right.isUnknown())
        push(Operand::unknown());
    else if (instruction.op == Op::range || instruction.op == Op::intersect || instruction.op == Op::unite)
        push(combineReferences(instruction.op, left, right));
    else if (instruction.arrayMode)
        push(applyToArrays(instruction.op, left, right, place));
    else if (left.isArray() || right.isArray())
        push(applyToArrays(instruction.op, intersected(left, place), intersected(right, place), place));
    else
        push(applyOperator(instruction.op, singleValue(left, place), singleValue(right, place),
                           m_book.countsFrom1904));
}

void Evaluator::sign(const Instruction& instruction, const EvaluationPlace& place)
{
    const Operand operand = pop();
    if (instruction.op == Op::plus || operand.isUnknown())
        push(operand); // a plus keeps even a reference
    else if (instruction.arrayMode || operand.isArray())
        push(applyToArray(instruction.op, operand, place));
    else
        push(applySign(instruction.op, singleValue(operand, place), m_book.countsFrom1904));
}

int Evaluator::branch(const Formula& formula, const Instruction& instruction, int position,
                      const EvaluationPlace& place)
{
    if (instruction.op == Op::jump)
        return instruction.index;
    if (instruction.op == Op::jumpIfOk) {
        const Operand& top = m_stack.back();
        if (top.isUnknown())
            return instruction.index;
        const Value value = singleValue(top, place);
        if (!value.isError() || (instruction.count == 1 && value.error() != CellError::na))
            return instruction.index;
        pop();
        return position + 1;
    }
    const Operand top = pop();
    if (top.isUnknown()) { // neither branch is certain; what follows them is
        push(top);
        return instruction.other;
    }
    const Value taken = singleValue(top, place);
    if (instruction.op == Op::jumpIfFalse) {
        Value condition = toBoolean(taken);
        if (!condition.isError())
            return condition.boolean() ? position + 1 : instruction.index;
        push(std::move(condition));
        return instruction.other;
    }
    const Value number = toNumber(taken, m_book.countsFrom1904);
    if (number.isNumber() && number.number() >= 1 && number.number() < instruction.count + 1)
        return formula.code[static_cast<std::size_t>(position + static_cast<int>(number.number()))].index;
    push(number.isError() ? number : Value(CellError::value));
    return instruction.other;
}

Operand Evaluator::reference(const ReferenceSlot& slot, const EvaluationPlace& place) const
{
    const auto cells = slot.range(place.cell);
    if (!cells)
        return CellError::ref;
    if (slot.firstSheet == 0)
        return Area{place.sheet, *cells};
    const int first = m_book.sheetIndexOfId(slot.firstSheet);
    const int last = m_book.sheetIndexOfId(slot.lastSheet);
    if (first == 0 || last == 0)
        return CellError::ref;
    if (first == last)
        return Area{first, *cells};
    auto areas = std::make_shared<Areas>();
    for (int sheet = std::min(first, last); sheet <= std::max(first, last); ++sheet)
        areas->push_back({sheet, *cells});
    return std::shared_ptr<const Areas>(std::move(areas));
}

Operand Evaluator::named(int name, const EvaluationPlace& place)
{
    const std::uint32_t formula = m_book.formulas.names()[name].formula;
    if (formula == 0 || m_nameDepth == maxNameDepth)
        return CellError::name;
    ++m_nameDepth;
    Operand result = run(m_book.formulas[formula], place);
    --m_nameDepth;
    return result;
}

void Evaluator::call(const FunctionDescriptor& function, std::size_t count, bool arrayMode,
                     const EvaluationPlace& place)
{
    const std::span<const Operand> arguments(m_stack.data() + (m_stack.size() - count), count);
    // A volatile function would not give the same value again.
    const bool unknown =
        m_gathered && (function.has(isVolatile) || std::ranges::any_of(arguments, &Operand::isUnknown));
    Operand result = unknown ? Operand::unknown() : applied(function, arguments, arrayMode, place);
    m_stack.resize(m_stack.size() - count);
    push(std::move(result));
}

Operand Evaluator::applied(const FunctionDescriptor& function, std::span<const Operand> arguments,
                           bool arrayMode, const EvaluationPlace& place)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (goesElementwise(function, i) &&
            (arguments[i].isArray() || (arrayMode && arguments[i].isReference())))
            return callElementwise(function, arguments, arrayMode, place);
    }
    Call made(place, arguments, arrayMode);
    return answered(function, made);
}

Operand Evaluator::callElementwise(const FunctionDescriptor& function, std::span<const Operand> arguments,
                                   bool arrayMode, const EvaluationPlace& place)
{
    std::vector<std::shared_ptr<const Array>> elements(arguments.size());
    int rows = 1;
    int columns = 1;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!goesElementwise(function, i) || arguments[i].isMissing())
            continue;
        elements[i] = toArray(arrayMode ? arguments[i] : intersected(arguments[i], place), place);
        rows = std::max(rows, elements[i]->rows());
        columns = std::max(columns, elements[i]->columns());
    }
    if (!isArraySize(rows, columns))
        return CellError::value;
    auto result = std::make_shared<Array>(rows, columns);
    std::vector<Operand> single(arguments.begin(), arguments.end());
    std::size_t calls = 0;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            for (std::size_t i = 0; i < single.size(); ++i) {
                if (elements[i])
                    single[i] = elements[i]->spread(row, column);
            }
            Call made(place, single);
            Value& element = result->at(row, column);
            element = singleValue(answered(function, made), place);
            const bool asks = ++calls % callsBetweenQuestions == 0;
            if (!place.spend(effortOf(element) + costOfTexts(single)) || (asks && !place.goesOn()))
                return CellError::value;
        }
    }
    return std::shared_ptr<const Array>(std::move(result));
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
