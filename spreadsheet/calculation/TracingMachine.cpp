#include "spreadsheet/calculation/TracingMachine.h"

#include "spreadsheet/calculation/linear_rules.h"
#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>
#include <array>
#include <utility>

namespace spreadsheet {

// Every step is done by the machine that computes cells, so that branches are taken and cells found as they
// were; only what makes calls, or runs formulas within formulas, is gone through here.

namespace {

bool isConstant(Op op)
{
    return op == Op::number || op == Op::text || op == Op::boolean || op == Op::missing;
}

/// Where a custom function is called with the constants that begin at a position and nothing else; -1: it is
/// not.
int callOfConstants(const Formula& formula, int position, int end)
{
    int call = position;
    while (call < end && isConstant(formula.code[static_cast<std::size_t>(call)].op))
        ++call;
    if (call == position || call == end)
        return -1;
    const Instruction& instruction = formula.code[static_cast<std::size_t>(call)];
    const bool takesAll = static_cast<int>(instruction.count) == call - position;
    return instruction.op == Op::callCustom && takesAll ? call : -1;
}

bool isSeveral(const Operand& operand)
{
    return operand.isArray() && (operand.array().rows() > 1 || operand.array().columns() > 1);
}

FigureTrace shared(FigureElements elements)
{
    const bool depends = std::ranges::any_of(elements.parts, &FigureParts::dependsOnCalls);
    return depends ? std::make_shared<const FigureElements>(std::move(elements)) : nullptr;
}

/// An operand with a trace, or the cells of a reference, element by element.
FigureElements tracedElements(const TracedCall& call, std::size_t argument)
{
    if (call.trace(argument))
        return *call.trace(argument);
    FigureElements elements(std::max(call.rows(argument), 1), std::max(call.columns(argument), 1));
    const bool from1904 = call.place().book.countsFrom1904;
    for (int row = 0; row < elements.rows; ++row)
        for (int column = 0; column < elements.columns; ++column)
            elements.at(row, column) = asNumber(call.element(argument, row, column), from1904);
    return elements;
}

} // namespace

TracingMachine::TracingMachine(const Book& book, CallCells& cells, const CallAnswers& answers)
    : Evaluator(book)
    , m_cells(cells)
    , m_answers(answers)
    , m_effort([] { return false; })
    , m_indexes(book)
{
}

FigureTrace TracingMachine::trace(const Formula& formula, const EvaluationPlace& place)
{
    m_calls = 0;
    m_effort.beginCell();
    EvaluationPlace bounded = place;
    bounded.effort = &m_effort;
    bounded.indexes = &m_indexes;
    runTraced(formula, 0, static_cast<int>(formula.code.size()), bounded);
    const TracedCall call = traced({}, 1, m_stack.back(), bounded);
    FigureTrace found = m_traces.back();
    if (formula.isArrayFormula)
        found = call.dependsOnCalls(0) ? shared(tracedElements(call, 0)) : nullptr;
    else if (!found || found->parts.size() > 1)
        found = shared(FigureElements(call.single(0).parts));
    dropTraced(1);
    return found;
}

TracedCall TracingMachine::traced(std::string_view function, std::size_t count, const Operand& result,
                                  const EvaluationPlace& place)
{
    return {function,
            place,
            m_cells,
            {m_stack.data() + (m_stack.size() - count), count},
            {m_traces.data() + (m_traces.size() - count), count},
            result};
}

void TracingMachine::pushTraced(Operand operand, FigureTrace trace)
{
    push(std::move(operand));
    m_traces.push_back(std::move(trace));
}

void TracingMachine::dropTraced(std::size_t count)
{
    m_stack.resize(m_stack.size() - count);
    m_traces.resize(m_traces.size() - count);
}

/// Leaves one operand on the stack.
void TracingMachine::runTraced(const Formula& formula, int first, int end, const EvaluationPlace& place)
{
    const std::size_t base = m_stack.size();
    Conditions conditions;
    for (int position = first; position < end;) {
        const int call = callOfConstants(formula, position, end);
        if (call >= 0 && (conditions.empty() || conditions.back() > call)) {
            answerTraced(formula, formula.code[static_cast<std::size_t>(call)], false, place);
            position = call + 1;
            continue;
        }
        position = stepTraced(formula, formula.code[static_cast<std::size_t>(position)], position, place,
                              conditions);
        for (; !conditions.empty() && position >= conditions.back(); conditions.pop_back())
            markTop(place);
    }
    if (m_stack.size() == base)
        return pushTraced({});
    if (m_stack.size() == base + 1)
        return;
    Operand result = std::move(m_stack.back());
    FigureTrace trace = std::move(m_traces.back());
    dropTraced(m_stack.size() - base);
    pushTraced(std::move(result), std::move(trace));
}

int TracingMachine::stepTraced(const Formula& formula, const Instruction& instruction, int position,
                               const EvaluationPlace& place, Conditions& conditions)
{
    const auto index = static_cast<std::size_t>(instruction.index);
    switch (instruction.op) {
    case Op::number:
    case Op::text:
    case Op::boolean:
    case Op::error:
    case Op::missing:
    case Op::array:
    case Op::reference:
        step(formula, instruction, position, place);
        m_traces.emplace_back();
        break;
    case Op::name:
        nameTraced(formula.names[index], place);
        break;
    case Op::call:
        callTraced(*formula.functions[index], instruction.count, instruction.arrayMode, place);
        break;
    case Op::callCustom:
        customTraced(formula, instruction, place);
        break;
    case Op::jumpIfFalse:
    case Op::jump:
    case Op::choose:
    case Op::jumpIfOk:
    case Op::jumpIfUnequal:
        return branchTraced(formula, instruction, position, place, conditions);
    case Op::dropBelow:
        step(formula, instruction, position, place);
        m_traces.erase(m_traces.end() - 2);
        break;
    default:
        operatorTraced(formula, instruction, position, place);
        break;
    }
    return position + 1;
}

void TracingMachine::nameTraced(int name, const EvaluationPlace& place)
{
    const std::uint32_t formula = m_book.formulas.names()[name].formula;
    if (formula == 0 || m_nameDepth == maxNameDepth)
        return pushTraced(CellError::name);
    ++m_nameDepth;
    const Formula& meant = m_book.formulas[formula];
    runTraced(meant, 0, static_cast<int>(meant.code.size()), place);
    --m_nameDepth;
}

void TracingMachine::operatorTraced(const Formula& formula, const Instruction& instruction, int position,
                                    const EvaluationPlace& place)
{
    const bool isSign =
        instruction.op == Op::negate || instruction.op == Op::plus || instruction.op == Op::percent;
    const std::size_t count = isSign ? 1 : 2;
    std::array<Operand, 2> operands;
    std::array<FigureTrace, 2> traces;
    std::copy(m_stack.end() - static_cast<std::ptrdiff_t>(count), m_stack.end(), operands.begin());
    std::move(m_traces.end() - static_cast<std::ptrdiff_t>(count), m_traces.end(), traces.begin());
    step(formula, instruction, position, place);
    m_traces.resize(m_stack.size() - 1);
    const Operand& result = m_stack.back();
    const TracedCall call(operatorText(instruction.op), place, m_cells, std::span(operands).first(count),
                          std::span(traces).first(count), result);
    m_traces.push_back(operatorTrace(instruction, call, result));
}

FigureTrace TracingMachine::operatorTrace(const Instruction& instruction, const TracedCall& call,
                                          const Operand& result) const
{
    if (result.isReference() || instruction.op == Op::range || instruction.op == Op::intersect ||
        instruction.op == Op::unite)
        return instruction.op == Op::plus ? call.trace(0) : nullptr;
    const bool from1904 = m_book.countsFrom1904;
    const auto combined = [&](TracedCall::Element left, auto&& right, const Value& value) {
        return call.count() == 1 ? partsOfSign(instruction.op, asNumber(std::move(left), from1904))
                                 : partsOfOperator(instruction.op, std::move(left), right(), value, from1904);
    };
    if (!isSeveral(result)) {
        const auto right = [&] { return call.single(1); };
        return shared(FigureElements(combined(call.single(0), right, call.result())));
    }
    if (!call.dependsOnCalls(0) && (call.count() == 1 || !call.dependsOnCalls(1)))
        return nullptr;
    FigureElements elements(result.array().rows(), result.array().columns());
    for (int row = 0; row < elements.rows; ++row)
        for (int column = 0; column < elements.columns; ++column) {
            const auto right = [&] { return call.taken(1, row, column, instruction.arrayMode); };
            elements.at(row, column) = combined(call.taken(0, row, column, instruction.arrayMode), right,
                                                result.array().at(row, column));
        }
    return shared(std::move(elements));
}

void TracingMachine::callTraced(const FunctionDescriptor& function, std::size_t count, bool arrayMode,
                                const EvaluationPlace& place)
{
    const std::span<const Operand> arguments(m_stack.data() + (m_stack.size() - count), count);
    Operand result = applied(function, arguments, arrayMode, place);
    FigureTrace trace = traceOf(function, traced(function.name, count, result, place), arrayMode, result);
    dropTraced(count);
    pushTraced(std::move(result), std::move(trace));
}

FigureTrace TracingMachine::traceOf(const FunctionDescriptor& function, const TracedCall& call,
                                    bool arrayMode, const Operand& result)
{
    if (function.has(placesOnly) || function.has(asksNoValues))
        return nullptr;
    if (result.isReference()) {
        if (!searchDependsOnCalls(call))
            return nullptr;
        return shared(FigureElements(call.nonlinear()));
    }
    bool depends = false;
    for (std::size_t argument = 0; argument < call.count(); ++argument)
        depends = call.dependsOnCalls(argument) || depends;
    if (!depends)
        return nullptr;
    if (m_lastFunction != &function) { // columns of formulas call one
        m_lastFunction = &function;
        m_lastRule = linearRule(function.name);
    }
    const LinearRule* const rule = m_lastRule;
    if (!rule || (!rule->ofEach && isSeveral(result)))
        return shared(FigureElements(call.nonlinear()));
    if (!isSeveral(result))
        return shared(FigureElements(rule->parts(call)));
    FigureElements elements(result.array().rows(), result.array().columns());
    std::vector<Operand> operands(call.count());
    std::vector<FigureTrace> traces(call.count());
    for (int row = 0; row < elements.rows; ++row)
        for (int column = 0; column < elements.columns; ++column) {
            for (std::size_t argument = 0; argument < call.count(); ++argument) {
                TracedCall::Element element = call.taken(argument, row, column, arrayMode);
                operands[argument] = element.value;
                traces[argument] = shared(FigureElements(std::move(element.parts)));
            }
            const Operand value = result.array().at(row, column);
            elements.at(row, column) =
                rule->parts(TracedCall(function.name, call.place(), m_cells, operands, traces, value));
        }
    return shared(std::move(elements));
}

/// Its parameters do not show in the sum: what they are made of only decides which call it is.
void TracingMachine::customTraced(const Formula& formula, const Instruction& instruction,
                                  const EvaluationPlace& place)
{
    const TracedCall call = traced({}, instruction.count, m_nothing, place);
    bool isByCondition = false;
    for (std::size_t argument = 0; argument < call.count(); ++argument)
        isByCondition = call.singleDependsOnCalls(argument) || isByCondition;
    dropTraced(instruction.count);
    answerTraced(formula, instruction, isByCondition, place);
}

/// What a call of a custom function handed back in the last calculation.
void TracingMachine::answerTraced(const Formula& formula, const Instruction& instruction, bool isByCondition,
                                  const EvaluationPlace& place)
{
    const int custom = formula.customs[static_cast<std::size_t>(instruction.index)];
    if (!m_book.formulas.customs()[custom].handler)
        return pushTraced(CellError::name);
    FigurePart part;
    part.kind = FigurePart::Kind::call;
    part.isByCondition = isByCondition;
    part.call = m_calls++;
    FigureParts parts;
    parts.parts.push_back(part);
    pushTraced(m_answers({place.sheet, place.cell.column, place.cell.row}, part.call),
               shared(FigureElements(std::move(parts))));
}

int TracingMachine::branchTraced(const Formula& formula, const Instruction& instruction, int position,
                                 const EvaluationPlace& place, Conditions& conditions)
{
    if (instruction.op == Op::jump)
        return instruction.index;
    const std::size_t asked = instruction.op == Op::jumpIfUnequal ? 2 : 1;
    const TracedCall call = traced({}, asked, m_stack.back(), place);
    bool depends = false;
    for (std::size_t operand = 0; operand < asked; ++operand) {
        if (chooses(call.operand(operand), instruction))
            return branchesTraced(formula, instruction, position, place);
        depends = call.singleDependsOnCalls(operand) || depends;
    }
    const std::size_t before = m_stack.size();
    const int next = branch(formula, instruction, position, place);
    m_traces.resize(m_stack.size());
    const bool isKept = instruction.op == Op::jumpIfOk && m_stack.size() == before;
    if (m_stack.size() == before && !isKept) // an error in the condition's place
        m_traces.back() = nullptr;
    if (depends && isKept)
        markTop(place);
    else if (depends)
        conditions.push_back(instruction.op == Op::jumpIfOk ? instruction.index : instruction.other);
    return next;
}

/// Where the condition is an array, see Evaluator::everyBranch.
int TracingMachine::branchesTraced(const Formula& formula, const Instruction& instruction, int position,
                                   const EvaluationPlace& place)
{
    const std::size_t base = m_stack.size() - (instruction.op == Op::jumpIfUnequal ? 2 : 1);
    const Branches branches = branchesOf(formula, instruction, position);
    for (const auto& [first, end] : branches.parts)
        runTraced(formula, first, end, place);
    const std::size_t count = m_stack.size() - base;
    if (instruction.op == Op::jumpIfUnequal) { // which case an element takes is nothing that adds up
        FigureParts parts = traced("SWITCH", count, m_stack.back(), place).nonlinear();
        dropTraced(count);
        pushTraced(CellError::value, shared(FigureElements(std::move(parts))));
        return branches.end;
    }
    callTraced(*formula.functions[static_cast<std::size_t>(branches.function)], count, true, place);
    return branches.end;
}

/// What a condition has let through counts by condition.
void TracingMachine::markTop(const EvaluationPlace& place)
{
    const TracedCall call = traced({}, 1, m_stack.back(), place);
    if (!call.dependsOnCalls(0))
        return;
    FigureElements elements = tracedElements(call, 0);
    for (FigureParts& parts : elements.parts)
        parts.setByCondition();
    m_traces.back() = shared(std::move(elements));
}

} // namespace spreadsheet
