#pragma once
#include "demo/ledger/demo_items.h"
#include "demo/ledger/DemoRandom.h"
#include "demo/ledger/LedgerBook.h"

#include <initializer_list>
#include <string_view>
#include <vector>

namespace selfreport::demo {

inline constexpr Fen yuan = 100;
inline constexpr int lastDay = 28; ///< of every period: each month has it

/// Keeps the books of a trading company: opening balances, then the vouchers of one period after the other.
/// Every amount is whole fen; a dollar stands at 7.10 throughout, and dollar amounts are whole tens of cents,
/// so base amounts are exact.
class TradingCompany {
public:
    TradingCompany(LedgerBook& book, const DemoItems& items, DemoRandom& random, int salesPerPeriod);

    void openBooks();
    void keepPeriod(int period);

    const std::vector<Voucher>& vouchers() const { return m_vouchers; }

private:
    // opening balances
    void openMoney();
    void openTrade();
    void openAssets();
    void openCapital();
    void openDebit(std::string_view code, Fen amount, int detail = 0, std::int64_t quantity = 0);
    void openCredit(std::string_view code, Fen amount, int detail = 0);

    // daily business
    void gatherMoney();
    void purchase(const DemoGoods& goods);
    void sell();
    void collect();
    void settlePapers(const DemoCustomer& customer);
    void payDebt();
    void spend();

    // end of the period
    void payWages();
    void writeOff();
    void payInterest();
    void settleTaxes();
    void takeIncomeTax();
    void carryOver();
    void closeYear();

    /// One voucher being written; posting adds it to the books.
    class Draft;
    friend class Draft;

    LedgerBook& m_book;
    const DemoItems& m_items;
    DemoRandom& m_random;
    int m_salesPerPeriod;
    int m_period = 0;
    Fen m_incomeTaxTaken = 0; ///< in this year
    std::vector<Voucher> m_vouchers;
};

} // namespace selfreport::demo
