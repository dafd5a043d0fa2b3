#pragma once
#include "spreadsheet/print/cell_text.h"
#include "spreadsheet/print/PageCells.h"

#include <QPen>

#include <span>
#include <vector>

class QPainter;

namespace spreadsheet {

/// The pen of a line style: 0.75 pt, fine styles 0.25 pt, thick ones 1.5 pt, all at least one device pixel.
/// @param scale  device pixels per twip
/// @param twip   length of a twip in the painter's units
QPen borderPen(const BorderLine& line, double scale, bool inColour, double twip = 1);

/// How far a line reaches to either side of its edge, in twips.
inline constexpr double farthestLine = 22.5;

/// The grid on paper.
inline constexpr BorderLine printedGridLine{LineStyle::fineSolid, 0xA0A0A0};

/// Borders and grid lines of one page.
///
/// Where two cells meet, both have the same line if it was drawn by a command. Of others an erased edge wins,
/// then the heavier line, then the right or lower cell's. Inside a span there are no lines; on its outline a
/// cell shows its spanLine(). Edges that run on in the same line are drawn as one, dashed ones cell by cell.
class CellLines {
public:
    /// @param gridLine   drawn where cells have no line; of style `none`: no grid
    /// @param overflows  texts under which no grid line is drawn
    CellLines(const PageCells& cells, const BorderLine& gridLine, std::span<const TextOverflow> overflows);

    /// @param twip  length of a twip in the units of the cells' tracks
    void draw(QPainter& painter, bool inColour, double twip = 1) const;

private:
    using Side = BorderLine CellStyle::*;

    BorderLine sideOf(int row, int column, Side side) const;
    BorderLine edgeBetween(const BorderLine& before, const BorderLine& after) const;
    bool sameSpan(int row, int column, int otherRow, int otherColumn) const;
    void placeRowEdges(int row);
    void placeColumnEdges(int row);
    BorderLine& rowEdge(int line, int column)
    {
        return m_rowEdges[static_cast<std::size_t>(line * m_cells.columns() + column)];
    }
    BorderLine& columnEdge(int row, int line)
    {
        return m_columnEdges[static_cast<std::size_t>(row * (m_cells.columns() + 1) + line)];
    }

    const PageCells& m_cells;
    BorderLine m_gridLine;
    std::vector<BorderLine> m_rowEdges;    ///< above each row and below the last, by column
    std::vector<BorderLine> m_columnEdges; ///< by row; left of each column and right of the last
};

} // namespace spreadsheet
