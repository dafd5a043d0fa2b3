#include "fetch/coverage_calls.h"

#include "access/DatabaseAccess.h"
#include "fetch/report_functions.h"
#include "fetch/SharedFetches.h"
#include "platform/services/UserWait.h"
#include "spreadsheet/files/content/content.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace selfreport {

namespace {

/// A call whose fetch the user cancels keeps its value; the recalculation stops with its next pause.
void evaluateUntilCancelled(spreadsheet::FunctionCall& call, DatabaseAccess& database,
                            const std::function<void()>& work)
{
    try {
        guardedEvaluation(database, work);
    } catch (const WorkCancelled&) {
        call.decline();
    }
}

/// Evaluates the workbook as a report and notes the calls of one sheet. False if the user cancelled.
bool noteCalls(spreadsheet::Workbook& workbook, int sheet, DatabaseAccess& database, SheetCalls& found)
{
    SharedFetches shared(database);
    FetchLog unread;
    workbook.registerFunction("Acct", 6, [&](spreadsheet::FunctionCall& call) {
        auto arguments = ledgerArgumentsOf(call);
        if (call.place().sheet == sheet && arguments)
            found.calls.push_back({call.column(), call.row(), *std::move(arguments)});
        else if (call.place().sheet == sheet)
            ++found.unusable;
        evaluateUntilCancelled(call, database, [&] { evaluateAcct(call, database, &shared, unread); });
    });
    workbook.registerFunction("REF_F", 3, [&](spreadsheet::FunctionCall& call) {
        evaluateUntilCancelled(call, database, [&] { evaluateREF_F(call, database, &shared, unread); });
    });
    workbook.setPrepareHook([&](std::span<spreadsheet::PreparedCall> calls) {
        try {
            shared.prepare(calls);
        } catch (const WorkCancelled&) {
            return; // as above
        }
    });
    workbook.setPauseHook([] { return userWait().pause(); });
    return !workbook.recalculate().stopped;
}

} // namespace

std::optional<SheetCalls> acctCallsOf(const spreadsheet::Workbook& workbook, int sheet,
                                      DatabaseAccess& database)
{
    const RecalculationUnderWay underWay(database);
    spreadsheet::Workbook copy;
    spreadsheet::loadContent(copy, spreadsheet::saveContent(workbook));
    SheetCalls found;
    if (!noteCalls(copy, sheet, database, found))
        return std::nullopt;
    std::ranges::stable_sort(found.calls, {}, [](const CellCall& c) { return std::tuple(c.column, c.row); });
    return found;
}

} // namespace selfreport
