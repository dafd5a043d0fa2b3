#pragma once
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"

#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

class Sheet;
class Workbook;
struct PrintSettings;

enum class Axis { rows, columns };

/// Lines of one axis, both ends included, from 1.
struct LineRange {
    int first = 1;
    int last = 1;
    int count() const { return last - first + 1; }
    friend auto operator<=>(const LineRange&, const LineRange&) = default;
};

/// The lines that ranges cover, ascending, joined where they touch.
std::vector<LineRange> linesOf(const std::vector<CellRange>& ranges, Axis axis);

// Each is one undo step and gives the reason if it refuses; nothing has changed then.

/// Puts as many lines before each stretch as it has.
Refusal insertLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines);
Refusal deleteLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines);
/// At least one line stays in sight.
Refusal hideLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines);
/// Hidden lines within and at the edges of the stretches show again.
void showLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines);

inline constexpr int maxLineSize = 31'680; ///< twips; 22 inches

/// @param size  twips, 0 (which hides) to maxLineSize
void resizeLines(Workbook& workbook, Sheet& sheet, Axis axis, const std::vector<LineRange>& lines, int size);

/// Rows lose the heights of their own and follow their texts; hidden ones show.
void freeRows(Workbook& workbook, Sheet& sheet, const std::vector<LineRange>& rows);

/// Freezes the rows above and the columns left of a cell; A1 frees all.
void freezeAt(Workbook& workbook, Sheet& sheet, CellAddress cell);

/// Takes contents away, looks stay. An array formula goes only as a whole.
Refusal clearRanges(Workbook& workbook, Sheet& sheet, const std::vector<CellRange>& ranges);

/// Gives the sheets from `first` on what all sheets of a report have alike: paper, margins, orientation,
/// header and footer.
void printAlike(Workbook& workbook, int first, const PrintSettings& like);

} // namespace spreadsheet
