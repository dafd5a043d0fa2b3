#pragma once
#include "explain/DrillTree.h"

namespace selfreport {

/// Writes the open part of a tree onto a fresh workbook's first sheet, for paper and for those who take it
/// elsewhere: the head, a row for each row of the tree with its level, and the foot.
void writeDrillSheet(spreadsheet::Workbook& workbook, const DrillHead& head, const DrillNode& root);

} // namespace selfreport
