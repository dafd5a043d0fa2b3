#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <QString>

namespace spreadsheet {

class Workbook;

/// A reference with its "$" moved on: A1, $A$1, A$1, $A1 and back; both corners of a range follow the first.
QString cycledReference(const QString& reference);

/// How a formula on one sheet writes cells of another or its own: "B2", "B2:C9", "C:D" for whole columns,
/// "'2月 调整'!B2". A merged cell is written as its first one.
QString referenceText(const Workbook& workbook, int formulaSheet, int sheet, const CellRange& range);

} // namespace spreadsheet
