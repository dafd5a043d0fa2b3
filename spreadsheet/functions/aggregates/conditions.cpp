#include "spreadsheet/functions/aggregates/conditions.h"

#include "spreadsheet/functions/aggregates/condition_index.h"

#include <array>

namespace spreadsheet {

// SUMIFS over a ledger asks a million rows, and a report asks it in every cell. The first question goes
// through the rows in blocks, a mask for all conditions together; from the second one on an index answers
// the condition that leaves the fewest rows, and only these are compared with the rest. The ways add in
// different orders, which sums that carry their rounding error along do not show.

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

template <typename Holds>
void narrowBy(std::span<const double> numbers, std::uint8_t* mask, Holds&& holds)
{
    for (std::size_t i = 0; i < numbers.size(); ++i)
        mask[i] &= static_cast<std::uint8_t>(holds(numbers[i]));
}

/// The same for a stretch of numbers and a condition on numbers, without a look at each cell's kind.
void narrowNumbers(std::span<const double> numbers, const Criterion& criterion, std::uint8_t* mask)
{
    const double limit = criterion.number();
    switch (criterion.comparison()) {
    case Criterion::Comparison::equal:
        return narrowBy(numbers, mask, [limit](double number) { return number == limit; });
    case Criterion::Comparison::notEqual:
        return narrowBy(numbers, mask, [limit](double number) { return number != limit; });
    case Criterion::Comparison::less:
        return narrowBy(numbers, mask, [limit](double number) { return number < limit; });
    case Criterion::Comparison::lessEqual:
        return narrowBy(numbers, mask, [limit](double number) { return number <= limit; });
    case Criterion::Comparison::greater:
        return narrowBy(numbers, mask, [limit](double number) { return number > limit; });
    case Criterion::Comparison::greaterEqual:
        return narrowBy(numbers, mask, [limit](double number) { return number >= limit; });
    }
}

/// Takes the places out of the mask that do not meet the condition.
void narrow(const Book& book, const Condition& condition, const Block& block, Mask& mask)
{
    const Area cells = cellsOf(condition.area, block);
    const bool keepsEmpty = condition.criterion.matchesEmpty();
    int next = 0;
    const auto gapUpTo = [&](int end) {
        if (!keepsEmpty)
            std::fill(mask.begin() + next, mask.begin() + end, std::uint8_t{0});
    };
    forEachStretch(book, cells, [&](const CellStretch& stretch) {
        const int first = stretch.firstRow - cells.cells.top;
        gapUpTo(first);
        next = first + stretch.count;
        if (condition.criterion.kind() == Criterion::Kind::number && holdsOnlyNumbers(stretch))
            return narrowNumbers(numbersOf(stretch), condition.criterion, mask.data() + first);
        for (int i = 0; i < stretch.count; ++i) {
            std::uint8_t& place = mask[static_cast<std::size_t>(first + i)];
            place = place && condition.criterion.matches(stretch.kinds[i], stretch.payloads[i]);
        }
    });
    gapUpTo(block.count);
}

/// Adds the numbers whose places are in the mask.
template <typename State>
void addChosen(std::span<const double> numbers, const std::uint8_t* mask, State& state)
{
    double chosen[CellBlock::maxCells];
    std::size_t count = 0;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        chosen[count] = numbers[i];
        count += mask[i];
    }
    state.add(std::span<const double>(chosen, count));
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
        m_conditions.push_back({range.area(), Criterion(call.value(first + 1), m_place.book.countsFrom1904)});
    }
    if (m_conditions.empty()) {
        call.fail(CellError::value);
    } else if (const auto [rows, columns] = extents(nullptr); columns > 1) { // no index serves these
        constexpr double slower = 4; // than to make an element, if texts are compared
        call.pay(slower * rows * columns * static_cast<double>(m_conditions.size()));
    }
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
        const CellRange used = usedPart(m_place.book, area);
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
                narrow(m_place.book, condition, block, mask);
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
    std::optional<IndexedRows> fewest;
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
                                   m_place.book, area.sheet, {area.cells.left, area.cells.top + row})))
                return false;
        }
        return true;
    };
    for (const Places* list : fewest->lists) {
        const std::size_t count = IndexedRows::downTo(*list, cells.bottom);
        for (std::size_t i = 0; i < count; ++i) {
            const int row = list->all[i] - cells.top;
            if (meetsOthers(row))
                use(row);
        }
    }
    return true;
}

double ConditionalCells::count() const
{
    if (m_conditions.size() == 1) {
        if (const auto counted = indexedCount(m_place, m_conditions.front()))
            return *counted;
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
        forEachStretch(m_place.book, cell, [&](const CellStretch& stretch) { state.add(stretch); });
    };
    if (eachIndexedRow(addRow))
        return state;
    eachBlock(&numbers, [&](const Block& block, const Mask& mask) {
        const Area cells = cellsOf(numbers, block);
        forEachStretch(m_place.book, cells, [&](const CellStretch& stretch) {
            const int first = stretch.firstRow - cells.cells.top;
            if (holdsOnlyNumbers(stretch))
                return addChosen(numbersOf(stretch), mask.data() + first, state);
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
        if (const auto total = indexedTotal(m_place, m_conditions.front(), numbers))
            return *total;
    }
    return gathered<Total>(numbers);
}

Extremes ConditionalCells::extremes(const Area& numbers) const
{
    return gathered<Extremes>(numbers);
}

} // namespace spreadsheet
