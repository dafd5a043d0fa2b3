#pragma once
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace selfreport::demo {

using Fen = std::int64_t; ///< a hundredth of a currency's unit

inline constexpr int periodsPerYear = 12;
inline constexpr int baseCurrency = 1;
inline constexpr int dollars = 2;

/// One line of a voucher. Either the debit or the credit side is used.
struct VoucherEntry {
    int account = 0; ///< id
    int detail = 0;  ///< item combination; 0 for none
    int currency = baseCurrency;
    Fen debitFor = 0, debit = 0;
    Fen creditFor = 0, credit = 0;
    std::int64_t debitQuantity = 0, creditQuantity = 0; ///< whole pieces
};

struct Voucher {
    int period = 0; ///< 0 is the first period of the first year
    int day = 1;
    std::string_view explanation;
    bool carriesOver = false; ///< closes profit and loss: its amounts are no income or cost
    std::vector<VoucherEntry> entries;
};

/// What one account, item combination and currency did in one period.
struct PeriodMovement {
    int period = 0;
    Fen debitFor = 0, debit = 0;
    Fen creditFor = 0, credit = 0;
    std::int64_t debitQuantity = 0, creditQuantity = 0;
    Fen earnedFor = 0, earned = 0; ///< debit less credit without what was carried over
};

/// One line of the ledger over all periods, debit-positive.
struct LedgerLine {
    int account = 0, detail = 0, currency = 0;
    Fen openingFor = 0, opening = 0;
    std::int64_t openingQuantity = 0;
    Fen balance = 0, balanceFor = 0; ///< as posted so far
    std::int64_t quantity = 0;
    std::vector<PeriodMovement> movements; ///< ascending periods
};

struct BookAccount {
    int id = 0;
    std::string_view code, name;
    int parent = 0; ///< id; 0 on the first level
    int level = 1;
    int direction = 1;
    std::uint8_t items = 0; ///< ItemClass bits
    bool isLeaf = true;
    bool quantities = false;
};

/// The accounts with their lines. Posting reaches the account's own line, its total (combination 0) and the
/// same two of every parent.
class LedgerBook {
public:
    LedgerBook();

    const std::vector<BookAccount>& accounts() const { return m_accounts; }
    const BookAccount& account(int id) const { return m_accounts[static_cast<std::size_t>(id) - 1]; }

    /// Id of a code of the chart.
    int idOf(std::string_view code) const { return m_idOfCode.at(code); }

    /// Adds to the opening balance of the first period, debit-positive.
    void open(const VoucherEntry& entry);
    void post(const Voucher& voucher);

    /// Balance posted so far in base currency, debit-positive; over all currencies and combinations.
    Fen balanceOf(int account) const;

    /// Lines of a leaf that hold a combination, or its total if it is kept by no items; by combination,
    /// currency.
    std::vector<const LedgerLine*> leafLines(int account) const;
    const LedgerLine* line(int account, int detail, int currency) const;

    /// All lines by account, combination, currency.
    std::vector<const LedgerLine*> sortedLines() const;

private:
    template <typename Work>
    void forEachLine(const VoucherEntry& entry, const Work& work);
    LedgerLine& lineFor(int account, int detail, int currency);

    std::vector<BookAccount> m_accounts;
    std::unordered_map<std::string_view, int> m_idOfCode;
    std::unordered_map<std::uint64_t, LedgerLine> m_lines;
    std::vector<std::vector<const LedgerLine*>> m_linesOf; ///< by account id less 1
};

} // namespace selfreport::demo
