#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/sqlite/acct_sql.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/database/sqlite/StatementCache.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace selfreport {

/// The ledger's stored procedure for the embedded database.
///
/// Parameters strSql, strField, currenct, fYear, fPeriod1, fPeriod2. Returns 1 and a row set with column "f",
/// or 0 without one if the key is no fetch type or the currency is unknown. Empty currency: base amounts of
/// all currencies. Empty year: the ledger's latest. Empty first period: 1; empty last one: the last with
/// balances.
class AcctProcedure {
public:
    static constexpr std::string_view name = "sp_GS_AcctProc";

    explicit AcctProcedure(const SqliteDatabase& database);

    /// To be called wherever the ledger may have changed: its latest year and last periods, which most calls
    /// of a report leave blank, are looked up once and kept.
    void forgetLatest();

    /// @throws DatabaseError if the text is refused or a year or period is no whole number
    ProcedureResult run(const ProcedureCall& call);

    /// The text that run() would run, values in place. Nothing for an unknown key or currency.
    std::optional<std::string> finalSql(const ProcedureCall& call);

private:
    struct Selection {
        const AcctKind* kind = nullptr;
        std::optional<std::int64_t> currency; ///< id
        std::int64_t year = 0, firstPeriod = 1, lastPeriod = 1;
    };
    std::optional<Selection> selectionOf(const ProcedureCall& call);
    std::int64_t latestYear();
    std::int64_t lastPeriod(std::int64_t year);
    SqliteStatement& statementFor(const Selection& selection, const LiftedSql& lifted);

    std::optional<std::int64_t> m_latestYear;
    std::map<std::int64_t, std::int64_t> m_lastPeriods; ///< by year
    StatementCache m_lookups;
    StatementCache m_fetches;     ///< by kind and shape
    AcctSelection m_placeholders; ///< of the shape that is being prepared
};

/// The final text of a ledger fetch, for running it without this layer.
std::optional<std::string> finalAcctSql(const SqliteDatabase& database, const ProcedureCall& call);

} // namespace selfreport
