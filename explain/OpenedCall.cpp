#include "explain/OpenedCall.h"

#include "text/amount_text.h"
#include "text/ascii.h"

#include <algorithm>
#include <charconv>

namespace selfreport {

namespace {

/// One code, or a range from one to itself, which takes a star in it for no pattern.
bool isOneCode(const std::vector<std::string>& codes)
{
    return codes.size() == 1 ? codes.front().find('*') == std::string::npos
                             : codes.size() == 2 && codes.front() == codes.back();
}

int numberOf(const std::string& text, int otherwise)
{
    const std::string_view digits = trimmed(text);
    int number = otherwise;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

} // namespace

CallOpening::Call::Call(const LedgerArguments& used, const AccountChart& chart)
    : arguments(used)
    , expression(parseAccountExpression(used.account))
    , kind(acctKindOf(trimmed(used.fetchType)))
    , account(namesOne() ? chart.ofCode(expression.codes.front()) : nullptr)
{
}

bool CallOpening::Call::namesOne() const
{
    return isOneCode(expression.codes);
}

bool CallOpening::Call::isClosing() const
{
    return kind->key == "2" || kind->key == "10";
}

bool CallOpening::Call::isOpening() const
{
    return kind->key == "1" || kind->key == "9";
}

bool CallOpening::Call::hasPeriods() const
{
    const bool isToDate = kind->key == "5" || kind->key == "6" || kind->key == "8";
    return isToDate || (kind->periods == AcctPeriods::all && first() < last());
}

bool CallOpening::Call::hasVouchers() const
{
    return isClosing() || kind->periods == AcctPeriods::all;
}

bool CallOpening::Call::namesOneItemOf(const std::string& className) const
{
    const std::vector<std::string>* codes = codesOf(className);
    return codes && isOneCode(*codes);
}

const std::vector<std::string>* CallOpening::Call::codesOf(const std::string& className) const
{
    for (const ItemQualifier& one : expression.qualifiers)
        if (one.className == className && !one.codes.empty())
            return &one.codes;
    return nullptr;
}

std::string CallOpening::Call::year() const
{
    return std::to_string(numberOf(arguments.year, 0));
}

int CallOpening::Call::first() const
{
    return numberOf(arguments.firstPeriod, 1);
}

int CallOpening::Call::last() const
{
    return numberOf(arguments.lastPeriod, 1);
}

std::string CallOpening::Call::items() const
{
    const std::size_t bar = arguments.account.find('|');
    return bar == std::string::npos ? "" : arguments.account.substr(bar + 1);
}

std::string_view CallOpening::Call::movementKey() const
{
    return kind->key == "5" ? "3" : kind->key == "6" ? "4" : "7";
}

LedgerArguments CallOpening::Call::ofAccount(const std::string& code) const
{
    LedgerArguments other = arguments;
    const std::size_t bar = arguments.account.find('|');
    other.account = code + (bar == std::string::npos ? "" : arguments.account.substr(bar));
    return other;
}

/// A class that the call narrows already is narrowed further, in its place.
LedgerArguments CallOpening::Call::ofItem(const std::string& className, const std::string& codes) const
{
    LedgerArguments other = arguments;
    other.account = arguments.account.substr(0, arguments.account.find('|'));
    bool isIn = false;
    for (const ItemQualifier& one : expression.qualifiers) {
        const bool isIt = one.className == className && !isIn;
        isIn = isIn || isIt;
        other.account += "|" + one.className + "|";
        if (isIt)
            other.account += codes;
        else
            for (std::size_t at = 0; at < one.codes.size(); ++at)
                other.account += (at > 0 ? ":" : "") + one.codes[at];
    }
    if (!isIn)
        other.account += "|" + className + "|" + codes;
    return other;
}

LedgerArguments CallOpening::Call::ofKey(std::string_view key, int firstPeriod, int lastPeriod) const
{
    LedgerArguments other = arguments;
    other.fetchType = key;
    other.firstPeriod = std::to_string(firstPeriod);
    other.lastPeriod = std::to_string(lastPeriod);
    return other;
}

LedgerArguments CallOpening::Call::rowProbe(const std::string& code) const
{
    LedgerArguments probe = ofAccount(code);
    if (kind->column.front() != 'a') // no row of quantities is no missing balance
        probe.fetchType = kind->periods == AcctPeriods::first  ? "1"
                          : kind->periods == AcctPeriods::last ? "2"
                                                               : "3";
    return probe;
}

double CallOpening::Call::voucherAmount(const VoucherAmounts& amounts) const
{
    const bool isOriginal = !trimmed(arguments.currency).empty();
    const bool isQuantity = kind->column.front() == 'd';
    const double debit = isQuantity ? amounts.debitQuantity : isOriginal ? amounts.debitFor : amounts.debit;
    const double credit = isQuantity   ? amounts.creditQuantity
                          : isOriginal ? amounts.creditFor
                                       : amounts.credit;
    if (kind->key == "3" || kind->key == "11")
        return debit;
    if (kind->key == "4" || kind->key == "12")
        return credit;
    return account->direction * (debit - credit);
}

std::string CallOpening::Call::amountText(double amount)
{
    return selfreport::amountText(amount);
}

} // namespace selfreport
