#include "fetch/RunRecord.h"

#include "fetch/ledger_blanks.h"
#include "spreadsheet/calculation/Recalculation.h"
#include "spreadsheet/values/coercion.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>
#include <utility>

namespace selfreport {

// Cells are known by their sheet's id, so that sheets may come, go and change places: a sheet that was
// removed keeps its entries, which nobody sees, until undo brings it back or the next whole calculation.

using spreadsheet::CallPlace;
using spreadsheet::SheetCell;

namespace {

bool isDoubtful(const LedgerFetch& fetch)
{
    const LedgerAnswer& answer = fetch.answer;
    return !answer.amount || !answer.unknownClasses.empty() || !answer.failure.empty();
}

} // namespace

std::shared_ptr<const LedgerFetch> RecordedCall::doubtful() const
{
    if (ledger && isDoubtful(*ledger))
        return ledger;
    // A reason of its own counts for more than that the cell it reads is doubtful, unless that one has
    // failed.
    const bool counts =
        reference && reference->answer.doubtful &&
        (reference->answer.reason.empty() || !reference->answer.doubtful->answer.failure.empty());
    return counts ? reference->answer.doubtful : nullptr;
}

CallState RecordedCall::state() const
{
    if (!ledger && !reference)
        return CallState::missing;
    const CallState own = reference ? reference->answer.state : CallState::value;
    if (isExplained)
        return std::max(own, explained);
    return ledger ? stateOfAnswer(*ledger) : own;
}

std::string RecordedCall::subject() const
{
    if (ledger)
        return ledger->arguments.account;
    return reference ? reference->reference.report + "!" + reference->reference.cell : std::string();
}

RunRecord::RunRecord(spreadsheet::Workbook& workbook)
    : m_workbook(workbook)
{
    m_workbook.recalculation().setCallerHook([this](CallPlace place) { begin(place); });
    m_workbook.journal().setMoveHook([this](const spreadsheet::CellMove& move) { follow(move); });
}

RunRecord::~RunRecord()
{
    m_workbook.recalculation().setCallerHook({});
    m_workbook.journal().setMoveHook({});
}

SheetCell RunRecord::cellAt(const CallPlace& place) const
{
    return {m_workbook.sheet(place.sheet).id(), {place.column, place.row}};
}

/// A cell that is computed once more makes its calls anew. Cells mostly come in the record's own order.
void RunRecord::begin(const CallPlace& place)
{
    m_caller = m_fresh.try_emplace(m_fresh.end(), cellAt(place));
    m_callerPlace = place;
    m_caller->second.clear();
}

void RunRecord::add(const CallPlace& place, RecordedCall call)
{
    if (m_fresh.empty() || m_callerPlace != place)
        begin(place);
    m_caller->second.push_back(std::move(call));
}

void RunRecord::takeAll()
{
    m_states.reset();
    m_isOfCalculation = true;
    m_cells = std::exchange(m_fresh, {});
    std::erase_if(m_cells, [](const auto& entry) { return entry.second.empty(); });
}

void RunRecord::takeChanged()
{
    m_states.reset();
    const auto callsNothing = [this](const SheetCell& cell) {
        const int sheet = m_workbook.sheetIndexOfId(cell.sheetId);
        return sheet != 0 && !m_workbook.recalculation().mayCall({sheet, cell.cell.column, cell.cell.row});
    };
    std::erase_if(m_cells, [&](const auto& entry) { return callsNothing(entry.first); });
    for (auto& [cell, calls] : m_fresh) {
        if (calls.empty())
            m_cells.erase(cell);
        else
            m_cells.insert_or_assign(cell, std::move(calls));
    }
    m_fresh.clear();
}

void RunRecord::drop()
{
    m_fresh.clear();
}

/// Sheets of two contents may have the same ids.
void RunRecord::followContent(const spreadsheet::CellMove::Contents& contents)
{
    if (contents.former == 0)
        m_parked.clear();
    else
        m_parked.insert_or_assign(contents.former, std::move(m_cells));
    auto back = m_parked.extract(contents.present);
    m_isOfCalculation = !back.empty();
    m_cells = back ? std::move(back.mapped()) : Cells();
    m_fresh.clear();
}

RunRecord::FollowedPlace RunRecord::followed(const CallPlace& place) const
{
    auto cell = std::make_shared<std::optional<SheetCell>>(cellAt(place));
    if (m_followed.size() == m_followed.capacity()) // a tree follows thousands
        std::erase_if(m_followed, [](const auto& other) { return other.expired(); });
    m_followed.push_back(cell);
    return cell;
}

void RunRecord::followPlaces(const spreadsheet::CellMove& move)
{
    for (const auto& each : m_followed)
        if (const auto cell = each.lock(); cell && *cell)
            *cell = move.placeOf(**cell);
}

void RunRecord::follow(const spreadsheet::CellMove& move)
{
    m_states.reset();
    followPlaces(move);
    if (const auto contents = move.replaced())
        return followContent(*contents);
    Cells moved;
    for (auto& [cell, calls] : m_cells)
        if (const auto place = move.placeOf(cell))
            moved.insert_or_assign(*place, std::move(calls));
    m_cells = std::move(moved);
    m_fresh.clear();
}

namespace {

/// A fetch that failed is not looked into any further.
bool isFilledByLedger(const LedgerFetch& fetch)
{
    return fetch.answer.failure.empty() && !fetch.arguments.account.empty() && hasBlanks(fetch.arguments);
}

/// What is asked after a calculation, each thing once, and which calls wait for it.
class Asking {
public:
    void add(RecordedCall& call)
    {
        if (const auto fetch = call.isExplained ? nullptr : call.doubtful()) {
            const auto [found, isNew] =
                m_doubtful.try_emplace({fetch->arguments, fetch->answer.failure}, fetches.doubtful.size());
            if (isNew)
                fetches.doubtful.push_back(*fetch);
            m_unexplained.push_back({&call, found->second});
        }
        if (call.ledger && !call.filled && isFilledByLedger(*call.ledger)) {
            const auto [found, isNew] = m_blank.try_emplace(call.ledger.get(), fetches.withBlanks.size());
            if (isNew)
                fetches.withBlanks.push_back(call.ledger->arguments);
            m_unfilled.push_back({&call, found->second});
        }
    }
    void take(FetchExplanations found)
    {
        for (const auto& [call, place] : m_unexplained) {
            Explanation remark = found.explanations.at(place);
            if (!call->ledger)
                remark.reason = "被引用的单元格：" + remark.reason;
            call->remarks.push_back(std::move(remark));
            call->isExplained = true;
            call->explained = call->remarks.back().state;
        }
        std::vector<std::shared_ptr<const LedgerArguments>> shared;
        for (LedgerArguments& arguments : found.filled)
            shared.push_back(std::make_shared<const LedgerArguments>(std::move(arguments)));
        for (const auto& [call, place] : m_unfilled)
            call->filled = place < shared.size() ? shared[place] : nullptr;
    }

