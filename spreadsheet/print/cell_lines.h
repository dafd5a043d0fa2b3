#pragma once
#include "spreadsheet/print/cell_text.h"
#include "spreadsheet/print/PageCells.h"

#include <QPen>

#include <span>
#include <vector>

class QPainter;

namespace spreadsheet {

/// The pen of a line style: 0.75 pt, fine styles 0.25 pt, both at least one device pixel.
/// @param scale  device pixels per twip
QPen borderPen(const BorderLine& line, double scale, bool inColour);

/// Borders and grid lines of one page.
///
/// Where two cells meet, an erased edge wins, then the heavier line, then the right or lower cell's.
/// Inside a span there are no lines; on its outline a cell without a line of its own shows the
/// span's. Edges that run on in the same line are drawn as one.
class CellLines {
public:
    /// @param overflows  texts under which no grid line is drawn
    CellLines(const PageCells& cells, bool gridLines, std::span<const TextOverflow> overflows);

    void draw(QPainter& painter, bool inColour) const;

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
    bool m_gridLines;
    std::vector<BorderLine> m_rowEdges;    ///< above each row and below the last, by column
    std::vector<BorderLine> m_columnEdges; ///< by row; left of each column and right of the last
};

} // namespace spreadsheet
