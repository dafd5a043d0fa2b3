#include "fetch/ledger_explanation.h"

#include "access/DatabaseAccess.h"
#include "access/driver_call.h"
#include "failures/failure_text.h"
#include "fetch/quoted_text.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

#include <algorithm>
#include <exception>
#include <map>
#include <memory>
#include <utility>

namespace selfreport {

namespace {

constexpr const char* notLookedFor = "原因没有查明，查询已取消";

constexpr const char* declined = "存储过程没有给出有效的结果";

/// What is told of a fetch.
struct Explanation {
    std::string reason;
    FetchOutcome outcome = FetchOutcome::doubtful;
};

/// What is asked of the database while the fetches of one recalculation are explained. They mostly share
/// type, currency and items, and each question costs a round trip.
class Questions {
public:
    bool hasRow(Connection& connection, const std::string& fromAndWhere)
    {
        const auto known = m_answers.find(fromAndWhere);
        if (known != m_answers.end())
            return known->second;
        const bool found = !connection.query("select top 1 1 as n from " + fromAndWhere).isEmpty();
        m_answers.emplace(fromAndWhere, found);
        return found;
    }

private:
    std::map<std::string, bool> m_answers;
};

std::string rangeText(const std::vector<std::string>& codes)
{
    return codes.size() > 1 ? codes[0] + ":" + codes[1] : codes[0];
}

std::string listed(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : "、") + quoted(name);
    return text;
}

std::string periodText(const LedgerArguments& arguments)
{
    const std::string& first = arguments.firstPeriod;
    const std::string& last = arguments.lastPeriod;
    std::string text = arguments.year.empty() ? std::string("最近年度") : arguments.year + "年";
    if (first == last)
        return first.empty() ? text : text + first + "期";
    return text + first + "至" + last + "期";
}

std::string unknownItem(Connection& connection, Questions& questions, const ItemQualifier& qualifier)
{
    const auto table = qualifier.codes.empty() ? std::nullopt : itemTableOf(connection, qualifier.className);
    if (!table ||
        questions.hasRow(connection, *table + " where 1=1" + codeCondition("fNumber", qualifier.codes)))
        return {};
    return quoted(qualifier.className) + "中没有项目" + quoted(rangeText(qualifier.codes));
}

/// What the fetch names that there is not; empty if there is all of it.
std::string nameWithoutMeaning(Connection& connection, Questions& questions, const LedgerArguments& arguments)
{
    if (!questions.hasRow(connection,
                          "tblSelfReportFieldKey where fKey='" + sqlQuoted(arguments.fetchType) + "'"))
        return "取数类型" + quoted(arguments.fetchType) + "不存在";
    if (!arguments.currency.empty() &&
        !questions.hasRow(connection, "tblCurrency where fnumber='" + sqlQuoted(arguments.currency) + "'"))
        return "货币" + quoted(arguments.currency) + "不存在";
    const AccountExpression expression = parseAccountExpression(arguments.account);
    if (!expression.codes.empty() &&
        !questions.hasRow(connection,
                          "tblAccount as b where 1=1" + codeCondition("b.fNumber", expression.codes)))
        return "科目" + quoted(rangeText(expression.codes)) + "不存在";
    for (const ItemQualifier& qualifier : expression.qualifiers)
        if (std::string cause = unknownItem(connection, questions, qualifier); !cause.empty())
            return cause;
    return {};
}

/// Why nothing was found although the call itself went well.
Explanation causeOfNoData(Connection& connection, Questions& questions, const LedgerArguments& arguments,
                          const LedgerAnswer& answer)
{
    if (std::string cause = nameWithoutMeaning(connection, questions, arguments); !cause.empty())
        return {std::move(cause)};
    if (answer.isDeclined)
        return {declined, FetchOutcome::failed};
    return {"总账在" + periodText(arguments) + "没有科目" + quoted(arguments.account) + "的数据"};
}

Explanation explanation(Connection& connection, Questions& questions, const LedgerArguments& arguments,
                        const LedgerAnswer& answer)
{
    if (arguments.account.empty())
        return {"没有给出科目"};
    std::string reason;
    if (!answer.unknownClasses.empty())
        reason = "项目类别" + listed(answer.unknownClasses) + "不存在，该条件未计入，取数范围偏大";
    if (answer.amount)
        return {std::move(reason)};
    Explanation cause = causeOfNoData(connection, questions, arguments, answer);
    if (!reason.empty())
        cause.reason = reason + "；" + cause.reason;
    return cause;
}

/// @param connection  null if it could not be opened, or the user would not wait for it any longer
Explanation explained(std::unique_ptr<Connection>& connection, const std::shared_ptr<Questions>& questions,
                      const LedgerArguments& arguments, const LedgerAnswer& answer)
{
    if (!answer.failure.empty())
        return {answer.failure, FetchOutcome::failed};
    // A procedure that declines has failed unless there is a name without meaning.
    const FetchOutcome unexplained = answer.isDeclined ? FetchOutcome::failed : FetchOutcome::doubtful;
    if (!connection)
        return {userWait().isCancelled() ? notLookedFor : databaseNotOpen, unexplained};
    try {
        return driverCall<Explanation>(connection, [questions, arguments, answer](Connection& open) {
            return explanation(open, *questions, arguments, answer);
        });
    } catch (const WorkCancelled&) {
        return {notLookedFor, unexplained};
    } catch (const std::exception& error) {
        return {"没有取到数，原因没有查明：" + failures::sentenceOf(error), unexplained};
    }
}

/// Null if the database cannot be opened now.
std::unique_ptr<Connection> explainingConnection(const DatabaseAccess& database)
{
    if (database.openingFailed())
        return nullptr;
    try {
        return driverCall<std::unique_ptr<Connection>>(
            [target = database.connectionString] { return openConnection(target); });
    } catch (const WorkCancelled&) {
        return nullptr;
    } catch (const std::exception&) {
        return nullptr;
    }
}

} // namespace

std::string explainLedgerFetch(Connection& connection, const LedgerArguments& arguments,
                               const LedgerAnswer& answer)
{
    if (!answer.failure.empty())
        return answer.failure;
    Questions questions;
    return explanation(connection, questions, arguments, answer).reason;
}

std::vector<CellDiagnostic> explainFetches(const FetchLog& log, const DatabaseAccess& database)
{
    std::vector<CellDiagnostic> diagnostics = log.known;
    const bool hasQuestions = std::ranges::any_of(
        log.doubtful, [](const DoubtfulFetch& fetch) { return fetch.answer.failure.empty(); });
    std::unique_ptr<Connection> connection = hasQuestions ? explainingConnection(database) : nullptr;
    const auto questions = std::make_shared<Questions>(); // outlives a driver call that is given up
    std::map<std::pair<LedgerArguments, std::string>, Explanation> explanations; // one may fail, its like not
    for (const DoubtfulFetch& fetch : log.doubtful) {
        Explanation& known = explanations[{fetch.arguments, fetch.answer.failure}];
        if (known.reason.empty())
            known = explained(connection, questions, fetch.arguments, fetch.answer);
        diagnostics.push_back({fetch.place, fetch.isReferenced ? "REF_F" : "Acct",
                               fetch.isReferenced ? "被引用的单元格：" + known.reason : known.reason,
                               known.outcome});
    }
    std::ranges::stable_sort(diagnostics, {}, &CellDiagnostic::place);
    const auto repeated = std::ranges::unique(diagnostics);
    diagnostics.erase(repeated.begin(), repeated.end());
    return diagnostics;
}

} // namespace selfreport
