#include "fetch/frmEditor1.h"

#include "fetch/report_functions.h"
#include "fetch/ReportEvaluation.h"
#include "fetch/SharedFetches.h"
#include "platform/database/session/names.h"
#include "platform/services/UserWait.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/files/content/content.h"
#include "text/ascii.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace selfreport {

namespace {

/// Whether a formula calls `REF_F` outside its quoted texts and sheet names.
bool callsReports(std::string_view formula)
{
    constexpr std::string_view name = "REF_F";
    const auto continuesName = [](char c) {
        return ascii::isLetter(c) || ascii::isDigit(c) || c == '_' || c == '.' || c < 0;
    };
    for (std::size_t at = 0; at < formula.size(); ++at) {
        const char c = formula[at];
        if (c == '"' || c == '\'')
            at = std::min(formula.find(c, at + 1), formula.size());
        else if (sameName(formula.substr(at, name.size()), name) &&
                 (at == 0 || !continuesName(formula[at - 1])) &&
                 trimmed(formula.substr(at + name.size())).starts_with('('))
            return true;
    }
    return false;
}

} // namespace

frmEditor1::frmEditor1(DatabaseAccess& database, SharedFetches* shared)
    : m_database(database)
    , m_shared(shared)
{
    fps1.registerFunction("Acct", 6, [this](spreadsheet::FunctionCall& call) { fps1_CustomFunction(call); });
    if (m_shared)
        fps1.setPrepareHook([this](std::span<spreadsheet::PreparedCall> calls) { prepare(calls); });
    fps1.setPauseHook([this] { return m_gathered || userWait().pause(); });
    fps1.recalculate();
    isShowFormula = 0;
}

void frmEditor1::load(std::span<const std::byte> content)
{
    open(content);
    compute();
}

void frmEditor1::open(std::span<const std::byte> content)
{
    m_readers.reset();
    spreadsheet::loadContent(fps1, content);
    showStoredValues(fps1);
}

void frmEditor1::compute()
{
    fps1.recalculate();
    record.takeAll();
}

/// A recalculation that stops before its first cell.
std::set<LedgerArguments> frmEditor1::firstCalls()
{
    std::set<LedgerArguments> calls;
    m_gathered = &calls;
    fps1.recalculate();
    m_gathered = nullptr;
    record.drop();
    return calls;
}

void frmEditor1::prepare(std::span<spreadsheet::PreparedCall> calls)
{
    if (!m_gathered)
        return m_shared->prepareLedger(calls);
    m_gathered->merge(ledgerCallsAmong(calls));
}

std::shared_ptr<const LedgerFetch> frmEditor1::doubtfulBehind(spreadsheet::CallPlace cell, bool looksIntoForm)
{
    const spreadsheet::SheetCell asked{fps1.sheet(cell.sheet).id(), {cell.column, cell.row}};
    std::shared_ptr<const LedgerFetch> failed, own, declined;
    bool any = false;
    record.eachCall([&](const spreadsheet::SheetCell& caller, const RecordedCall& call) {
        const auto doubtful = call.doubtful();
        if (!doubtful)
            return;
        any = true;
        if (caller == asked && !own)
            own = doubtful;
        const bool hasFailed = !doubtful->answer.failure.empty();
        std::shared_ptr<const LedgerFetch>& first = hasFailed ? failed : declined;
        if (!first && (hasFailed || doubtful->answer.isDeclined()) && isBehind(caller, cell))
            first = doubtful;
    });
    if (failed || own || !any)
        return failed ? failed : own;
    const auto carried = looksIntoForm ? doubtfulInForm(cell) : nullptr;
    return carried ? carried : declined;
}

std::shared_ptr<const LedgerFetch> frmEditor1::doubtfulInForm(const spreadsheet::CallPlace& cell) const
{
    for (const spreadsheet::LinearTerm& term :
         spreadsheet::linearForm(fps1.book(), cell, record.answers()).terms) {
        const spreadsheet::SheetCell caller{fps1.sheet(term.cell.sheet).id(),
                                            {term.cell.column, term.cell.row}};
        const auto calls = record.callsOf(caller);
        const auto number = static_cast<std::size_t>(term.call);
        if (const auto doubtful = number < calls.size() ? calls[number].doubtful() : nullptr)
            return doubtful;
    }
    return nullptr;
}

CallState frmEditor1::plainStateOf(spreadsheet::CallPlace cell) const
{
    CallState worst = CallState::value;
    for (const RecordedCall& call : record.callsOf({fps1.sheet(cell.sheet).id(), {cell.column, cell.row}})) {
        const CallState state = call.state();
        if (state == CallState::value || isMarked(state))
            return CallState::value;
        worst = std::max(worst, state);
    }
    return worst;
}

/// Whether the caller is the cell, or one that it is computed from.
bool frmEditor1::isBehind(const spreadsheet::SheetCell& caller, const spreadsheet::CallPlace& cell)
{
    const spreadsheet::CallPlace place{fps1.sheetIndexOfId(caller.sheetId), caller.cell.column,
                                       caller.cell.row};
    return place == cell || fps1.recalculation().isComputedFrom(cell, place);
}

std::vector<spreadsheet::CallPlace> frmEditor1::readersOfReports() const
{
    std::vector<spreadsheet::CallPlace> readers;
    for (int index = 1; index <= fps1.sheetCount(); ++index) {
        const spreadsheet::Sheet& sheet = fps1.sheet(index);
        const int lastRow = sheet.lastDataRow();
        const int lastColumn = sheet.lastDataColumn();
        for (int column = 1; column <= lastColumn; ++column)
            for (int row = 1; row <= lastRow; ++row)
                if (sheet.hasFormula({column, row}) && callsReports(sheet.formula({column, row})))
                    readers.push_back({index, column, row});
    }
    return readers;
}

bool frmEditor1::readsReports(spreadsheet::CallPlace cell)
{
    if (!m_readers)
        m_readers = readersOfReports();
    return std::ranges::any_of(*m_readers, [&](const spreadsheet::CallPlace& reader) {
        return reader == cell || fps1.recalculation().isComputedFrom(cell, reader);
    });
}

void frmEditor1::fps1_CustomFunction(spreadsheet::FunctionCall& call)
{
    if (isShowFormula == 1)
        return;
    guardedCall(call, m_database, record, [&] {
        if (isFunction(call, "Acct"))
            evaluateAcct(call, m_database, m_shared, record);
    });
}

} // namespace selfreport
