#pragma once
#include "spreadsheet/formula/ReferenceSlot.h"
#include "spreadsheet/workbook/CellMove.h"
#include "spreadsheet/workbook/Sheet.h"

#include <functional>
#include <optional>
#include <vector>

namespace spreadsheet {

/// Changes of a sheet's structure with everything that has to follow: references of all formulas,
/// spans, sizes, styles of rows and columns, array formulas.
class SheetStructure {
public:
    explicit SheetStructure(Workbook& workbook)
        : m_workbook(workbook)
    {
    }

    Refusal shift(Sheet& sheet, const AxisShift& shift);
    /// Every reference to a sheet becomes #REF!.
    void breakReferences(int sheetId);
    /// References to cells of `from` follow them to their new place.
    void followMove(const Sheet& source, const CellRange& from, const Sheet& target, CellAddress to);

private:
    /// A formula over contiguous rows, or an array formula.
    struct Stretch {
        Sheet* sheet;
        int column;
        int firstRow;
        int lastRow;
        std::uint32_t formula;
    };
    /// Rows of a stretch that get another formula.
    struct Rewrite {
        Stretch stretch;
        bool changesValue = false;
    };

    std::vector<Stretch> stretches(const std::function<bool(const Sheet&, std::uint32_t)>& wanted);
    bool refersTo(const Sheet& holder, std::uint32_t formula, int sheetId) const;
    void collectRewrites(const Stretch& stretch, const Sheet& sheet, const AxisShift& shift,
                         std::vector<Rewrite>& rewrites);
    Rewrite rewritten(const Stretch& stretch, const Sheet& sheet, const AxisShift& shift);
    void apply(const Rewrite& rewrite);
    void shiftCells(Sheet& sheet, const AxisShift& shift);
    void shiftSettings(Sheet& sheet, const AxisShift& shift);
    void rewriteNames(const Sheet& sheet, const AxisShift& shift);
    void rewriteEachName(const std::function<std::uint32_t(std::uint32_t)>& rewritten);
    void detach(ReferenceSlot& slot, int sheetId) const;

    Workbook& m_workbook;
};

} // namespace spreadsheet
