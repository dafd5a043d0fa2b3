#pragma once
#include "fetch/diagnostics.h"
#include "fetch/ledger_fetch.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;

/// What is told of a fetch.
struct Explanation {
    std::string reason; ///< one Chinese sentence; "" if it gave what was asked for
    FetchOutcome outcome = FetchOutcome::doubtful;
};

/// Why a ledger fetch gave no amount, or that a condition was left out. The causes are looked for in this
/// order: a failed step, no account given, unknown fetch type, currency, item class, account, item; else the
/// ledger has no data for the period. @throws ConnectionLost
std::string explainLedgerFetch(Connection& connection, const LedgerFetch& fetch);

/// The same for many, one for each. What they ask the ledger is asked once, in two round trips, unless the
/// database could not be opened in the recalculation under way.
/// @param connection  an open one for it; null: it opens one of its own
std::vector<Explanation> explainFetches(std::span<const LedgerFetch> fetches, const DatabaseAccess& database,
                                        std::unique_ptr<Connection> connection = nullptr);

} // namespace selfreport
