#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <vector>

namespace spreadsheet {

class CellGeometry;
class Sheet;

enum class Direction { left, right, up, down };

/// The next shown cell in a direction, over the whole span that the cell stands in; the cell itself at the
/// edge.
CellAddress neighbour(const Sheet& sheet, const CellGeometry& geometry, CellAddress from,
                      Direction direction);

/// Where Ctrl and an arrow lead: to the last filled cell before a gap, over a gap to the next filled cell, or
/// to the sheet's edge.
CellAddress dataEdge(const Sheet& sheet, const CellGeometry& geometry, CellAddress from, Direction direction);

/// The cell where the last row and the last column with data meet; the first cell without data.
CellAddress lastDataCell(const Sheet& sheet);

/// A screenful down (1) or up (-1), or to the right and left.
CellAddress pageDown(const CellGeometry& geometry, CellAddress from, int screens);
CellAddress pageRight(const CellGeometry& geometry, CellAddress from, int screens);

enum class StepOrder {
    alongRows, ///< Tab: to the right, then to the next row
    downColumns,
};

/// The next cell within what is selected, round and round, over hidden lines and covered cells.
/// @param step  1 or -1 (with Shift)
CellAddress nextSelected(const Sheet& sheet, const CellGeometry& geometry,
                         const std::vector<CellRange>& ranges, CellAddress from, StepOrder order, int step);

} // namespace spreadsheet
