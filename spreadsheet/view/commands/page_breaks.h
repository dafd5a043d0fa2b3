#pragma once
#include "spreadsheet/view/commands/structure.h"

namespace spreadsheet {

/// The mark of a page that begins by hand at a row or column in sight: that line, or a hidden one between the
/// line in sight before it and it. 0: no page does.
int pageMarkAt(const Sheet& sheet, Axis axis, int line);

/// Makes the page that begins at `from` by hand begin at `to`; at the first line of the sheet, where one
/// begins anyway, the mark is gone. One undo step, none if nothing changes.
void movePageBreak(Workbook& workbook, Sheet& sheet, Axis axis, int from, int to);

} // namespace spreadsheet
