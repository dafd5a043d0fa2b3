#pragma once
#include "platform/database/sqlite/acct_kinds.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace selfreport {

/// What a ledger fetch selects besides the handed text, all defaults filled in.
struct AcctSelection {
    const AcctKind* kind = nullptr;
    std::optional<std::int64_t> currency; ///< id; none sums base amounts over all currencies
    std::int64_t year = 0;
    std::int64_t firstPeriod = 1;
    std::int64_t lastPeriod = 1;
};

/// The whole query of a ledger fetch in the embedded database's SQL: at most one row, column "f", none if no
/// row of the ledger matches.
///
/// @param fromAndWhere  " from tblAccountBal as a left outer join ... where ...": the handed text over the
///   aliases a to e in T-SQL. Without a join of alias c only account totals count. A condition
///   "c.fitemid in (...)" means that the item combination holds such an item, so every balance row counts
///   once. Accounts whose parent meets the conditions on b too are left out.
/// @throws DatabaseError if the text is no FROM and WHERE text
std::string acctSql(std::string_view fromAndWhere, const AcctSelection& selection);

/// A query with its literals taken out, so that fetches that differ in codes and periods share one prepared
/// statement.
struct LiftedSql {
    std::string shape; ///< "?" where a literal stood
    std::vector<std::variant<std::int64_t, std::string>> literals;
};
LiftedSql liftLiterals(std::string_view sql);

} // namespace selfreport
