#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"
#include "spreadsheet/view/commands/clipboard.h"

#include <optional>
#include <string>
#include <variant>

namespace spreadsheet {

class Sheet;
class Workbook;

/// Where a paste goes. A block is repeated over a selection that is a multiple of it.
struct PastePlan {
    CellRange goal;
    int across = 1; ///< copies of the block side by side
    int down = 1;
    int missingRows = 0; ///< by which the sheet is too short; pasting makes it longer
    int missingColumns = 0;

    bool needsMoreRoom() const { return missingRows > 0 || missingColumns > 0; }
};

/// @return the plan, or why the block cannot go there: beyond the largest sheet, through a merged cell,
/// through an array formula
[[nodiscard]] std::variant<PastePlan, Refusal> planPaste(const Sheet& sheet, const ClipboardContent& content,
                                                         const CellRange& selection);

enum class PasteKind {
    all,
    valuesOnly, ///< without formulas and looks
};

/// Pastes as one undo step. Cells of ours bring everything along, their references shifted. Cells of
/// others are taken as if typed, with the looks that came along; the goal's other looks stay.
Refusal paste(Workbook& workbook, Sheet& sheet, const ClipboardContent& content, const PastePlan& plan,
              PasteKind kind = PasteKind::all);

/// Moves cut cells to the plan's goal; all references follow them.
Refusal pasteCut(Workbook& workbook, Sheet& source, const CellRange& cut, Sheet& target,
                 const PastePlan& plan);

/// Why a block cannot be put over a range of the sheet: it would cut a merged cell or an array formula.
/// @param leaving  cells that are about to go elsewhere, with what lies wholly within
/// @param keepsSpansWhole  false: merged cells may be cut
Refusal overlapRefusal(const Sheet& sheet, const CellRange& goal,
                       const std::optional<CellRange>& leaving = std::nullopt, bool keepsSpansWhole = true);

} // namespace spreadsheet
