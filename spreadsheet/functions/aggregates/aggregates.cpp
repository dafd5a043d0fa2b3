#include "spreadsheet/functions/aggregates/aggregates.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/LookupIndexes.h"
#include "spreadsheet/values/CompensatedSum.h"

namespace spreadsheet {

// Most cells of a report are sums, many over ranges that begin in the same cell and grow. So numbers are
// handed on as spans of a block, never one by one, and a long range asks first whether the recalculation
// keeps the state of a shorter one.

namespace {

template <typename State>
void addArea(const EvaluationPlace& place, const Area& area, State& state)
{
    forEachStretch(place.book, area, [&](const CellStretch& stretch) { state.add(stretch); });
}

/// True if a former state may serve this call: long ranges while a recalculation runs.
bool worthKeeping(const EvaluationPlace& place, const Area& area)
{
    return place.indexes && area.cells.rows() >= LookupIndexes::shortestRange;
}

/// Total or Extremes over all arguments; the call fails with the first error among them.
template <typename State>
State gathered(Call& call)
{
    if (call.count() == 1 && call[0].isArea() && worthKeeping(call.place(), call[0].area())) {
        const State& state = call.place().indexes->over<State>(call[0].area());
        if (state.error)
            call.fail(*state.error);
        return state;
    }
    State state;
    for (std::size_t argument = 0; argument < call.count(); ++argument)
        call.eachNumbers(argument, [&](std::span<const double> numbers) { state.add(numbers); });
    return state;
}

/// Calls `use(span, span)`-like work on rows of numbers: one argument's column piece as numbers, what is
/// no number as 0. Sticks at errors.
void readNumbers(Call& call, std::size_t argument, int row, int column, std::span<double> numbers)
{
    std::ranges::fill(numbers, 0.0);
    const Operand& operand = call[argument];
    if (!operand.isArea()) {
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            const Value value = call.element(argument, row + static_cast<int>(i), column);
            if (value.isError())
                call.fail(value.error());
            numbers[i] = countedNumber(value).value_or(0);
        }
        return;
    }
    const Area& area = operand.area();
    const int left = area.cells.left + column;
    const int top = area.cells.top + row;
    const Area piece{area.sheet, {left, top, left, top + static_cast<int>(numbers.size()) - 1}};
    forEachStretch(call.place().book, piece, [&](const CellStretch& stretch) {
        double* const target = numbers.data() + (stretch.firstRow - top);
        if (holdsOnlyNumbers(stretch)) {
            std::ranges::copy(numbersOf(stretch), target);
            return;
        }
        for (int i = 0; i < stretch.count; ++i) {
            const Value value = stretch.value(i);
            if (value.isError())
                call.fail(value.error());
            target[i] = countedNumber(value).value_or(0);
        }
    });
}

/// Rows and columns of all arguments, which must agree; what lies beyond the used part of a reference
/// is 0 and left out.
std::optional<CellRange> commonShape(Call& call)
{
    CellRange shape{1, 1, call.columns(0), call.rows(0)};
    CellRange used = shape;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        const Operand& operand = call[argument];
        if (operand.isValue() && operand.value().isError())
            call.fail(operand.value().error());
        if (operand.isAreas() || call.rows(argument) != shape.rows() ||
            call.columns(argument) != shape.columns()) {
            call.fail(CellError::value);
            return std::nullopt;
        }
        if (operand.isArea()) {
            const CellRange part = usedPart(call.place().book, operand.area());
            used.right = std::min(used.right, part.columns());
            used.bottom = std::min(used.bottom, part.rows());
        }
    }
    return used;
}

} // namespace

Operand sum(Call& call)
{
    const Total total = gathered<Total>(call);
    return call.failed() ? call.error() : checked(total.sum.total());
}

Operand average(Call& call)
{
    const Total total = gathered<Total>(call);
    if (call.failed())
        return call.error();
    if (total.count == 0)
        return CellError::div0;
    return checked(total.sum.total() / static_cast<double>(total.count));
}

