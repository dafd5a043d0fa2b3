#pragma once
#include "fetch/ReportEvaluation.h"

#include <QObject>

namespace spreadsheet {
class SpreadsheetControl;
}

namespace selfreport {

class DiagnosticsPanel;
class EditorStatus;
class FailedFetchBar;
struct ReportContext;

/// The formulas of the designer's report: recalculations that the user may cancel, formulas or data on show,
/// and what the fetches found.
class EditorFormulas : public QObject {
    Q_OBJECT

public:
    /// Recalculates the grid's cells from now on, and marks those whose fetches failed.
    EditorFormulas(ReportContext& context, spreadsheet::SpreadsheetControl& grid, EditorStatus& status,
                   DiagnosticsPanel& diagnostics, FailedFetchBar& failedFetches);

    ReportEvaluation& evaluation() { return m_evaluation; }
    void addSelfFunction() { m_evaluation.addSelfFunction(); }

    void MenuRecalculate_Click();
    void MenuShowDate_Click();
    void MenuShowFormula_Click();
    void showDiagnostics();
    void goToFailedFetch();

    /// The sentence about cells whose fetch failed; "": there are none.
    std::string failedFetches() const { return failedFetchesText(m_evaluation.diagnostics()); }
    /// List and bar show what the last recalculation of the grid's content fetched.
    void tellFetches();
    /// No recalculation follows the edits to come: the window goes.
    void stop();

    QString modeText() const; ///< for the status bar
    /// Tells in the status bar what is to be said of the active cell.
    void tellCell() const;

Q_SIGNALS:
    void shown(); ///< what cells hold may be another than before, without an edit

private:
    /// How much of the report a cancelled recalculation has left as it was.
    enum class Extent { none, changes, everything };
    void compute(Extent extent, const std::function<bool()>& recalculation);
    void computeAll(const std::function<bool()>& recalculation);
    void show();
    void goTo(const CellDiagnostic& diagnostic);

    ReportContext& m_context;
    spreadsheet::SpreadsheetControl& m_grid;
    EditorStatus& m_status;
    DiagnosticsPanel& m_diagnostics;
    FailedFetchBar& m_failedFetches;
    ReportEvaluation m_evaluation;
    Extent m_cancelled = Extent::none; ///< what the user did not wait for, and was not computed since
};

} // namespace selfreport
