#include "spreadsheet/functions/aggregates/condition_index.h"

#include <algorithm>

namespace spreadsheet {

namespace {

using Comparison = Criterion::Comparison;
using Kind = Criterion::Kind;

bool isSingleColumn(const EvaluationPlace& place, const Condition& condition)
{
    return place.indexes && condition.area.cells.columns() == 1;
}

/// Rows of texts that fit a pattern: each text that differs is looked at once.
std::optional<IndexedRows> fittingRows(const EvaluationPlace& place, const Condition& condition)
{
    const Criterion& criterion = condition.criterion;
    if (!isSingleColumn(place, condition) || criterion.kind() != Kind::pattern ||
        criterion.comparison() != Comparison::equal)
        return std::nullopt;
    IndexedRows rows{place.indexes->index(condition.area), {}};
    if (!rows.index)
        return std::nullopt;
    rows.index->eachText([&](const std::string& folded, const Places& places) {
        if (criterion.pattern().matches(folded))
            rows.lists.push_back(&places);
    });
    return rows;
}

std::optional<IndexedRows> rowsOf(const EvaluationPlace& place, const Condition& condition)
{
    return condition.criterion.kind() == Kind::pattern ? fittingRows(place, condition)
                                                       : equalRows(place, condition);
}

/// "<", "<=", ">" and ">=" of a number.
OrderedColumn* orderOf(const EvaluationPlace& place, const Condition& condition)
{
    const Criterion& criterion = condition.criterion;
    const bool ordered = criterion.kind() == Kind::number && criterion.comparison() != Comparison::equal &&
                         criterion.comparison() != Comparison::notEqual;
    return ordered && isSingleColumn(place, condition) ? place.indexes->ordered(condition.area) : nullptr;
}

} // namespace

std::size_t IndexedRows::size() const
{
    std::size_t size = 0;
    for (const Places* list : lists)
        size += list->all.size();
    return size;
}

std::size_t IndexedRows::downTo(const Places& list, int bottom)
{
    if (list.all.empty() || list.all.back() <= bottom)
        return list.all.size();
    return static_cast<std::size_t>(std::ranges::upper_bound(list.all, bottom) - list.all.begin());
}

std::optional<IndexedRows> equalRows(const EvaluationPlace& place, const Condition& condition)
{
    const Criterion& criterion = condition.criterion;
    const bool plain = criterion.kind() == Kind::number || criterion.kind() == Kind::text ||
                       criterion.kind() == Kind::boolean;
    if (!isSingleColumn(place, condition) || !plain || criterion.comparison() != Comparison::equal)
        return std::nullopt;
    IndexedRows rows{place.indexes->index(condition.area), {}};
    if (!rows.index)
        return std::nullopt;
    const auto add = [&](const Places* places) {
        if (places)
            rows.lists.push_back(places);
    };
    if (criterion.kind() == Kind::number) { // it may stand as a number and as a text
        add(rows.index->number(criterion.number()));
        add(rows.index->numericText(criterion.number()));
    } else {
        add(criterion.kind() == Kind::text ? rows.index->text(criterion.text())
                                           : rows.index->boolean(criterion.boolean()));
    }
    return rows;
}

std::optional<double> indexedCount(const EvaluationPlace& place, const Condition& condition)
{
    if (const OrderedColumn* order = orderOf(place, condition))
        return static_cast<double>(
            order->meeting(condition.criterion.comparison(), condition.criterion.number()).size());
    const auto rows = rowsOf(place, condition);
    if (!rows)
        return std::nullopt;
    std::size_t found = 0;
    for (const Places* list : rows->lists)
        found += IndexedRows::downTo(*list, condition.area.cells.bottom);
    return static_cast<double>(found);
}

std::optional<Total> indexedTotal(const EvaluationPlace& place, const Condition& condition,
                                  const Area& numbers)
{
    const CellRange& cells = condition.area.cells;
    const int column = numbers.cells.left;
    const int shift = numbers.cells.top - cells.top;
    if (OrderedColumn* order = orderOf(place, condition))
        return order->totalBeside(
            order->meeting(condition.criterion.comparison(), condition.criterion.number()), numbers.sheet,
            column, shift);
    const auto rows = rowsOf(place, condition);
    if (!rows)
        return std::nullopt;
    Total total;
    for (const Places* list : rows->lists) {
        const Total& part = rows->index->totalBeside(*list, cells.bottom, numbers.sheet, column, shift);
        total.sum.add(part.sum);
        total.count += part.count;
        total.error = total.error ? total.error : part.error;
    }
    return total;
}

} // namespace spreadsheet
