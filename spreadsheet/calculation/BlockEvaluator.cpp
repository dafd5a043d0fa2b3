#include "spreadsheet/calculation/BlockEvaluator.h"

#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/values/cancellation.h"

#include <algorithm>
#include <cfloat>
#include <cstring>

namespace spreadsheet {

// Formulas filled down a column differ only in their row, so what costs time in the stack machine, looking at
// each step, is done once for 512 cells here and the loops are left to the compiler's vectors. The machine
// stays the one that decides: a block with anything but plain numbers, or with a result that is not finite,
// goes there whole, so that there is one rule for texts, errors and overflow.

namespace {

struct Add {
    static double apply(double a, double b) { return cancelled(a + b, a); }
};
struct Subtract {
    static double apply(double a, double b) { return cancelled(a - b, a); }
};
struct Multiply {
    static double apply(double a, double b) { return a * b; }
};
struct Divide {
    static double apply(double a, double b) { return a / b; }
};

/// The result may lie where the left side lies: every row is read before it is written.
template <typename Operation>
void combine(const double* left, double leftConstant, const double* right, double rightConstant,
             double* result, int count)
{
    if (left && right) {
#pragma GCC ivdep
        for (int i = 0; i < count; ++i)
            result[i] = Operation::apply(left[i], right[i]);
    } else if (left) {
#pragma GCC ivdep
        for (int i = 0; i < count; ++i)
            result[i] = Operation::apply(left[i], rightConstant);
    } else {
#pragma GCC ivdep
        for (int i = 0; i < count; ++i)
            result[i] = Operation::apply(leftConstant, right[i]);
    }
}

bool allFinite(const double* numbers, int count)
{
    double sum = 0; // stays 0, or turns into no number
    for (int i = 0; i < count; ++i)
        sum += numbers[i] * 0.0;
    return sum == 0;
}

bool noneZero(const double* numbers, int count)
{
    int zeros = 0;
    for (int i = 0; i < count; ++i)
        zeros += numbers[i] == 0.0;
    return zeros == 0;
}

bool numbersOrEmpty(const ValueKind* kinds, int count)
{
    unsigned char all = 0;
    for (int i = 0; i < count; ++i)
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(kinds[i]));
    return all <= static_cast<unsigned char>(ValueKind::number);
}

constexpr std::array<double, BlockEvaluator::blockRows> zeros{};

} // namespace

void BlockEvaluator::begin(const Formula& formula, int sheet, int column)
{
    m_formula = &formula;
    m_inputs.clear();
    for (const ReferenceSlot& slot : formula.slots) {
        Input input;
        const int at = slot.left.at(column);
        const int index = slot.firstSheet == 0 ? sheet : m_book.sheetIndexOfId(slot.firstSheet);
        input.broken = at < 1 || at > maxColumns || index == 0;
        if (!input.broken)
            input.column = m_book.sheet(index).column(at);
        input.row = slot.top;
        m_inputs.push_back(input);
    }
    const auto depth = static_cast<std::size_t>(formula.stackDepth) + 1;
    while (m_buffers.size() < depth)
        m_buffers.push_back(std::make_unique<std::array<double, blockRows>>());
    m_lanes.resize(std::max(m_lanes.size(), depth));
    m_scalars.resize(std::max(m_scalars.size(), depth));
}

bool BlockEvaluator::load(Input& input, int firstRow, int count, double* buffer, Lane& lane)
{
    const int first = input.row.at(firstRow);
    const int last = input.row.absolute ? first : first + count - 1;
    if (input.broken || first < 1 || last > maxRows)
        return false;
    if (input.row.absolute) {
        lane = {};
        return loadOne(input, firstRow, lane.constant);
    }
    lane.data = zeros.data();
    if (!input.column)
        return true;
    const auto& slots = input.column->slots();
    std::size_t at = input.column->lowerSlot(first);
    if (at == slots.size() || slots[at].firstRow > last)
        return true;
    const Column::Slot& slot = slots[at];
    if (slot.firstRow <= first && slot.lastRow() >= last) { // the usual case: used where it lies
        const int offset = first - slot.firstRow;
        lane.data = reinterpret_cast<const double*>(slot.block->payloads()) + offset;
        return numbersOrEmpty(slot.block->kinds() + offset, count);
    }
    std::fill_n(buffer, count, 0.0);
    for (; at < slots.size() && slots[at].firstRow <= last; ++at) {
        const int from = std::max(first, slots[at].firstRow);
        const int to = std::min(last, slots[at].lastRow());
        const int offset = from - slots[at].firstRow;
        if (!numbersOrEmpty(slots[at].block->kinds() + offset, to - from + 1))
            return false;
        std::memcpy(buffer + (from - first), slots[at].block->payloads() + offset,
                    static_cast<std::size_t>(to - from + 1) * sizeof(double));
    }
    lane.data = buffer;
    return true;
}

