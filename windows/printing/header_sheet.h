#pragma once
#include "windows/printing/header_codes.h"

namespace spreadsheet {
class Sheet;
}

namespace selfreport {

// The sheet of the header and footer editor: 9 lines, text columns 1, 3 and 5, each with a column of buttons
// to its right.

/// Sizes, buttons and text cells of an empty editor.
void layOutHeaderSheet(spreadsheet::Sheet& sheet);

bool isHeaderTextColumn(int column);

/// Shows the cells of a grid, and nothing else, in the sheet.
void showHeaderGrid(spreadsheet::Sheet& sheet, const HeaderGrid& grid);

/// @param column  a text column
HeaderCell headerCellOf(const spreadsheet::Sheet& sheet, int column, int row);
HeaderGrid headerGridOf(const spreadsheet::Sheet& sheet);

/// Puts the page number into a cell, or takes it out and leaves an empty text cell.
void setPageNumber(spreadsheet::Sheet& sheet, int column, int row, bool on);

} // namespace selfreport
