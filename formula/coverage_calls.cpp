#include "formula/coverage_calls.h"

#include "component/state/mdlMain.h"
#include "formula/report_functions.h"
#include "formula/SharedFetches.h"
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/files/content.h"

#include <algorithm>
#include <tuple>

namespace selfreport {

SheetCalls acctCallsOf(const spreadsheet::Workbook& workbook, int sheet)
{
    const RecalculationUnderWay underWay;
    spreadsheet::Workbook copy;
    spreadsheet::loadContent(copy, spreadsheet::saveContent(workbook));
    SharedFetches shared;
    FetchLog unread;
    SheetCalls found;
    copy.registerFunction("Acct", 6, [&](spreadsheet::FunctionCall& call) {
        guardedEvaluation([&] {
            if (call.place().sheet == sheet) {
                if (auto arguments = ledgerArgumentsOf(call))
                    found.calls.push_back({call.column(), call.row(), *std::move(arguments)});
                else
                    ++found.unusable;
            }
            evaluateAcct(call, &shared, unread);
        });
    });
    copy.registerFunction("REF_F", 3, [&](spreadsheet::FunctionCall& call) {
        guardedEvaluation([&] { evaluateREF_F(call, &shared, unread); });
    });
    copy.setPrepareHook([&](std::span<spreadsheet::PreparedCall> calls) { shared.prepare(calls); });
    copy.recalculate();
    std::ranges::stable_sort(found.calls, {}, [](const CellCall& c) { return std::tuple(c.column, c.row); });
    return found;
}

} // namespace selfreport
