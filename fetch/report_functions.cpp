#include "fetch/report_functions.h"

#include "access/DatabaseAccess.h"
#include "failures/failure_text.h"
#include "fetch/SharedFetches.h"
#include "platform/database/session/names.h"

#include <exception>

namespace selfreport {

namespace {

using spreadsheet::FunctionCall;
using spreadsheet::ParameterStatus;

constexpr int ledgerTexts = 3; // the further three are whole numbers
constexpr int ledgerParameters = 6;
constexpr int referenceParameters = 3;

ParameterStatus statusOf(const FunctionCall& call, int parameter, int texts)
{
    return parameter <= texts ? call.parameterStatus(parameter) : call.integerStatus(parameter);
}

/// The first parameter that is not usable; 0 if all are.
int firstUnusable(const FunctionCall& call, int parameters, int texts)
{
    for (int parameter = 1; parameter <= parameters; ++parameter)
        if (statusOf(call, parameter, texts) != ParameterStatus::usable)
            return parameter;
    return 0;
}

std::string unusableReason(const FunctionCall& call, int parameter, int texts)
{
    const std::string which = "第" + std::to_string(parameter) + "个参数";
    switch (statusOf(call, parameter, texts)) {
    case ParameterStatus::missing:
        return which + "没有给出";
    case ParameterStatus::noNumber:
        return which + "不是整数";
    default:
        return which + "有错误";
    }
}

std::string numberIfGiven(const FunctionCall& call, int parameter)
{
    const std::int64_t number = call.parameterInteger(parameter);
    return number == 0 ? std::string() : std::to_string(number);
}

/// Notes why a call cannot be evaluated. True if it can.
bool argumentsUsable(const FunctionCall& call, int parameters, int texts, FetchLog& log)
{
    const int unusable = firstUnusable(call, parameters, texts);
    if (unusable != 0)
        log.known.push_back({call.place(), std::string(call.name()), unusableReason(call, unusable, texts)});
    return unusable == 0;
}

} // namespace

bool isFunction(const FunctionCall& call, std::string_view name)
{
    return sameName(call.name(), name);
}

std::optional<LedgerArguments> ledgerArgumentsOf(const FunctionCall& call)
{
    if (!isFunction(call, "Acct") || firstUnusable(call, ledgerParameters, ledgerTexts) != 0)
        return std::nullopt;
    return LedgerArguments{call.parameterText(1),  call.parameterText(2),  call.parameterText(3),
                           numberIfGiven(call, 4), numberIfGiven(call, 5), numberIfGiven(call, 6)};
}

std::optional<ReportReference> referenceOf(const FunctionCall& call)
{
    if (!isFunction(call, "REF_F") || firstUnusable(call, referenceParameters, referenceParameters) != 0)
        return std::nullopt;
    return ReportReference{call.parameterText(1), call.parameterText(2), call.parameterText(3)};
}

void evaluateAcct(FunctionCall& call, DatabaseAccess& database, SharedFetches* shared, FetchLog& log)
{
    log.evaluated.insert(call.place());
    if (!argumentsUsable(call, ledgerParameters, ledgerTexts, log))
        return;
    const LedgerArguments arguments = *ledgerArgumentsOf(call);
    const LedgerAnswer answer = shared ? shared->ledger(arguments) : fetchFromLedger(database, arguments);
    call.setStatus(0);
    call.requestNumberType(2);
    call.setResult(answer.amount.value_or(0));
    log.add(call.place(), arguments, answer);
}

void evaluateREF_F(FunctionCall& call, DatabaseAccess& database, SharedFetches* shared, FetchLog& log)
{
    log.evaluated.insert(call.place());
    if (!argumentsUsable(call, referenceParameters, referenceParameters, log))
        return;
    const ReportReference wanted = *referenceOf(call);
    ReferenceAnswer answer = shared ? shared->reference(wanted) : fetchFromReport(database, wanted);
    call.setStatus(0);
    call.setResult(answer.text);
    if (!answer.reason.empty())
        log.known.push_back({call.place(), "REF_F", answer.reason, answer.outcome});
    if (answer.doubtful && (answer.reason.empty() || !answer.doubtful->answer.failure.empty()))
        log.doubtful.push_back({call.place(), answer.doubtful->arguments, answer.doubtful->answer, true});
}

std::string guardedEvaluation(DatabaseAccess& database, const std::function<void()>& work)
{
    try {
        work();
        return {};
    } catch (const std::exception& error) {
        database.close();
        std::string reason = failures::sentenceOf(error);
        database.tell(Icon::critical, reason);
        return reason;
    }
}

} // namespace selfreport
