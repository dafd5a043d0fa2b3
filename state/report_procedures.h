#pragma once
#include "reports/ReportContext.h"
#include "reports/ReportStore.h"
#include "spreadsheet/workbook/Workbook.h"

#include <optional>
#include <string>
#include <variant>

namespace selfreport {

// The report store for windows. Each procedure works on the open report of a context as the context's user,
// and returns false after telling the user why it failed.

/// Stores a new report as ReportStore::insert does, whose id is the open report's from then on.
[[nodiscard]] bool insertReport(ReportContext& context, const std::string& name,
                                const spreadsheet::Workbook& workbook, RememberedReport* remembered = nullptr,
                                const std::optional<StoredPageSetup>& pageSetup = std::nullopt);

/// Loads the open report's row as ReportStore::load does, its header and footer into the context as they are
/// stored. A report that does not exist, or content that cannot be read, leaves name and workbook as they
/// were and those two texts empty.
[[nodiscard]] bool loadReport(ReportContext& context, std::string& name, spreadsheet::Workbook& workbook,
                              RememberedReport* remembered = nullptr);

/// What became of a report that was to be stored.
struct ReportSaved {};
struct ReportLeft {}; ///< not stored; the user has been told why
using SaveOutcome = std::variant<ReportSaved, ReportLeft, SaveConflict>;

/// Replaces the remembered row as ReportStore::replace does. Header and footer go to the context
/// too.
[[nodiscard]] SaveOutcome updateReport(ReportContext& context, const std::string& name,
                                       const spreadsheet::Workbook& workbook, RememberedReport& remembered);

/// Stores a report that was deleted meanwhile as ReportStore::restore does, otherwise as above.
[[nodiscard]] SaveOutcome recreateReport(ReportContext& context, const std::string& name,
                                         const spreadsheet::Workbook& workbook, RememberedReport& remembered);

/// Whether a stored report has that name; nothing if that cannot be found out, which the user has been told.
[[nodiscard]] std::optional<bool> isReportName(ReportContext& context, const std::string& name);

/// Deletes the open report's row and its menu item, both or neither.
[[nodiscard]] bool deleteInfo(ReportContext& context);

} // namespace selfreport