    FetchesToExplain fetches;

private:
    using Waiting = std::vector<std::pair<RecordedCall*, std::size_t>>;

    std::map<std::pair<LedgerArguments, std::string>, std::size_t> m_doubtful; // one may fail, its like not
    std::map<const LedgerFetch*, std::size_t> m_blank;
    Waiting m_unexplained, m_unfilled;
};

} // namespace

void RunRecord::explain(const Explain& explain)
{
    m_states.reset();
    Asking asking;
    for (auto& [cell, calls] : m_cells)
        for (RecordedCall& call : calls)
            asking.add(call);
    if (!asking.fetches.doubtful.empty() || !asking.fetches.withBlanks.empty())
        asking.take(explain(asking.fetches));
}

std::span<const RecordedCall> RunRecord::callsOf(const SheetCell& cell) const
{
    const auto found = m_cells.find(cell);
    return found == m_cells.end() ? std::span<const RecordedCall>() : found->second;
}

void RunRecord::eachCall(const std::function<void(const SheetCell&, const RecordedCall&)>& report) const
{
    for (const auto& [cell, calls] : m_cells)
        for (const RecordedCall& call : calls)
            report(cell, call);
}

spreadsheet::CallAnswers RunRecord::answers() const
{
    return [this](const CallPlace& cell, int call) -> spreadsheet::Value {
        const auto calls = callsOf(cellAt(cell));
        const auto number = static_cast<std::size_t>(call);
        return number < calls.size() ? calls[number].value : spreadsheet::CellError::na;
    };
}

std::string RunRecord::remarkOn(const SheetCell& cell) const
{
    for (const RecordedCall& call : callsOf(cell))
        if (!call.remarks.empty())
            return call.remarks.front().reason;
    return {};
}

CallState RunRecord::stateOf(const CallPlace& cell, int call) const
{
    const auto calls = callsOf(cellAt(cell));
    const auto number = static_cast<std::size_t>(call);
    return number < calls.size() ? calls[number].state() : CallState::value;
}

/// Most reports have nothing to mark, and their formulas are not looked at.
const RunRecord::States& RunRecord::markedStates() const
{
    if (m_states)
        return *m_states;
    States& states = m_states.emplace();
    bool any = false;
    eachCall([&](const SheetCell&, const RecordedCall& call) { any = any || isMarked(call.state()); });
    if (!any)
        return states;
    const auto severity = [this](const CallPlace& cell, int call) {
        const CallState state = stateOf(cell, call);
        return isMarked(state) ? static_cast<int>(state) : 0;
    };
    for (const auto& [cell, worst] : spreadsheet::carriedSeverities(m_workbook.book(), answers(), severity))
        states.emplace(cellAt(cell), static_cast<CallState>(worst));
    eachCall([&](const SheetCell& cell, const RecordedCall& call) { // whatever its formula makes of it
        if (!isMarked(call.state()))
            return;
        CallState& state = states.try_emplace(cell, call.state()).first->second;
        state = std::max(state, call.state());
    });
    return states;
}

CallState RunRecord::markedState(const SheetCell& cell) const
{
    const auto found = markedStates().find(cell);
    return found == markedStates().end() ? CallState::value : found->second;
}

CallState RunRecord::nothingIn(const SheetCell& cell, const spreadsheet::Value& value) const
{
    if (!value.isEmpty() && spreadsheet::countedNumber(value).value_or(0) != 0)
        return CallState::value;
    CallState worst = CallState::value;
    for (const RecordedCall& call : callsOf(cell)) {
        if (call.state() == CallState::value)
            return CallState::value;
        worst = std::max(worst, call.state());
    }
    return worst;
}

std::string RunRecord::carriedNote(const SheetCell& cell, CallState state) const
{
    constexpr int mostNamed = 3;
    const CallPlace place{m_workbook.sheetIndexOfId(cell.sheetId), cell.cell.column, cell.cell.row};
    int count = 0;
    std::string named;
    for (const spreadsheet::LinearTerm& term :
         spreadsheet::linearForm(m_workbook.book(), place, answers()).terms) {
        if (stateOf(term.cell, term.call) != state || ++count > mostNamed)
            continue;
        const auto calls = callsOf(cellAt(term.cell));
        named += (named.empty() ? "" : "、") + calls[static_cast<std::size_t>(term.call)].subject();
    }
    return "含" + std::to_string(count) + "项" + std::string(stateName(state)) + "：" + named +
           (count > mostNamed ? "……" : "");
}

std::string RunRecord::noteOn(const SheetCell& cell) const
{
    std::string remark = remarkOn(cell);
    const CallState state = remark.empty() ? markedState(cell) : CallState::value;
    return isMarked(state) ? carriedNote(cell, state) : remark;
}

std::vector<CellDiagnostic> RunRecord::diagnostics() const
{
    std::vector<CellDiagnostic> found;
    eachCall([&](const SheetCell& cell, const RecordedCall& call) {
        const int sheet = m_workbook.sheetIndexOfId(cell.sheetId);
        for (const Explanation& remark : call.remarks)
            if (sheet != 0)
                found.push_back({{sheet, cell.cell.column, cell.cell.row},
                                 std::string(call.function),
                                 remark.reason,
                                 remark.outcome,
                                 remark.state});
    });
    std::ranges::stable_sort(found, {}, &CellDiagnostic::place);
    const auto repeated = std::ranges::unique(found);
    found.erase(repeated.begin(), repeated.end());
    return found;
}

} // namespace selfreport
