#pragma once
#include "fetch/ledger_fetch.h"
#include "fetch/RunRecord.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace selfreport {

class DatabaseAccess;
class SharedFetches;

/// The workbook that is never shown: a referenced report is loaded into it, so that its own `Acct` formulas
/// are evaluated before one of its cells is read. `REF_F` is unknown to it and shows #NAME?.
class frmEditor1 {
public:
    /// @param shared  answers of the recalculation under way, shared with the report that refers to this one;
    ///                null: every call fetches for itself
    explicit frmEditor1(DatabaseAccess& database, SharedFetches* shared = nullptr);

    /// Replaces the workbook by a stored one and evaluates it. @throws spreadsheet::ContentError, and nothing
    /// is loaded then
    void load(std::span<const std::byte> content);

    // The same in steps, for those who fetch for several reports at once.
    void open(std::span<const std::byte> content);
    /// The calls that are certain to be made before any other; nothing is computed for them.
    std::set<LedgerArguments> firstCalls();
    void compute();

    /// The fetch that makes a cell's figure doubtful: a failed one that it holds or is computed from, else
    /// its own, else one that its linear form holds, else one that the procedure declined and that it is
    /// computed from. Null if there is none.
    /// @param looksIntoForm  false: totals do not carry the doubt in a part
    std::shared_ptr<const LedgerFetch> doubtfulBehind(spreadsheet::CallPlace cell, bool looksIntoForm);
    /// Of a cell all of whose own calls came to nothing without doubt the worst of their states, else
    /// `value`.
    CallState plainStateOf(spreadsheet::CallPlace cell) const;
    /// Whether a cell calls `REF_F`, which means nothing here, or is computed from one that does.
    bool readsReports(spreadsheet::CallPlace cell);

    spreadsheet::Workbook fps1;
    std::int16_t isShowFormula = 0; ///< never set to 1: the callback always evaluates
    RunRecord record{fps1};

private:
    std::shared_ptr<const LedgerFetch> doubtfulInForm(const spreadsheet::CallPlace& cell) const;
    bool isBehind(const spreadsheet::SheetCell& caller, const spreadsheet::CallPlace& cell);
    std::vector<spreadsheet::CallPlace> readersOfReports() const;
    void fps1_CustomFunction(spreadsheet::FunctionCall& call);
    void prepare(std::span<spreadsheet::PreparedCall> calls);

    DatabaseAccess& m_database;
    SharedFetches* m_shared;
    std::set<LedgerArguments>* m_gathered = nullptr;              ///< while calls are only looked for
    std::optional<std::vector<spreadsheet::CallPlace>> m_readers; ///< of reports, once somebody has asked
};

} // namespace selfreport
