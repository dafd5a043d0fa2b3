#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>

namespace spreadsheet {

class Column;

/// Cells of a sheet that differ from what stood there before.
struct ChangedCells {
    int sheetId = 0;
    CellRange range;
};

/// The first and the last row in which two states of a column hold another content or look (of a formula its
/// text counts, not its value). Nothing if they are alike.
struct RowSpan {
    int first = maxRows + 1;
    int last = 0;
};
std::optional<RowSpan> differentRows(const Column& before, const Column& after);

} // namespace spreadsheet
