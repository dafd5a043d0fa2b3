#include "fetch/ledger_explanation.h"

#include "access/DatabaseAccess.h"
#include "access/driver_call.h"
#include "failures/failure_text.h"
#include "fetch/code_hint.h"
#include "fetch/ledger_blanks.h"
#include "fetch/ledger_query.h"
#include "fetch/LedgerQuestions.h"
#include "fetch/plain_arguments.h"
#include "fetch/quoted_text.h"
#include "platform/database/Connection.h"
#include "platform/database/dialect/sql_text.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

namespace selfreport {

// A fetch without a figure is no error to the database: a mistyped code and an account without movements give
// the same nothing. What was meant is asked afterwards, and only for those that found nothing, so that sheets
// that are in order pay for no question, and all questions of a recalculation go out together.

namespace {

constexpr const char* notLookedFor = "原因没有查明，查询已取消";

const std::string notFound = "没有取到数，原因没有查明：";

constexpr const char* declined = "存储过程没有给出有效的结果";

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

std::string accountRows(const AccountExpression& expression)
{
    return "tblAccount as b where 1=1" + codeCondition("b.fNumber", expression.codes);
}

std::string itemRows(const std::string& table, const ItemQualifier& qualifier)
{
    return table + " where 1=1" + codeCondition("fNumber", qualifier.codes);
}

std::string fetchTypeRows(const LedgerArguments& arguments)
{
    return "tblSelfReportFieldKey where fKey='" + sqlQuoted(arguments.fetchType) + "'";
}

std::string currencyRows(const LedgerArguments& arguments)
{
    return "tblCurrency where fnumber='" + sqlQuoted(arguments.currency) + "'";
}

/// Whether the ledger has to be asked why a fetch gave nothing.
bool isOpen(const LedgerFetch& fetch)
{
    return fetch.answer.failure.empty() && !fetch.answer.amount && !fetch.arguments.account.empty();
}

std::string quantityRows(const AccountExpression& expression)
{
    return "tblQtyBalance as q inner join tblAccount as b on b.fitemid=q.fAccountId where 1=1" +
           codeCondition("b.fNumber", expression.codes);
}

std::string profitRows(const AccountExpression& expression)
{
    return "tblProfitAndLoss as p inner join tblAccount as b on b.fitemid=p.fAccountId where 1=1" +
           codeCondition("b.fNumber", expression.codes);
}

/// The last period in which an account has a row of its own, as 202607.
std::string lastPeriod(const AccountExpression& expression)
{
    return "max(a.fYear*100+a.fPeriod) as f from tblAccountBal as a inner join tblAccount as b"
           " on b.fitemid=a.faccountid where a.fDetailId=0" +
           codeCondition("b.fNumber", expression.codes);
}

/// What tells kinds of nothing apart where all names are known.
void addReach(LedgerQuestions& questions, const LedgerArguments& arguments)
{
    const AccountExpression expression = parseAccountExpression(arguments.account);
    questions.addNumber(lastPeriod(expression));
    if (asksQuantities(arguments.fetchType))
        questions.addRow(quantityRows(expression));
    if (asksProfitAndLoss(arguments.fetchType))
        questions.addRow(profitRows(expression));
}

/// What a fetch that found nothing may have named in vain.
void addNames(LedgerQuestions& questions, const LedgerArguments& arguments)
{
    questions.addRow(fetchTypeRows(arguments));
    if (!arguments.currency.empty())
        questions.addRow(currencyRows(arguments));
    const AccountExpression expression = parseAccountExpression(arguments.account);
    if (!expression.codes.empty())
        questions.addRow(accountRows(expression));
    for (const ItemQualifier& qualifier : expression.qualifiers)
        if (!qualifier.codes.empty())
            questions.addItemTable(qualifier.className);
}

/// The items, which are asked for in tables that the first answers name.
void addItems(LedgerQuestions& questions, const LedgerArguments& arguments)
{
    for (const ItemQualifier& qualifier : parseAccountExpression(arguments.account).qualifiers) {
        if (qualifier.codes.empty())
            continue;
        try {
            if (const auto table = questions.itemTable(qualifier.className))
                questions.addRow(itemRows(*table, qualifier));
        } catch (const DatabaseError&) {
            // Told when the answer is needed.
        }
    }
}

std::string unknownItem(const LedgerQuestions& answers, const ItemQualifier& qualifier)
{
    const auto table = qualifier.codes.empty() ? std::nullopt : answers.itemTable(qualifier.className);
    if (!table || answers.hasRow(itemRows(*table, qualifier)))
        return {};
    return quoted(qualifier.className) + "中没有项目" + quoted(rangeText(qualifier.codes)) +
           codeHint(qualifier.codes);
}

/// What the fetch names that there is not; empty if there is all of it.
std::string nameWithoutMeaning(const LedgerQuestions& answers, const LedgerArguments& arguments)
{
    if (!answers.hasRow(fetchTypeRows(arguments)))
        return "取数类型" + quoted(arguments.fetchType) + "不存在";
    if (!arguments.currency.empty() && !answers.hasRow(currencyRows(arguments)))
        return "货币" + quoted(arguments.currency) + "不存在";
    const AccountExpression expression = parseAccountExpression(arguments.account);
    if (!expression.codes.empty() && !answers.hasRow(accountRows(expression)))
        return "科目" + quoted(rangeText(expression.codes)) + "不存在" + codeHint(expression.codes);
    for (const ItemQualifier& qualifier : expression.qualifiers)
        if (std::string cause = unknownItem(answers, qualifier); !cause.empty())
            return cause;
    return {};
}

/// A procedure that declines has failed unless there is a name without meaning.
FetchOutcome outcomeUnexplained(const LedgerAnswer& answer)
{
    return answer.isDeclined() ? FetchOutcome::failed : FetchOutcome::doubtful;
}

/// A table that the ledger does not let one read tells nothing.
bool hasNoRow(const LedgerQuestions& answers, const std::string& rows)
{
    try {
        return !answers.hasRow(rows);
    } catch (const DatabaseError&) {
        return false;
    }
}

/// Of a fetch that names nothing but what there is.
Explanation kindOfNothing(const LedgerQuestions& answers, const LedgerArguments& arguments)
{
    const AccountExpression expression = parseAccountExpression(arguments.account);
    const std::string account = "科目" + quoted(arguments.account);
    const std::string last = answers.number(lastPeriod(expression)).value_or("");
    std::string reason = "总账在" + periodText(arguments) + "没有" + account + "的数据";
    constexpr std::size_t yearDigits = 4;
    if (last.size() <= yearDigits) // an account that was never used may keep anything
        return {std::move(reason), FetchOutcome::doubtful, CallState::noData};
    if (asksQuantities(arguments.fetchType) && hasNoRow(answers, quantityRows(expression)))
        return {account + "没有数量账", FetchOutcome::doubtful, CallState::notApplicable};
    if (asksProfitAndLoss(arguments.fetchType) && hasNoRow(answers, profitRows(expression)))
        return {account + "没有损益数据", FetchOutcome::doubtful, CallState::notApplicable};
    if (expression.qualifiers.empty()) // an account's rows say nothing of its items
        reason += "，最近有数据的是" + last.substr(0, yearDigits) + "年" +
                  std::to_string(std::stoi(last.substr(yearDigits))) + "期";
    return {std::move(reason), FetchOutcome::doubtful, CallState::noData};
}

/// Why nothing was found although the call itself went well.
Explanation causeOfNoData(const LedgerQuestions& answers, const LedgerFetch& fetch)
{
    const auto& [arguments, answer] = fetch;
    try {
        if (std::string cause = nameWithoutMeaning(answers, arguments); !cause.empty())
            return {std::move(cause), FetchOutcome::doubtful, CallState::missing};
    } catch (const DatabaseError& error) {
        return {notFound + error.description, outcomeUnexplained(answer), CallState::failed};
    }
    if (answer.isDeclined())
        return {declined, FetchOutcome::failed, CallState::failed};
    return kindOfNothing(answers, arguments);
}

/// @param cause  of one that found nothing
Explanation explained(const LedgerFetch& fetch, const std::function<Explanation()>& cause)
{
    const auto& [arguments, answer] = fetch;
    if (!answer.failure.empty())
        return {answer.failure, FetchOutcome::failed, CallState::failed};
    if (arguments.account.empty())
        return {"没有给出科目"};
    std::string reason;
    if (!answer.unknownClasses.empty())
        reason = "项目类别" + listed(answer.unknownClasses) + "不存在，该条件未计入，取数范围偏大";
    if (answer.amount)
        return {std::move(reason)};
    Explanation found = cause();
    if (!reason.empty()) {
        found.reason = reason + "；" + found.reason;
        found.state = std::max(found.state, CallState::missing);
    }
    return found;
}

/// The answers to all questions of the fetches, in two round trips.
LedgerQuestions answersFor(Connection& connection, const FetchesToExplain& fetches)
{
    LedgerQuestions questions;
    addBlanks(questions, fetches.withBlanks);
    for (const LedgerFetch& fetch : fetches.doubtful)
        if (isOpen(fetch)) {
            addNames(questions, fetch.arguments);
            if (fetches.kindsTold)
                addReach(questions, fetch.arguments);
        }
    questions.ask(connection);
    for (const LedgerFetch& fetch : fetches.doubtful)
        if (isOpen(fetch))
            addItems(questions, fetch.arguments);
    questions.ask(connection);
    return questions;
}

/// @throws DatabaseNotOpened, WorkCancelled
std::unique_ptr<Connection> explainingConnection(const DatabaseAccess& database)
{
    try {
        if (!database.openingFailed())
            return driverCall<std::unique_ptr<Connection>>(
                [target = database.connectionString] { return openConnection(target); });
    } catch (const WorkCancelled&) {
        throw;
    } catch (const std::exception&) {
        // Whatever it is, the calls were told their own reason.
    }
    throw DatabaseNotOpened(databaseNotOpen);
}

/// The answers as a call that the waiting user can cancel.
LedgerQuestions fetchedAnswers(const DatabaseAccess& database, std::unique_ptr<Connection> connection,
                               FetchesToExplain fetches)
{
    if (!connection)
        connection = explainingConnection(database);
    return driverCall<LedgerQuestions>(
        connection, [fetches = std::move(fetches)](Connection& open) { return answersFor(open, fetches); });
}

} // namespace

std::string explainLedgerFetch(Connection& connection, const LedgerFetch& asCalled)
{
    const LedgerFetch fetch{plainArguments(asCalled.arguments), asCalled.answer};
    const LedgerQuestions answers = answersFor(connection, {.doubtful = {fetch}, .withBlanks = {}});
    return explained(fetch, [&] { return causeOfNoData(answers, fetch); }).reason;
}

FetchExplanations explainFetches(const FetchesToExplain& fetches, const DatabaseAccess& database,
                                 std::unique_ptr<Connection> connection)
{
    std::vector<LedgerFetch> doubtful;
    for (const auto& [arguments, answer] : fetches.doubtful)
        doubtful.push_back({plainArguments(arguments), answer});
    FetchesToExplain open{{}, fetches.withBlanks, fetches.kindsTold};
    std::ranges::copy_if(doubtful, std::back_inserter(open.doubtful), isOpen);
    std::optional<LedgerQuestions> answers;
    std::string unanswered;
    try {
        if (!open.doubtful.empty() || !open.withBlanks.empty())
            answers = fetchedAnswers(database, std::move(connection), std::move(open));
    } catch (const WorkCancelled&) {
        unanswered = notLookedFor;
    } catch (const DatabaseNotOpened& error) {
        unanswered = error.what();
    } catch (const std::exception& error) {
        unanswered = notFound + failures::sentenceOf(error);
    }
    FetchExplanations found;
    for (const LedgerFetch& fetch : doubtful)
        found.explanations.push_back(explained(fetch, [&] {
            return answers ? causeOfNoData(*answers, fetch)
                           : Explanation{unanswered, outcomeUnexplained(fetch.answer), CallState::failed};
        }));
    if (answers)
        found.filled = withBlanksFilled(*answers, fetches.withBlanks);
    return found;
}

} // namespace selfreport
