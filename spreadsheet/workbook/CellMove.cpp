#include "spreadsheet/workbook/CellMove.h"

#include <utility>

namespace spreadsheet {

CellMove CellMove::ofShift(int sheetId, const AxisShift& shift)
{
    CellMove move;
    move.m_kind = Kind::shift;
    move.m_sheetId = sheetId;
    move.m_shift = shift;
    return move;
}

CellMove CellMove::ofBlock(int fromSheetId, const CellRange& from, const SheetCell& to)
{
    CellMove move;
    move.m_kind = Kind::block;
    move.m_sheetId = fromSheetId;
    move.m_from = from;
    move.m_to = to;
    return move;
}

CellMove CellMove::ofReplacedContent(std::uint64_t former, std::uint64_t present)
{
    CellMove move;
    move.m_contents = {former, present};
    return move;
}

std::optional<SheetCell> CellMove::placeOf(const SheetCell& former) const
{
    switch (m_kind) {
    case Kind::shift:
        return shifted(former);
    case Kind::block:
        return carried(former);
    case Kind::replaced:
        break;
    }
    return std::nullopt;
}

std::optional<SheetCell> CellMove::shifted(SheetCell former) const
{
    if (former.sheetId != m_sheetId)
        return former;
    int& index = m_shift.rows ? former.cell.row : former.cell.column;
    if (m_shift.isRemoved(index) || m_shift.moved(index) > m_shift.limit())
        return std::nullopt;
    index = m_shift.moved(index);
    return former;
}

std::optional<SheetCell> CellMove::carried(const SheetCell& former) const
{
    const auto& [column, row] = former.cell;
    if (former.sheetId == m_sheetId && m_from.contains(former.cell))
        return SheetCell{m_to.sheetId,
                         {column - m_from.left + m_to.cell.column, row - m_from.top + m_to.cell.row}};
    const CellRange goal{m_to.cell.column, m_to.cell.row, m_to.cell.column + m_from.columns() - 1,
                         m_to.cell.row + m_from.rows() - 1};
    return former.sheetId == m_to.sheetId && goal.contains(former.cell) ? std::nullopt
                                                                        : std::optional(former);
}

CellMove CellMove::undone() const
{
    CellMove move = *this;
    std::swap(move.m_shift.inserted, move.m_shift.removed);
    std::swap(move.m_contents.former, move.m_contents.present);
    if (m_kind == Kind::block) {
        move.m_sheetId = m_to.sheetId;
        move.m_from = {m_to.cell.column, m_to.cell.row, m_to.cell.column + m_from.columns() - 1,
                       m_to.cell.row + m_from.rows() - 1};
        move.m_to = {m_sheetId, {m_from.left, m_from.top}};
    }
    return move;
}

} // namespace spreadsheet
