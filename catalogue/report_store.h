#pragma once
#include "spreadsheet/engine/Workbook.h"

#include <string>

namespace selfreport {

// Reports as rows of tblCWSelfReport. Each operation opens the shared connection and closes it, works on
// `gReportId`, and returns false after telling the user why it failed.

/// Stores a new report and its menu item, and sets `gReportId` to its id. The row is written before the item,
/// not in one transaction.
/// @param name  as typed; the menu item takes it without blanks at its ends
bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook);

/// Loads row `gReportId`: name, content, and on every sheet margins, orientation, header and footer with
/// their placeholders filled from the settings. `gHeaderText` and `gFooterText` keep the stored texts.
/// A report that does not exist, or content that is damaged, leaves name and workbook as they were.
bool loadReport(std::string& name, spreadsheet::Workbook& workbook);

/// Replaces row `gReportId` by the name and content given, keeping its page set-up: one transaction. A row
/// that was deleted meanwhile is written anew with the default page set-up.
bool updateReport(const std::string& name, const spreadsheet::Workbook& workbook);

/// Deletes row `gReportId` and its menu item, both or neither.
bool deleteInfo();

} // namespace selfreport
