#pragma once
#include "platform/database/session/ProcedureCall.h"
#include "platform/database/sqlite/SqliteDatabase.h"
#include "platform/database/sqlite/StatementCache.h"

#include <string>
#include <string_view>

namespace selfreport {

/// The procedure of the embedded database that lists the voucher lines behind an amount; docs/ledger.md says
/// what its parameters account, items, fYear, fPeriod1, fPeriod2, currenct and page mean.
class VoucherProcedure {
public:
    static constexpr std::string_view name = "sp_GS_VoucherProc";

    explicit VoucherProcedure(const SqliteDatabase& database);

    /// Returns 1 with the page's lines and the totals of all, or 0 without row sets.
    /// @throws DatabaseError if a year, period or page is no whole number
    ProcedureResult run(const ProcedureCall& call);

private:
    bool hasVouchers();
    std::string itemConditions(std::string_view items, std::vector<SqlValue>& values);

    StatementCache m_statements;
};

} // namespace selfreport
