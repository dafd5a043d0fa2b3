#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"

#include <optional>
#include <string>

namespace spreadsheet {

class Sheet;
class Workbook;

/// Fills what of `goal` lies beyond `source`, one undo step. The goal holds the source and reaches further
/// in one direction. Formulas and looks are copied, references shift; values go on as a series, or are
/// repeated if `asSeries` is false.
/// @return why nothing was filled
Refusal fillFromBlock(Workbook& workbook, Sheet& sheet, const CellRange& source, const CellRange& goal,
                      bool asSeries);

/// The goal of a fill handle dragged from `source` to a cell: the longer way counts. The source itself if
/// the cell lies within.
CellRange fillGoal(const CellRange& source, CellAddress cell);

/// Down to the last row in which the column left of the source (else the one right of it) goes on without a
/// gap, and before any cell in use. The source itself if nothing stands beside it.
CellRange fillGoalBesides(const Sheet& sheet, const CellRange& source);

} // namespace spreadsheet
