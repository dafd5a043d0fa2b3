#pragma once
#include "reports/report_saving.h"
#include "spreadsheet/workbook/Workbook.h"

#include <string>
#include <variant>

namespace selfreport {

// Reports as rows of tblCWSelfReport. Each operation opens the shared connection and closes it, works on
// `gReportId`, and returns false after telling the user why it failed.

/// Stores a new report and its menu item, both or neither, and sets `gReportId` to its id.
/// @param name        as typed; the menu item takes it without blanks at its ends
/// @param remembered  is given what stands in the database then
/// @param pageSetup   of the new row; without it margins, orientation, header and footer stay null
[[nodiscard]] bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook,
                                RememberedReport* remembered = nullptr,
                                const std::optional<StoredPageSetup>& pageSetup = std::nullopt);

/// Loads row `gReportId`: name, content, and on every sheet margins, orientation, header and footer with
/// their placeholders filled from the settings. `gHeaderText` and `gFooterText` keep the stored texts.
/// A report that does not exist, or content that cannot be read, leaves name and workbook as they were and
/// those two texts empty.
/// @param remembered  is given what was read, of a row with content that cannot be read too
[[nodiscard]] bool loadReport(std::string& name, spreadsheet::Workbook& workbook,
                              RememberedReport* remembered = nullptr);

/// What became of a report that was to be stored.
struct ReportSaved {};
struct ReportNotSaved {}; ///< the user has been told why
using SaveOutcome = std::variant<ReportSaved, ReportNotSaved, SaveConflict>;

/// Replaces the remembered row by the name and content given, keeping its page set-up, which goes to
/// `gHeaderText` and `gFooterText` too. A row that is no longer what is remembered is left alone.
[[nodiscard]] SaveOutcome updateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                                       RememberedReport& remembered);

/// Stores a report that was deleted meanwhile under its id again, with its menu item and page set-up.
[[nodiscard]] SaveOutcome recreateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                                         RememberedReport& remembered);

/// Whether a stored report has that name; nothing if that cannot be found out, which the user has been told.
[[nodiscard]] std::optional<bool> isReportName(const std::string& name);

/// Deletes row `gReportId` and its menu item, both or neither.
[[nodiscard]] bool deleteInfo();

} // namespace selfreport
