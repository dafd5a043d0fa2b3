#include "designer/EditorGrid.h"

#include "component/state/shared_state.h"
#include "designer/EditorStatus.h"
#include "designer/FormulaBox.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QLineEdit>

namespace selfreport {

spreadsheet::Workbook& frmEditor::EditorGrid::workbook()
{
    return m_window.m_fps1->workbook();
}

spreadsheet::CellRange frmEditor::EditorGrid::selectedBlock() const
{
    return m_window.m_fps1->firstRange();
}

std::string frmEditor::EditorGrid::reportName() const
{
    return m_window.m_txtReportName->text().toStdString();
}

int frmEditor::EditorGrid::diagnosticsCount() const
{
    return static_cast<int>(m_window.m_evaluation.diagnostics().size());
}

void frmEditor::EditorGrid::tellStatus(std::string_view text)
{
    m_window.m_status->showMessage(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

void frmEditor::EditorGrid::closeDesigner()
{
    m_window.close();
}

QString frmEditor::EditorGrid::writeFormula(const QString& formula)
{
    spreadsheet::SpreadsheetControl& grid = *m_window.m_fps1;
    if (!grid.mayEdit({gCellCol, gCellRow, gCellCol, gCellRow}))
        return QStringLiteral("单元格已锁定或报表处于使用状态,不能写入公式");
    grid.setCurrent(gCellCol, gCellRow);
    if (const auto problem = grid.setFormula(formula))
        return QString::fromStdString(problem->reason);
    grid.afterEdit(spreadsheet::CellAddress{gCellCol, gCellRow});
    m_window.m_formulaBox->fill();
    return {};
}

} // namespace selfreport