Operand smallest(Call& call)
{
    const Extremes extremes = gathered<Extremes>(call);
    return call.failed() ? call.error() : Operand(extremes.any() ? extremes.smallest : 0);
}

Operand largest(Call& call)
{
    const Extremes extremes = gathered<Extremes>(call);
    return call.failed() ? call.error() : Operand(extremes.any() ? extremes.largest : 0);
}

Operand product(Call& call)
{
    double result = 1;
    bool any = false;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        call.eachNumber(argument, [&](double number) {
            result *= number;
            any = true;
        });
    }
    return call.failed() ? call.error() : checked(any ? result : 0);
}

Operand sumOfSquares(Call& call)
{
    CompensatedSum squares;
    for (std::size_t argument = 0; argument < call.count(); ++argument)
        call.eachNumber(argument, [&](double number) { squares.add(number * number); });
    return call.failed() ? call.error() : checked(squares.total());
}

Operand sumProduct(Call& call)
{
    const auto shape = commonShape(call);
    if (call.failed())
        return call.error();
    constexpr int piece = CellBlock::maxCells;
    double products[piece];
    double factors[piece];
    CompensatedSum total;
    for (int column = 0; column < shape->columns(); ++column) {
        for (int row = 0; row < shape->rows(); row += piece) {
            const auto count = static_cast<std::size_t>(std::min(piece, shape->rows() - row));
            readNumbers(call, 0, row, column, {products, count});
            for (std::size_t argument = 1; argument < call.count(); ++argument) {
                readNumbers(call, argument, row, column, {factors, count});
                for (std::size_t i = 0; i < count; ++i)
                    products[i] *= factors[i];
            }
            total.add(std::span<const double>(products, count));
        }
    }
    return call.failed() ? call.error() : checked(total.total());
}

Operand countNumbers(Call& call)
{
    std::size_t count = 0;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        const Operand& operand = call[argument];
        if (operand.isArea() && worthKeeping(call.place(), operand.area())) {
            count += call.place().indexes->over<Counts>(operand.area()).numbers;
        } else if (operand.isReference()) {
            Counts counts;
            for (const Area& area : operand.areas())
                addArea(call.place(), area, counts);
            count += counts.numbers;
        } else if (operand.isArray()) {
            call.eachValue(argument, [&](const Value& value) { count += countedNumber(value).has_value(); });
        } else {
            count += !toNumber(call.value(argument)).isError();
        }
    }
    return static_cast<double>(count);
}

Operand countFilled(Call& call)
{
    std::size_t count = 0;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        const Operand& operand = call[argument];
        if (operand.isArea() && worthKeeping(call.place(), operand.area())) {
            count += call.place().indexes->over<Counts>(operand.area()).filled;
        } else if (operand.isReference()) {
            Counts counts;
            for (const Area& area : operand.areas())
                addArea(call.place(), area, counts);
            count += counts.filled;
        } else if (operand.isArray()) {
            call.eachValue(argument, [&](const Value& value) { count += !value.isEmpty(); });
        } else {
            ++count; // whatever is handed over directly, an argument left empty included
        }
    }
    return static_cast<double>(count);
}

Operand countBlank(Call& call)
{
    if (!call[0].isArea())
        return call[0].isValue() && call[0].value().isError() ? call[0] : Operand(CellError::value);
    const CellRange& cells = call[0].area().cells;
    double blank = static_cast<double>(cells.rows()) * cells.columns();
    call.eachStretch(0, [&](const CellStretch& stretch) {
        for (int i = 0; i < stretch.count; ++i) {
            const bool emptyText = stretch.kinds[i] == ValueKind::text && !stretch.payloads[i].text;
            blank -= stretch.kinds[i] != ValueKind::empty && !emptyText;
        }
    });
    return blank;
}

} // namespace spreadsheet
