#pragma once

namespace spreadsheet {

class Sheet;

/// The height in which a row shows: its own, or the one that follows its texts. In twips; 0 if it is hidden.
int shownRowHeight(const Sheet& sheet, int row);

/// The size that a line needs for its texts, in twips.
int neededRowHeight(const Sheet& sheet, int row);
int neededColumnWidth(const Sheet& sheet, int column);

} // namespace spreadsheet
