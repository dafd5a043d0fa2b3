#pragma once
#include "spreadsheet/files/ole2/little_endian.h"

#include <string>

namespace spreadsheet {

class Sheet;
class Workbook;

/// The used area of a sheet as CSV: UTF-8 with byte order mark, lines ended by CR LF, the texts that the
/// cells show, amounts without sign and commas, quoted where they hold a comma, a quote, a line end or a
/// blank at an end. Lines are as long as the area is wide, unless that makes more than 50 million fields.
std::string sheetCsv(const Sheet& sheet);

/// All sheets below each other, an empty line between; the byte order mark stands once, at the start.
std::string workbookCsv(const Workbook& workbook);

/// Reads a text of lines and fields into the first sheet of a fresh workbook. UTF-8 with and without mark,
/// UTF-16 with mark, else GB18030; fields parted by whichever of comma, semicolon, tab and bar parts the
/// first lines most evenly. Numbers, percentages, amounts, dates and times become constants as if typed;
/// digits that begin with 0 or are more than 15 stay texts, and so does what begins with "=": ="001" is the
/// text 001.
/// @throws ContentError if it holds zero bytes, or more rows or columns than a sheet has
void readCsv(Bytes file, Workbook& workbook);

} // namespace spreadsheet
