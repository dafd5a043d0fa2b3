#pragma once
#include "platform/database/dialect/sql_tokens.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// The FROM and WHERE text that a ledger fetch hands over, taken apart so that its pieces can be changed. Its
/// aliases: a balances, b accounts, c items of a combination, d quantities, e profit and loss.
class HandedText {
public:
    /// @param text  must outlive the object
    /// @throws DatabaseError if it has no FROM and WHERE or does not begin with balances joined by accounts
    explicit HandedText(std::string_view text);

    /// Whether items of combinations are joined: then totals of accounts do not count.
    bool joinsItems() const { return !joinOf("c").alias.empty(); }

    /// " from ... where (...)", changed to begin with the accounts, with item conditions on whole
    /// combinations, and without joins that nothing reads.
    /// @param amountColumn  what will be selected, with its alias
    std::string changed(std::string_view amountColumn) const;

    /// "with i as (...) " if the changed text reads i, the combinations that meet the first item condition.
    /// Empty otherwise.
    std::string itemList() const;

    /// The conditions on the account alone, each with " and " before it, for another alias. Empty if every
    /// account matches.
    std::string accountConditions(std::string_view alias) const;

    /// Whether the only condition on the account is one exact code, which no parent shares.
    bool namesOneAccount() const;

private:
    struct Range {
        std::size_t begin = 0, end = 0; ///< token places, end behind the last
    };
    struct Join {
        std::string_view alias;
        Range range;
    };

    bool isAliasUse(std::size_t at, std::string_view alias) const;
    bool uses(Range range, std::string_view alias) const;
    std::size_t nextOutside(std::string_view word, std::size_t at) const;
    std::vector<Join> joins() const;
    Join joinOf(std::string_view alias) const;
    bool isNeeded(const Join& join, const std::vector<std::string_view>& kept) const;
    void beginWithAccounts(SqlEdits& edits) const;
    bool replaceItemConditions(SqlEdits& edits) const;
    Range itemConditionAt(std::size_t at) const;
    Range listedCondition() const;
    std::string combinations(Range condition) const;
    std::string pieces(Range range) const;
    std::vector<Range> accountTerms() const;
    std::string withAlias(Range range, std::string_view alias) const;
    bool isCodeEquality(Range range) const;

    std::string_view m_text;
    std::vector<SqlToken> m_tokens;
    std::size_t m_where = 0;
};

} // namespace selfreport
