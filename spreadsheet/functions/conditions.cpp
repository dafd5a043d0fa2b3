#include "spreadsheet/functions/conditions.h"

#include "spreadsheet/formula/LookupIndexes.h"

#include <array>

namespace spreadsheet {

namespace {

constexpr int blockRows = CellBlock::maxCells;
using Mask = std::array<std::uint8_t, blockRows>;

/// Rows of one column below each other, counted from the first row of the conditions' ranges.
struct Block {
    int column;
    int row;
    int count;
};

Area cellsOf(const Area& area, const Block& block)
{
    const int column = area.cells.left + block.column;
    const int top = area.cells.top + block.row;
    return {area.sheet, {column, top, column, top + block.count - 1}};
}

/// Takes the places out of the mask that do not meet the condition.
void narrow(const Workbook& workbook, const Condition& condition, const Block& block, Mask& mask)
{
    const Area cells = cellsOf(condition.area, block);
    const bool keepsEmpty = condition.criterion.matchesEmpty();
    int next = 0;
    const auto gapUpTo = [&](int end) {
        if (!keepsEmpty)
            std::fill(mask.begin() + next, mask.begin() + end, std::uint8_t{0});
    };
    forEachStretch(workbook, cells, [&](const CellStretch& stretch) {
        const int first = stretch.firstRow - cells.cells.top;
        gapUpTo(first);
        for (int i = 0; i < stretch.count; ++i) {
            std::uint8_t& place = mask[static_cast<std::size_t>(first + i)];
            place = place && condition.criterion.matches(stretch.kinds[i], stretch.payloads[i]);
        }
        next = first + stretch.count;
    });
    gapUpTo(block.count);
}

/// Where equal values stand: a number may stand as a number and as a text.
struct EqualRows {
    ColumnIndex* index = nullptr;
    std::array<const ColumnIndex::Rows*, 2> lists{};

