#include "spreadsheet/files/exchange/StoredRows.h"

#include <algorithm>

namespace spreadsheet {

StoredRows::StoredRows(const Sheet& sheet, int columns)
    : m_sheet(sheet)
{
    for (int column = 1; column <= std::min(sheet.storedColumns(), columns); ++column) {
        const auto& slots = sheet.column(column)->slots();
        m_cursors.push_back({&slots});
        if (!slots.empty())
            m_lastRow = std::max(m_lastRow, slots.back().lastRow());
    }
}

void StoredRows::collect(int row, std::vector<StoredCell>& cells)
{
    cells.clear();
    int column = 0;
    for (Cursor& cursor : m_cursors) {
        ++column;
        while (cursor.slot < cursor.slots->size() && (*cursor.slots)[cursor.slot].lastRow() < row)
            ++cursor.slot;
        if (cursor.slot == cursor.slots->size() || (*cursor.slots)[cursor.slot].firstRow > row)
            continue;
        const Column::Slot& slot = (*cursor.slots)[cursor.slot];
        const int index = row - slot.firstRow;
        StoredCell cell{column, slot.block->style(index), slot.block.get(), index};
        if (cell.style == 0 && cell.isBlank())
            continue;
        if (cell.style == 0)
            cell.style = m_sheet.styleNumber({column, row});
        cells.push_back(cell);
    }
}

} // namespace spreadsheet
