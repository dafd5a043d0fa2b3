#pragma once
#include "spreadsheet/calculation/LineIndex.h"
#include "spreadsheet/calculation/OrderedColumn.h"

#include <cstdint>
#include <memory>
#include <tuple>
#include <unordered_map>

namespace spreadsheet {

/// A state over a range that starts where the last one did and has grown since, as running sums do.
template <typename State>
class GrowingStates {
public:
    /// The state over the whole area, good until the next call.
    const State& over(const Book& book, const Area& area);

private:
    struct Slot {
        Area area{0, {}};
        State state;
    };
    static constexpr std::size_t slotCount = 1024; ///< starts that are kept; a collision starts anew
    std::unique_ptr<Slot[]> m_slots;
};

/// Caches of one recalculation. They stand on cells that are final by then, so they must not be used
/// for cells that are computed later.
class LookupIndexes {
public:
    /// Ranges of fewer rows are read cell by cell.
    static constexpr int shortestRange = 64;

    explicit LookupIndexes(const Book& book)
        : m_book(book)
    {
    }

    /// The index of an area of one column (or, not `down`, of one row), read to its end. Null if the
    /// range is short or asked for the first time: then it is as quick to go through it.
    LineIndex* index(const Area& line, bool down = true);
    /// The order of an area of one column. Null if it is short or was not asked for often: sorting costs
    /// more than going through it a few times.
    OrderedColumn* ordered(const Area& column);

    /// A Total, Extremes or Counts over an area of at least `shortestRange` rows.
    template <typename State>
    const State& over(const Area& area)
    {
        return std::get<GrowingStates<State>>(m_growing).over(m_book, area);
    }

private:
    struct Line {
        bool asked = false;
        std::unique_ptr<LineIndex> index;
    };

    const Book& m_book;
    std::unordered_map<std::uint64_t, Line> m_columns;
    std::unordered_map<std::uint64_t, Line> m_rows;
    struct Order {
        int asked = 0;
        std::unique_ptr<OrderedColumn> column;
    };
    static constexpr int asksBeforeSorting = 8;
    static constexpr int mostOrders = 16; ///< kept at a time: growing ranges would fill the memory
    std::map<std::tuple<std::uint64_t, int>, Order> m_orders; ///< by first cell and bottom
    int m_orderCount = 0;
    std::tuple<GrowingStates<Total>, GrowingStates<Extremes>, GrowingStates<Counts>> m_growing;
};

template <typename State>
const State& GrowingStates<State>::over(const Book& book, const Area& area)
{
    if (!m_slots)
        m_slots = std::make_unique<Slot[]>(slotCount);
    const CellRange& cells = area.cells;
    const auto mixed = static_cast<std::size_t>(cells.top) * 31 + static_cast<std::size_t>(cells.left) * 131 +
                       static_cast<std::size_t>(cells.right) * 17 +
                       static_cast<std::size_t>(area.sheet) * 521;
    Slot& slot = m_slots[mixed % slotCount];
    const CellRange& kept = slot.area.cells;
    const bool grown = slot.area.sheet == area.sheet && kept.left == cells.left &&
                       kept.right == cells.right && kept.top == cells.top && kept.bottom <= cells.bottom;
    Area fresh = area;
    if (grown)
        fresh.cells.top = kept.bottom + 1;
    else
        slot.state = State();
    if (fresh.cells.top <= fresh.cells.bottom)
        forEachStretch(book, fresh, [&](const CellStretch& stretch) { slot.state.add(stretch); });
    slot.area = area;
    return slot.state;
}

} // namespace spreadsheet
