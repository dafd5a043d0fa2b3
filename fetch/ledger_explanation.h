#pragma once
#include "fetch/CallState.h"
#include "fetch/diagnostics.h"
#include "fetch/ledger_fetch.h"

#include <memory>
#include <string>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;

/// What is told of a fetch.
struct Explanation {
    std::string reason; ///< one Chinese sentence; "" if it gave what was asked for
    FetchOutcome outcome = FetchOutcome::doubtful;
    CallState state = CallState::missing;
};

/// Why a ledger fetch gave no amount, or that a condition was left out. The causes are looked for in this
/// order: a failed step, no account given, unknown fetch type, currency, item class, account, item; else the
/// ledger has no data for the period. @throws ConnectionLost
std::string explainLedgerFetch(Connection& connection, const LedgerFetch& fetch);

/// What a calculation leaves to be asked.
struct FetchesToExplain {
    std::vector<LedgerFetch> doubtful;       ///< without a figure, or with one that is in doubt
    std::vector<LedgerArguments> withBlanks; ///< that leave a year or period to the procedure
    bool kindsTold = true;                   ///< see ReportEvaluation::setKindsTold
};
struct FetchExplanations {
    std::vector<Explanation> explanations; ///< of the doubtful ones, one for each
    /// As the procedure takes them, one for each; blank is what the ledger did not tell. None if it was not
    /// asked.
    std::vector<LedgerArguments> filled;
};

/// The same for many. What they ask the ledger is asked once, in two round trips, unless the database could
/// not be opened in the recalculation under way.
/// @param connection  an open one for it; null: it opens one of its own
FetchExplanations explainFetches(const FetchesToExplain& fetches, const DatabaseAccess& database,
                                 std::unique_ptr<Connection> connection = nullptr);

} // namespace selfreport
