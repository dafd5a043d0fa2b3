#pragma once
#include "spreadsheet/calculation/Aggregates.h"

#include <array>
#include <boost/container/small_vector.hpp>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Ascending places (rows, or columns along a row) where one value stands.
struct Places {
    boost::container::small_vector<int, 3> all; ///< most values stand in one or two places
};

/// Places by number: a hash table that keeps its entries in the order of their coming.
class NumberPlaces {
public:
    Places& operator[](double number);
    const Places* find(double number) const; ///< null if the number stands nowhere

private:
    struct Entry {
        std::uint64_t bits;
        Places places;
    };
    std::size_t slotOf(std::uint64_t bits) const;
    void grow();

    std::deque<Entry> m_entries;        ///< a deque: places may be pointed to
    std::vector<std::uint32_t> m_slots; ///< number of an entry from 1; 0: free
};

/// Where each value stands in the cells of one column from a top row down, or of one row from a first
/// column on. It is taken further when a deeper end is asked for: only cells that somebody asked for are
/// sure to be computed.
class LineIndex {
public:
    /// A column from its cell `first` down, or a row from it to the right.
    LineIndex(const Book& book, int sheet, CellAddress first, bool down = true);

    /// Reads the cells down (or right) to `last`; nothing to do if they are read already.
    void extend(int last);

    // Null if the value stands nowhere. Places may lie beyond the end that was last asked for.
    const Places* number(double wanted) const { return m_numbers.find(wanted); }
    const Places* text(std::string_view folded) const;
    /// Texts that read as a number, by that number.
    const Places* numericText(double wanted) const { return m_numericTexts.find(wanted); }
    const Places* boolean(bool wanted) const;

    /// Calls `use(const std::string& folded, const Places&)` for every text that differs.
    template <typename Use>
    void eachText(Use&& use) const
    {
        for (const auto& [folded, places] : m_texts)
            use(folded, places);
    }

    /// Sum and count of the numbers that stand beside equal values of a column: in the rows, moved by
    /// `shift`, of another column, for rows down to `bottom`. Kept and taken further like the index.
    const Total& totalBeside(const Places& rows, int bottom, int sheet, int column, int shift);

private:
    struct TextHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    /// Where the places of a text are kept.
    struct TextEntry {
        Text owner; ///< keeps the body, by whose address it is found again
        Places* places;
        Places* numeric; ///< null if it reads as no number
    };
    /// Sums over one column for one value, as far as they go.
    struct Beside {
        Total total;
        std::size_t rows = 0; ///< so many of the value's rows are in it
    };
    struct BesideKey {
        const Places* rows;
        std::uint64_t column;
        friend bool operator==(const BesideKey&, const BesideKey&) = default;
    };
    struct BesideHash {
        std::size_t operator()(const BesideKey& key) const;
    };

    void add(const CellStretch& stretch);
    TextEntry& textEntry(Text::Body* body);

    const Book& m_book;
    Area m_area; ///< what is read so far
    bool m_down;
    NumberPlaces m_numbers;
    NumberPlaces m_numericTexts;
    // Maps of this kind never move their values: places may be pointed to.
    std::unordered_map<std::string, Places, TextHash, std::equal_to<>> m_texts;
    std::unordered_map<const Text::Body*, TextEntry> m_bodies; ///< equal typed texts share one body
    std::array<Places, 2> m_booleans;
    std::unordered_map<BesideKey, Beside, BesideHash> m_beside;
};

} // namespace spreadsheet
