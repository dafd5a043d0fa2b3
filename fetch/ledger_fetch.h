#pragma once
#include "fetch/ledger_query.h"
#include "platform/database/session/ProcedureCall.h"

#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;

/// The arguments of one `Acct` call as the fetch takes them; an empty year or period is not given.
struct LedgerArguments {
    std::string account;   ///< account expression
    std::string fetchType; ///< a `fKey` of tblSelfReportFieldKey
    std::string currency;  ///< empty: all currencies in base currency
    std::string year;
    std::string firstPeriod;
    std::string lastPeriod;
    friend auto operator<=>(const LedgerArguments&, const LedgerArguments&) = default;
};

/// What one fetch gave. No amount stands for the empty text.
struct LedgerAnswer {
    std::optional<double> amount;
    std::vector<std::string> unknownClasses; ///< item classes whose condition was left out
    std::string failure; ///< why a step of the fetch failed: whatever the amount is, it means nothing
    std::optional<std::int64_t> returnValue; ///< the procedure's; nothing if the call failed

    /// The procedure itself said that its answer is not valid.
    bool isDeclined() const { return returnValue && *returnValue != 1; }
};

/// A call's arguments and what it gave for them.
struct LedgerFetch {
    LedgerArguments arguments;
    LedgerAnswer answer;
};

/// One ledger fetch: opens the connection, looks the item classes up, calls `sp_GS_AcctProc` and closes the
/// connection. A step that fails is left out and its reason kept; nothing is told but a failed opening. An
/// empty account expression gives no amount and leaves the connection open. @throws WorkCancelled
LedgerAnswer fetchFromLedger(DatabaseAccess& database, const LedgerArguments& arguments);

/// The table that lists a class's items; nothing if there is no such class or its table is no plain
/// identifier. @throws DatabaseError
std::optional<std::string> itemTableOf(Connection& connection, const std::string& className);

/// A table's name as it may stand in a statement; nothing if it is no plain identifier.
std::optional<std::string> plainTable(const std::string& table);

/// The call that fetches `sql`'s amounts.
ProcedureCall ledgerProcedureCall(const LedgerArguments& arguments, std::string sql);

/// The sum that a call gave: nothing unless it returned 1 with at least one row and column. A row whose
/// amount is null or no text adds nothing.
std::optional<double> ledgerAmount(const ProcedureResult& result);

/// The same on an open connection, by itself. Nothing is thrown: a step that fails is the answer's failure.
LedgerAnswer fetchLedgerAlone(Connection& connection, const LedgerArguments& arguments);

/// Fetches many at once: the item classes with one statement, the procedure calls as batches. One answer for
/// each; nothing for a call that failed, which is then to be fetched alone. A round trip that ran out of time
/// is the answer of all its calls. @throws DatabaseError
std::vector<std::optional<LedgerAnswer>> fetchLedger(Connection& connection,
                                                     std::span<const LedgerArguments> fetches);

} // namespace selfreport
