#pragma once
#include <algorithm>
#include <array>
#include <string_view>

namespace selfreport {

/// Which periods of the range a fetch reads.
enum class AcctPeriods { first, last, all };

/// Which balances a fetch counts.
enum class AcctSide { both, debit, credit };

/// One fetch type of the ledger procedure.
struct AcctKind {
    std::string_view key;      ///< fKey of tblSelfReportFieldKey: stored in reports, never renumber
    std::string_view name;     ///< fKeyName
    std::string_view column;   ///< amount in base currency, with its table's alias
    std::string_view original; ///< the same in original currency
    AcctPeriods periods;
    bool byDirection; ///< times the account's direction
    AcctSide side = AcctSide::both;
};

inline constexpr std::array acctKinds{
    AcctKind{"1", "期初余额", "a.fBeginBal", "a.fBeginBalFor", AcctPeriods::first, true},
    AcctKind{"2", "期末余额", "a.fEndBal", "a.fEndBalFor", AcctPeriods::last, true},
    AcctKind{"3", "借方发生额", "a.fDebit", "a.fDebitFor", AcctPeriods::all, false},
    AcctKind{"4", "贷方发生额", "a.fCredit", "a.fCreditFor", AcctPeriods::all, false},
    AcctKind{"5", "借方累计发生额", "a.fYtdDebit", "a.fYtdDebitFor", AcctPeriods::last, false},
    AcctKind{"6", "贷方累计发生额", "a.fYtdCredit", "a.fYtdCreditFor", AcctPeriods::last, false},
    AcctKind{"7", "损益发生额", "e.fAmount", "e.fAmountFor", AcctPeriods::all, false},
    AcctKind{"8", "损益累计发生额", "e.fYtdAmount", "e.fYtdAmountFor", AcctPeriods::last, false},
    AcctKind{"9", "期初数量", "d.fBeginQty", "d.fBeginQty", AcctPeriods::first, true},
    AcctKind{"10", "期末数量", "d.fEndQty", "d.fEndQty", AcctPeriods::last, true},
    AcctKind{"11", "收入数量", "d.fDebitQty", "d.fDebitQty", AcctPeriods::all, false},
    AcctKind{"12", "发出数量", "d.fCreditQty", "d.fCreditQty", AcctPeriods::all, false},
    AcctKind{"13", "期末借方余额", "a.fEndBal", "a.fEndBalFor", AcctPeriods::last, false, AcctSide::debit},
    AcctKind{"14", "期末贷方余额", "a.fEndBal", "a.fEndBalFor", AcctPeriods::last, false, AcctSide::credit},
};

/// Null if the key is of no fetch type.
constexpr const AcctKind* acctKindOf(std::string_view key)
{
    const auto found = std::ranges::find(acctKinds, key, &AcctKind::key);
    return found == acctKinds.end() ? nullptr : &*found;
}

} // namespace selfreport
