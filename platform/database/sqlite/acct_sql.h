#pragma once
#include "platform/database/dialect/acct_kinds.h"

#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// What a ledger fetch selects besides the handed text, all defaults filled in. The values stand in the query
/// as they are given: numbers, or parameters such as "?5".
struct AcctSelection {
    const AcctKind* kind = nullptr;
    std::string currency; ///< id; empty sums base amounts over all currencies
    std::string year;
    std::string firstPeriod;
    std::string lastPeriod;
};

/// The whole query of a ledger fetch in the embedded database's SQL: at most one row, column "f", none if no
/// row of the ledger matches.
///
/// @param fromAndWhere  " from tblAccountBal as a left outer join ... where ...": the text that reports hand
/// over,
///   in T-SQL (see HandedText). Without a join of alias c only account totals count. A condition
///   "c.fitemid in (...)" means that the item combination holds such an item, so every balance row counts
///   once. An account is left out if one above it meets the conditions too and has a row itself.
/// @throws DatabaseError if it is no such text
std::string acctSql(std::string_view fromAndWhere, const AcctSelection& selection);

/// A text with its text literals taken out, so that fetches that differ in codes only share one prepared
/// statement.
struct LiftedSql {
    std::string shape;              ///< "?1", "?2", ... where a literal stood
    std::vector<std::string> texts; ///< without blanks at their ends
};
LiftedSql liftTexts(std::string_view sql);

} // namespace selfreport
