#include "spreadsheet/cells/changed_cells.h"

#include "spreadsheet/cells/Column.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// A cell of a column; in gaps it is empty.
struct CellState {
    std::uint32_t style = 0;
    std::uint32_t formula = 0;
    Text tag;
    Text shown; ///< both empty where a formula computes them
    Value value;

    CellState(const Column::Slot* slot, int row)
    {
        if (!slot)
            return;
        const int index = row - slot->firstRow;
        style = slot->block->style(index);
        formula = slot->block->formula(index);
        tag = slot->block->tag(index);
        if (formula != 0)
            return;
        shown = slot->block->shown(index);
        value = slot->block->value(index);
    }
    friend bool operator==(const CellState&, const CellState&) = default;
};

/// Widens `rows` by the cells of one column that are others in the other.
void widen(RowSpan& rows, const Column& one, const Column& other)
{
    const auto differs = [&](const Column::Slot& slot, int row) {
        return !(CellState(&slot, row) == CellState(other.find(row), row));
    };
    for (const Column::Slot& slot : one.slots()) {
        const Column::Slot* there = other.find(slot.firstRow);
        if (there && there->firstRow == slot.firstRow && there->block == slot.block)
            continue;
        int first = slot.firstRow;
        while (first <= slot.lastRow() && first < rows.first && !differs(slot, first))
            ++first;
        int last = slot.lastRow();
        while (last >= first && last > rows.last && !differs(slot, last))
            --last;
        if (first <= slot.lastRow())
            rows.first = std::min(rows.first, first);
        if (last >= first)
            rows.last = std::max(rows.last, last);
    }
}

} // namespace

std::optional<RowSpan> differentRows(const Column& before, const Column& after)
{
    RowSpan rows;
    widen(rows, before, after);
    widen(rows, after, before);
    return rows.last == 0 ? std::nullopt : std::optional(rows);
}

} // namespace spreadsheet
