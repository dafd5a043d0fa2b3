#include "spreadsheet/cells/StyleNumbers.h"

#include <algorithm>
#include <array>

namespace spreadsheet {

namespace {

constexpr std::size_t maxPalette = 256;

/// Moves what cells have to `shift` in an array for `capacity` cells.
template <typename T>
void moveCells(std::vector<T>& cells, int count, int capacity, int shift)
{
    if (cells.empty() || (shift == 0 && cells.size() == static_cast<std::size_t>(capacity)))
        return;
    std::vector<T> moved(static_cast<std::size_t>(capacity));
    std::copy_n(cells.begin(), count, moved.begin() + shift);
    cells = std::move(moved);
}

} // namespace

void StyleNumbers::mix(int count, int capacity)
{
    if (m_mixed)
        return;
    m_mixed = std::make_unique<Mixed>();
    m_mixed->bytes.resize(static_cast<std::size_t>(capacity));
    m_mixed->palette = {0};
    if (m_same != 0) {
        m_mixed->palette.push_back(m_same);
        std::fill_n(m_mixed->bytes.begin(), count, std::uint8_t(1));
    }
    m_same = 0;
}

void StyleNumbers::widen()
{
    m_mixed->wide.resize(m_mixed->bytes.size());
    std::ranges::transform(m_mixed->bytes, m_mixed->wide.begin(),
                           [this](std::uint8_t entry) { return m_mixed->palette[entry]; });
    m_mixed->bytes = {};
    m_mixed->palette = {};
}

void StyleNumbers::repack()
{
    std::array<bool, maxPalette> used{true}; // the first one stays
    for (const std::uint8_t entry : m_mixed->bytes)
        used[entry] = true;
    std::array<std::uint8_t, maxPalette> moved{};
    std::vector<std::uint32_t> kept;
    for (std::size_t entry = 0; entry < m_mixed->palette.size(); ++entry) {
        if (!used[entry])
            continue;
        moved[entry] = static_cast<std::uint8_t>(kept.size());
        kept.push_back(m_mixed->palette[entry]);
    }
    for (std::uint8_t& entry : m_mixed->bytes)
        entry = moved[entry];
    m_mixed->palette = std::move(kept);
}

void StyleNumbers::set(int index, std::uint32_t number, int count, int capacity)
{
    if (!m_mixed && m_same == number)
        return;
    if (count == 1) {
        m_mixed.reset();
        m_same = number;
        return;
    }
    mix(count, capacity);
    const auto at = static_cast<std::size_t>(index);
    if (m_mixed->wide.empty()) {
        std::vector<std::uint32_t>& palette = m_mixed->palette;
        auto entry = std::ranges::find(palette, number);
        if (entry == palette.end()) {
            if (palette.size() == maxPalette)
                repack();
            if (palette.size() == palette.capacity()) // in small steps: palettes are most of what blocks take
                palette.reserve(palette.size() + 16);
            if (palette.size() < maxPalette)
                entry = palette.insert(palette.end(), number);
            else
                widen();
        }
        if (m_mixed->wide.empty()) {
            m_mixed->bytes[at] = static_cast<std::uint8_t>(entry - palette.begin());
            return;
        }
    }
    m_mixed->wide[at] = number;
}

void StyleNumbers::fill(int first, int cells, std::uint32_t number, int count, int capacity)
{
    if (cells == count) {
        m_mixed.reset();
        m_same = number;
        return;
    }
    for (int i = first; i < first + cells; ++i)
        set(i, number, count, capacity);
}

void StyleNumbers::copy(int at, const StyleNumbers& other, int first, int cells, int count, int capacity)
{
    if (!other.m_mixed) {
        fill(at, cells, other.m_same, count, capacity);
        return;
    }
    if (cells == count) { // a whole block, as when one is unshared or cut
        m_same = 0;
        m_mixed = std::make_unique<Mixed>();
        m_mixed->palette = other.m_mixed->palette;
        const auto part = [&](auto& to, const auto& from) {
            if (from.empty())
                return;
            to.resize(static_cast<std::size_t>(capacity));
            std::copy_n(from.begin() + first, cells, to.begin());
        };
        part(m_mixed->bytes, other.m_mixed->bytes);
        part(m_mixed->wide, other.m_mixed->wide);
        return;
    }
    for (int i = 0; i < cells; ++i)
        set(at + i, other[first + i], count, capacity);
}

void StyleNumbers::grow(int count, int capacity, int shift)
{
    if (!any())
        return;
    mix(count, capacity);
    moveCells(m_mixed->bytes, count, capacity, shift);
    moveCells(m_mixed->wide, count, capacity, shift);
}

std::size_t StyleNumbers::bytes() const
{
    if (!m_mixed)
        return 0;
    return sizeof(Mixed) + m_mixed->bytes.capacity() +
           (m_mixed->palette.capacity() + m_mixed->wide.capacity()) * sizeof(std::uint32_t);
}

} // namespace spreadsheet
