#pragma once
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace selfreport {

/// Pieces of a text between separators. An empty text has no pieces; "1001:" has two.
std::vector<std::string_view> splitText(std::string_view text, char separator);

/// The text without blanks (U+0020 only) at its ends.
std::string_view trimmed(std::string_view text);

/// One "|class|codes" of an account expression.
struct ItemQualifier {
    std::string className;
    std::vector<std::string> codes; ///< none: the class narrows nothing
};

/// First argument of `Acct`: "1001", "10**" ("*" stands for exactly one character), "1001:1099", each
/// optionally followed by "|class|codes" pairs; the codes take the same forms.
struct AccountExpression {
    std::vector<std::string>
        codes; ///< none: no condition on the account; two and more: a range of the first two
    std::vector<ItemQualifier> qualifiers;
};

AccountExpression parseAccountExpression(std::string_view text);

/// The statement that looks an item class up by its name; its column `fitemtable` names the item table.
std::string itemClassStatement(std::string_view className);

/// Condition on a code column, with its leading blank: " and (b.fNumber='1001')". `tail` stands before the
/// closing bracket of the one-code forms. Empty without codes.
std::string codeCondition(std::string_view column, std::span<const std::string> codes,
                          std::string_view tail = {});

/// FROM, WHERE and condition text over the aliases a, b, c, d and e that `sp_GS_AcctProc` selects from.
///
/// @param itemTables  one for each qualifier: the table that lists the class's items; nothing if the class is
///                    unknown, and the qualifier adds no condition then. It must be a plain identifier.
std::string ledgerQuery(const AccountExpression& expression,
                        std::span<const std::optional<std::string>> itemTables);

} // namespace selfreport
