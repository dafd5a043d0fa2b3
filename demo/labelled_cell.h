#pragma once
#include "spreadsheet/workbook/Sheet.h"

#include <string_view>

namespace selfreport::demo {

/// The cell so many columns to the right of the first one, row by row, that shows `label` apart from
/// blanks (full-width ones too) before it. @throws std::runtime_error that names the label if no cell shows
/// it
spreadsheet::CellAddress cellBeside(const spreadsheet::Sheet& sheet, std::string_view label,
                                    int columnsRight);

} // namespace selfreport::demo
