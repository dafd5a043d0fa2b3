#pragma once
#include "fetch/diagnostics.h"
#include "fetch/inter_report_fetch.h"
#include "fetch/ledger_explanation.h"
#include "fetch/ledger_fetch.h"
#include "spreadsheet/calculation/linear_form.h"
#include "spreadsheet/values/Value.h"
#include "spreadsheet/workbook/CellMove.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

/// A call of `Acct` or `REF_F` that the last calculation made. Equal calls share arguments and answer.
struct RecordedCall {
    std::string_view function;                       ///< "Acct" or "REF_F"
    std::shared_ptr<const LedgerFetch> ledger;       ///< of `Acct`; null if its arguments were not usable
    std::shared_ptr<const ReferenceFetch> reference; ///< of `REF_F`, likewise
    std::vector<Explanation> remarks;                ///< none: it gave what was asked for
    bool isExplained = false;                        ///< the remark on its doubtful fetch is among them
    CallState explained = CallState::value;          ///< what was found out about that fetch
    /// Of `Acct` with a blank year or period: the arguments as the procedure takes them. Null: not known.
    std::shared_ptr<const LedgerArguments> filled = nullptr;
    spreadsheet::Value value = spreadsheet::CellError::na; ///< what the call handed back to its formula

    /// The ledger fetch that puts the call's figure in doubt, of `REF_F` the one behind the cell that it
    /// reads. Null if none does.
    std::shared_ptr<const LedgerFetch> doubtful() const;

    /// Which kind of figure or of nothing the call gave.
    CallState state() const;
    /// "1123|客户|K009", "资产负债表!B7": what it asks for. "" if its arguments were not usable.
    std::string subject() const;

    /// What was really asked for: blank years and periods are those that the ledger has for them, and blank
    /// only where it could not be asked. Of `Acct` with usable arguments only.
    const LedgerArguments& argumentsUsed() const { return filled ? *filled : ledger->arguments; }
};

/// What the last calculation of a workbook fetched: its calls, by cell. Entries lie where their cells lie,
/// whatever moves them. The workbook must outlive it.
class RunRecord {
public:
    explicit RunRecord(spreadsheet::Workbook& workbook);
    ~RunRecord();
    RunRecord(const RunRecord&) = delete;
    RunRecord& operator=(const RunRecord&) = delete;

    /// Adds the next call of a cell to the calculation under way.
    void add(const spreadsheet::CallPlace& place, RecordedCall call);

    // How a calculation ends.
    void takeAll();     ///< every formula was computed
    void takeChanged(); ///< cells that were not computed keep their entries
    void drop();        ///< it was stopped: what stood before stands

    using Explain = std::function<FetchExplanations(const FetchesToExplain&)>;
    /// Gives doubtful ledger fetches without a remark theirs, and calls with blanks what these stand for.
    /// @param explain  handed each of them once
    void explain(const Explain& explain);

    /// The calls of a cell in the order in which its formula makes them.
    std::span<const RecordedCall> callsOf(const spreadsheet::SheetCell& cell) const;
    void
    eachCall(const std::function<void(const spreadsheet::SheetCell&, const RecordedCall&)>& report) const;
    /// Whether the workbook's content was computed at all: a cell without an entry then made no call, as
    /// those in a circle do.
    bool isOfCalculation() const { return m_isOfCalculation; }

    /// A cell's place, kept up to date by whatever moves the cell; nothing once it was removed.
    using FollowedPlace = std::shared_ptr<const std::optional<spreadsheet::SheetCell>>;
    FollowedPlace followed(const spreadsheet::CallPlace& place) const;
    /// What its calls handed back, for linear forms. The record must outlive it.
    spreadsheet::CallAnswers answers() const;
    /// The first remark on a cell; "" without one.
    std::string remarkOn(const spreadsheet::SheetCell& cell) const;
    /// The worst state among the calls of a cell's linear form, so that totals carry it; `value` unless that
    /// is one that is marked.
    CallState markedState(const spreadsheet::SheetCell& cell) const;
    /// Of a cell that shows nothing and whose own calls all came to some kind of it, the worst; else `value`.
    CallState nothingIn(const spreadsheet::SheetCell& cell, const spreadsheet::Value& value) const;
    /// Why a cell is marked: the first remark on it, else "含1项不存在：1123|客户|K009". "" if it is not.
    std::string noteOn(const spreadsheet::SheetCell& cell) const;
    /// All remarks, in the order of sheets, columns and rows; of a cell each once.
    std::vector<CellDiagnostic> diagnostics() const;

private:
    using Cells = std::map<spreadsheet::SheetCell, std::vector<RecordedCall>>;
    using States = std::map<spreadsheet::SheetCell, CallState>;

    spreadsheet::SheetCell cellAt(const spreadsheet::CallPlace& place) const;
    void begin(const spreadsheet::CallPlace& place);
    void follow(const spreadsheet::CellMove& move);
    const States& markedStates() const;
    CallState stateOf(const spreadsheet::CallPlace& cell, int call) const;
    std::string carriedNote(const spreadsheet::SheetCell& cell, CallState state) const;
    void followContent(const spreadsheet::CellMove::Contents& contents);
    void followPlaces(const spreadsheet::CellMove& move);

    spreadsheet::Workbook& m_workbook;
    Cells m_cells;                           ///< of the last calculation
    std::map<std::uint64_t, Cells> m_parked; ///< by number: of contents that undo or redo may bring back
    mutable std::optional<States> m_states;  ///< once somebody has asked
    Cells m_fresh;                           ///< of the one under way, also cells that made no call
    Cells::iterator m_caller;                ///< the cell of `m_fresh` that makes calls now, if there is any
    spreadsheet::CallPlace m_callerPlace;
    bool m_isOfCalculation = false;
    mutable std::vector<std::weak_ptr<std::optional<spreadsheet::SheetCell>>> m_followed;
};

} // namespace selfreport
