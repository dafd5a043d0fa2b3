#pragma once

namespace spreadsheet {

class Sheet;

/// The size that a line needs for its texts, in twips.
int neededRowHeight(const Sheet& sheet, int row);
int neededColumnWidth(const Sheet& sheet, int column);

} // namespace spreadsheet
