#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <string_view>

namespace spreadsheet {

class Workbook;

/// A place that a text in the name box means.
struct GoToPlace {
    int sheet = 1; ///< index
    CellRange range;
};

/// Reads "B12", "b2:c9", "$B$2", "C:D", "5:8", each with or without a sheet ("一月!B12"), or a defined name
/// that stands for such a place. Nothing if the text is none or lies outside its sheet's rows and columns.
std::optional<GoToPlace> placeOfText(const Workbook& workbook, std::string_view text, int activeSheet);

} // namespace spreadsheet
