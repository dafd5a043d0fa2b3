#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/functions/aggregates/aggregates.h"
#include "spreadsheet/functions/aggregates/conditions.h"

namespace spreadsheet {

namespace {

constexpr std::size_t allPairs = 255;

Operand averageOf(const Total& total)
{
    if (total.error)
        return *total.error;
    return total.count == 0 ? Operand(CellError::div0)
                            : checked(total.sum.total() / static_cast<double>(total.count));
}

/// SUMIF and AVERAGEIF: the third argument gives the first cell only, the shape is the first one's.
std::optional<Total> totalIf(Call& call)
{
    const ConditionalCells cells(call, 0, 1);
    const Operand& numbers = call.given(2) ? call[2] : call[0];
    if (numbers.isValue() && numbers.value().isError())
        call.fail(numbers.value().error());
    if (!numbers.isArea())
        call.fail(CellError::value);
    if (call.failed())
        return std::nullopt;
    return cells.total(cells.shaped(numbers.area()));
}

/// SUMIFS and its kind: the numbers come first and must have the conditions' shape.
template <typename Use>
Operand ofConditions(Call& call, Use&& use)
{
    if (call[0].isValue() && call[0].value().isError())
        call.fail(call[0].value().error());
    const ConditionalCells cells(call, 1, allPairs);
    if (call.count() % 2 == 0 || !call[0].isArea())
        call.fail(CellError::value);
    if (call.failed())
        return call.error();
    if (!cells.fits(call[0].area()))
        return CellError::value;
    return use(cells, call[0].area());
}

} // namespace

Operand sumIf(Call& call)
{
    const auto total = totalIf(call);
    if (!total)
        return call.error();
    return total->error ? Operand(*total->error) : checked(total->sum.total());
}

Operand averageIf(Call& call)
{
    const auto total = totalIf(call);
    return total ? averageOf(*total) : Operand(call.error());
}

Operand sumIfs(Call& call)
{
    return ofConditions(call, [](const ConditionalCells& cells, const Area& numbers) -> Operand {
        const Total total = cells.total(numbers);
        return total.error ? Operand(*total.error) : checked(total.sum.total());
    });
}

Operand averageIfs(Call& call)
{
    return ofConditions(call, [](const ConditionalCells& cells, const Area& numbers) {
        return averageOf(cells.total(numbers));
    });
}

Operand smallestIfs(Call& call)
{
    return ofConditions(call, [](const ConditionalCells& cells, const Area& numbers) -> Operand {
        const Extremes extremes = cells.extremes(numbers);
        return extremes.error ? Operand(*extremes.error) : Operand(extremes.any() ? extremes.smallest : 0);
    });
}

Operand largestIfs(Call& call)
{
    return ofConditions(call, [](const ConditionalCells& cells, const Area& numbers) -> Operand {
        const Extremes extremes = cells.extremes(numbers);
        return extremes.error ? Operand(*extremes.error) : Operand(extremes.any() ? extremes.largest : 0);
    });
}

Operand countIf(Call& call)
{
    const ConditionalCells cells(call, 0, 1);
    return call.failed() ? call.error() : Operand(cells.count());
}

Operand countIfs(Call& call)
{
    const ConditionalCells cells(call, 0, allPairs);
    if (call.count() % 2 != 0)
        call.fail(CellError::value);
    return call.failed() ? call.error() : Operand(cells.count());
}

} // namespace spreadsheet
