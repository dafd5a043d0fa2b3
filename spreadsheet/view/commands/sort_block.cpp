#include "spreadsheet/view/commands/sort_block.h"

#include "spreadsheet/values/coercion.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace spreadsheet {

namespace {

/// The rows of a block (from 0) in their new order.
std::vector<int> sortedRows(const Sheet& sheet, const CellRange& rows, const std::vector<SortKey>& keys)
{
    std::vector<std::vector<Value>> values;
    for (const SortKey& key : keys) {
        values.emplace_back();
        for (int row = rows.top; row <= rows.bottom; ++row)
            values.back().push_back(sheet.value({key.column, row}));
    }
    std::vector<int> order(static_cast<std::size_t>(rows.rows()));
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, [&](int a, int b) {
        for (std::size_t key = 0; key < keys.size(); ++key) {
            const Value& first = values[key][static_cast<std::size_t>(a)];
            const Value& second = values[key][static_cast<std::size_t>(b)];
            if (const int result = compareSorted(first, second, keys[key].descending))
                return result < 0;
        }
        return false;
    });
    return order;
}

/// Lines are the table's: rows that change places leave theirs behind.
class LinesOfPlaces {
public:
    explicit LinesOfPlaces(StylePool& pool)
        : m_pool(pool)
    {
    }
    /// The one style with the lines of the other, by their numbers.
    std::uint32_t operator()(std::uint32_t style, std::uint32_t place)
    {
        if (style == place)
            return style;
        const auto [known, fresh] = m_known.try_emplace({style, place}, style);
        if (fresh) {
            CellStyle look = m_pool[style];
            const CellStyle& lines = m_pool[place];
            for (const auto side : {&CellStyle::left, &CellStyle::right, &CellStyle::top, &CellStyle::bottom})
                look.*side = lines.*side;
            if (look != m_pool[style])
                known->second = m_pool.intern(look);
        }
        return known->second;
    }

private:
    StylePool& m_pool;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> m_known;
};

bool holdsAny(const std::vector<CellRange>& ranges, const CellRange& block)
{
    return std::ranges::any_of(ranges, [&](const CellRange& range) { return range.intersects(block); });
}

bool holdsData(const Sheet& sheet, const CellRange& range)
{
    for (int column = range.left; column <= range.right; ++column) {
        for (int row = range.top; row <= range.bottom; ++row) {
            if (!sheet.value({column, row}).isEmpty() || sheet.hasFormula({column, row}))
                return true;
        }
    }
    return false;
}

} // namespace

Refusal sortBlock(Workbook& workbook, Sheet& sheet, const CellRange& block, const std::vector<SortKey>& keys,
                  bool headerRow)
{
    CellRange rows = block;
    rows.top += headerRow;
    rows.bottom = std::min(block.bottom, sheet.lastDataRow());
    rows.right = std::min(block.right, std::max(sheet.lastDataColumn(), block.left));
    if (rows.top >= rows.bottom)
        return {};
    std::vector<CellRange> spans = sheet.settings().spans;
    std::erase_if(spans, &CellRange::isOneCell);
    if (holdsAny(spans, rows))
        return "排序区域中有合并单元格，请先取消合并";
    if (holdsAny(sheet.settings().arrays, rows))
        return "排序区域中有数组公式，不能排序";
    for (const SortKey& key : keys) {
        if (key.column < block.left || key.column > block.right)
            return "排序的列不在区域中";
    }
    const std::vector<int> order = sortedRows(sheet, rows, keys);
    if (std::ranges::is_sorted(order))
        return {};
    const LiftedCells former = sheet.lift(rows);
    LiftedCells sorted(former.columns, former.rows);
    LinesOfPlaces lines(workbook.styles());
    for (int column = 1; column <= former.columns; ++column) {
        for (int row = 1; row <= former.rows; ++row) {
            CellContent& cell = sorted.at(column, row);
            cell = former.at(column, order[static_cast<std::size_t>(row) - 1] + 1);
            cell.style = lines(cell.style, former.at(column, row).style);
        }
    }
    const UndoStep step(workbook, "排序");
    return sheet.put(sorted, {rows.left, rows.top});
}

CellRange blockAround(const Sheet& sheet, CellAddress cell)
{
    const int lastRow = std::max(sheet.lastDataRow(), 1);
    const int lastColumn = std::max(sheet.lastDataColumn(), 1);
    CellRange block{cell.column, cell.row, cell.column, cell.row};
    const auto grow = [&](int& edge, int step, int limit, auto&& line) {
        const int next = edge + step;
        if (step < 0 ? next < limit : next > limit)
            return false;
        if (!holdsData(sheet, line(next)))
            return false;
        edge = next;
        return true;
    };
    for (bool grown = true; grown;) {
        // Corners count, so that a table whose rows only touch hangs together.
        const int left = std::max(block.left - 1, 1), right = std::min(block.right + 1, lastColumn);
        const int top = std::max(block.top - 1, 1), bottom = std::min(block.bottom + 1, lastRow);
        grown = grow(block.top, -1, 1, [&](int row) { return CellRange{left, row, right, row}; });
        grown |= grow(block.bottom, 1, lastRow, [&](int row) { return CellRange{left, row, right, row}; });
        grown |= grow(block.left, -1, 1, [&](int column) { return CellRange{column, top, column, bottom}; });
        grown |= grow(block.right, 1, lastColumn, [&](int column) {
            return CellRange{column, top, column, bottom};
        });
    }
    return block;
}

} // namespace spreadsheet
