#include "windows/designer/EditorGrid.h"

#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "spreadsheet/workbook/typed_text.h"
#include "windows/designer/EditorFiles.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/EditorStatus.h"
#include "windows/printing/stored_page_setup.h"

#include <QLineEdit>

namespace selfreport {

spreadsheet::Workbook& frmEditor::EditorGrid::workbook()
{
    return m_window.m_fps1->cells().workbook();
}

spreadsheet::CellRange frmEditor::EditorGrid::selectedBlock() const
{
    return m_window.m_fps1->cursor().firstRange();
}

std::vector<spreadsheet::CellRange> frmEditor::EditorGrid::selectedRanges() const
{
    return m_window.m_fps1->cursor().selection();
}

std::string frmEditor::EditorGrid::reportName() const
{
    return m_window.m_txtReportName->text().toStdString();
}

int frmEditor::EditorGrid::diagnosticsCount() const
{
    return static_cast<int>(m_window.m_formulas->evaluation().diagnostics().size());
}

std::string frmEditor::EditorGrid::failedFetches() const
{
    return m_window.m_formulas->failedFetches();
}

void frmEditor::EditorGrid::goToFailedFetch()
{
    m_window.m_formulas->goToFailedFetch();
}

std::vector<CellWithoutData> frmEditor::EditorGrid::cellsWithoutData() const
{
    std::vector<CellWithoutData> cells;
    for (const CellDiagnostic& found : m_window.m_formulas->evaluation().diagnostics())
        if (const auto& [sheet, column, row] = found.place; isRefusedByStrictRuns(found.state))
            cells.push_back({sheet, {column, row}, found.reason});
    return cells;
}

void frmEditor::EditorGrid::goTo(const CellWithoutData& cell)
{
    m_window.m_fps1->cells().setActiveSheet(cell.sheet);
    m_window.m_fps1->cursor().setActiveCell(cell.cell.column, cell.cell.row);
    m_window.m_fps1->setFocus();
}

void frmEditor::EditorGrid::tellStatus(std::string_view text)
{
    m_window.m_status->showMessage(QString::fromUtf8(text));
}

void frmEditor::EditorGrid::closeDesigner()
{
    m_window.close();
}

spreadsheet::Refusal frmEditor::EditorGrid::pageSetupRefusal() const
{
    if (!m_window.m_files->report().isUnread())
        return {};
    return "打开时没有读出这张报表，保存以前不能改变页面设置和页眉页脚。";
}

/// Of the first sheet, as of all of them.
static const spreadsheet::PrintSettings& shownPrint(spreadsheet::Workbook& workbook)
{
    return workbook.sheet(1).settings().print;
}

bool frmEditor::EditorGrid::showsStoredMargins() const
{
    const PageSetupHistory& known = m_window.m_files->report().pageSetups();
    return known.areMarginsOfRow(shownPrint(m_window.m_fps1->cells().workbook()));
}

void frmEditor::EditorGrid::pageSetupStored(const std::array<double, 4>& inches, bool isPortrait)
{
    EditedReport& report = m_window.m_files->report();
    StoredPageSetup setup = report.pageSetup();
    const auto& [left, right, top, bottom] = inches;
    setup = {setup.header, setup.footer, top, bottom, left, right, isPortrait ? 1 : 0};
    report.pageSetupStored(setup, shownPrint(workbook()));
}

void frmEditor::EditorGrid::headerStored(bool isFooter, const std::string& codes)
{
    EditedReport& report = m_window.m_files->report();
    StoredPageSetup setup = report.pageSetup();
    (isFooter ? setup.footer : setup.header) = codes;
    report.pageSetupStored(setup, shownPrint(workbook()));
}

void frmEditor::EditorGrid::pageSetupTravelled(bool alone)
{
    EditedReport& report = m_window.m_files->report();
    OpenReport& open = PrintedGrid::context.report;
    const spreadsheet::PrintSettings& shown = shownPrint(workbook());
    if (open.editFlag == 0 || report.isUnread() || report.pageSetups().isOfRow(shown))
        return;
    std::optional<StoredPageSetup> setup = report.pageSetups().former(shown);
    if (!setup && alone) // what a file brought, and the dialog replaced
        setup = report.pageSetups().withShown(report.pageSetup(), shown);
    if (!setup || !storePageSetup(*this, *setup))
        return;
    open.header = setup->header;
    open.footer = setup->footer;
    report.pageSetupStored(*setup, shown);
}

std::function<bool(Connection&)> frmEditor::EditorGrid::ownershipOfRow() const
{
    return m_window.m_files->report().ownershipOfRow();
}

spreadsheet::Refusal frmEditor::EditorGrid::writeFormula(const QString& formula)
{
    spreadsheet::SpreadsheetControl& grid = *m_window.m_fps1;
    const spreadsheet::CellAddress cell = m_window.keptCell();
    if (auto refused = grid.editRefusal({cell.column, cell.row, cell.column, cell.row}))
        return refused;
    grid.cells().setCurrent(cell.column, cell.row);
    spreadsheet::Workbook& book = workbook();
    spreadsheet::Sheet& sheet = book.sheet(grid.cells().activeSheet());
    if (auto refused = spreadsheet::enterFormula(book, sheet, cell, formula.toStdString()))
        return refused;
    grid.afterEdit(cell);
    return {};
}

} // namespace selfreport
