#pragma once
#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <array>
#include <vector>

namespace spreadsheet {

/// A side of a cell and the edge that lies there.
struct Side {
    BorderLine CellStyle::*own;
    BorderLine CellStyle::*facing; ///< of the cell on the other side of the edge
    int across, down;              ///< where that cell lies
    std::optional<BorderLine> BorderLines::*outline;
};

inline constexpr std::array<Side, 4> sides{{
    {&CellStyle::left, &CellStyle::right, -1, 0, &BorderLines::left},
    {&CellStyle::right, &CellStyle::left, 1, 0, &BorderLines::right},
    {&CellStyle::top, &CellStyle::bottom, 0, -1, &BorderLines::top},
    {&CellStyle::bottom, &CellStyle::top, 0, 1, &BorderLines::bottom},
}};

inline bool isSameLine(const BorderLine& a, const BorderLine& b)
{
    return a.style == b.style && (a.style == LineStyle::none || a.colour == b.colour);
}

inline bool coversColumns(const Sheet& sheet, const CellRange& range)
{
    return range.top == 1 && range.bottom >= sheet.settings().rowCount;
}

inline bool coversRows(const Sheet& sheet, const CellRange& range)
{
    return range.left == 1 && range.right >= sheet.settings().columnCount;
}

inline CellRange withNeighbours(const CellRange& range)
{
    return {range.left - 1, range.top - 1, range.right + 1, range.bottom + 1};
}

inline std::vector<CellRange> spansNear(const Sheet& sheet, const CellRange& range)
{
    std::vector<CellRange> near;
    std::ranges::copy_if(sheet.settings().spans, std::back_inserter(near),
                         [&](const CellRange& span) { return span.intersects(withNeighbours(range)); });
    return near;
}

/// Most sheets that are pasted and filled have none.
inline bool anyLines(const Workbook& workbook)
{
    const StylePool& styles = workbook.styles();
    for (std::uint32_t number = 0; number < styles.size(); ++number)
        for (const Side& side : sides)
            if ((styles[number].*side.own).style != LineStyle::none)
                return true;
    return false;
}

inline bool isOutline(const CellRange& span, CellAddress cell, const Side& side)
{
    return !span.contains(CellAddress{cell.column + side.across, cell.row + side.down});
}

} // namespace spreadsheet
