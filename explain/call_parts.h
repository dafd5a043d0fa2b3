#pragma once
#include "fetch/ledger_fetch.h"
#include "fetch/voucher_fetch.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

class Connection;

inline constexpr double leastDifference = 0.005; ///< that is told: half a fen

/// What an amount of the ledger can be taken apart by.
enum class PartsBy {
    accounts,    ///< of a range or pattern: the topmost matched ones that have rows
    subaccounts, ///< the next level of one account
    items,       ///< of one class
    movement,    ///< opening, debit and credit of the last period
    periods,     ///< and what was there before the ledger's first period
    previous,    ///< the closing balance of the period before
    vouchers,
};

/// One of the ways that a call offers.
struct PartsWay {
    PartsBy by = PartsBy::accounts;
    std::string className; ///< of items
    friend bool operator==(const PartsWay&, const PartsWay&) = default;
    std::string text() const; ///< "下级科目", "客户"
};

/// A part of an amount; it adds factor × amount.
struct CallPart {
    std::string item;    ///< "100201 工商银行", "2025 年 3 期", "期初余额"
    std::string basis{}; ///< what it is, where the item does not say so
    double factor = 1;
    LedgerArguments arguments{}; ///< of its call; the account "" is none: a line of a voucher
    /// A remainder is what two calls leave: everything less what has an item, or to date less the movement.
    std::optional<LedgerArguments> less{};
    std::optional<double> amount{}; ///< nothing: the ledger has no row
    std::string failure{};          ///< why the amount is not known
};

struct CallParts {
    std::optional<double> whole; ///< fetched together with the parts
    std::string failure;         ///< why they were not fetched; nothing else is known then
    std::vector<CallPart> parts;
    double sum = 0;                  ///< of factor × amount
    double difference = 0;           ///< whole less sum, rounded to the fen's hundredth part
    std::string reason;              ///< of a difference, if it is known
    std::int64_t lines = 0;          ///< of vouchers, on all pages
    std::optional<double> balance{}; ///< behind the last line of vouchers; nothing where none runs along

    bool isWhole() const; ///< the difference is below half a fen
};

/// Which lines of vouchers are wanted.
struct VouchersPlace {
    std::int64_t page = 1;
    std::optional<double> balance{}; ///< behind the page before; nothing: unknown, then none runs along
};

/// The chart of accounts, read once for as long as figures are looked at.
class AccountChart {
public:
    struct Account {
        std::int64_t id = 0, parent = 0;
        int direction = 1;
        std::string code, name;
    };
    /// @throws DatabaseError
    explicit AccountChart(Connection& connection);

    const Account* ofCode(std::string_view code) const;
    const Account* ofId(std::int64_t id) const;
    std::vector<const Account*> childrenOf(std::int64_t id) const;

private:
    std::map<std::int64_t, Account> m_accounts;
};

/// Takes calls apart on an open connection. What it fetches goes through the ledger's procedures, what it
/// lists comes from the tables of accounts and items. @throws ConnectionLost
class CallOpening {
public:
    CallOpening(Connection& connection, const AccountChart& chart)
        : m_connection(connection)
        , m_chart(chart)
    {
    }

    /// In the order in which they are offered; none for a call that is a leaf.
    /// @param arguments  as they were really used: no blanks but the currency's
    std::vector<PartsWay> waysOf(const LedgerArguments& arguments);
    CallParts partsOf(const LedgerArguments& arguments, const PartsWay& way,
                      const VouchersPlace& vouchers = {});

private:
    struct Call; ///< a call with its expression read
    std::vector<const AccountChart::Account*> matched(const Call& call);
    int commonDirection(const Call& call);
    std::vector<std::string> classesOf(const Call& call);

    void byAccounts(CallParts& parts, const Call& call);
    void bySubaccounts(CallParts& parts, const Call& call);
    void byItems(CallParts& parts, const Call& call, const std::string& className);
    void byMovement(CallParts& parts, const Call& call);
    void byPeriods(CallParts& parts, const Call& call);
    void byPrevious(CallParts& parts, const Call& call);
    void byVouchers(CallParts& parts, const Call& call, const VouchersPlace& place);

    std::vector<int> periodsOf(const Call& call, int from);
    bool hasLastPeriod(const Call& call);
    void fetch(CallParts& parts, const Call& call);
    std::vector<LedgerAnswer> answers(std::span<const LedgerArguments> calls);
    std::string twofoldReason(const Call& call, const std::string& className);
    std::string beyondVouchers(const Call& call, int first);

    Connection& m_connection;
    const AccountChart& m_chart;
};

} // namespace selfreport
