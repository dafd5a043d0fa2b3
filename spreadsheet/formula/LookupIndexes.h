#pragma once
#include "spreadsheet/functions/Aggregates.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Where each value stands in the cells of one column from a top row down. It is taken further down
/// when a deeper bottom is asked for: only cells that somebody asked for are sure to be computed.
class ColumnIndex {
public:
    ColumnIndex(const Workbook& workbook, int sheet, int column, int top);

    /// Reads the cells down to `bottom`; nothing to do if they are read already.
    void extend(int bottom);

    /// The ascending rows of equal values.
    struct Rows {
        std::vector<int> rows;
    };
    // Null if the value stands nowhere. Rows may lie below the bottom that was last asked for.
    const Rows* number(double wanted) const;
    const Rows* text(std::string_view folded) const;
    /// Texts that read as a number, by that number.
    const Rows* numericText(double wanted) const;
    const Rows* boolean(bool wanted) const;

    /// Sum and count of the numbers that stand beside equal values: in the rows, moved by `shift`, of
    /// another column, for rows down to `bottom`. Kept and taken further like the index itself.
    const Total& totalBeside(const Rows& rows, int bottom, int sheet, int column, int shift);

private:
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    /// Sums over one column for one value, as far as they go.
    struct Beside {
        Total total;
        std::size_t rows = 0; ///< so many of the value's rows are in it
    };
    struct BesideKey {
        const Rows* rows;
        std::uint64_t column;
        friend bool operator==(const BesideKey&, const BesideKey&) = default;
    };
    struct BesideHash {
        std::size_t operator()(const BesideKey& key) const;
    };

    void add(const CellStretch& stretch);
    void addText(const Text::Body* text, int row);

    const Workbook& m_workbook;
    Area m_area; ///< what is read so far
    // Maps of this kind never move their values: Rows may be pointed to.
    std::unordered_map<std::uint64_t, Rows> m_numbers;
    std::unordered_map<std::string, Rows, TextHash, std::equal_to<>> m_texts;
    std::unordered_map<std::uint64_t, Rows> m_numericTexts;
    std::array<Rows, 2> m_booleans;
    std::unordered_map<BesideKey, Beside, BesideHash> m_beside;
};

/// A state over a range that starts where the last one did and has grown since, as running sums do.
template <typename State>
class GrowingStates {
public:
    /// The state over the whole area, good until the next call.
    const State& over(const Workbook& workbook, const Area& area);

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

    explicit LookupIndexes(const Workbook& workbook)
        : m_workbook(workbook)
    {
    }

    /// The index of an area of one column, read down to its bottom. Null if the range is short or
    /// asked for the first time: then it is as quick to go through it.
    ColumnIndex* index(const Area& column);

    /// A Total, Extremes or Counts over an area of at least `shortestRange` rows.
    template <typename State>
    const State& over(const Area& area)
    {
        return std::get<GrowingStates<State>>(m_growing).over(m_workbook, area);
    }

private:
    struct Entry {
        bool asked = false;
        std::unique_ptr<ColumnIndex> index;
    };

    const Workbook& m_workbook;
    std::unordered_map<std::uint64_t, Entry> m_indexes;
    std::tuple<GrowingStates<Total>, GrowingStates<Extremes>, GrowingStates<Counts>> m_growing;
};

template <typename State>
const State& GrowingStates<State>::over(const Workbook& workbook, const Area& area)
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
        forEachStretch(workbook, fresh, [&](const CellStretch& stretch) { slot.state.add(stretch); });
    slot.area = area;
    return slot.state;
}

} // namespace spreadsheet
