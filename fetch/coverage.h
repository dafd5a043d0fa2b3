#pragma once
#include "fetch/ledger_fetch.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// An `Acct` call of a cell.
struct CellCall {
    int column = 1;
    int row = 1;
    LedgerArguments arguments;
};

/// What calls ask for whatever the account; the account is empty.
struct CoverageMeasure {
    LedgerArguments arguments;
    std::size_t calls = 0; ///< how many ask for it
};

/// What the calls ask for, the most frequent first.
std::vector<CoverageMeasure> measuresOf(std::span<const CellCall> calls);

/// How often the cells of a sheet fetch one account without sub-accounts.
struct AccountCoverage {
    std::string code, name;
    std::optional<double> amount;   ///< what a call for this account alone gives
    std::vector<std::size_t> calls; ///< which calls reach it, itself or by an account above it; ascending
    bool isPartial = false;         ///< one of them takes only some items
};

/// Which accounts of a stretch of the chart the calls reach once, several times or not at all. The accounts
/// are looked up with the conditions that the fetch itself sends.
///
/// @param first, last  codes of the stretch, which takes the accounts below its own in; one empty: the other
///                     alone; both empty: the whole chart
/// @param measure      fetch type, currency, year and periods of the amounts; only calls that ask for the
///                     same count, as opening and closing balance of an account do not cover it twice
/// @return  accounts without sub-accounts, by code. @throws DatabaseError
std::vector<AccountCoverage> accountCoverage(Connection& connection, const std::string& first,
                                             const std::string& last, const LedgerArguments& measure,
                                             std::span<const CellCall> calls);

} // namespace selfreport
