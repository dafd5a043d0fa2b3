#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// The lines of one account and all below it.
struct VoucherArguments {
    std::string account;  ///< its code
    std::string items;    ///< "class|codes|class|codes"; "": whatever the items
    std::string currency; ///< code; "": all
    std::string year, firstPeriod, lastPeriod;
};

/// Debit and credit sides of lines.
struct VoucherAmounts {
    double debit = 0, credit = 0; ///< base currency
    double debitFor = 0, creditFor = 0;
    double debitQuantity = 0, creditQuantity = 0;
};

struct VoucherLine {
    std::string date; ///< "2025-03-28"
    std::string number;
    std::int64_t line = 0; ///< of the voucher, from 1
    std::string account, currency, text;
    VoucherAmounts amounts;
    bool carriesOver = false; ///< profit and loss: no income or cost
};

/// What the ledger's procedure for vouchers gave.
struct VoucherPage {
    enum class State {
        read,
        none,        ///< the ledger has no vouchers, or not the currency
        noProcedure, ///< the database does not have it
        noRight,     ///< the user may not run it or read what it reads
        failed,
    };
    State state = State::failed;
    std::string reason; ///< one Chinese sentence where nothing was read
    std::vector<VoucherLine> lines;
    std::int64_t count = 0; ///< of all pages
    VoucherAmounts total;   ///< of all pages
    VoucherAmounts carried; ///< of it what carries profit and loss over
};

inline constexpr std::int64_t vouchersOnPage = 200;

/// @param page  from 1. @throws ConnectionLost
VoucherPage fetchVouchers(Connection& connection, const VoucherArguments& arguments, std::int64_t page = 1);

} // namespace selfreport
