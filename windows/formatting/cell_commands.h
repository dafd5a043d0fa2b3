#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <string>

namespace spreadsheet {
struct BorderLines;
class Sheet;
class SpreadsheetControl;
} // namespace spreadsheet

namespace selfreport {

// Commands on the looks and the structure of a grid's cells. Their target are the selected cells, in however
// many ranges they lie, or, without a block, the active cell; merging and unmerging take the first selection
// range. Each is one undo step and leaves the grid's current position at the last cell treated. In run mode
// nothing happens, which the grid's refused() tells.

/// Changes each cell of the target by itself: a toggle inverts every cell of a mixed block.
/// @param label  names the undo step
void changeCells(spreadsheet::SpreadsheetControl& grid, const std::string& label,
                 const std::function<void(spreadsheet::CellStyle&)>& change);

void toggleBold(spreadsheet::SpreadsheetControl& grid);
void toggleItalic(spreadsheet::SpreadsheetControl& grid);
void toggleUnderline(spreadsheet::SpreadsheetControl& grid);
void toggleStrikeOut(spreadsheet::SpreadsheetControl& grid);
void toggleWrap(spreadsheet::SpreadsheetControl& grid);
void toggleLock(spreadsheet::SpreadsheetControl& grid);
void alignCells(spreadsheet::SpreadsheetControl& grid, spreadsheet::HorizontalAlignment alignment);
void alignCells(spreadsheet::SpreadsheetControl& grid, spreadsheet::VerticalAlignment alignment);
/// Moves texts a step to the right, or away from the right side where they are aligned to it, and back.
/// Cells that know no indent are aligned to the left first.
void indentMore(spreadsheet::SpreadsheetControl& grid);
void indentLess(spreadsheet::SpreadsheetControl& grid);
void setFontName(spreadsheet::SpreadsheetControl& grid, const std::string& name);
/// @param points  5 to 72
void setFontSize(spreadsheet::SpreadsheetControl& grid, int points);

/// Whatever the types of the cells are, this code shows their values from now on; "": the types do. What
/// other reports get of the cells stays.
void setNumberFormat(spreadsheet::SpreadsheetControl& grid, const std::string& code);
/// Puts commas between the thousands of the target's figures; if the active cell has them, takes them away.
void toggleThousands(spreadsheet::SpreadsheetControl& grid);

/// Asks for a colour, black at first, and gives it to texts or backgrounds. Cancelled: nothing changes.
void chooseForeColour(spreadsheet::SpreadsheetControl& grid);
void chooseBackColour(spreadsheet::SpreadsheetControl& grid);

/// Looks of a fresh cell, without lines around it; contents and types stay.
void clearFormats(spreadsheet::SpreadsheetControl& grid);

/// Refused if one of the cells belongs to a span already. Asks before it hides contents.
spreadsheet::Refusal mergeCells(spreadsheet::SpreadsheetControl& grid);
/// Takes every span away that has a cell in the range, even where it reaches outside.
void unmergeCells(spreadsheet::SpreadsheetControl& grid);

// Of the dialogs: without a block they work on the cell for which the dialog was opened.

/// The type shows the cells, so a number format code goes. A tag that is not empty keeps a cell's type while
/// formulas are shown, and gets the new one.
/// @param decimals  0 to 15; nothing: they stay
void setCellType(spreadsheet::SpreadsheetControl& grid, spreadsheet::CellAddress cell,
                 spreadsheet::CellType type, std::optional<std::uint8_t> decimals);
/// Tags that keep a cell's type while formulas are shown follow the types of their cells.
void retag(spreadsheet::Sheet& sheet, const spreadsheet::CellRange& range);
/// The target's cells become drop-downs that offer these entries; none: they offer what their columns do.
/// Whole columns keep one list each, for all their drop-downs.
void setDropDownEntries(spreadsheet::SpreadsheetControl& grid, const QStringList& entries);
/// The target's cells become buttons that show this text; "": their columns' or else their values.
void setButtonCaption(spreadsheet::SpreadsheetControl& grid, const QString& caption);
/// Of all selected rows.
/// @param twips  1 to spreadsheet::maxLineSize
void setRowHeights(spreadsheet::SpreadsheetControl& grid, int twips);
void setColumnWidths(spreadsheet::SpreadsheetControl& grid, int twips);

/// In dark blue.
/// @param sides  of every cell, of spreadsheet::BorderSides
void drawBorders(spreadsheet::SpreadsheetControl& grid, spreadsheet::CellAddress cell, int sides,
                 spreadsheet::LineStyle style);
/// In and around each of the selected ranges.
void drawBorders(spreadsheet::SpreadsheetControl& grid, const spreadsheet::BorderLines& lines);

/// One row before the active one; the sheet grows by it.
spreadsheet::Refusal insertRow(spreadsheet::SpreadsheetControl& grid);
spreadsheet::Refusal insertColumn(spreadsheet::SpreadsheetControl& grid);

} // namespace selfreport
