#include "spreadsheet/cells/Column.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// A gap up to this many rows is filled with empty cells instead of opening a block.
constexpr int bridgedGap = 3;

} // namespace

std::size_t Column::lowerSlot(int row) const
{
    const auto found = std::ranges::upper_bound(m_slots, row, {}, &Slot::firstRow);
    auto position = static_cast<std::size_t>(found - m_slots.begin());
    if (position > 0 && m_slots[position - 1].lastRow() >= row)
        --position;
    return position;
}

const Column::Slot* Column::find(int row) const
{
    const std::size_t position = lowerSlot(row);
    if (position == m_slots.size() || m_slots[position].firstRow > row)
        return nullptr;
    return &m_slots[position];
}

Value Column::value(int row) const
{
    const Slot* slot = find(row);
    return slot ? slot->block->value(row - slot->firstRow) : Value();
}

std::uint32_t Column::style(int row) const
{
    const Slot* slot = find(row);
    return slot ? slot->block->style(row - slot->firstRow) : 0;
}

std::uint32_t Column::formula(int row) const
{
    const Slot* slot = find(row);
    return slot ? slot->block->formula(row - slot->firstRow) : 0;
}

Column::Place Column::writable(int row)
{
    const std::size_t next = lowerSlot(row);
    if (next < m_slots.size() && m_slots[next].firstRow <= row)
        return {m_slots[next].block.writable(), row - m_slots[next].firstRow};

    if (next > 0) { // the block above, if it lies close and has room
        Slot& above = m_slots[next - 1];
        const int needed = row - above.firstRow + 1;
        if (row - above.lastRow() <= bridgedGap + 1 && needed <= CellBlock::maxCells) {
            CellBlock& block = above.block.writable();
            block.grow(needed - block.count());
            return {block, needed - 1};
        }
    }
    if (next < m_slots.size()) { // the block below
        Slot& below = m_slots[next];
        const int added = below.firstRow - row;
        if (added <= bridgedGap + 1 && below.block->count() + added <= CellBlock::maxCells) {
            CellBlock& block = below.block.writable();
            block.growAtFront(added);
            below.firstRow = row;
            return {block, 0};
        }
    }
    const auto slot = m_slots.insert(m_slots.begin() + static_cast<std::ptrdiff_t>(next),
                                     Slot{row, BlockPointer(new CellBlock(1))});
    return {slot->block.writable(), 0};
}

void Column::cover(int first, int last)
{
    for (int row = first; row <= last;) {
        CellBlock& block = writable(row).block;
        const std::size_t position = lowerSlot(row);
        const Slot& slot = m_slots[position];
        const bool isLast = position + 1 == m_slots.size();
        const int goal = isLast ? last : std::min(last, m_slots[position + 1].firstRow - 1);
        if (goal > slot.lastRow())
            block.grow(std::min(goal - slot.lastRow(), CellBlock::maxCells - block.count()));
        row = slot.lastRow() + 1;
    }
}

void Column::splitAt(int row)
{
    const std::size_t position = lowerSlot(row);
    if (position == m_slots.size() || m_slots[position].firstRow >= row)
        return;
    Slot& slot = m_slots[position];
    const int kept = row - slot.firstRow;
    auto lower = slot.block->slice(kept, slot.block->count() - kept);
    slot.block = BlockPointer(slot.block->slice(0, kept).release());
    m_slots.insert(m_slots.begin() + static_cast<std::ptrdiff_t>(position) + 1,
                   Slot{row, BlockPointer(lower.release())});
}

void Column::insertRows(int row, int count)
{
    splitAt(row);
    for (std::size_t i = lowerSlot(row); i < m_slots.size(); ++i)
        m_slots[i].firstRow += count;
}

void Column::removeRows(int row, int count)
{
    clearRows(row, row + count - 1);
    for (std::size_t i = lowerSlot(row); i < m_slots.size(); ++i)
        m_slots[i].firstRow -= count;
}

void Column::clearRows(int first, int last)
{
    splitAt(first);
    splitAt(last + 1);
    const auto from = m_slots.begin() + static_cast<std::ptrdiff_t>(lowerSlot(first));
    const auto to = m_slots.begin() + static_cast<std::ptrdiff_t>(lowerSlot(last + 1));
    m_slots.erase(from, to);
}

int Column::lastDataRow() const
{
    for (auto slot = m_slots.rbegin(); slot != m_slots.rend(); ++slot) {
        for (int i = slot->block->count() - 1; i >= 0; --i) {
            if (slot->block->holdsData(i))
                return slot->firstRow + i;
        }
    }
    return 0;
}

std::size_t Column::bytes() const
{
    std::size_t sum = m_slots.capacity() * sizeof(Slot);
    for (const Slot& slot : m_slots)
        sum += slot.block->bytes();
    return sum;
}

void Column::appendBlock(int firstRow, std::unique_ptr<CellBlock> block)
{
    m_slots.push_back(Slot{firstRow, BlockPointer(block.release())});
}

} // namespace spreadsheet
