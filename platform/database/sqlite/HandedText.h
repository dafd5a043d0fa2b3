#pragma once
#include "platform/database/dialect/sql_tokens.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// What the FROM and WHERE text of a ledger fetch asks for. Only the text that reports hand over is
/// understood: balances and what is joined to them, then conditions on the code of the account and on codes
/// of items. The server's procedure reads it in the same way. Codes are literals, or the places "?1" of
/// lifted ones.
class HandedText {
public:
    /// @throws DatabaseError if it is no such text
    explicit HandedText(std::string_view text);

    /// Whether balances of item combinations are asked for; else the totals of accounts.
    bool joinsItems() const { return m_joinsItems; }

    /// The condition on the account with " and " before it, for its alias; empty if every account matches.
    std::string accountCondition(std::string_view alias) const;

    /// Whether that is one exact code, which no parent shares.
    bool namesOneAccount() const { return m_account.comparison == "="; }

    /// For each condition on items the statement that selects the combinations which hold such an item.
    const std::vector<std::string>& combinations() const { return m_combinations; }

private:
    struct CodeCondition {
        std::string comparison; ///< "=", "like" or ">="; empty without a condition
        std::string code;
        std::string last; ///< of a range, which begins at `code`
    };

    bool takes(std::string_view piece);
    void take(std::string_view piece);
    std::string takeCode();
    std::string takeName();
    CodeCondition takeCondition(std::string_view column);
    void takeItemCondition();

    std::vector<SqlToken> m_tokens;
    std::size_t m_at = 0; ///< token that is read next
    bool m_joinsItems = false;
    CodeCondition m_account;
    std::vector<std::string> m_combinations;
};

} // namespace selfreport
