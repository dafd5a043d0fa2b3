#pragma once
#include "spreadsheet/cells/SheetSettings.h"

#include <functional>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

/// Changes the print settings of every sheet, as one undo step, if it makes a difference: those that stand in
/// the report's row and come from there with every opening, so that the design is the same as before.
void changePrintSettings(spreadsheet::Workbook& workbook,
                         const std::function<void(spreadsheet::PrintSettings&)>& change);

/// Changes those of every sheet that are stored in them, as one undo step, if it makes a difference.
void changeReportsPrint(spreadsheet::Workbook& workbook,
                        const std::function<void(spreadsheet::PrintSettings&)>& change);

/// Changes those of the active sheet, if the change makes a difference.
void changeActiveSheetsPrint(spreadsheet::Workbook& workbook,
                             const std::function<void(spreadsheet::PrintSettings&)>& change);

const spreadsheet::PrintSettings& activeSheetsPrint(const spreadsheet::Workbook& workbook);

/// Inches as the whole number of twips that the grid takes.
int marginTwips(double inches);

} // namespace selfreport
