#pragma once
#include "spreadsheet/values/Value.h"
#include "spreadsheet/view/CellGeometry.h"
#include "spreadsheet/view/CornerMark.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace spreadsheet {

class Sheet;

/// What cells in sight held when they were painted last, so that a change, wherever it came from, repaints
/// the rows that look different and no others.
class ShownCells {
public:
    /// Remembers the cells as they are now.
    /// @param markOf  empty: no cell has one
    void take(const Sheet& sheet, const CellGeometry& geometry,
              const std::function<CornerMark(CellAddress)>& markOf);
    /// Rows in sight whose cells have changed since, some perhaps twice; cells that were out of sight then
    /// count as changed. Takes the cells anew.
    std::vector<int> changedRows(const Sheet& sheet, const CellGeometry& geometry,
                                 const std::function<CornerMark(CellAddress)>& markOf);

private:
    struct Look {
        Value value;
        Text shown;
        std::uint32_t style = 0;
        CornerMark mark = CornerMark::none;
        friend bool operator==(const Look&, const Look&) = default;
    };
    struct SpanLook {
        CellRange range;
        Look look; ///< of its first cell, which may be out of sight
    };

    std::vector<int> m_rows, m_columns;
    std::vector<Look> m_looks;     ///< row by row
    std::vector<SpanLook> m_spans; ///< that are in sight
};

} // namespace spreadsheet
