#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Connection;

/// How big the demo company is. The same options give the same content, byte for byte, on any machine.
struct DemoLedgerOptions {
    std::uint64_t seed = 20090101;
    int firstYear = 2024; ///< of the two full years
    int departments = 8;  ///< at least 8
    int customers = 24;
    int suppliers = 16;
    int goods = 30;
    int salesPerPeriod = 150;

    /// Enough customers, suppliers and goods for at least so many rows of balances (up to a few millions).
    static DemoLedgerOptions ofBalanceRows(std::int64_t rows);
};

/// Fills a database that has all tables and no rows but the fetch type keys with two years of a trading
/// company: chart of accounts, items, currencies RMB and USD, vouchers, balances, quantities, profit and
/// loss, users, and the menu node 521 with its parents. One transaction; nothing stays if an identity does
/// not hold.
/// @throws DatabaseError, also for options below their least
void writeDemoLedger(Connection& connection, const DemoLedgerOptions& options = {});

/// Writes the demo ledger as a new embedded database, replacing a file of that name. The file is written
/// beside under another name first, so a failure leaves what was there.
/// @throws DatabaseError
void createDemoLedger(const std::string& file, const DemoLedgerOptions& options = {});

/// The identities of the ledger that do not hold, each with the number of rows that break it; none if all is
/// well. Looks by SQL of its own: vouchers balance; opening + debit - credit = closing; each period opens
/// with what the last one closed with; year-to-date amounts add up; parents equal the sum of their children;
/// item combinations equal their account; all balances of a period add up to 0; movements equal the vouchers;
/// profit and loss is carried over.
/// @throws DatabaseError if a table cannot be read
std::vector<std::string> checkDemoLedger(Connection& connection);

} // namespace selfreport
