#include "spreadsheet/workbook/Sheet.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <unordered_map>

namespace spreadsheet {

/// Changes styles by number, each only once.
class StyleChange {
public:
    StyleChange(StylePool& pool, const std::function<void(CellStyle&)>& change)
        : m_pool(pool)
        , m_change(change)
    {
    }
    std::uint32_t operator()(std::uint32_t number)
    {
        const auto [entry, fresh] = m_done.try_emplace(number, 0);
        if (fresh) {
            CellStyle style = m_pool[number];
            m_change(style);
            entry->second = m_pool.intern(style);
        }
        return entry->second;
    }

private:
    StylePool& m_pool;
    const std::function<void(CellStyle&)>& m_change;
    std::unordered_map<std::uint32_t, std::uint32_t> m_done;
};

void Sheet::restyleCells(const CellRange& range, StyleChange& restyled)
{
    const bool rowsDiffer = !m_cells->settings.rowStyles.empty();
    for (int column = range.left; column <= range.right; ++column) {
        Column& cells = editableColumn(column);
        cells.cover(range.top, range.bottom);
        for (int row = range.top; row <= range.bottom;) {
            const Column::Place place = cells.writable(row);
            const std::uint32_t own = place.block.style(place.index);
            const int most = std::min(place.block.count() - place.index, range.bottom - row + 1);
            int alike = 1; // cells with the same look are changed together
            while (alike < most && (own != 0 || !rowsDiffer) && place.block.style(place.index + alike) == own)
                ++alike;
            const std::uint32_t number = restyled(own != 0 ? own : m_cells->lineStyle({column, row}));
            place.block.setStyles(place.index, alike, number);
            row += alike;
        }
    }
}

void Sheet::restyleOwn(const CellRange& range, StyleChange& restyled)
{
    for (int column = range.left; column <= std::min(range.right, storedColumns()); ++column) {
        const auto slotCount = this->column(column)->slots().size();
        for (std::size_t slot = this->column(column)->lowerSlot(range.top); slot < slotCount; ++slot) {
            const int above = this->column(column)->slots()[slot].firstRow;
            const int last = std::min(range.bottom, this->column(column)->slots()[slot].lastRow());
            if (above > range.bottom)
                break;
            for (int row = std::max(range.top, above); row <= last; ++row) {
                const std::uint32_t own = this->column(column)->slots()[slot].block->style(row - above);
                if (own == 0)
                    continue;
                const Column::Place place = editableColumn(column).writable(row);
                place.block.setStyle(place.index, restyled(own));
            }
        }
    }
}

void Sheet::styleFresh(CellAddress cell, std::uint32_t number)
{
    const Column* cells = column(cell.column);
    if (cells && cells->style(cell.row) != 0)
        return;
    const Column::Place place = editableColumn(cell.column).writable(cell.row);
    place.block.setStyle(place.index, number);
}

void Sheet::restyleColumns(const CellRange& range, StyleChange& restyled)
{
    SheetSettings& settings = editableSettings();
    const bool wholeSheet = range.left == 1 && range.right >= settings.columnCount;
    for (auto& [row, number] : settings.rowStyles) {
        if (wholeSheet) {
            number = restyled(number);
            continue;
        }
        for (int column = range.left; column <= range.right; ++column) // a row's look hides its columns'
            styleFresh({column, row}, restyled(number));
    }
    for (int column = range.left; column <= range.right; ++column) {
        std::uint32_t& own = settings.columnStyles[column];
        own = restyled(own);
    }
}

void Sheet::restyleRows(const CellRange& range, StyleChange& restyled)
{
    SheetSettings& settings = editableSettings();
    for (int row = range.top; row <= range.bottom; ++row) {
        const auto [own, fresh] = settings.rowStyles.try_emplace(row, 0);
        own->second = restyled(own->second);
        if (!fresh)
            continue;
        for (const auto& [column, number] : settings.columnStyles) // the row's new look would hide these
            styleFresh({column, row}, restyled(number));
    }
}

void Sheet::restyle(const CellRange& range, const std::function<void(CellStyle&)>& change)
{
    const UndoStep step(m_workbook, "格式");
    StyleChange restyled(m_workbook.styles(), change);
    const bool wholeColumns = range.top == 1 && range.bottom >= m_cells->settings.rowCount;
    const bool wholeRows = range.left == 1 && range.right >= m_cells->settings.columnCount;
    if (!wholeColumns && !wholeRows) {
        restyleCells(range, restyled);
        return;
    }
    restyleOwn(range, restyled); // cells where the look of the line would not show
    if (wholeColumns)
        restyleColumns(range, restyled);
    else
        restyleRows(range, restyled);
}

} // namespace spreadsheet
