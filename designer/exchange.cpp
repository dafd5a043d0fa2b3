// The designer's commands that move the sheet between grid and files.
#include "component/own_file.h"
#include "component/state/shared_state.h"
#include "designer/DiagnosticsPanel.h"
#include "designer/EditorStatus.h"
#include "designer/frmEditor.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"

namespace selfreport {

void frmEditor::MenuImpoertSpreadFile_Click()
{
    m_cd1.fileName = "*.ss7";
    m_cd1.title = "选择报表文件";
    m_cd1.filter = "ss7 files|(*.ss7)";
    importFile();
}

void frmEditor::MenuImportExcelFile_Click()
{
    m_cd1.fileName = "*.xls";
    m_cd1.title = "选择Excel文件";
    m_cd1.filter = "Excel files|(*.xls)";
    importFile();
}

void frmEditor::MenuEmportSpreadFile_Click()
{
    m_cd1.filter = "报表文件(*.ss7)|*.ss7";
    if (exportFile(spreadsheet::FileFormat::ss7))
        hookUpAgain();
}

void frmEditor::MenuExportExcel_Click()
{
    m_cd1.filter = "Excel文件(*.xls)|*.xls";
    exportFile(spreadsheet::FileFormat::xls);
}

void frmEditor::importFile()
{
    m_cd1.folder = componentFolder().toStdString();
    m_cd1.flags = FileDialogSettings::hideReadOnly;
    const auto file = FileDialogInUse::current().chooseToOpen(m_cd1);
    if (!file || !m_fps1->commitEdit())
        return;
    transfer(*file, [&] {
        auto warnings = spreadsheet::loadWorkbook(m_fps1->workbook(), *file);
        m_fps1->setWorkbook(&m_fps1->workbook());
        hookUpAgain();
        return warnings;
    });
}

bool frmEditor::exportFile(spreadsheet::FileFormat format)
{
    m_cd1.flags = FileDialogSettings::overwritePrompt | FileDialogSettings::noReadOnlyFile;
    const auto file = FileDialogInUse::current().chooseToSave(m_cd1);
    if (!file || !m_fps1->commitEdit())
        return false;
    m_cd1.fileName = *file;
    return transfer(*file, [&] { return spreadsheet::saveWorkbook(m_fps1->workbook(), *file, format); });
}

/// Runs an import or export. What it could not carry over, or why it failed, goes to the status bar and the
/// list below the grid.
bool frmEditor::transfer(const std::string& file, const std::function<std::vector<std::string>()>& work)
{
    try {
        const std::vector<std::string> warnings = work();
        m_diagnostics->showNotices(QStringLiteral("未能完全转换的内容"), warnings);
        m_status->showMessage(QStringLiteral("完成: %1").arg(QString::fromStdString(file)));
        return true;
    } catch (const std::exception& error) {
        m_diagnostics->showNotices(QStringLiteral("操作没有完成"), {error.what()});
        m_status->showMessage(QString::fromUtf8(error.what()));
        return false;
    }
}

/// What import and export of workbooks end with: the current cell is unlocked and the report functions are
/// known to the grid, whatever it holds now.
void frmEditor::hookUpAgain()
{
    m_fps1->changeStyle([](spreadsheet::CellStyle& style) { style.locked = false; });
    addSelfFunction();
    m_fps1->refresh();
    enterCell();
}

} // namespace selfreport
