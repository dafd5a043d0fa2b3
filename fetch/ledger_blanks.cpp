#include "fetch/ledger_blanks.h"

#include "fetch/LedgerQuestions.h"
#include "platform/database/dialect/sql_text.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace selfreport {

namespace {

/// The greatest value of a column of the balances. By accounts: each has its own at the end of a run of their
/// key, so that no ledger is read through.
std::string greatest(const std::string& column, const std::string& condition)
{
    return "max(m.f) as f from (select (select max(h." + column +
           ") from tblAccountBal as h where h.faccountid=b.fitemid" + condition +
           ") as f from tblAccount as b) as m";
}

const std::string latestYear = greatest("fYear", "");

/// @param year  blank: the latest
std::string lastPeriodOf(const std::string& year)
{
    return greatest("fPeriod", " and h.fYear=" + (year.empty() ? "(select " + latestYear + ")"
                                                               : "'" + sqlQuoted(year) + "'"));
}

} // namespace

bool hasBlanks(const LedgerArguments& arguments)
{
    return arguments.year.empty() || arguments.firstPeriod.empty() || arguments.lastPeriod.empty();
}

// A run asks for few years with many calls: the texts of its questions are made once a year.

void addBlanks(LedgerQuestions& questions, std::span<const LedgerArguments> calls)
{
    if (std::ranges::any_of(calls, [](const LedgerArguments& call) { return call.year.empty(); }))
        questions.addNumber(latestYear);
    std::set<std::string_view> years;
    for (const LedgerArguments& call : calls)
        if (call.lastPeriod.empty() && years.insert(call.year).second)
            questions.addNumber(lastPeriodOf(call.year));
}

std::vector<LedgerArguments> withBlanksFilled(const LedgerQuestions& answers,
                                              std::vector<LedgerArguments> calls)
{
    std::map<std::string, std::optional<std::string>> lastPeriods;
    const std::optional<std::string> latest = answers.number(latestYear);
    for (LedgerArguments& call : calls) {
        if (call.firstPeriod.empty())
            call.firstPeriod = "1";
        if (call.lastPeriod.empty()) {
            const auto [found, isNew] = lastPeriods.try_emplace(call.year);
            if (isNew)
                found->second = answers.number(lastPeriodOf(call.year));
            if (const auto& last = found->second)
                call.lastPeriod = last->empty() ? "1" : *last;
        }
        if (call.year.empty())
            call.year = latest.value_or("");
    }
    return calls;
}

} // namespace selfreport