    std::size_t size() const
    {
        return (lists[0] ? lists[0]->rows.size() : 0) + (lists[1] ? lists[1]->rows.size() : 0);
    }
};

/// Nothing if the condition is no plain equality over one column or the column has no index (yet).
std::optional<EqualRows> equalRows(const EvaluationPlace& place, const Condition& condition)
{
    using Kind = Criterion::Kind;
    const Criterion& criterion = condition.criterion;
    const bool plain = criterion.kind() == Kind::number || criterion.kind() == Kind::text ||
                       criterion.kind() == Kind::boolean;
    if (!place.indexes || !plain || criterion.comparison() != Criterion::Comparison::equal ||
        condition.area.cells.columns() != 1)
        return std::nullopt;
    EqualRows rows;
    rows.index = place.indexes->index(condition.area);
    if (!rows.index)
        return std::nullopt;
    if (criterion.kind() == Kind::number)
        rows.lists = {rows.index->number(criterion.number()), rows.index->numericText(criterion.number())};
    else if (criterion.kind() == Kind::text)
        rows.lists = {rows.index->text(criterion.text()), nullptr};
    else
        rows.lists = {rows.index->boolean(criterion.boolean()), nullptr};
    return rows;
}

std::size_t rowsDownTo(const ColumnIndex::Rows& list, int bottom)
{
    if (list.rows.back() <= bottom)
        return list.rows.size();
    return static_cast<std::size_t>(std::ranges::upper_bound(list.rows, bottom) - list.rows.begin());
}

} // namespace

ConditionalCells::ConditionalCells(Call& call, std::size_t first, std::size_t pairs)
    : m_place(call.place())
{
    for (std::size_t pair = 0; pair < pairs && first + 1 < call.count(); ++pair, first += 2) {
        const Operand& range = call[first];
        if (range.isValue() && range.value().isError())
            call.fail(range.value().error());
        if (!range.isArea() || !(m_conditions.empty() || fits(range.area()))) {
            call.fail(CellError::value);
            return;
        }
        m_conditions.push_back({range.area(), Criterion(call.value(first + 1))});
    }
    if (m_conditions.empty())
        call.fail(CellError::value);
}

bool ConditionalCells::fits(const Area& area) const
{
    const CellRange& shape = m_conditions.front().area.cells;
    return area.cells.rows() == shape.rows() && area.cells.columns() == shape.columns();
}

Area ConditionalCells::shaped(const Area& start) const
{
    const CellRange& shape = m_conditions.front().area.cells;
    const CellRange& cells = start.cells;
    return {start.sheet,
            {cells.left, cells.top, std::min(cells.left + shape.columns() - 1, maxColumns),
             std::min(cells.top + shape.rows() - 1, maxRows)}};
}

/// Rows and columns that hold anything in one of the ranges; what lies beyond is empty in all of them.
std::pair<int, int> ConditionalCells::extents(const Area* numbers) const
{
    int rows = 0;
    int columns = 0;
    const auto take = [&](const Area& area) {
        const CellRange used = usedPart(m_place.workbook, area);
        rows = std::max(rows, used.rows());
        columns = std::max(columns, used.columns());
    };
    for (const Condition& condition : m_conditions)
        take(condition.area);
    if (numbers)
        take(*numbers);
    const CellRange& shape = m_conditions.front().area.cells;
    return {std::min(rows, shape.rows()), std::min(columns, shape.columns())};
}

/// Calls `use(const Block&, const Mask&)` with the places that meet all conditions.
template <typename Use>
void ConditionalCells::eachBlock(const Area* numbers, Use&& use) const
{
    const auto [rows, columns] = extents(numbers);
    Mask mask;
    for (int column = 0; column < columns; ++column) {
        for (int row = 0; row < rows; row += blockRows) {
            const Block block{column, row, std::min(blockRows, rows - row)};
            mask.fill(1);
            for (const Condition& condition : m_conditions)
                narrow(m_place.workbook, condition, block, mask);
            use(block, mask);
        }
    }
}

/// Calls `use(row)`, counted from 0, for the rows that meet all conditions, if one of several conditions
/// has an index; false if none has.
template <typename Use>
bool ConditionalCells::eachIndexedRow(Use&& use) const
{
    if (m_conditions.size() < 2)
        return false;
    std::optional<EqualRows> fewest;
    std::size_t chosen = 0;
    for (std::size_t i = 0; i < m_conditions.size(); ++i) {
        const auto rows = equalRows(m_place, m_conditions[i]);
        if (rows && (!fewest || rows->size() < fewest->size())) {
            fewest = rows;
            chosen = i;
        }
    }
    if (!fewest)
        return false;
    const CellRange& cells = m_conditions[chosen].area.cells;
    const auto meetsOthers = [&](int row) {
        for (std::size_t i = 0; i < m_conditions.size(); ++i) {
            const Area& area = m_conditions[i].area;
            if (i != chosen && !m_conditions[i].criterion.matches(cellValue(
                                   m_place.workbook, area.sheet, {area.cells.left, area.cells.top + row})))
                return false;
        }
        return true;
    };
    for (const ColumnIndex::Rows* list : fewest->lists) {
        const std::size_t count = list ? rowsDownTo(*list, cells.bottom) : 0;
        for (std::size_t i = 0; i < count; ++i) {
            const int row = list->rows[i] - cells.top;
            if (meetsOthers(row))
                use(row);
        }
    }
    return true;
}

double ConditionalCells::count() const
{
    if (m_conditions.size() == 1) {
        if (const auto equal = equalRows(m_place, m_conditions.front())) {
            std::size_t found = 0;
            for (const ColumnIndex::Rows* list : equal->lists)
                found += list ? rowsDownTo(*list, m_conditions.front().area.cells.bottom) : 0;
            return static_cast<double>(found);
        }
    }
    double found = 0;
    if (eachIndexedRow([&](int) { ++found; }))
        return found;
    eachBlock(nullptr, [&](const Block& block, const Mask& mask) {
        for (int i = 0; i < block.count; ++i)
            found += mask[static_cast<std::size_t>(i)];
    });
    if (std::ranges::all_of(m_conditions, [](const Condition& c) { return c.criterion.matchesEmpty(); })) {
        const auto [rows, columns] = extents(nullptr);
        const CellRange& shape = m_conditions.front().area.cells;
        found += static_cast<double>(shape.rows()) * shape.columns() - static_cast<double>(rows) * columns;
    }
    return found;
}

template <typename State>
State ConditionalCells::gathered(const Area& numbers) const
{
    State state;
    const auto addRow = [&](int row) {
        const int at = numbers.cells.top + row;
        const Area cell{numbers.sheet, {numbers.cells.left, at, numbers.cells.left, at}};
        forEachStretch(m_place.workbook, cell, [&](const CellStretch& stretch) { state.add(stretch); });
    };
    if (eachIndexedRow(addRow))
        return state;
    eachBlock(&numbers, [&](const Block& block, const Mask& mask) {
        const Area cells = cellsOf(numbers, block);
        forEachStretch(m_place.workbook, cells, [&](const CellStretch& stretch) {
            const int first = stretch.firstRow - cells.cells.top;
            for (int i = 0; i < stretch.count; ++i) {
                if (mask[static_cast<std::size_t>(first + i)])
                    state.add(CellStretch{stretch.payloads + i, stretch.kinds + i, 1, stretch.firstRow + i,
                                          stretch.column});
            }
        });
    });
    return state;
}

Total ConditionalCells::total(const Area& numbers) const
{
    if (m_conditions.size() == 1) {
        const Area& area = m_conditions.front().area;
        if (const auto equal = equalRows(m_place, m_conditions.front())) {
            Total total;
            for (const ColumnIndex::Rows* list : equal->lists) {
                if (!list)
                    continue;
                const Total& part =
                    equal->index->totalBeside(*list, area.cells.bottom, numbers.sheet, numbers.cells.left,
                                              numbers.cells.top - area.cells.top);
                total.sum.add(part.sum);
                total.count += part.count;
                total.error = total.error ? total.error : part.error;
            }
            return total;
        }
    }
    return gathered<Total>(numbers);
}

Extremes ConditionalCells::extremes(const Area& numbers) const
{
    return gathered<Extremes>(numbers);
}

} // namespace spreadsheet
