#pragma once
#include "spreadsheet/files/exchange/Warnings.h"
#include "spreadsheet/values/CellAddress.h"

#include <string_view>
#include <vector>

namespace spreadsheet {

/// Takes those merged cells out that overlap others, and tells which.
void keepSpansApart(std::vector<CellRange>& spans, std::string_view sheet, Warnings& warnings);

} // namespace spreadsheet
