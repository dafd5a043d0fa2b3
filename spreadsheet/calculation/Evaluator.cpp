#include "spreadsheet/calculation/Evaluator.h"

#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/FunctionDescriptor.h"
#include "spreadsheet/formula/NameTable.h"
#include "spreadsheet/values/coercion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace spreadsheet {

// One machine runs each formula in two ways: to compute it, and, before the calls to registered functions are
// made, to find those that are certain. What is not known then is an operand of its own kind that every step
// hands on, so both ways go through the same steps and cannot come apart.

namespace {

/// Calls for the elements of an array, each of which may itself go through a large one.
constexpr std::size_t callsBetweenQuestions = 64;

/// Outside array mode arrays still go through element by element, ranges beside them do not.
Operand intersected(const Operand& operand, const EvaluationPlace& place)
{
    return operand.isReference() ? Operand(singleValue(operand, place)) : operand;
}

/// Whether an operand is gone through element by element where a single value is asked for. A single cell
/// is a value like any other, also in array mode: INDEX(A1:B9,0,C1) gives a column there, too.
bool holdsSeveral(const Operand& operand, bool arrayMode)
{
    if (operand.isArray())
        return operand.array().rows() > 1 || operand.array().columns() > 1;
    if (operand.isArea())
        return arrayMode && !operand.area().cells.isOneCell();
    return operand.isReferenceArray() || (arrayMode && operand.isAreas());
}

/// Whether a function asks for a single value. IF and its like do, although what they choose from may be
/// whole ranges.
bool takesValue(const FunctionDescriptor& function, std::size_t argument)
{
    return function.kind(argument) == 'v' || function.has(branches);
}

/// The same, or for a reference of its own.
bool takesEach(const FunctionDescriptor& function, std::size_t argument, const Operand& operand)
{
    return takesValue(function, argument) || (operand.isReferenceArray() && function.kind(argument) == 'c');
}

/// What references in an array stand for where nobody asks for them themselves.
Operand withoutReferences(Operand operand, const EvaluationPlace& place)
{
    if (operand.isReferenceArray())
        return toArray(operand, place);
    return operand;
}

/// Element by element, references as such if `keepsReferences`.
class Elements {
public:
    Elements(const Operand& operand, bool keepsReferences, const EvaluationPlace& place)
        : m_operand(operand)
        , m_array(keepsReferences && operand.isReferenceArray() ? nullptr : toArray(operand, place))
    {
    }
    int rows() const { return m_array ? m_array->rows() : m_operand.referenceArray().rows(); }
    int columns() const { return m_array ? m_array->columns() : m_operand.referenceArray().columns(); }
    Operand at(int row, int column) const
    {
        if (m_array)
            return m_array->spread(row, column);
        row = rows() == 1 ? 0 : row;
        column = columns() == 1 ? 0 : column;
        const bool inside = row < rows() && column < columns();
        return inside ? m_operand.referenceArray().at(row, column) : Operand(CellError::na);
    }

private:
    Operand m_operand;
    std::shared_ptr<const Array> m_array;
};

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

/// What a call comes to; an array that it makes counts against what its cell may spend. There are no infinite
/// numbers.
Operand answered(const FunctionDescriptor& function, Call& call)
{
    Operand result = answer(function, call);
    if (result.isValue() && result.value().isNumber() && !std::isfinite(result.value().number()))
        return CellError::num;
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
    if (m_keep || result.isUnknown())
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
    return m_keep || result.isUnknown() ? nullptr : toArray(result, place);
}

Operand Evaluator::run(const Formula& formula, const EvaluationPlace& place)
{
    return runPart(formula, 0, static_cast<int>(formula.code.size()), place);
}

Operand Evaluator::runPart(const Formula& formula, int first, int end, const EvaluationPlace& place)
{
    const std::size_t base = m_stack.size();
    for (int position = first; position < end;)
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
        push(m_guard && instruction.other == 0 ? guarded(formula, instruction.index, place)
                                               : reference(formula.slots[index], place));
        break;
    case Op::name:
        push(instruction.other == 0 ? named(formula.names[index], place)
                                    : namedPlace(formula.names[index], place));
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
    case Op::jumpIfUnequal:
        return branch(formula, instruction, position, place);
    case Op::dropBelow: {
        Operand top = pop();
        m_stack.back() = std::move(top);
        break;
    }
    default:
        binary(instruction, place);
        break;
    }
    return position + 1;
}

