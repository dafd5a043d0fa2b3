#pragma once
#include <span>
#include <string>

namespace selfreport {

/// One row of the account wizard.
struct ItemCondition {
    std::string className;
    std::string from, to; ///< item codes

    bool isEmpty() const { return className.empty() && from.empty() && to.empty(); }
};

/// The account argument of an `Acct` call: "1001:1002|部门|01:05".
///
/// Blanks at the ends of accounts and codes fall away, those of class names stay. From and to that are equal
/// but for letter case count once, as from is written. Empty rows in between add a "|" each, and a row
/// without a class adds only its codes: the pairs behind them shift.
std::string accountArgument(const std::string& from, const std::string& to,
                            std::span<const ItemCondition> rows);

/// How the fetch reads an account argument: "科目 1001 至 1002,部门 01 至 05". "" for an empty one.
std::string argumentInWords(const std::string& argument);

} // namespace selfreport
