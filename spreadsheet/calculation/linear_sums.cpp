#include "spreadsheet/calculation/linear_sums.h"

#include "spreadsheet/calculation/criteria.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FunctionDescriptor.h"

#include <algorithm>

namespace spreadsheet {

// Ranges are long and mostly hold no calls. So a range is handed on whole with one factor, and of its cells
// only those are looked at one by one that depend on calls.

namespace {

/// Adds an element as sums take it: what is no number there counts as nothing.
void addCounted(FigureParts& sum, TracedCall::Element element, double factor = 1)
{
    const auto number = countedNumber(element.value);
    if (!number)
        return;
    if (!element.parts.dependsOnCalls())
        element.parts.constant = *number;
    sum.add(element.parts, factor);
}

/// A range stays whole; only which of its cells depend on calls is looked at.
void addArea(const TracedCall& call, const Area& area, FigureParts& sum)
{
    if (call.cells().anyIn(area)) {
        FigurePart part;
        part.cells = area;
        part.isSummed = true;
        sum.parts.push_back(part);
    }
    sum.constant += call.cells().plainSum(area);
}

FigureParts sumFrom(const TracedCall& call, std::size_t first)
{
    FigureParts sum;
    for (std::size_t argument = first; argument < call.count(); ++argument) {
        if (call.isCells(argument)) {
            for (const Area& area : call.operand(argument).areas())
                addArea(call, area, sum);
        } else if (call.operand(argument).isReference() || call.operand(argument).isArray()) {
            for (int row = 0; row < call.rows(argument); ++row)
                for (int column = 0; column < call.columns(argument); ++column)
                    addCounted(sum, call.element(argument, row, column));
        } else {
            sum.add(asNumber(call.single(argument), call.place().book.countsFrom1904), 1);
        }
    }
    return sum;
}

double countFrom(const TracedCall& call, std::size_t first)
{
    Call counted(call.place(), call.operands());
    return static_cast<double>(counted.numbers(first).size());
}

// SUBTOTAL.

bool callsOwn(const Book& book, std::uint32_t formula)
{
    return formula != 0 && std::ranges::any_of(book.formulas[formula].functions, [](const auto* function) {
               return function->name == "SUBTOTAL" || function->name == "AGGREGATE";
           });
}

/// Calls `use` with the cells that a subtotal counts and that hold numbers.
template <typename Use>
void eachOfSubtotal(const TracedCall& call, bool withHidden, Use&& use)
{
    const Book& book = call.place().book;
    for (std::size_t argument = 1; argument < call.count(); ++argument)
        for (const Area& area : call.operand(argument).areas()) {
            const BookSheet& sheet = book.sheet(area.sheet);
            const CellRange cells = usedPart(book, area);
            for (int column = cells.left; column <= cells.right; ++column)
                for (int row = cells.top; row <= cells.bottom; ++row) {
                    const CellAddress cell{column, row};
                    if ((!withHidden && sheet.settings.rows.hidden.contains(row)) ||
                        callsOwn(book, sheet.formula(cell)) ||
                        !countedNumber(cellValue(book, area.sheet, cell)))
                        continue;
                    use(call.cell(area.sheet, cell));
                }
        }
}

// SUMIF and SUMIFS.

struct Condition {
    Area area;
    Criterion criterion;
    bool holds(const Book& book, int column, int row) const
    {
        return criterion.matches(
            cellValue(book, area.sheet, {area.cells.left + column, area.cells.top + row}));
    }
};

/// Nothing if a condition depends on calls.
std::optional<std::vector<Condition>> conditionsFrom(const TracedCall& call, std::size_t first,
                                                     std::size_t end)
{
    std::vector<Condition> conditions;
    bool depend = false;
    for (std::size_t argument = first; argument + 1 < end; argument += 2) {
        depend = call.dependsOnCalls(argument) || depend;
        depend = call.dependsOnCalls(argument + 1) || depend;
        if (!call.isCells(argument) || !call.operand(argument).isArea())
            return std::nullopt;
        conditions.push_back({call.operand(argument).area(),
                              Criterion(call.single(argument + 1).value, call.place().book.countsFrom1904)});
    }
    return depend ? std::nullopt : std::optional(std::move(conditions));
}

FigureParts sumWhere(const TracedCall& call, const std::vector<Condition>& conditions, const Area& numbers)
{
    const Book& book = call.place().book;
    FigureParts sum;
    const CellRange cells = usedPart(book, numbers);
    for (int column = 0; column < cells.columns(); ++column)
        for (int row = 0; row < cells.rows(); ++row) {
            const bool counts = std::ranges::all_of(
                conditions, [&](const Condition& each) { return each.holds(book, column, row); });
            if (counts)
                addCounted(sum, call.cell(numbers.sheet, {cells.left + column, cells.top + row}));
        }
    return sum;
}

// MAX and MIN.

/// The first element that holds the result.
std::optional<TracedCall::Element> holder(const TracedCall& call, std::size_t argument, double wanted)
{
    const auto isIt = [&](const TracedCall::Element& element) {
        return countedNumber(element.value) == std::optional(wanted);
    };
    if (!call.isCells(argument) && !call.operand(argument).isArray()) {
        TracedCall::Element single = call.single(argument);
        single.value = toNumber(single.value, call.place().book.countsFrom1904);
        return isIt(single) ? std::optional(std::move(single)) : std::nullopt;
    }
    if (call.operand(argument).isAreas())
        return std::nullopt;
    for (int row = 0; row < call.rows(argument); ++row)
        for (int column = 0; column < call.columns(argument); ++column)
            if (TracedCall::Element element = call.element(argument, row, column); isIt(element))
                return element;
    return std::nullopt;
}

} // namespace

FigureParts partsOfSum(const TracedCall& call)
{
    return call.result().isNumber() ? sumFrom(call, 0) : call.nonlinear();
}

FigureParts partsOfAverage(const TracedCall& call)
{
    if (!call.result().isNumber())
        return call.nonlinear();
    FigureParts parts = sumFrom(call, 0);
    parts.divide(countFrom(call, 0));
    return parts;
}

FigureParts partsOfSubtotal(const TracedCall& call)
{
    constexpr int withoutHidden = 100; // 109 is 9 without hidden rows
    const Value code = toNumber(call.single(0).value);
    const int number = code.isNumber() ? static_cast<int>(code.number()) : 0;
    const int operation = number % withoutHidden;
    if (call.dependsOnCalls(0) || (operation != 1 && operation != 9) || !call.result().isNumber())
        return call.nonlinear();
    FigureParts parts;
    double count = 0;
    eachOfSubtotal(call, number < withoutHidden, [&](TracedCall::Element element) {
        addCounted(parts, std::move(element));
        ++count;
    });
    if (operation == 1)
        parts.divide(count);
    return parts;
}

FigureParts partsOfProducts(const TracedCall& call)
{
    if (!call.result().isNumber())
        return call.nonlinear();
    int rows = 1;
    int columns = 1;
    for (std::size_t argument = 0; argument < call.count(); ++argument) {
        rows = std::max(rows, call.rows(argument));
        columns = std::max(columns, call.columns(argument));
    }
    FigureParts sum;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            FigureParts product;
            double factor = 1;
            for (std::size_t argument = 0; argument < call.count(); ++argument) {
                TracedCall::Element element = call.element(argument, row, column);
                if (!element.parts.dependsOnCalls()) {
                    factor *= countedNumber(element.value).value_or(0);
                    continue;
                }
                if (product.dependsOnCalls())
                    return call.nonlinear();
                if (!countedNumber(element.value))
                    factor = 0;
                product = std::move(element.parts);
            }
            if (product.dependsOnCalls())
                sum.add(product, factor);
            else
                sum.constant += factor;
        }
    return sum;
}

