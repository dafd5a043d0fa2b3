#include "spreadsheet/engine/Sheet.h"
#include "spreadsheet/engine/Workbook.h"

#include <algorithm>
#include <unordered_map>

namespace spreadsheet {

namespace {

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

} // namespace

void Sheet::restyle(const CellRange& range, const std::function<void(CellStyle&)>& change)
{
    const UndoStep step(m_workbook, "格式");
    StyleChange restyled(m_workbook.styles(), change);
    const bool wholeColumns = range.top == 1 && range.bottom >= m_settings.rowCount;
    const bool wholeRows = range.left == 1 && range.right >= m_settings.columnCount;
    if (!wholeColumns && !wholeRows) {
        for (int column = range.left; column <= range.right; ++column) {
            Column& cells = editableColumn(column);
            for (int row = range.top; row <= range.bottom; ++row) {
                const std::uint32_t number = restyled(styleNumber({column, row}));
                const Column::Place place = cells.writable(row);
                place.block.setStyle(place.index, number);
            }
        }
        return;
    }
    // Cells where the new row or column style would not show get it themselves.
    for (int column = range.left; column <= std::min(range.right, storedColumns()); ++column) {
        for (std::size_t slot = 0; slot < this->column(column)->slots().size(); ++slot) {
            const Column::Slot& cells = this->column(column)->slots()[slot];
            const int first = std::max(range.top, cells.firstRow);
            const int last = std::min(range.bottom, cells.lastRow());
            for (int row = first; row <= last; ++row) {
                const Column::Slot& present = this->column(column)->slots()[slot];
                if (present.block->style(row - present.firstRow) == 0)
                    continue;
                const std::uint32_t number = restyled(styleNumber({column, row}));
                const Column::Place place = editableColumn(column).writable(row);
                place.block.setStyle(place.index, number);
            }
        }
    }
    SheetSettings& settings = editableSettings();
    if (wholeColumns) {
        for (int column = range.left; column <= range.right; ++column) {
            std::uint32_t& own = settings.columnStyles[column];
            own = restyled(own);
        }
        for (auto& [row, number] : settings.rowStyles) {
            for (int column = range.left; column <= range.right; ++column) {
                const Column::Place place = editableColumn(column).writable(row);
                if (place.block.style(place.index) == 0)
                    place.block.setStyle(place.index, restyled(number));
            }
        }
        return;
    }
    for (int row = range.top; row <= range.bottom; ++row) {
        std::uint32_t& own = settings.rowStyles[row];
        own = restyled(own);
    }
}

} // namespace spreadsheet