bool BlockEvaluator::loadOne(Input& input, int row, double& value)
{
    const int at = input.row.at(row);
    value = 0;
    if (input.broken || at < 1 || at > maxRows)
        return false;
    if (!input.column)
        return true;
    const auto& slots = input.column->slots();
    if (input.slot >= slots.size() || slots[input.slot].firstRow > at || slots[input.slot].lastRow() < at) {
        input.slot = input.column->lowerSlot(at);
        if (input.slot == slots.size() || slots[input.slot].firstRow > at)
            return true;
    }
    const Column::Slot& slot = slots[input.slot];
    const int offset = at - slot.firstRow;
    value = slot.block->payloads()[offset].number;
    return slot.block->kinds()[offset] <= ValueKind::number;
}

bool BlockEvaluator::operate(Op op, Lane& left, const Lane& right, double* result, int count)
{
    if (op == Op::divide) {
        if (right.data ? !noneZero(right.data, count) || !allFinite(right.data, count)
                       : right.constant == 0 || !std::isfinite(right.constant))
            return false;
    }
    if (!left.data && !right.data) {
        const double a = left.constant;
        const double b = right.constant;
        left.constant = op == Op::add        ? Add::apply(a, b)
                        : op == Op::subtract ? Subtract::apply(a, b)
                        : op == Op::multiply ? a * b
                                             : a / b;
        return true;
    }
    const auto with = [&](auto operation) {
        combine<decltype(operation)>(left.data, left.constant, right.data, right.constant, result, count);
    };
    if (op == Op::add)
        with(Add());
    else if (op == Op::subtract)
        with(Subtract());
    else if (op == Op::multiply)
        with(Multiply());
    else
        with(Divide());
    left.data = result;
    return true;
}

const double* BlockEvaluator::rows(int firstRow, int count)
{
    std::size_t depth = 0; // operands on the stack
    for (const Instruction& instruction : m_formula->code) {
        const auto index = static_cast<std::size_t>(instruction.index);
        switch (instruction.op) {
        case Op::number:
            m_lanes[depth++] = {nullptr, m_formula->numbers[index]};
            break;
        case Op::reference:
            if (!load(m_inputs[index], firstRow, count, buffer(depth), m_lanes[depth]))
                return nullptr;
            ++depth;
            break;
        case Op::negate:
            if (!operate(Op::multiply, m_lanes[depth - 1], {nullptr, -1.0}, buffer(depth - 1), count))
                return nullptr;
            break;
        case Op::percent:
            if (!operate(Op::divide, m_lanes[depth - 1], {nullptr, 100.0}, buffer(depth - 1), count))
                return nullptr;
            break;
        default:
            --depth;
            if (!operate(instruction.op, m_lanes[depth - 1], m_lanes[depth], buffer(depth - 1), count))
                return nullptr;
        }
    }
    Lane& result = m_lanes[0];
    if (!result.data) {
        std::fill_n(buffer(0), count, result.constant);
        result.data = buffer(0);
    }
    return allFinite(result.data, count) ? result.data : nullptr;
}

bool BlockEvaluator::single(int row, double& result)
{
    double* top = m_scalars.data();
    for (const Instruction& instruction : m_formula->code) {
        const auto index = static_cast<std::size_t>(instruction.index);
        switch (instruction.op) {
        case Op::number:
            *top++ = m_formula->numbers[index];
            break;
        case Op::reference:
            if (!loadOne(m_inputs[index], row, *top++))
                return false;
            break;
        case Op::negate:
            top[-1] = -top[-1];
            break;
        case Op::percent:
            top[-1] /= 100;
            break;
        case Op::add:
            --top;
            top[-1] = Add::apply(top[-1], *top);
            break;
        case Op::subtract:
            --top;
            top[-1] = Subtract::apply(top[-1], *top);
            break;
        case Op::multiply:
            --top;
            top[-1] *= *top;
            break;
        default:
            --top;
            if (*top == 0 || !std::isfinite(*top))
                return false;
            top[-1] /= *top;
        }
    }
    result = m_scalars[0];
    return std::isfinite(result);
}

} // namespace spreadsheet
