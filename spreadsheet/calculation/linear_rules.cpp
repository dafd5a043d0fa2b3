#include "spreadsheet/calculation/linear_rules.h"

#include "spreadsheet/calculation/linear_sums.h"
#include "spreadsheet/formula/operator_table.h"

#include <array>
#include <cmath>

namespace spreadsheet {

// A rule is as narrow as what can be proven of its function. Where a coefficient would itself depend on a
// call (a product of two figures, a search for one) there is none, and the figure is not linear: better no
// sum than one that only happens to agree.

namespace {

FigureParts numberOf(const TracedCall& call, std::size_t argument)
{
    return asNumber(call.single(argument), call.place().book.countsFrom1904);
}

double plainNumber(const TracedCall& call, std::size_t argument, double otherwise)
{
    if (argument >= call.count() || call.operand(argument).isMissing())
        return otherwise;
    if (const Operand& plain = call.operand(argument); plain.isValue() && plain.value().isNumber())
        return plain.value().number();
    const Value number = toNumber(call.single(argument).value, call.place().book.countsFrom1904);
    return number.isNumber() ? number.number() : otherwise;
}

bool onlyFirstDepends(const TracedCall& call)
{
    for (std::size_t argument = 1; argument < call.count(); ++argument)
        if (call.dependsOnCalls(argument))
            return false;
    return true;
}

/// The first argument as it is, and what the function made of it beside.
FigureParts rounded(const TracedCall& call, double step)
{
    if (!onlyFirstDepends(call) || !call.result().isNumber())
        return call.nonlinear();
    FigureParts parts = numberOf(call, 0);
    FigurePart change;
    change.kind = FigurePart::Kind::rounding;
    change.step = step;
    change.coefficient = call.result().number() - plainNumber(call, 0, 0);
    parts.parts.push_back(change);
    return parts;
}

/// ROUND and its kin, whose second argument is a count of places.
FigureParts roundedToPlaces(const TracedCall& call)
{
    return rounded(call, std::pow(10.0, -std::trunc(plainNumber(call, 1, 0))));
}

/// CEILING and its kin, whose second argument is the step.
FigureParts roundedToSteps(const TracedCall& call)
{
    return rounded(call, std::fabs(plainNumber(call, 1, 1)));
}

template <int step>
FigureParts roundedTo(const TracedCall& call)
{
    return rounded(call, step);
}

FigureParts size(const TracedCall& call)
{
    FigureParts parts = numberOf(call, 0);
    if (plainNumber(call, 0, 0) < 0)
        parts.multiply(-1);
    parts.setByCondition();
    return parts;
}

FigureParts same(const TracedCall& call)
{
    return numberOf(call, 0);
}

/// N of a range is its first cell, and 0 of a text.
FigureParts number(const TracedCall& call)
{
    const TracedCall::Element first = call.element(0, 0, 0);
    return first.value.isNumber() ? asNumber(first, call.place().book.countsFrom1904) : call.nonlinear();
}

/// An argument that a condition chose.
FigureParts chosen(const TracedCall& call, std::size_t argument, bool byCall)
{
    if (argument >= call.count())
        return {};
    FigureParts parts = numberOf(call, argument);
    if (byCall)
        parts.setByCondition();
    return parts;
}

/// IF for one element of an array; elsewhere it is compiled into jumps, as its like are.
FigureParts branch(const TracedCall& call)
{
    const Value condition = toBoolean(call.single(0).value);
    if (condition.isError())
        return call.nonlinear();
    return chosen(call, condition.boolean() ? 1 : 2, call.dependsOnCalls(0));
}

FigureParts unlessError(const TracedCall& call)
{
    return chosen(call, call.single(0).value.isError() ? 1 : 0, call.dependsOnCalls(0));
}

FigureParts choice(const TracedCall& call)
{
    return chosen(call, static_cast<std::size_t>(plainNumber(call, 0, 0)), call.dependsOnCalls(0));
}

/// INDEX of an array; of cells it gives a reference.
FigureParts elementByPlace(const TracedCall& call)
{
    const auto row = static_cast<int>(plainNumber(call, 1, 0));
    const auto column = static_cast<int>(plainNumber(call, 2, 0));
    const bool alongRow = call.rows(0) == 1 && call.count() == 2;
    if (!onlyFirstDepends(call) || row < 1 || (column < 1 && call.columns(0) > 1 && !alongRow))
        return call.nonlinear();
    const auto found =
        alongRow ? call.element(0, 0, row - 1) : call.element(0, row - 1, std::max(column, 1) - 1);
    return asNumber(found, call.place().book.countsFrom1904);
}

constexpr std::array ruleTable{
    LinearRule{"SUM", partsOfSum},
    LinearRule{"AVERAGE", partsOfAverage},
    LinearRule{"SUBTOTAL", partsOfSubtotal},
    LinearRule{"SUMPRODUCT", partsOfProducts},
    LinearRule{"SUMIF", partsOfSumIf},
    LinearRule{"SUMIFS", partsOfSumIfs},
    LinearRule{"MAX", partsOfChosen},
    LinearRule{"MIN", partsOfChosen},
    LinearRule{"ABS", size, true},
    LinearRule{"N", number},
    LinearRule{"VALUE", same, true},
    LinearRule{"INDEX", elementByPlace},
    LinearRule{"IF", branch, true},
    LinearRule{"IFERROR", unlessError, true},
    LinearRule{"CHOOSE", choice, true},
    LinearRule{"ROUND", roundedToPlaces, true},
    LinearRule{"ROUNDUP", roundedToPlaces, true},
    LinearRule{"ROUNDDOWN", roundedToPlaces, true},
    LinearRule{"TRUNC", roundedToPlaces, true},
    LinearRule{"INT", roundedTo<1>, true},
    LinearRule{"EVEN", roundedTo<2>, true},
    LinearRule{"ODD", roundedTo<2>, true},
    LinearRule{"MROUND", roundedToSteps, true},
    LinearRule{"CEILING", roundedToSteps, true},
    LinearRule{"CEILING.MATH", roundedToSteps, true},
    LinearRule{"CEILING.PRECISE", roundedToSteps, true},
    LinearRule{"ISO.CEILING", roundedToSteps, true},
    LinearRule{"FLOOR", roundedToSteps, true},
    LinearRule{"FLOOR.MATH", roundedToSteps, true},
    LinearRule{"FLOOR.PRECISE", roundedToSteps, true},
};

/// Functions that find a cell: which argument says only where, and which part of the second is searched.
struct Search {
    std::string_view function;
    std::size_t place;
    bool firstColumn = false, firstRow = false; ///< neither: all of it
};
constexpr std::size_t nowhere = 255;
constexpr std::array searches{
    Search{"VLOOKUP", nowhere, true, false},
    Search{"HLOOKUP", nowhere, false, true},
    Search{"LOOKUP", 2},
    Search{"XLOOKUP", 2},
    Search{"INDEX", 0},
    Search{"OFFSET", 0},
};

} // namespace

std::string_view operatorText(Op op)
{
    const auto found = std::ranges::find(operatorTable, op, &OperatorRow::op);
    return found == operatorTable.end() ? std::string_view() : found->text;
}

const LinearRule* linearRule(std::string_view function)
{
    const auto found = std::ranges::find(ruleTable, function, &LinearRule::function);
    return found == ruleTable.end() ? nullptr : &*found;
}

FigureParts partsOfOperator(Op op, TracedCall::Element left, TracedCall::Element right, const Value& result,
                            bool from1904)
{
    FigureParts first = asNumber(std::move(left), from1904);
    const FigureParts second = asNumber(std::move(right), from1904);
    const bool isProduct = op == Op::multiply && !(first.dependsOnCalls() && second.dependsOnCalls());
    if (result.isNumber() && (op == Op::add || op == Op::subtract)) {
        first.add(second, op == Op::add ? 1 : -1);
    } else if (result.isNumber() && isProduct) {
        const double factor = first.dependsOnCalls() ? second.constant : first.constant;
        if (!first.dependsOnCalls())
            first = second;
        first.multiply(factor);
    } else if (result.isNumber() && op == Op::divide && !second.dependsOnCalls()) {
        first.divide(second.constant);
    } else {
        first.add(second, 1);
        first.nonlinear = operatorText(op);
    }
    return first;
}

FigureParts partsOfSign(Op op, FigureParts operand)
{
    if (op == Op::negate)
        operand.multiply(-1);
    if (op == Op::percent)
        operand.divide(100);
    return operand;
}

bool searchDependsOnCalls(const TracedCall& call)
{
    const auto found = std::ranges::find(searches, call.function(), &Search::function);
    const Search search = found == searches.end() ? Search{call.function(), nowhere} : *found;
    bool any = false; // all are asked, so that what is not known is found out at once
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        const bool isPartSearched = argument == 1 && (search.firstColumn || search.firstRow);
        if (argument == search.place)
            continue;
        if (!isPartSearched || !call.isCells(argument)) {
            any = call.dependsOnCalls(argument) || any;
            continue;
        }
        for (Area area : call.operand(argument).areas()) {
            (search.firstColumn ? area.cells.right : area.cells.bottom) =
                search.firstColumn ? area.cells.left : area.cells.top;
            any = call.cells().anyIn(area) || any;
        }
    }
    return any;
}

} // namespace spreadsheet
