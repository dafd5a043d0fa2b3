#pragma once
#include "fetch/ledger_fetch.h"

#include <span>
#include <string>
#include <vector>

namespace selfreport {

class Connection;

/// What an `Acct` call asks the ledger for, for whoever writes one.
struct CallInWords {
    /// An account that the expression's account part means.
    struct Account {
        std::string code, name;
        bool countedInParent = false; ///< its parent is meant too, and holds its amounts
    };

    std::string words; ///< "期末余额,1001 至 1099 (12 个科目),部门 01 至 05,人民币,2026 年 1–3 期"
    std::vector<Account> accounts;     ///< by code, at most 1,000
    std::vector<std::string> problems; ///< unknown keys and codes, each with the nearest one that exists
};

/// Looks the arguments up with the conditions that the fetch itself sends. @throws DatabaseError
CallInWords callInWords(Connection& connection, const LedgerArguments& arguments);

/// The part of those words that does not depend on the account, of several calls: "期末余额,人民币,2026 年
/// 1–3 期". The account is not looked at. @throws DatabaseError
std::vector<std::string> measuresInWords(Connection& connection, std::span<const LedgerArguments> measures);

/// The code that differs least from `code` (fewest letters added, left out or changed, then the longest
/// common beginning); "" if there are none.
std::string nearestCode(const std::string& code, const std::vector<std::string>& codes);

} // namespace selfreport
