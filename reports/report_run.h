#pragma once
#include "fetch/diagnostics.h"
#include "reports/report_list.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;
class RunRecord;

/// A report cannot be listed or run; what() is one Chinese sentence that names the thing (the database, the
/// report's id, what is damaged). It never holds a password.
struct ReportRunError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A report after its recalculation.
struct ReportRun {
    std::string name;
    std::unique_ptr<spreadsheet::Workbook> workbook;
    std::vector<CellDiagnostic> diagnostics; ///< cells whose fetch failed or found nothing, in sheet order
    std::vector<std::string> messages;       ///< what the user is told of the database, each once
};

struct RunOptions {
    /// Fetches of one recalculation are shared and sent in batches; off: one call for each cell.
    bool fetchesShared = true;
    /// See ReportEvaluation::setKindsTold; on in any case if a sheet shows kinds of nothing as it
    /// likes, or is printed strictly.
    bool kindsTold = false;
    /// Told what goes on, in Chinese, before each longer step.
    std::function<void(std::string_view)> progress{};
    /// Told what the calculation fetched, at its end.
    std::function<void(const ReportRun&, const RunRecord&, DatabaseAccess&)> computed{};
};

/// Opens a database, so that what is wrong with it is told by name. @throws ReportRunError
std::unique_ptr<Connection> provenConnection(const std::string& connectionString);

/// All stored reports in the order of their ids.
/// @throws ReportRunError
std::vector<ListedReport> listReports(const std::string& connectionString);

/// Loads a stored report and evaluates it as the run mode does; header and footer are filled from the
/// settings store.
/// @throws ReportRunError if there is no such database or report, or its content is damaged
ReportRun runReport(const std::string& connectionString, std::int32_t id, const RunOptions& options = {});

} // namespace selfreport
