#pragma once
#include "spreadsheet/formula/CustomFunction.h"

#include <optional>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

struct ReportReference;

/// The cell of a loaded report that a call reads; nothing if that is row 0 or lies beyond the sheet.
std::optional<spreadsheet::CallPlace> referencedPlace(const spreadsheet::Workbook& workbook,
                                                      const ReportReference& reference);

} // namespace selfreport
