#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <vector>

namespace spreadsheet {

class Sheet;

/// The active cell and the ranges selected around it. Ranges take merged cells in whole.
class Selection {
public:
    CellAddress active() const { return m_active; }
    const std::vector<CellRange>& ranges() const { return m_ranges; }
    const CellRange& lastRange() const { return m_ranges.back(); }
    /// The corner of the last range that moves when it is extended.
    CellAddress moving() const { return m_moving; }
    CellRange bounds() const;
    bool contains(CellAddress cell) const;

    /// The cell alone, with its span.
    void setActive(const Sheet& sheet, CellAddress cell);
    /// One more range, which begins at a cell and holds the cursor now.
    void addRange(const Sheet& sheet, CellAddress cell);
    /// The last range now reaches from its first corner to a cell.
    void extendTo(const Sheet& sheet, CellAddress cell);
    /// A range as it is; the cursor stands at `active` in it.
    void setRange(const CellRange& range, CellAddress active, bool add = false);
    /// A range with the whole of the merged cells that it meets; the cursor stands in its first cell.
    void setBlock(const Sheet& sheet, const CellRange& range);
    /// Whole rows or columns from the first corner to `index`.
    void extendRows(const Sheet& sheet, int index);
    void extendColumns(const Sheet& sheet, int index);
    /// The cursor moves within what is selected, which stays.
    void activateWithin(CellAddress cell);
    /// Keeps to the sheet's rows, columns and merged cells after these have changed.
    void fitInto(const Sheet& sheet);
    /// More than one cell (or one merged one).
    bool isBlock(const Sheet& sheet) const;

private:
    std::vector<CellRange> m_ranges{CellRange{}};
    CellAddress m_active;
    CellAddress m_first; ///< corner of the last range that stays when it is extended
    CellAddress m_moving;
};

/// The smallest range that holds another and every span that it meets.
CellRange withWholeSpans(const Sheet& sheet, CellRange range);

CellRange rangeBetween(CellAddress a, CellAddress b);

} // namespace spreadsheet
