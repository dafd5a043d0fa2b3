#pragma once
#include "fetch/inter_report_fetch.h"
#include "fetch/ledger_fetch.h"
#include "spreadsheet/formula/CustomFunction.h"

#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace selfreport {

class DatabaseAccess;
class RunRecord;
class SharedFetches;

/// Whether a function of that name is called, letter case ignored.
bool isFunction(const spreadsheet::FunctionCall& call, std::string_view name);

/// The arguments of an `Acct` call: the first three as texts, year and periods as whole numbers, 0 becoming
/// the empty text. Nothing if it is no such call or one of them is not usable.
std::optional<LedgerArguments> ledgerArgumentsOf(const spreadsheet::FunctionCall& call);

/// … of all of them among the calls of a wave.
std::set<LedgerArguments> ledgerCallsAmong(std::span<const spreadsheet::PreparedCall> calls);

/// The arguments of a `REF_F` call, as above.
std::optional<ReportReference> referenceOf(const spreadsheet::FunctionCall& call);

/// Evaluates an `Acct` call: hands back the amount, 0 if there is none, and gives the calling cell the number
/// type with two decimals. A call with unusable arguments hands back nothing.
/// @param shared  answers of the recalculation under way; null: the call fetches for itself
void evaluateAcct(spreadsheet::FunctionCall& call, DatabaseAccess& database, SharedFetches* shared,
                  RunRecord& record);

/// Evaluates a `REF_F` call: hands back the referenced cell's text.
void evaluateREF_F(spreadsheet::FunctionCall& call, DatabaseAccess& database, SharedFetches* shared,
                   RunRecord& record);

/// Runs a callback's work; a failure ends it, closes the connection and is told under the critical icon.
/// Gives its reason, "" without one.
std::string guardedEvaluation(DatabaseAccess& database, const std::function<void()>& work);

/// … of a call, and records its failure.
void guardedCall(const spreadsheet::FunctionCall& call, DatabaseAccess& database, RunRecord& record,
                 const std::function<void()>& work);

} // namespace selfreport