void Evaluator::binary(const Instruction& instruction, const EvaluationPlace& place)
{
    const Operand right = withoutReferences(pop(), place);
    const Operand left = withoutReferences(pop(), place);
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
    const Operand operand = withoutReferences(pop(), place);
    if (instruction.op == Op::plus || operand.isUnknown())
        push(operand); // a plus keeps even a reference
    else if (instruction.arrayMode || operand.isArray())
        push(applyToArray(instruction.op, operand, place));
    else
        push(applySign(instruction.op, singleValue(operand, place), m_book.countsFrom1904));
}

/// Whether a condition is one for each element.
bool Evaluator::chooses(const Operand& operand, const Instruction& instruction) const
{
    return holdsSeveral(operand, instruction.arrayMode);
}

int Evaluator::branch(const Formula& formula, const Instruction& instruction, int position,
                      const EvaluationPlace& place)
{
    if (instruction.op == Op::jump)
        return instruction.index;
    if (instruction.op == Op::jumpIfUnequal)
        return branchOnEquality(formula, instruction, position, place);
    if (chooses(m_stack.back(), instruction))
        return everyBranch(formula, instruction, position, place);
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

int Evaluator::branchOnEquality(const Formula& formula, const Instruction& instruction, int position,
                                const EvaluationPlace& place)
{
    const Operand candidate = pop();
    const Operand wanted = m_stack.back();
    if (wanted.isUnknown() || candidate.isUnknown()) {
        m_stack.back() = Operand::unknown();
        return instruction.other;
    }
    if (chooses(candidate, instruction) || chooses(wanted, instruction)) {
        m_stack.back() = instruction.arrayMode ? applyToArrays(Op::equal, wanted, candidate, place)
                                               : applyToArrays(Op::equal, intersected(wanted, place),
                                                               intersected(candidate, place), place);
        push(wanted); // for the cases that follow
        return everyBranch(formula, instruction, position, place);
    }
    const Value equal = applyOperator(Op::equal, singleValue(wanted, place), singleValue(candidate, place),
                                      m_book.countsFrom1904);
    if (equal.isError()) {
        m_stack.back() = equal;
        return instruction.other;
    }
    if (!equal.boolean())
        return instruction.index;
    pop();
    return position + 1;
}

/// Where the condition is an array, any branch may be wanted by some element. They are run one after the
/// other on top of it, and then the function is called with all of them.
int Evaluator::everyBranch(const Formula& formula, const Instruction& instruction, int position,
                           const EvaluationPlace& place)
{
    const bool hasCases = instruction.op == Op::jumpIfUnequal;
    const std::size_t base = m_stack.size() - (hasCases ? 2 : 1);
    const Branches branches = branchesOf(formula, instruction, position);
    Operand wanted = hasCases ? pop() : Operand();
    for (const auto& [first, end] : branches.parts) {
        if (!m_keep)
            push(runPart(formula, first, end, place));
    }
    if (hasCases) { // those that follow stand on the value, and leave theirs in its place
        push(std::move(wanted));
        for (int next = instruction.index; next < branches.end;)
            next = step(formula, formula.code[static_cast<std::size_t>(next)], next, place);
    }
    if (m_keep) {
        m_stack.resize(base);
        return static_cast<int>(formula.code.size());
    }
    call(*formula.functions[static_cast<std::size_t>(branches.function)], m_stack.size() - base, true, place);
    return branches.end;
}

Evaluator::Branches Evaluator::branchesOf(const Formula& formula, const Instruction& instruction,
                                          int position)
{
    const int end = instruction.other;
    if (instruction.op == Op::jumpIfOk)
        return {instruction.other, instruction.index, {{position + 1, instruction.index}}};
    if (instruction.op == Op::jumpIfFalse)
        return {instruction.count, end, {{position + 1, instruction.index - 1}, {instruction.index, end}}};
    if (instruction.op == Op::jumpIfUnequal)
        return {instruction.count, end, {{position + 1, instruction.index - 1}}};
    Branches branches{instruction.index, end, {}};
    // Each case ends with its jump, right before the next one or the table.
    const auto start = [&](int number) {
        return number > instruction.count ? position
                                          : formula.code[static_cast<std::size_t>(position + number)].index;
    };
    for (int number = 1; number <= instruction.count; ++number)
        branches.parts.emplace_back(start(number), start(number + 1) - 1);
    return branches;
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

/// A reference whose cells are to be read, in cells whose order shows only now.
Operand Evaluator::guarded(const Formula& formula, int slot, const EvaluationPlace& place)
{
    Operand operand = reference(formula.slots[static_cast<std::size_t>(slot)], place);
    ReadGuard::Answer worst = ReadGuard::Answer::read;
    for (Area area : operand.areas()) {
        for (const Formula::Widened& widened : formula.widened) {
            const auto like = formula.slots[static_cast<std::size_t>(widened.like)].range(place.cell);
            if (widened.slot != slot || !like)
                continue;
            area.cells.right = std::max(area.cells.right, area.cells.left + like->columns() - 1);
            area.cells.bottom = std::max(area.cells.bottom, area.cells.top + like->rows() - 1);
        }
        const ReadGuard::Answer answer = m_guard->beforeReading(area);
        if (worst != ReadGuard::Answer::wait && answer != ReadGuard::Answer::read)
            worst = answer;
    }
    if (worst == ReadGuard::Answer::wait)
        return Operand::unknown();
    return worst == ReadGuard::Answer::circle ? Operand(CellError::ref) : operand;
}

/// A name that is asked where its cells are.
Operand Evaluator::namedPlace(int name, const EvaluationPlace& place)
{
    ReadGuard* const guard = std::exchange(m_guard, nullptr);
    Operand result = named(name, place);
    m_guard = guard;
    return result;
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
    const bool unknown = (m_gathered && function.has(isVolatile)) ||
                         ((m_gathered || m_guard) && std::ranges::any_of(arguments, &Operand::isUnknown));
    Operand result = unknown ? Operand::unknown() : applied(function, arguments, arrayMode, place);
    m_stack.resize(m_stack.size() - count);
    push(std::move(result));
}

Operand Evaluator::applied(const FunctionDescriptor& function, std::span<const Operand> arguments,
                           bool arrayMode, const EvaluationPlace& place)
{
    bool referenceArrays = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (holdsSeveral(arguments[i], arrayMode) && takesEach(function, i, arguments[i]))
            return callElementwise(function, arguments, arrayMode, place);
        referenceArrays = referenceArrays || arguments[i].isReferenceArray();
    }
    if (referenceArrays) {
        std::vector<Operand> plain(arguments.begin(), arguments.end());
        for (Operand& argument : plain)
            argument = withoutReferences(std::move(argument), place);
        Call made(place, plain, arrayMode);
        return answered(function, made);
    }
    Call made(place, arguments, arrayMode);
    return answered(function, made);
}

Operand Evaluator::callElementwise(const FunctionDescriptor& function, std::span<const Operand> arguments,
                                   bool arrayMode, const EvaluationPlace& place)
{
    std::vector<std::optional<Elements>> elements(arguments.size());
    std::vector<Operand> single(arguments.begin(), arguments.end());
    int rows = 1;
    int columns = 1;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i].isMissing())
            continue;
        if (!takesEach(function, i, arguments[i])) {
            single[i] = withoutReferences(std::move(single[i]), place);
            continue;
        }
        elements[i].emplace(arrayMode ? arguments[i] : intersected(arguments[i], place),
                            function.kind(i) == 'c', place);
        rows = std::max(rows, elements[i]->rows());
        columns = std::max(columns, elements[i]->columns());
    }
    if (!isArraySize(rows, columns))
        return CellError::value;
    // What OFFSET and INDIRECT find may be asked for as a reference.
    const auto references =
        function.has(readsUnlisted) ? std::make_shared<ReferenceArray>(rows, columns) : nullptr;
    auto result = std::make_shared<Array>(references ? 0 : rows, references ? 0 : columns);
    KeptNumbers kept;
    std::size_t calls = 0;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            for (std::size_t i = 0; i < single.size(); ++i) {
                if (elements[i])
                    single[i] = elements[i]->at(row, column);
            }
            Call made(place, single, false, &kept);
            Operand answer = answered(function, made);
            std::size_t effort = 1;
            if (references)
                references->at(row, column) = std::move(answer);
            else
                effort = effortOf(result->at(row, column) = singleValue(answer, place));
            const bool asks = ++calls % callsBetweenQuestions == 0;
            if (!place.spend(effort + costOfTexts(single)) || (asks && !place.goesOn()))
                return CellError::value;
        }
    }
    if (references)
        return std::shared_ptr<const ReferenceArray>(references);
    return std::shared_ptr<const Array>(std::move(result));
}

} // namespace spreadsheet
