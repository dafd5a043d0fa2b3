#include "spreadsheet/view/Selection.h"

#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>

namespace spreadsheet {

namespace {

CellRange wholeRows(const Sheet& sheet, int first, int last)
{
    return {1, std::min(first, last), sheet.settings().columnCount, std::max(first, last)};
}

CellRange wholeColumns(const Sheet& sheet, int first, int last)
{
    return {std::min(first, last), 1, std::max(first, last), sheet.settings().rowCount};
}

} // namespace

CellRange rangeBetween(CellAddress a, CellAddress b)
{
    return {std::min(a.column, b.column), std::min(a.row, b.row), std::max(a.column, b.column),
            std::max(a.row, b.row)};
}

CellRange withWholeSpans(const Sheet& sheet, CellRange range)
{
    for (bool grown = true; grown;) {
        grown = false;
        for (const CellRange& span : sheet.settings().spans)
            if (span.intersects(range) && !range.contains(span)) {
                range = united(range, span);
                grown = true; // it may now meet a span that was passed already
            }
    }
    return range;
}

CellRange Selection::bounds() const
{
    CellRange bounds = m_ranges.front();
    for (const CellRange& range : m_ranges)
        bounds = united(bounds, range);
    return bounds;
}

bool Selection::contains(CellAddress cell) const
{
    return std::ranges::any_of(m_ranges, [cell](const CellRange& range) { return range.contains(cell); });
}

void Selection::setActive(const Sheet& sheet, CellAddress cell)
{
    const CellRange extent = sheet.extent(cell);
    setRange(extent, {extent.left, extent.top});
}

void Selection::addRange(const Sheet& sheet, CellAddress cell)
{
    const CellRange extent = sheet.extent(cell);
    setRange(extent, {extent.left, extent.top}, true);
}

void Selection::extendTo(const Sheet& sheet, CellAddress cell)
{
    m_ranges.back() = withWholeSpans(sheet, rangeBetween(m_first, cell));
    m_moving = cell;
}

void Selection::setRange(const CellRange& range, CellAddress active, bool add)
{
    if (!add)
        m_ranges.clear();
    m_ranges.push_back(range);
    m_active = m_first = m_moving = active;
    if (range.rows() > 1 || range.columns() > 1) // the corner opposite of the cursor is the one that moves
        m_moving = {active.column == range.left ? range.right : range.left,
                    active.row == range.top ? range.bottom : range.top};
}

void Selection::setBlock(const Sheet& sheet, const CellRange& range)
{
    if (range.isOneCell())
        return setActive(sheet, {range.left, range.top});
    const CellRange first = sheet.extent({range.left, range.top});
    setRange(withWholeSpans(sheet, range), {first.left, first.top});
}

void Selection::extendRows(const Sheet& sheet, int index)
{
    m_ranges.back() = wholeRows(sheet, m_first.row, index);
    m_moving = {sheet.settings().columnCount, index};
}

void Selection::extendColumns(const Sheet& sheet, int index)
{
    m_ranges.back() = wholeColumns(sheet, m_first.column, index);
    m_moving = {index, sheet.settings().rowCount};
}

void Selection::activateWithin(CellAddress cell)
{
    m_active = m_first = cell;
    const CellRange& range = lastRange();
    m_moving = {cell.column == range.right ? range.left : range.right,
                cell.row == range.bottom ? range.top : range.bottom};
}

void Selection::fitInto(const Sheet& sheet)
{
    const int lastColumn = sheet.settings().columnCount;
    const int lastRow = sheet.settings().rowCount;
    const auto fit = [&](CellAddress& cell) {
        cell = {std::clamp(cell.column, 1, lastColumn), std::clamp(cell.row, 1, lastRow)};
    };
    std::erase_if(m_ranges,
                  [&](const CellRange& range) { return range.left > lastColumn || range.top > lastRow; });
    for (CellRange& range : m_ranges) {
        range.right = std::min(range.right, lastColumn);
        range.bottom = std::min(range.bottom, lastRow);
        range = withWholeSpans(sheet, range);
    }
    for (CellAddress* cell : {&m_active, &m_first, &m_moving})
        fit(*cell);
    const CellRange extent = sheet.extent(m_active); // undo may have merged the cell with others
    m_active = {extent.left, extent.top};
    if (m_ranges.empty() || !contains(m_active))
        setActive(sheet, m_active);
}

bool Selection::isBlock(const Sheet& sheet) const
{
    return m_ranges.size() > 1 || m_ranges.front() != sheet.extent(m_active);
}

} // namespace spreadsheet
