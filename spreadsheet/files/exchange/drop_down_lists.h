#pragma once
#include "spreadsheet/cells/StylePool.h"
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/workbook/Sheet.h"

#include <string>
#include <vector>

namespace spreadsheet {

/// Cells that offer the same entries. Other programs know them as input checks against a list.
struct OfferedList {
    CellRange range;
    DropDownEntries entries;
};

/// The lists of a sheet's drop-down cells, neighbours in one range. One that other programs' files cannot
/// hold is left out with a warning: entries with commas, more than 255 characters in all.
/// @param lastRow  of the file's sheets
std::vector<OfferedList> writtenLists(const Sheet& sheet, const StylePool& styles, int lastRow,
                                      Warnings& warnings);

/// Entries of a list written as one text, blanks around them taken away; none if the text is empty.
std::vector<std::string> listEntries(std::string_view text, char separator);

/// Makes the cells of the lists that a file holds drop-down cells. Ranges that run far beyond what is used
/// end with the sheet; a list of whole columns becomes the columns'.
/// @param settings  of the sheet, with its counts of rows and columns; not handed to it yet
void placeLists(const std::vector<OfferedList>& lists, Sheet& sheet, SheetSettings& settings,
                StylePool& styles, Warnings& warnings);

} // namespace spreadsheet
