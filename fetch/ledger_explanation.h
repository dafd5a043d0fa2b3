#pragma once
#include "fetch/diagnostics.h"
#include "fetch/fetch_log.h"

#include <span>
#include <string>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;

/// Why a ledger fetch gave no amount, or that a condition was left out: one Chinese sentence. The causes are
/// looked for in this order: a failed step, no account given, unknown fetch type, currency, item class,
/// account, item; else the ledger has no data for the period. @throws DatabaseError
std::string explainLedgerFetch(Connection& connection, const LedgerArguments& arguments,
                               const LedgerAnswer& answer);

/// The reasons of one recalculation, each cell's in the order found; equal fetches are looked into once. It
/// opens a connection of its own unless the database could not be opened in the recalculation under way.
std::vector<CellDiagnostic> explainFetches(const FetchLog& log, const DatabaseAccess& database);

} // namespace selfreport
