#pragma once
#include "spreadsheet/files/exchange/Warnings.h"

#include <pugixml.hpp>
#include <span>
#include <string>

namespace spreadsheet {

class Workbook;
class XlsxNames;

/// Lets formulas find a table of a sheet by its name. That it is none here becomes a warning.
void readXlsxTable(pugi::xml_node table, const std::string& sheet, XlsxNames& names, Warnings& warnings);

/// Defines a file's names in the workbook, whose sheets must be there, and tells formulas what they are
/// called.
/// @param list    its "definedNames"
/// @param sheets  the workbook's sheets by tab of the file; 0: none
void defineXlsxNames(pugi::xml_node list, std::span<const int> sheets, Workbook& workbook, XlsxNames& names,
                     Warnings& warnings);

} // namespace spreadsheet
