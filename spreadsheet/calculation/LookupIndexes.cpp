#include "spreadsheet/calculation/LookupIndexes.h"

namespace spreadsheet {

namespace {

std::uint64_t cellKey(int sheet, int column, int row)
{
    return (static_cast<std::uint64_t>(sheet) << 48) ^ (static_cast<std::uint64_t>(column) << 32) ^
           static_cast<std::uint32_t>(row);
}

} // namespace

LineIndex* LookupIndexes::index(const Area& line, bool down)
{
    const CellRange& cells = line.cells;
    if ((down ? cells.rows() : cells.columns()) < shortestRange)
        return nullptr;
    auto& entry = (down ? m_columns : m_rows)[cellKey(line.sheet, cells.left, cells.top)];
    if (!std::exchange(entry.asked, true))
        return nullptr;
    if (!entry.index)
        entry.index =
            std::make_unique<LineIndex>(m_book, line.sheet, CellAddress{cells.left, cells.top}, down);
    entry.index->extend(down ? cells.bottom : cells.right);
    return entry.index.get();
}

OrderedColumn* LookupIndexes::ordered(const Area& column)
{
    const CellRange& cells = column.cells;
    if (cells.rows() < shortestRange)
        return nullptr;
    Order& order = m_orders[{cellKey(column.sheet, cells.left, cells.top), cells.bottom}];
    if (++order.asked <= asksBeforeSorting)
        return nullptr;
    if (!order.column) {
        if (m_orderCount == mostOrders) {
            for (auto& [key, kept] : m_orders)
                kept = Order();
            m_orderCount = 0;
        }
        ++m_orderCount;
        order.column = std::make_unique<OrderedColumn>(m_book, column);
    }
    return order.column.get();
}

} // namespace spreadsheet
