#pragma once
#include "demo/ledger/demo_items.h"
#include "demo/ledger/LedgerBook.h"
#include "platform/database/session/SqlValue.h"

#include <vector>

namespace selfreport {
class Connection;
}

namespace selfreport::demo {

/// A whole number as a statement takes it.
inline SqlValue integer(std::int64_t value)
{
    return value;
}

/// Chart of accounts, currencies, item classes, items and combinations, users, menu nodes.
void writeBasicData(Connection& connection, const LedgerBook& book, const DemoItems& items);

/// Numbered anew in each period.
void writeVouchers(Connection& connection, const std::vector<Voucher>& vouchers, int firstYear);

/// Balances, quantities and profit and loss of all periods. A line has rows from its first movement of a year
/// on, or from the year's beginning if it opens with a balance.
void writeBalances(Connection& connection, const LedgerBook& book, int firstYear, int years);

} // namespace selfreport::demo
