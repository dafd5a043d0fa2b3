#include "fetch/report_functions.h"

#include "access/DatabaseAccess.h"
#include "failures/failure_text.h"
#include "fetch/RunRecord.h"
#include "fetch/SharedFetches.h"
#include "platform/database/session/names.h"

#include <exception>
#include <memory>
#include <utility>
#include <vector>

namespace selfreport {

namespace {

using spreadsheet::FunctionCall;
using spreadsheet::ParameterStatus;

constexpr std::string_view acctName = "Acct";
constexpr std::string_view referenceName = "REF_F";
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

/// What the engine takes for what a call handed back.
spreadsheet::Value valueOf(const FunctionCall& call)
{
    return call.result().value_or(spreadsheet::CellError::value);
}

/// The remark on the arguments of a call: one that cannot be used, or more of them than are read.
std::vector<Explanation> remarksOn(const FunctionCall& call, int parameters, int texts)
{
    if (const int unusable = firstUnusable(call, parameters, texts); unusable != 0)
        return {{unusableReason(call, unusable, texts)}};
    if (call.parameterCount() > parameters)
        return {{"给了" + std::to_string(call.parameterCount()) + "个参数，只用前" +
                     std::to_string(parameters) + "个",
                 FetchOutcome::doubtful, CallState::value}};
    return {};
}

RecordedCall failedCall(bool isLedgerCall, const std::string& reason)
{
    if (isLedgerCall)
        return {acctName, std::make_shared<const LedgerFetch>(LedgerFetch{{}, {{}, {}, reason, {}}}), {}, {}};
    const Explanation remark{reason, FetchOutcome::failed, CallState::failed};
    return {referenceName,
            {},
            std::make_shared<const ReferenceFetch>(
                ReferenceFetch{{}, {{}, reason, {}, remark.outcome, remark.state}}),
            {remark}};
}

} // namespace

bool isFunction(const FunctionCall& call, std::string_view name)
{
    return sameName(call.name(), name);
}

std::optional<LedgerArguments> ledgerArgumentsOf(const FunctionCall& call)
{
    if (!isFunction(call, acctName) || firstUnusable(call, ledgerParameters, ledgerTexts) != 0)
        return std::nullopt;
    return LedgerArguments{call.parameterText(1),  call.parameterText(2),  call.parameterText(3),
                           numberIfGiven(call, 4), numberIfGiven(call, 5), numberIfGiven(call, 6)};
}

std::set<LedgerArguments> ledgerCallsAmong(std::span<const spreadsheet::PreparedCall> calls)
{
    std::set<LedgerArguments> found;
    for (const spreadsheet::PreparedCall& call : calls)
        if (auto arguments = ledgerArgumentsOf(call.asCall()))
            found.insert(std::move(*arguments));
    return found;
}

std::optional<ReportReference> referenceOf(const FunctionCall& call)
{
    if (!isFunction(call, referenceName) ||
        firstUnusable(call, referenceParameters, referenceParameters) != 0)
        return std::nullopt;
    return ReportReference{call.parameterText(1), call.parameterText(2), call.parameterText(3)};
}

void evaluateAcct(FunctionCall& call, DatabaseAccess& database, SharedFetches* shared, RunRecord& record)
{
    RecordedCall made{acctName, {}, {}, remarksOn(call, ledgerParameters, ledgerTexts)};
    if (auto usable = ledgerArgumentsOf(call)) {
        LedgerArguments& arguments = *usable;
        if (shared) {
            made.ledger = shared->ledger(arguments);
        } else {
            LedgerAnswer answer = fetchFromLedger(database, arguments);
            made.ledger =
                std::make_shared<const LedgerFetch>(LedgerFetch{std::move(arguments), std::move(answer)});
        }
        call.setStatus(0);
        call.requestNumberType(2);
        call.setResult(made.ledger->answer.amount.value_or(0));
    }
    made.value = valueOf(call);
    record.add(call.place(), std::move(made));
}

void evaluateREF_F(FunctionCall& call, DatabaseAccess& database, SharedFetches* shared, RunRecord& record)
{
    RecordedCall made{referenceName, {}, {}, remarksOn(call, referenceParameters, referenceParameters)};
    if (auto usable = referenceOf(call)) {
        ReportReference& wanted = *usable;
        if (shared) {
            made.reference = shared->reference(wanted);
        } else {
            ReferenceAnswer answer = fetchFromReport(database, wanted);
            made.reference =
                std::make_shared<const ReferenceFetch>(ReferenceFetch{std::move(wanted), std::move(answer)});
        }
        const ReferenceAnswer& answer = made.reference->answer;
        call.setStatus(0);
        call.setResult(answer.text);
        if (!answer.reason.empty())
            made.remarks.push_back({answer.reason, answer.outcome, answer.state});
    }
    made.value = valueOf(call);
    record.add(call.place(), std::move(made));
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

void guardedCall(const FunctionCall& call, DatabaseAccess& database, RunRecord& record,
                 const std::function<void()>& work)
{
    const std::string failure = guardedEvaluation(database, work);
    if (failure.empty())
        return;
    RecordedCall failed = failedCall(isFunction(call, acctName), failure);
    failed.value = valueOf(call);
    record.add(call.place(), std::move(failed));
}

} // namespace selfreport
