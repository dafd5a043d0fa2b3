#pragma once
#include <span>
#include <string>
#include <vector>

namespace selfreport {

struct LedgerPeriod {
    int year = 0, period = 0;
    friend auto operator<=>(const LedgerPeriod&, const LedgerPeriod&) = default;
};

/// What an item class is called and which table lists its items.
struct ItemClassTable {
    std::string id, name, table;
};

/// What is known of a ledger before it is checked.
struct LedgerOutline {
    std::vector<LedgerPeriod> periods; ///< that have balances, ascending
    std::vector<ItemClassTable> classes;
    bool hasVouchers = false; ///< tables of vouchers that statements can read, with rows in them
};

/// Something that holds in every ledger that is sound.
struct LedgerIdentity {
    std::string name; ///< "期初 + 借方 − 贷方 = 期末"
    /// Selects what breaks it, in words that both kinds of database take: where it is (fYear, fPeriod,
    /// fNumber, fName, fDetailId, fcurrency, fvoucher, as far as they tell something), then the differences
    /// d0, d1 …
    std::string statement;
    std::vector<std::string> differences; ///< what d0, d1 … are called
};

/// All that can be said of the tables. @param year  only that one; 0: all
std::vector<LedgerIdentity> ledgerIdentities(const LedgerOutline& ledger, int year);

} // namespace selfreport
