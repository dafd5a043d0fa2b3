#include "windows/designer/EditorFormulas.h"

#include "platform/windows/CancellableWait.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/EditorStatus.h"
#include "windows/designer/FailedFetchBar.h"

#include <algorithm>

namespace selfreport {

namespace {

/// What is only told, as too many parameters, has the mark of a doubtful figure.
spreadsheet::CornerMark markOn(const RunRecord& record, const spreadsheet::SheetCell& cell)
{
    using spreadsheet::CornerMark;
    switch (record.markedState(cell)) {
    case CallState::failed:
        return CornerMark::square;
    case CallState::missing:
        return CornerMark::triangle;
    case CallState::notApplicable:
        return CornerMark::bar;
    case CallState::noData:
        return CornerMark::hollowTriangle;
    default:
        return record.remarkOn(cell).empty() ? CornerMark::none : CornerMark::triangle;
    }
}

} // namespace

EditorFormulas::EditorFormulas(ReportContext& context, spreadsheet::SpreadsheetControl& grid,
                               EditorStatus& status, DiagnosticsPanel& diagnostics,
                               FailedFetchBar& failedFetches)
    : m_context(context)
    , m_grid(grid)
    , m_status(status)
    , m_diagnostics(diagnostics)
    , m_failedFetches(failedFetches)
    , m_evaluation(grid.cells().workbook(), context.database)
{
    // The grid shows what has changed, and tells that the cell is another.
    grid.cells().recalculateChanged = [this] {
        compute(Extent::changes, [this] { return m_evaluation.recalculateChanged(); });
    };
    grid.setCellNotes(
        [this](int sheetId, spreadsheet::CellAddress cell) {
            return QString::fromStdString(m_evaluation.record().noteOn({sheetId, cell}));
        },
        [this](int sheetId, spreadsheet::CellAddress cell) {
            return markOn(m_evaluation.record(), {sheetId, cell});
        });
    connect(&grid, &spreadsheet::SpreadsheetControl::sheetsChanged, this, [this] {
        if (m_diagnostics.showsDiagnostics()) // their cells lie on sheets of other names or places
            tellFetches();
    });
    connect(&failedFetches, &FailedFetchBar::clicked, this, &EditorFormulas::goToFailedFetch);
    connect(&diagnostics, &DiagnosticsPanel::chosen, this, &EditorFormulas::goTo);
    connect(&status, &EditorStatus::diagnosticsWanted, this, &EditorFormulas::showDiagnostics);
}

void EditorFormulas::stop()
{
    m_grid.cells().recalculateChanged = [] {};
}

/// Recalculates while the user may cancel. What was cancelled stays told until it is computed.
void EditorFormulas::compute(Extent extent, const std::function<bool()>& recalculation)
{
    bool isComplete = false;
    {
        const CancellableWait waiting(QStringLiteral("正在重算"), m_grid.window());
        isComplete = recalculation();
    }
    if (!isComplete)
        m_cancelled = std::max(m_cancelled, extent);
    else if (extent >= m_cancelled)
        m_cancelled = Extent::none;
    tellFetches();
}

void EditorFormulas::computeAll(const std::function<bool()>& recalculation)
{
    compute(Extent::everything, recalculation);
    show();
}

void EditorFormulas::show()
{
    m_grid.showChanges();
    Q_EMIT shown();
}

void EditorFormulas::MenuRecalculate_Click()
{
    computeAll([this] { return m_evaluation.recalculate(); });
}

void EditorFormulas::MenuShowDate_Click()
{
    computeAll([this] { return m_evaluation.showData(); });
}

void EditorFormulas::MenuShowFormula_Click()
{
    m_evaluation.showFormulas();
    show();
}

void EditorFormulas::tellFetches()
{
    m_diagnostics.setDiagnostics(m_evaluation.diagnostics(), m_grid.cells().workbook());
    m_status.showDiagnostics(static_cast<int>(m_evaluation.diagnostics().size()));
    m_failedFetches.tell(failedFetches());
}

void EditorFormulas::showDiagnostics()
{
    tellFetches();
    m_diagnostics.open();
}

void EditorFormulas::goTo(const CellDiagnostic& diagnostic)
{
    if (!m_grid.entry().commit() || diagnostic.place.sheet > m_grid.cells().sheetCount())
        return;
    m_grid.cells().setActiveSheet(diagnostic.place.sheet);
    m_grid.cursor().setActiveCell(diagnostic.place.column, diagnostic.place.row);
    m_grid.setFocus();
}

void EditorFormulas::goToFailedFetch()
{
    if (const auto failed = firstFailed(m_evaluation.diagnostics()))
        goTo(*failed);
}

QString EditorFormulas::modeText() const
{
    const QString mode = m_context.report.isRun              ? QStringLiteral("使用")
                         : m_evaluation.isShowFormula() == 1 ? QStringLiteral("显示公式")
                                                             : QStringLiteral("设计");
    return m_cancelled == Extent::none ? mode : mode + QStringLiteral(" 数值未更新");
}

void EditorFormulas::tellCell() const
{
    const spreadsheet::CellAddress cell = m_grid.cursor().activeCell();
    const int sheetId = m_grid.cells().workbook().sheet(m_grid.cells().activeSheet()).id();
    const QString reason = QString::fromStdString(m_evaluation.record().noteOn({sheetId, cell}));
    if (!reason.isEmpty())
        m_status.showMessage(reason);
    else if (m_cancelled != Extent::none)
        m_status.showMessage(QStringLiteral("重算已取消,各单元格保留原来的数值"));
    else
        m_status.clearMessage();
}

} // namespace selfreport