/// The third argument gives the first cell only, the shape is the first one's.
FigureParts partsOfSumIf(const TracedCall& call)
{
    const auto conditions = conditionsFrom(call, 0, 2);
    const std::size_t last = call.count() > 2 && !call.operand(2).isMissing() ? 2 : 0;
    if (!conditions || !call.operand(last).isArea() || !call.result().isNumber())
        return call.nonlinear();
    Area numbers = call.operand(last).area();
    const CellRange& like = conditions->front().area.cells;
    numbers.cells.right = std::min(maxColumns, numbers.cells.left + like.columns() - 1);
    numbers.cells.bottom = std::min(maxRows, numbers.cells.top + like.rows() - 1);
    return sumWhere(call, *conditions, numbers);
}

FigureParts partsOfSumIfs(const TracedCall& call)
{
    const auto conditions = conditionsFrom(call, 1, call.count());
    if (!conditions || !call.isCells(0) || !call.operand(0).isArea() || !call.result().isNumber())
        return call.nonlinear();
    return sumWhere(call, *conditions, call.operand(0).area());
}

FigureParts partsOfChosen(const TracedCall& call)
{
    const Value result = call.result();
    for (std::size_t argument = 0; result.isNumber() && argument < call.count(); ++argument)
        if (auto found = holder(call, argument, result.number())) {
            FigureParts parts = asNumber(std::move(*found), call.place().book.countsFrom1904);
            parts.setByCondition();
            return parts;
        }
    return call.nonlinear();
}

} // namespace spreadsheet
