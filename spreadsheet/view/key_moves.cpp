#include "spreadsheet/view/key_moves.h"

#include "spreadsheet/view/CellGeometry.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>

namespace spreadsheet {

namespace {

bool isFilled(const CellBlock& block, int index)
{
    return block.kinds()[index] != ValueKind::empty || block.formula(index) != 0;
}

bool isFilled(const Sheet& sheet, CellAddress cell)
{
    const Column* column = sheet.column(cell.column);
    const Column::Slot* slot = column ? column->find(cell.row) : nullptr;
    return slot && isFilled(*slot->block, cell.row - slot->firstRow);
}

/// Goes along a column, a block at a time.
class ColumnWalk {
public:
    ColumnWalk(const Column* column, int step)
        : m_column(column)
        , m_step(step)
    {
    }

    bool filled(int row)
    {
        if (!m_column)
            return false;
        if (!m_slot || row < m_slot->firstRow || row > m_slot->lastRow())
            m_slot = m_column->find(row);
        return m_slot && isFilled(*m_slot->block, row - m_slot->firstRow);
    }
    /// The next row whose filling is `wanted`, from `row` on; `limit` if there is none before.
    int next(int row, bool wanted, int limit)
    {
        while (row != limit && filled(row) != wanted)
            row = m_slot ? row + m_step : overGap(row, limit);
        return row;
    }

private:
    int overGap(int row, int limit) const
    {
        if (!m_column)
            return limit;
        const auto& slots = m_column->slots();
        const std::size_t below = m_column->lowerSlot(row);
        if (m_step > 0)
            return below < slots.size() ? std::min(slots[below].firstRow, limit) : limit;
        return below > 0 ? std::max(slots[below - 1].lastRow(), limit) : limit;
    }

    const Column* m_column;
    const Column::Slot* m_slot = nullptr;
    int m_step;
};

int columnEdge(const Sheet& sheet, int column, int row, int step, int limit)
{
    if (row == limit)
        return row;
    ColumnWalk walk(sheet.column(column), step);
    if (walk.filled(row) && walk.filled(row + step)) {
        const int gap = walk.next(row + step, false, limit);
        return walk.filled(gap) ? gap : gap - step;
    }
    return walk.next(row + step, true, limit);
}

int rowEdge(const Sheet& sheet, int column, int row, int step, int limit)
{
    if (column == limit)
        return column;
    const auto filled = [&](int at) { return isFilled(sheet, {at, row}); };
    const bool wanted = !(filled(column) && filled(column + step));
    int at = column + step;
    while (at != limit && filled(at) != wanted)
        at += step;
    return wanted || filled(at) ? at : at - step;
}

bool isAcross(Direction direction)
{
    return direction == Direction::left || direction == Direction::right;
}

} // namespace

CellAddress neighbour(const Sheet& sheet, const CellGeometry& geometry, CellAddress from, Direction direction)
{
    const CellRange extent = sheet.extent(from);
    const bool forwards = direction == Direction::right || direction == Direction::down;
    const int step = forwards ? 1 : -1;
    CellAddress to = from;
    if (isAcross(direction)) {
        const int next = geometry.columns().shown((forwards ? extent.right : extent.left) + step, step);
        to.column = next == 0 ? from.column : next;
    } else {
        const int next = geometry.rows().shown((forwards ? extent.bottom : extent.top) + step, step);
        to.row = next == 0 ? from.row : next;
    }
    return to;
}

CellAddress dataEdge(const Sheet& sheet, const CellGeometry& geometry, CellAddress from, Direction direction)
{
    const SheetSettings& settings = sheet.settings();
    CellAddress to = from;
    switch (direction) {
    case Direction::left:
        to.column = rowEdge(sheet, from.column, from.row, -1, 1);
        break;
    case Direction::right:
        to.column = rowEdge(sheet, from.column, from.row, 1, settings.columnCount);
        break;
    case Direction::up:
        to.row = columnEdge(sheet, from.column, from.row, -1, 1);
        break;
    case Direction::down:
        to.row = columnEdge(sheet, from.column, from.row, 1, settings.rowCount);
        break;
    }
    const int step = direction == Direction::right || direction == Direction::down ? 1 : -1;
    const auto shownAt = [step](const AxisPositions& axis, int index) {
        const int shown = axis.shown(index, step);
        return shown != 0 ? shown : std::max(axis.shown(index, -step), 1);
    };
    return {shownAt(geometry.columns(), to.column), shownAt(geometry.rows(), to.row)};
}

CellAddress lastDataCell(const Sheet& sheet)
{
    return {std::max(sheet.lastDataColumn(), 1), std::max(sheet.lastDataRow(), 1)};
}

CellAddress pageDown(const CellGeometry& geometry, CellAddress from, int screens)
{
    return {from.column, geometry.rows().moved(from.row, screens * geometry.wholeRows())};
}

CellAddress pageRight(const CellGeometry& geometry, CellAddress from, int screens)
{
    return {geometry.columns().moved(from.column, screens * geometry.wholeColumns()), from.row};
}

CellAddress nextSelected(const Sheet& sheet, const CellGeometry& geometry,
                         const std::vector<CellRange>& ranges, CellAddress from, StepOrder order, int step)
{
    const auto holding = std::ranges::find_if(ranges, [&](const CellRange& r) { return r.contains(from); });
    std::size_t at = holding == ranges.end() ? 0 : static_cast<std::size_t>(holding - ranges.begin());
    CellAddress cell = from;
    const auto showsItself = [&](CellAddress c) {
        const CellRange extent = sheet.extent(c);
        return extent.left == c.column && extent.top == c.row && geometry.rows().size(c.row) > 0 &&
               geometry.columns().size(c.column) > 0;
    };
    const bool along = order == StepOrder::alongRows;
    // Merged cells and hidden lines make some steps lead nowhere; a whole round of them is the end.
    for (int steps = 0; steps < 2'000'000; ++steps) {
        const CellRange& range = ranges[at];
        int& fast = along ? cell.column : cell.row;
        int& slow = along ? cell.row : cell.column;
        const int fastFirst = along ? range.left : range.top, fastLast = along ? range.right : range.bottom;
        const int slowFirst = along ? range.top : range.left, slowLast = along ? range.bottom : range.right;
        fast += step;
        if (fast < fastFirst || fast > fastLast) {
            fast = step > 0 ? fastFirst : fastLast;
            slow += step;
        }
        if (slow < slowFirst || slow > slowLast) {
            at = (at + ranges.size() + static_cast<std::size_t>(step)) % ranges.size();
            const CellRange& other = ranges[at];
            cell = step > 0 ? CellAddress{other.left, other.top} : CellAddress{other.right, other.bottom};
        }
        if (cell == from || showsItself(cell))
            return cell;
    }
    return from;
}

} // namespace spreadsheet
