#pragma once
#include "reports/ReportStore.h"
#include "spreadsheet/workbook/Workbook.h"

#include <optional>
#include <string>
#include <variant>

namespace selfreport {

// The report store for windows. Each procedure works on `gReportId` as user `gLoginUserId`, and returns false
// after telling the user why it failed.

/// Stores a new report as ReportStore::insert does and sets `gReportId` to its id.
[[nodiscard]] bool insertReport(const std::string& name, const spreadsheet::Workbook& workbook,
                                RememberedReport* remembered = nullptr,
                                const std::optional<StoredPageSetup>& pageSetup = std::nullopt);

/// Loads row `gReportId` as ReportStore::load does. `gHeaderText` and `gFooterText` keep the stored texts.
/// A report that does not exist, or content that cannot be read, leaves name and workbook as they were and
/// those two texts empty.
[[nodiscard]] bool loadReport(std::string& name, spreadsheet::Workbook& workbook,
                              RememberedReport* remembered = nullptr);

/// What became of a report that was to be stored.
struct ReportSaved {};
struct ReportLeft {}; ///< not stored; the user has been told why
using SaveOutcome = std::variant<ReportSaved, ReportLeft, SaveConflict>;

/// Replaces the remembered row as ReportStore::replace does. Its page set-up goes to `gHeaderText` and
/// `gFooterText` too.
[[nodiscard]] SaveOutcome updateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                                       RememberedReport& remembered);

/// Stores a report that was deleted meanwhile as ReportStore::restore does, otherwise as above.
[[nodiscard]] SaveOutcome recreateReport(const std::string& name, const spreadsheet::Workbook& workbook,
                                         RememberedReport& remembered);

/// Whether a stored report has that name; nothing if that cannot be found out, which the user has been told.
[[nodiscard]] std::optional<bool> isReportName(const std::string& name);

/// Deletes row `gReportId` and its menu item, both or neither.
[[nodiscard]] bool deleteInfo();

} // namespace selfreport
