#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {

/// A named rectangle of an .xlsx file whose columns formulas name by their headings.
struct XlsxTable {
    std::string name, sheet;
    CellRange range;
    int headerRows = 1, totalsRows = 0;
    std::vector<std::string> columns; ///< their headings
};

/// The plain range that "[#Headers]", "[[#This Row],[Amount]]", "[Amount]" and the like mean behind the
/// table's name; nothing if it names no part of the table.
/// @param brackets  with the outer ones
/// @param sheet     the sheet of the formula's cell
std::optional<std::string> structuredReference(const XlsxTable& table, std::string_view brackets,
                                               std::string_view sheet, CellAddress cell);

} // namespace spreadsheet
