#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>

namespace spreadsheet {

/// Rows or columns put in or taken out at one place of an axis.
struct AxisShift {
    bool rows = true; ///< else columns
    int at = 1;
    int inserted = 0;
    int removed = 0;

    int limit() const { return rows ? maxRows : maxColumns; }
    bool isRemoved(int index) const { return index >= at && index < at + removed; }
    /// Where an index comes to lie; a removed one at the place of the cut.
    int moved(int index) const
    {
        if (index < at)
            return index;
        return isRemoved(index) ? at : index + inserted - removed;
    }
};

/// A cell by its sheet's id, which stays when sheets are moved or renamed.
struct SheetCell {
    int sheetId = 0;
    CellAddress cell;
    friend auto operator<=>(const SheetCell&, const SheetCell&) = default;
};

/// How one change made cells lie elsewhere, for whoever keeps something by their places.
class CellMove {
public:
    static CellMove ofShift(int sheetId, const AxisShift& shift);
    static CellMove ofBlock(int fromSheetId, const CellRange& from, const SheetCell& to);
    /// Another content stands in the workbook: no cell of the former one is left.
    /// @param former  number of the content that undo can bring back; 0: it is gone for good
    static CellMove ofReplacedContent(std::uint64_t former, std::uint64_t present);

    /// Where a cell lies now; nothing if it was removed, pushed off the sheet or overwritten.
    std::optional<SheetCell> placeOf(const SheetCell& former) const;
    /// What undoing it does. Cells that it lost do not come back by it.
    CellMove undone() const;

    /// Which content came for which, by numbers that the workbook never gives twice.
    struct Contents {
        std::uint64_t former = 0; ///< 0: gone for good
        std::uint64_t present = 0;
    };
    /// Nothing if cells were moved within the content.
    std::optional<Contents> replaced() const
    {
        return m_kind == Kind::replaced ? std::optional(m_contents) : std::nullopt;
    }

private:
    CellMove() = default;

    std::optional<SheetCell> shifted(SheetCell former) const;
    std::optional<SheetCell> carried(const SheetCell& former) const;

    enum class Kind { shift, block, replaced };
    Kind m_kind = Kind::replaced;
    int m_sheetId = 0; ///< of the shift, or from which the block comes
    AxisShift m_shift;
    CellRange m_from;
    SheetCell m_to;
    Contents m_contents;
};

using MoveHook = std::function<void(const CellMove&)>;

} // namespace spreadsheet
