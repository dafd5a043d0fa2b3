#include "fetch/frmEditor1.h"

#include "fetch/evaluation.h"
#include "fetch/report_functions.h"
#include "fetch/SharedFetches.h"
#include "platform/services/UserWait.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/files/content/content.h"

#include <algorithm>

namespace selfreport {

frmEditor1::frmEditor1(DatabaseAccess& database, SharedFetches* shared)
    : m_database(database)
    , m_shared(shared)
{
    fps1.registerFunction("Acct", 6, [this](spreadsheet::FunctionCall& call) { fps1_CustomFunction(call); });
    if (m_shared)
        fps1.setPrepareHook(
            [this](std::span<spreadsheet::PreparedCall> calls) { m_shared->prepareLedger(calls); });
    fps1.setPauseHook([] { return userWait().pause(); });
    fps1.recalculate();
    isShowFormula = 0;
}

void frmEditor1::load(std::span<const std::byte> content)
{
    spreadsheet::loadContent(fps1, content);
    log = {};
    showStoredValues(fps1);
    fps1.recalculate();
}

const DoubtfulFetch* frmEditor1::doubtfulBehind(spreadsheet::CallPlace cell)
{
    const auto firstOf = [&](auto&& isMeant) {
        const auto found = std::ranges::find_if(log.doubtful, [&](const DoubtfulFetch& fetch) {
            return isMeant(fetch) &&
                   (fetch.place == cell || fps1.recalculation().isComputedFrom(cell, fetch.place));
        });
        return found == log.doubtful.end() ? nullptr : &*found;
    };
    if (const auto* failed =
            firstOf([](const DoubtfulFetch& fetch) { return !fetch.answer.failure.empty(); }))
        return failed;
    if (const DoubtfulFetch* own = log.doubtfulAt(cell))
        return own;
    return firstOf([](const DoubtfulFetch& fetch) { return fetch.answer.isDeclined; });
}

void frmEditor1::fps1_CustomFunction(spreadsheet::FunctionCall& call)
{
    if (isShowFormula == 1)
        return;
    const std::string failure = guardedEvaluation(m_database, [&] {
        if (isFunction(call, "Acct"))
            evaluateAcct(call, m_database, m_shared, log);
    });
    if (!failure.empty())
        log.doubtful.push_back({call.place(), {}, {{}, {}, failure}});
}

} // namespace selfreport
