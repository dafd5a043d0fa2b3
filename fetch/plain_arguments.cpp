#include "fetch/plain_arguments.h"

#include "fetch/ledger_query.h"
#include "platform/database/dialect/acct_kinds.h"
#include "platform/database/dialect/chinese_collation.h"

#include <algorithm>

namespace selfreport {

namespace {

/// "1001: 1099" as "1001:1099". A code of blanks alone stays: without it there would be no condition.
std::string plainCodes(std::string_view codes)
{
    std::string plain;
    for (const std::string_view piece : splitText(codes, ':')) {
        const std::string_view code = trimmed(piece);
        plain += piece.data() == codes.data() ? "" : ":";
        plain += code.empty() && piece.size() == codes.size() ? piece : code;
    }
    return plain;
}

/// Classes are looked up by their whole name, so blanks before one count.
std::string plainAccount(std::string_view account)
{
    std::string plain;
    bool isClass = false;
    for (const std::string_view piece : splitText(account, '|')) {
        plain += piece.data() == account.data() ? "" : "|";
        plain += isClass ? std::string(piece) : plainCodes(piece);
        isClass = !isClass;
    }
    return plain;
}

} // namespace

LedgerArguments plainArguments(LedgerArguments arguments)
{
    arguments.account = plainAccount(arguments.account);
    arguments.fetchType = plainFetchType(arguments.fetchType);
    for (std::string* const text :
         {&arguments.currency, &arguments.year, &arguments.firstPeriod, &arguments.lastPeriod})
        *text = trimmed(*text);
    return arguments;
}

std::string plainFetchType(std::string_view fetchType)
{
    const std::string_view key = trimmed(fetchType);
    if (acctKindOf(key))
        return std::string(key);
    const auto kind = std::ranges::find_if(
        acctKinds, [key](const AcctKind& known) { return compareChinese(known.key, key) == 0; });
    return std::string(kind == acctKinds.end() ? key : kind->key);
}

} // namespace selfreport
