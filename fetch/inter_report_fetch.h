#pragma once
#include "fetch/CallState.h"
#include "fetch/diagnostics.h"
#include "fetch/ledger_fetch.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;
class frmEditor1;

/// The arguments of one `REF_F` call.
struct ReportReference {
    std::string report;   ///< name of the stored report
    std::string cell;     ///< "B12"
    std::string sheetTab; ///< "1" for the first; empty: the sheet that the report opens on
    friend auto operator<=>(const ReportReference&, const ReportReference&) = default;
};

/// What one inter-report fetch gave.
struct ReferenceAnswer {
    std::string text;                              ///< as type and decimals of the referenced cell give it
    std::string reason;                            ///< why there is no text; empty otherwise
    std::shared_ptr<const LedgerFetch> doubtful;   ///< one that puts the referenced cell in doubt
    FetchOutcome outcome = FetchOutcome::doubtful; ///< of the fetch itself, where there is a reason
    CallState state =
        CallState::value; ///< of the fetch itself, or that the referenced cell has without doubt
};

/// A call's arguments and what it gave for them.
struct ReferenceFetch {
    ReportReference reference;
    ReferenceAnswer answer;
};

/// A cell name taken apart: digits (ASCII) make the row, all other characters the column, in any order.
struct ReferencedCell {
    int column = 1;                  ///< of one or two letters, either case; 1 for anything else
    bool columnIsNamed = false;      ///< the letters named a column
    std::optional<std::int64_t> row; ///< nothing without digits, or beyond 18 of them
};
ReferencedCell parseReferencedCell(std::string_view name);

/// One inter-report fetch: opens the connection, reads the report's row, loads its content into a hidden
/// workbook, whose ledger fetches are made one by one, reads the cell and closes the connection. A step that
/// fails is left out and makes the fetch a failed one. Nothing is kept for the next call.
/// @throws WorkCancelled
ReferenceAnswer fetchFromReport(DatabaseAccess& database, const ReportReference& reference);

/// The statement that finds a stored report by its name.
std::string reportByNameStatement(std::string_view report);

/// Content of the first stored report of that name; nothing if there is none. @throws DatabaseError
std::optional<std::vector<std::byte>> storedContent(Connection& connection, std::string_view report);
/// … as a call that the waiting user can cancel. @throws DatabaseError, WorkCancelled
std::optional<std::vector<std::byte>> fetchedContent(std::unique_ptr<Connection>& connection,
                                                     const std::string& report);

/// Why there is no report to read a cell from. No reason: there is one.
struct ReportProblem {
    std::string reason;
    FetchOutcome outcome = FetchOutcome::doubtful;
};
/// "没有名为“资产负债表”的报表", which is nothing found and no failure.
ReportProblem missingReport(std::string_view report);
/// It could not be looked for, or what is stored cannot be read.
ReportProblem unreadableReport(std::string_view report, const std::exception& error);

/// What the referenced cell of a loaded report hands over: number format codes change only what is seen and
/// printed. Row 0 or a cell beyond the sheet reads as empty.
/// @param problem     of the report's loading: the answer's reason, if there is one
/// @param tellsKinds  whether a total carries the doubt in its parts
ReferenceAnswer readReferencedCell(frmEditor1& hidden, const ReportReference& reference,
                                   const ReportProblem& problem, bool tellsKinds = true);

} // namespace selfreport
