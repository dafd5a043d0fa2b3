#pragma once
#include "spreadsheet/cells/LiftedCells.h"
#include "spreadsheet/display/CellStyle.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// One cell of the line that a series goes on from.
struct SeriesCell {
    Value value;
    bool isFormula = false;
    CellType type = CellType::edit;
};

/// The value of place `index` of a series; the given cells are the places 0, 1, …, and places before
/// them count down from -1.
using Series = std::function<Value(int index)>;

/// How a line of cells goes on. Two and more numbers go on in a straight line (the best one if they do not
/// lie on one), one number stays as it is. Dates go on by days, or by months if they stand on the same day of
/// theirs (31 January, 28 February … are the last days). 一月, 星期一, 周一, 甲, 子, 第一季度 and the like go
/// round; a number in a text counts on ("第1季度" goes round after 4, "12月" after 12, "2026年12月" turns the
/// year). Anything else is repeated. Formulas are left to whoever copies them: their places give the empty
/// value.
Series continuedSeries(const std::vector<SeriesCell>& cells);

} // namespace spreadsheet
