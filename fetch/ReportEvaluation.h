#pragma once
#include "fetch/diagnostics.h"
#include "fetch/RunRecord.h"
#include "spreadsheet/workbook/Workbook.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace selfreport {

class Connection;
class DatabaseAccess;
class SharedFetches;

/// Cells that were stored while their formulas were shown are as data again: types from the tags.
void showStoredValues(spreadsheet::Workbook& workbook);

/// Evaluates the report functions of a report's workbook and switches between formulas and data. The workbook
/// must outlive it. "Every cell" is every cell of every sheet.
class ReportEvaluation {
public:
    /// @param database  that the calls fetch from and that tells their failures; must outlive it
    ReportEvaluation(spreadsheet::Workbook& workbook, DatabaseAccess& database);
    ~ReportEvaluation();
    ReportEvaluation(const ReportEvaluation&) = delete;
    ReportEvaluation& operator=(const ReportEvaluation&) = delete;

    /// Makes `Acct` (6 parameters) and `REF_F` (3) known to the workbook. Nothing is recalculated.
    void addSelfFunction();

    /// Sharing off: each call makes its own fetch, as it would alone. On at first.
    void setFetchesShared(bool shared) { m_fetchesShared = shared; }

    /// Kinds of nothing are told apart, totals of other reports included, which costs the ledger questions.
    /// Off: a call without a row counts as one without data, unless it names what there is not. On at first.
    void setKindsTold(bool told) { m_kindsTold = told; }

    // Recalculations. Each returns false if the waiting user cancelled it: every cell has the value that it
    // had before, and the record is that of before.

    /// Computes every formula with fresh fetches.
    bool recalculate();
    /// Computes what depends on changes since the last recalculation.
    bool recalculateChanged();

    /// Keeps each cell's type in its tag; every formula cell becomes plain text and shows its formula. So
    /// does every cell that gets a formula from now on, whatever puts it there.
    void showFormulas();
    /// Restores the types from the tags and recalculates.
    bool showData();
    /// What opening a stored report for use begins with: types from the tags, values as they were stored.
    void showStoredData();
    /// … and then does: one recalculation.
    bool startRun();

    /// 1 while the formulas are shown: the callback hands back nothing. Undo brings the former state back.
    std::int16_t isShowFormula() const;

    /// What the last recalculation fetched. After an incremental one the cells that it did not touch keep
    /// their entries; a workbook with another content has none.
    const RunRecord& record() const { return m_record; }
    std::vector<CellDiagnostic> diagnostics() const { return m_record.diagnostics(); }

    /// What cells show in place of figures that are nothing, as their sheets have it.
    std::map<spreadsheet::SheetCell, std::string> textsInstead() const;

private:
    std::optional<std::string> textInstead(const spreadsheet::Sheet& sheet,
                                           const spreadsheet::CellAddress& cell) const;
    void fps1_CustomFunction(spreadsheet::FunctionCall& call);
    bool computed(const std::function<spreadsheet::RecalculationReport()>& recalculation);
    void explainRecord();
    void keepDisplay();

    spreadsheet::Workbook& m_workbook;
    DatabaseAccess& m_database;
    SharedFetches* m_shared = nullptr;        ///< of the recalculation under way
    std::unique_ptr<Connection> m_connection; ///< that its waves left open, for the explanations
    RunRecord m_record;
    bool m_fetchesShared = true;
    bool m_kindsTold = true;
};

} // namespace selfreport
