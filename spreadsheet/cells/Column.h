#pragma once
#include "spreadsheet/cells/CellBlock.h"

#include <vector>

namespace spreadsheet {

/// The cells of one column: blocks in ascending order of their rows, gaps between them empty.
/// A copy shares all blocks, so keeping a former state costs 16 bytes a block.
class Column {
public:
    struct Slot {
        int firstRow = 0;
        BlockPointer block;
        int lastRow() const { return firstRow + block->count() - 1; }
    };

    const std::vector<Slot>& slots() const { return m_slots; }
    bool empty() const { return m_slots.empty(); }
    /// The slot that holds a row; null in a gap.
    const Slot* find(int row) const;
    /// Position of the first slot that ends at or below `row`; slots().size() if none does.
    std::size_t lowerSlot(int row) const;

    Value value(int row) const;
    std::uint32_t style(int row) const;
    std::uint32_t formula(int row) const;

    struct Place {
        CellBlock& block;
        int index;
    };
    /// The cell to write to; its block is made, grown or unshared as needed.
    Place writable(int row);
    /// Makes the cells that are missing in the rows; all of them may be written then.
    void cover(int first, int last);
    /// Moves everything from `row` on down by `count` rows (a block that straddles is split).
    void insertRows(int row, int count);
    void removeRows(int row, int count);
    /// Takes the cells of the rows away, leaving a gap.
    void clearRows(int first, int last);
    /// Last row that holds data; 0 if none does.
    int lastDataRow() const;
    std::size_t bytes() const;

    /// For readers of files: appends a block below everything else.
    void appendBlock(int firstRow, std::unique_ptr<CellBlock> block);
    /// The block to write computed values to, however shared it is.
    CellBlock& computedBlock(std::size_t slot) { return m_slots[slot].block.shared(); }

private:
    void splitAt(int row);
    std::vector<Slot> m_slots;
};

} // namespace spreadsheet
