#include "spreadsheet/calculation/operators.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/values/cancellation.h"

#include <algorithm>

namespace spreadsheet {

// Operators, conditions and functions must coerce alike, or A1=B1 and a lookup would disagree; so all of them
// come down to the rules of coercion, and here stands only what operators add: which side's error wins, noise
// of the last binary places that counts as zero, and how arrays of different shapes meet.

namespace {

Value finite(double number)
{
    return std::isfinite(number) ? Value(number) : Value(CellError::num);
}

Value power(double base, double exponent)
{
    if (base == 0 && exponent == 0)
        return CellError::num;
    if (base == 0 && exponent < 0)
        return CellError::div0;
    return finite(std::pow(base, exponent));
}

} // namespace

Value arithmetic(Op op, double a, double b)
{
    switch (op) {
    case Op::add:
        return finite(cancelled(a + b, a));
    case Op::subtract:
        return finite(cancelled(a - b, a));
    case Op::multiply:
        return finite(a * b);
    case Op::divide:
        return b == 0 ? Value(CellError::div0) : finite(a / b);
    default:
        return power(a, b);
    }
}

namespace {

Value comparison(Op op, const Value& left, const Value& right)
{
    const int order = compareValues(left, right);
    switch (op) {
    case Op::equal:
        return Value::boolean(order == 0);
    case Op::notEqual:
        return Value::boolean(order != 0);
    case Op::less:
        return Value::boolean(order < 0);
    case Op::lessEqual:
        return Value::boolean(order <= 0);
    case Op::greater:
        return Value::boolean(order > 0);
    default:
        return Value::boolean(order >= 0);
    }
}

Value concatenation(const Value& left, const Value& right)
{
    const Value a = toText(left);
    const Value b = toText(right);
    std::string joined;
    joined.reserve(a.textView().size() + b.textView().size());
    joined += a.textView();
    joined += b.textView();
    return Value::text(joined);
}

Operand ofAreas(Areas areas)
{
    if (areas.empty())
        return CellError::null;
    if (areas.size() == 1)
        return areas.front();
    return std::make_shared<const Areas>(std::move(areas));
}

} // namespace

Value applyOperator(Op op, const Value& left, const Value& right, bool from1904)
{
    if (left.isNumber() && right.isNumber() && op <= Op::power)
        return arithmetic(op, left.number(), right.number());
    if (left.isError())
        return left;
    if (right.isError())
        return right;
    if (op == Op::concatenate)
        return concatenation(left, right);
    if (op >= Op::equal)
        return comparison(op, left, right);
    const Value a = toNumber(left, from1904);
    const Value b = toNumber(right, from1904);
    if (a.isError())
        return a;
    return b.isError() ? b : arithmetic(op, a.number(), b.number());
}

Value applySign(Op op, const Value& value, bool from1904)
{
    if (op == Op::plus)
        return value;
    Value number = toNumber(value, from1904);
    if (number.isError())
        return number;
    return op == Op::negate ? Value(-number.number()) : Value(number.number() / 100);
}

namespace {

/// Cuts whole rows and columns off behind the last ones that any sheet uses: so two of them, from wherever
/// they are, give arrays of one size.
void cutToUsed(const Book& book, CellRange& cells)
{
    const bool wholeColumns = cells.rows() == maxRows;
    const bool wholeRows = cells.columns() == maxColumns;
    if (!wholeColumns && !wholeRows)
        return;
    int rows = 1;
    int columns = 1;
    for (int sheet = 1; sheet <= book.sheetCount(); ++sheet) {
        const CellRange used = usedPart(book, {sheet, {1, 1, maxColumns, maxRows}});
        rows = std::max(rows, used.bottom);
        columns = std::max(columns, used.right);
    }
    if (wholeColumns)
        cells.bottom = rows;
    if (wholeRows)
        cells.right = std::max(columns, cells.left);
}

} // namespace

namespace {

/// The value of an operand that has just one, array or not; else the operand.
Operand reduced(const Operand& operand, const EvaluationPlace& place)
{
    if (operand.isArray() && elementsOf(operand.array().rows(), operand.array().columns()) == 1)
        return operand.array().at(0, 0);
    if (!operand.isArea() || !operand.area().cells.isOneCell())
        return operand;
    const Area& area = operand.area();
    return cellValue(place.book, area.sheet, {area.cells.left, area.cells.top});
}

/// A reference in an array means its cell; several cells have no single value.
std::shared_ptr<const Array> valuesOf(const ReferenceArray& references, const EvaluationPlace& place)
{
    auto values = std::make_shared<Array>(references.rows(), references.columns());
    for (int row = 0; row < references.rows(); ++row) {
        for (int column = 0; column < references.columns(); ++column) {
            const Operand value = reduced(references.at(row, column), place);
            values->at(row, column) = value.isValue() ? value.value() : Value(CellError::value);
        }
    }
    return values;
}

} // namespace

std::shared_ptr<const Array> toArray(const Operand& operand, const EvaluationPlace& place)
{
    if (operand.isArray())
        return operand.sharedArray();
    if (operand.isReferenceArray())
        return valuesOf(operand.referenceArray(), place);
    auto single = std::make_shared<Array>(1, 1);
    if (operand.isArea()) {
        Area area = operand.area();
        cutToUsed(place.book, area.cells);
        if (isArraySize(area.cells.rows(), area.cells.columns()) &&
            place.spend(elementsOf(area.cells.rows(), area.cells.columns()))) {
            auto array = std::make_shared<Array>(area.cells.rows(), area.cells.columns());
            for (int column = 0; column < area.cells.columns(); ++column) {
                for (int row = 0; row < area.cells.rows(); ++row)
                    array->at(row, column) =
                        cellValue(place.book, area.sheet, {area.cells.left + column, area.cells.top + row});
            }
            return array;
        }
    }
    single->at(0, 0) = operand.isValue()     ? operand.value()
                       : operand.isMissing() ? Value()
                                             : Value(CellError::value);
    return single;
}

Operand applyToArrays(Op op, const Operand& left, const Operand& right, const EvaluationPlace& place)
{
    const Operand first = reduced(left, place);
    const Operand second = reduced(right, place);
    if (first.isValue() && second.isValue())
        return applyOperator(op, first.value(), second.value(), place.book.countsFrom1904);
    const auto a = toArray(first, place);
    const auto b = toArray(second, place);
    const int rows = std::max(a->rows(), b->rows());
    const int columns = std::max(a->columns(), b->columns());
    if (!isArraySize(rows, columns))
        return CellError::value;
    auto result = std::make_shared<Array>(rows, columns);
    for (int row = 0; row < rows; ++row) {
        std::size_t made = 0;
        for (int column = 0; column < columns; ++column) {
            Value& element = result->at(row, column);
            element =
                applyOperator(op, a->spread(row, column), b->spread(row, column), place.book.countsFrom1904);
            made += effortOf(element);
        }
        if (!place.spend(made))
            return CellError::value;
    }
    return std::shared_ptr<const Array>(std::move(result));
}

Operand applyToArray(Op op, const Operand& whole, const EvaluationPlace& place)
{
    const Operand operand = reduced(whole, place);
    if (operand.isValue())
        return applySign(op, operand.value(), place.book.countsFrom1904);
    auto result = std::make_shared<Array>(*toArray(operand, place));
    if (!place.spend(elementsOf(result->rows(), result->columns())))
        return CellError::value;
    for (int row = 0; row < result->rows(); ++row) {
        for (int column = 0; column < result->columns(); ++column)
            result->at(row, column) = applySign(op, result->at(row, column), place.book.countsFrom1904);
    }
    return std::shared_ptr<const Array>(std::move(result));
}

Operand combineReferences(Op op, const Operand& left, const Operand& right)
{
    for (const Operand* side : {&left, &right}) {
        if (side->isValue() && side->value().isError())
            return side->value();
        if (!side->isReference())
            return CellError::value;
    }
    Areas first = left.areas();
    const Areas second = right.areas();
    if (op == Op::unite) {
        first.insert(first.end(), second.begin(), second.end());
        return ofAreas(std::move(first));
    }
    if (op == Op::range) {
        if (first.size() != 1 || second.size() != 1 || first[0].sheet != second[0].sheet)
            return CellError::value;
        return Area{first[0].sheet, united(first[0].cells, second[0].cells)};
    }
    Areas common;
    for (const Area& a : first) {
        for (const Area& b : second) {
            if (a.sheet == b.sheet && a.cells.intersects(b.cells))
                common.push_back(
                    {a.sheet,
                     {std::max(a.cells.left, b.cells.left), std::max(a.cells.top, b.cells.top),
                      std::min(a.cells.right, b.cells.right), std::min(a.cells.bottom, b.cells.bottom)}});
        }
    }
    return ofAreas(std::move(common));
}

} // namespace spreadsheet
