#pragma once
#include <cstdint>
#include <memory>
#include <vector>

namespace spreadsheet {

/// The style numbers of a block's cells (0: none). Nothing but one number while all cells have the same,
/// else a byte a cell, which counts into a palette of the block's numbers; four bytes a cell only in a block
/// of more than 255 styles. Callers pass the block's `count` of cells and the `capacity` to make room for.
class StyleNumbers {
public:
    StyleNumbers() = default;
    StyleNumbers(const StyleNumbers&) = delete;
    StyleNumbers& operator=(const StyleNumbers&) = delete;

    /// False only if no cell has a number.
    bool any() const { return m_mixed || m_same != 0; }
    std::uint32_t operator[](int index) const
    {
        if (!m_mixed)
            return m_same;
        const auto at = static_cast<std::size_t>(index);
        return m_mixed->wide.empty() ? m_mixed->palette[m_mixed->bytes[at]] : m_mixed->wide[at];
    }
    void set(int index, std::uint32_t number, int count, int capacity);
    void fill(int first, int cells, std::uint32_t number, int count, int capacity);
    /// Takes `cells` numbers of another block, from its cell `first` on, for the cells from `at` on.
    void copy(int at, const StyleNumbers& other, int first, int cells, int count, int capacity);
    /// Before cells without a number are put behind the `count` cells, or before them: the first one then
    /// stands at `shift`.
    void grow(int count, int capacity, int shift);
    std::size_t bytes() const;

private:
    struct Mixed {
        std::vector<std::uint8_t> bytes;    ///< by cell, up to the capacity; beyond the count 0
        std::vector<std::uint32_t> palette; ///< the first one is 0
        std::vector<std::uint32_t> wide;    ///< numbers by cell; empty while bytes do
    };

    void mix(int count, int capacity);
    void widen();
    /// Takes numbers out of the palette that no cell has any more.
    void repack();

    std::uint32_t m_same = 0; ///< of all cells, if they are not mixed
    std::unique_ptr<Mixed> m_mixed;
};

} // namespace spreadsheet
