#include "spreadsheet/calculation/Call.h"

#include "spreadsheet/calculation/operators.h"
#include "spreadsheet/formula/FunctionDescriptor.h"

#include <exception>
#include <limits>
#include <new>

namespace spreadsheet {

// Spreadsheet functions differ less in what they compute than in how they take their arguments: a text may
// count as its number or as an error, a range as its cells or as the one beside the formula. Each way is
// written once here, and a function says by the reader it calls which one is its own.

namespace {

/// The cell of an area that stands in the row, the column or, of a block, both of the formula's cell.
Value intersection(const EvaluationPlace& place, const Area& area)
{
    const CellRange& cells = area.cells;
    CellAddress cell{cells.left, cells.top};
    if (cells.columns() > 1)
        cell.column = place.cell.column;
    if (cells.rows() > 1)
        cell.row = place.cell.row;
    if (!cells.contains(cell))
        return CellError::value;
    return cellValue(place.book, area.sheet, cell);
}

} // namespace

Value Call::value(std::size_t argument) const
{
    if (argument >= m_arguments.size())
        return {};
    const Operand& operand = m_arguments[argument];
    if (operand.isValue())
        return operand.value();
    if (operand.isArea())
        return intersection(m_place, operand.area());
    if (operand.isArray())
        return operand.array().at(0, 0);
    if (operand.isReferenceArray())
        return toArray(operand, m_place)->at(0, 0);
    if (operand.isAreas()) {
        const Areas areas = operand.areas();
        return areas.size() == 1 ? intersection(m_place, areas.front()) : Value(CellError::value);
    }
    return {};
}

double Call::number(std::size_t argument)
{
    if (failed())
        return 0;
    if (argument < m_arguments.size() && m_arguments[argument].isValue() &&
        m_arguments[argument].value().isNumber())
        return m_arguments[argument].value().number();
    const Value coerced = numberOf(value(argument));
    if (!coerced.isError())
        return coerced.number();
    fail(coerced.error());
    return 0;
}

Value Call::numberOf(const Value& value) const
{
    return toNumber(value, m_place.book.countsFrom1904);
}

double Call::number(std::size_t argument, double otherwise)
{
    return argument < count() ? number(argument) : otherwise;
}

int Call::integer(std::size_t argument)
{
    const double whole = std::trunc(number(argument));
    if (std::fabs(whole) <= std::numeric_limits<int>::max())
        return static_cast<int>(whole);
    fail(CellError::num);
    return 0;
}

int Call::integer(std::size_t argument, int otherwise)
{
    return argument < count() ? integer(argument) : otherwise;
}

std::string Call::text(std::size_t argument)
{
    if (failed())
        return {};
    const Value coerced = toText(value(argument));
    if (!coerced.isError())
        return std::string(coerced.textView());
    fail(coerced.error());
    return {};
}

std::string Call::text(std::size_t argument, std::string_view otherwise)
{
    return argument < count() ? text(argument) : std::string(otherwise);
}

bool Call::logical(std::size_t argument)
{
    if (failed())
        return false;
    const Value coerced = toBoolean(value(argument));
    if (!coerced.isError())
        return coerced.boolean();
    fail(coerced.error());
    return false;
}

bool Call::logical(std::size_t argument, bool otherwise)
{
    return argument < count() ? logical(argument) : otherwise;
}

void Call::pay(double elements)
{
    constexpr double all = Effort::maxElements;
    if (!m_place.spend(static_cast<std::size_t>(std::clamp(elements, 0.0, all))))
        fail(CellError::value);
}

std::vector<double> Call::numbers(std::size_t first)
{
    std::vector<double> all;
    for (std::size_t argument = first; argument < count(); ++argument) {
        eachNumbers(argument, [&](std::span<const double> numbers) {
            all.insert(all.end(), numbers.begin(), numbers.end());
        });
    }
    return all;
}

std::vector<double> Call::numbersByRows(std::size_t argument)
{
    std::vector<double> numbers;
    const bool inColumns = m_arguments[argument].isArea() && columns(argument) > 1;
    if (!inColumns) {
        eachNumber(argument, [&](double number) { numbers.push_back(number); });
        return numbers;
    }
    eachValue(argument, [&](const Value& value) {
        constexpr double slower = 8; // than from a column's block
        pay(slower);
        if (value.isError())
            fail(value.error());
        else if (const auto number = countedNumber(value); number && !failed())
            numbers.push_back(*number);
    });
    return numbers;
}

int Call::rows(std::size_t argument) const
{
    const Operand& operand = m_arguments[argument];
    if (operand.isArea())
        return operand.area().cells.rows();
    return operand.isArray() ? operand.array().rows() : 1;
}

int Call::columns(std::size_t argument) const
{
    const Operand& operand = m_arguments[argument];
    if (operand.isArea())
        return operand.area().cells.columns();
    return operand.isArray() ? operand.array().columns() : 1;
}

Value Call::element(std::size_t argument, int row, int column) const
{
    const Operand& operand = m_arguments[argument];
    if (operand.isArea()) {
        const Area& area = operand.area();
        return cellValue(m_place.book, area.sheet, {area.cells.left + column, area.cells.top + row});
    }
    return operand.isArray() ? operand.array().at(row, column) : value(argument);
}

Operand answer(const FunctionDescriptor& function, Call& call)
{
    try {
        return function.evaluate(call);
    } catch (const std::bad_alloc&) {
        return CellError::value;
    } catch (const std::exception&) {
        constexpr double searched = 2e6; // what the numeric library gives up took it milliseconds
        call.pay(searched);
        return CellError::num;
    }
}

Value cellValue(const Book& book, int sheet, CellAddress cell)
{
    const BookSheet& cells = book.sheet(sheet);
    const Column* column = cell.column <= cells.storedColumns() ? cells.column(cell.column) : nullptr;
    return column ? column->value(cell.row) : Value();
}

CellRange usedPart(const Book& book, const Area& area)
{
    const BookSheet& sheet = book.sheet(area.sheet);
    CellRange used = area.cells;
    used.right = std::min(used.right, sheet.storedColumns());
    int last = 0;
    for (int number = used.left; number <= used.right; ++number) {
        const Column* column = sheet.column(number);
        if (column && !column->empty())
            last = std::max(last, column->slots().back().lastRow());
    }
    used.bottom = std::max(std::min(used.bottom, last), used.top - 1);
    return used;
}

} // namespace spreadsheet
