#pragma once
#include "explain/DrillTree.h"

namespace selfreport {

/// The first level of a figure: the calls that it is a sum of, what it adds to them and what rounding
/// changes. A figure that is no sum has its calls, without factors and without a foot.
/// @param reads  also other reports' cells may be opened
DrillNode figureParts(const spreadsheet::Workbook& workbook, const RunRecord& record,
                      const spreadsheet::CallPlace& cell, bool reads);

/// Whether the record holds every call that a figure is made of: not if the workbook was never computed.
bool isRecorded(const spreadsheet::Workbook& workbook, const RunRecord& record,
                const spreadsheet::CallPlace& cell);

/// "Sheet1!B7"
std::string placeText(const spreadsheet::Workbook& workbook, const spreadsheet::CallPlace& cell);

} // namespace selfreport
