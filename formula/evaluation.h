#pragma once
#include "formula/diagnostics.h"
#include "formula/fetch_log.h"
#include "spreadsheet/engine/Workbook.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace selfreport {

class SharedFetches;

/// Evaluates the report functions of a report's workbook and switches between formulas and data. The workbook
/// must outlive it. "Every cell" is every cell of every sheet.
class ReportEvaluation {
public:
    explicit ReportEvaluation(spreadsheet::Workbook& workbook);
    ~ReportEvaluation();
    ReportEvaluation(const ReportEvaluation&) = delete;
    ReportEvaluation& operator=(const ReportEvaluation&) = delete;

    /// Makes `Acct` (6 parameters) and `REF_F` (3) known to the workbook. Nothing is recalculated.
    void addSelfFunction();

    /// Sharing off: each call makes its own fetch, as it would alone. On at first.
    void setFetchesShared(bool shared) { m_fetchesShared = shared; }

    /// Computes every formula with fresh fetches.
    void recalculate();
    /// Computes what depends on changes since the last recalculation.
    void recalculateChanged();

    /// Keeps each cell's type in its tag; every formula cell becomes plain text and shows its formula.
    void showFormulas();
    /// Restores the types from the tags and recalculates.
    void showData();
    /// What opening a stored report for use does: types from the tags, then one recalculation.
    void startRun();

    /// 1 while the formulas are shown: the callback hands back nothing.
    std::int16_t isShowFormula = 0;

    /// Why cells of the last recalculation have no value or a doubtful one, in the order of sheets, columns
    /// and rows. After an incremental one the cells that it did not touch keep theirs.
    const std::vector<CellDiagnostic>& diagnostics() const { return m_diagnostics; }

private:
    void fps1_CustomFunction(spreadsheet::FunctionCall& call);
    void recalculateWith(const std::function<void()>& recalculation);
    void restoreTypes();
    bool isGone(spreadsheet::CallPlace place) const;

    spreadsheet::Workbook& m_workbook;
    SharedFetches* m_shared = nullptr; ///< of the recalculation under way
    FetchLog m_log;
    std::vector<CellDiagnostic> m_diagnostics;
    bool m_fetchesShared = true;
};

} // namespace selfreport
