#pragma once
#include "explain/call_parts.h"
#include "platform/database/dialect/acct_kinds.h"

namespace selfreport {

/// A call whose account expression was read, and calls that differ from it in one respect.
struct CallOpening::Call {
    Call(const LedgerArguments& used, const AccountChart& chart);

    const LedgerArguments& arguments;
    AccountExpression expression;
    const AcctKind* kind = nullptr;                 ///< null: no such fetch type
    const AccountChart::Account* account = nullptr; ///< if it names one that exists

    bool namesOne() const; ///< one exact code, whether it exists or not
    bool isClosing() const;
    bool isOpening() const;
    bool hasPeriods() const;
    bool hasVouchers() const;
    bool leavesCarried() const { return kind->column.front() == 'e'; }
    bool namesOneItemOf(const std::string& className) const;
    /// The codes that the call narrows a class to; null if it does not.
    const std::vector<std::string>* codesOf(const std::string& className) const;

    std::string year() const;
    int first() const;
    int last() const;
    std::string items() const;            ///< "class|codes|…" behind the account
    std::string_view movementKey() const; ///< of an amount to date

    LedgerArguments ofAccount(const std::string& code) const;
    LedgerArguments ofItem(const std::string& className, const std::string& codes) const;
    LedgerArguments ofKey(std::string_view key, int firstPeriod, int lastPeriod) const;
    /// A call that gives an amount exactly if the account has a row that counts.
    LedgerArguments rowProbe(const std::string& code) const;

    /// What lines add to the amount.
    double voucherAmount(const VoucherAmounts& amounts) const;
    static std::string amountText(double amount);
};

} // namespace selfreport
