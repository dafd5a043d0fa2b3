#include "fetch/ledger_blanks.h"

#include "fetch/LedgerQuestions.h"
#include "platform/database/dialect/sql_text.h"

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

void addBlanks(LedgerQuestions& questions, const LedgerArguments& arguments)
{
    if (arguments.year.empty())
        questions.addNumber(latestYear);
    if (arguments.lastPeriod.empty())
        questions.addNumber(lastPeriodOf(arguments.year));
}

LedgerArguments withBlanksFilled(const LedgerQuestions& answers, LedgerArguments arguments)
{
    if (arguments.firstPeriod.empty())
        arguments.firstPeriod = "1";
    if (arguments.lastPeriod.empty())
        if (const auto last = answers.number(lastPeriodOf(arguments.year)))
            arguments.lastPeriod = last->empty() ? "1" : *last;
    if (arguments.year.empty())
        arguments.year = answers.number(latestYear).value_or("");
    return arguments;
}

} // namespace selfreport
