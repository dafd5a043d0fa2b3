// The designer's commands that move the sheet between grid and files.
#include "failures/failure_text.h"
#include "platform/windows/own_file.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "state/shared_state.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/EditorStatus.h"
#include "windows/designer/frmEditor.h"

#include <QLineEdit>

#include <algorithm>
#include <string_view>

namespace selfreport {

namespace {

using spreadsheet::FileFormat;

constexpr int exportFlags = FileDialogSettings::overwritePrompt | FileDialogSettings::noReadOnlyFile;

/// Other programs refuse one kind of Excel file under the ending of the other.
FileFormat formatFor(const std::string& file, FileFormat asked)
{
    const auto isExcel = [](FileFormat format) {
        return format == FileFormat::xls || format == FileFormat::xlsx;
    };
    const auto named = spreadsheet::fileFormatOfName(file);
    return named && isExcel(*named) && isExcel(asked) ? *named : asked;
}

} // namespace

void frmEditor::MenuImpoertSpreadFile_Click()
{
    m_cd1.fileName = "*.ss7";
    m_cd1.title = "选择报表文件";
    m_cd1.filter = "ss7 files|(*.ss7)";
    importIntoReport();
}

void frmEditor::MenuImportExcelFile_Click()
{
    m_cd1.fileName = "*.xls";
    m_cd1.title = "选择Excel文件";
    m_cd1.filter = "Excel files|(*.xls)";
    importIntoReport();
}

void frmEditor::MenuEmportSpreadFile_Click()
{
    m_cd1.filter = "报表文件(*.ss7)|*.ss7";
    if (exportFile(m_cd1, FileFormat::ss7))
        hookUpAgain();
}

void frmEditor::MenuExportExcel_Click()
{
    m_cd1.filter = "Excel文件(*.xls)|*.xls";
    exportFile(m_cd1, FileFormat::xls);
}

void frmEditor::importXlsx()
{
    importFile({"*.xlsx", "选择Excel工作簿或文本文件",
                "Excel工作簿(*.xlsx)|*.xlsx|文本文件(*.csv;*.txt)|*.csv;*.txt|所有文件(*)|*", "",
                FileDialogSettings::hideReadOnly});
}

void frmEditor::exportXlsx()
{
    exportUnderReportName(FileFormat::xlsx, "引出为Excel工作簿", "Excel工作簿(*.xlsx)|*.xlsx", ".xlsx");
}

void frmEditor::exportCsv()
{
    exportUnderReportName(FileFormat::csv, "引出为文本文件", "文本文件(*.csv)|*.csv", ".csv");
}

void frmEditor::exportHtml()
{
    exportUnderReportName(FileFormat::html, "引出为网页", "网页(*.html)|*.html", ".html");
}

/// With a dialog that stands apart from `m_cd1`, whose title and name belong to the commands that share it.
void frmEditor::exportUnderReportName(FileFormat format, const char* title, const char* filter,
                                      const char* ending)
{
    std::string name = m_txtReportName->text().trimmed().toStdString();
    std::ranges::replace_if(
        name, [](char c) { return std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos; }, '_');
    FileDialogSettings settings{name.empty() ? name : name + ending, title, filter, "", 0};
    exportFile(settings, format);
}

void frmEditor::importIntoReport()
{
    m_cd1.folder = componentFolder().toStdString();
    m_cd1.flags = FileDialogSettings::hideReadOnly;
    importFile(m_cd1);
}

void frmEditor::importFile(const FileDialogSettings& settings)
{
    const auto file = FileDialogInUse::current().chooseToOpen(settings);
    if (!file || !m_fps1->entry().commit())
        return;
    transfer(*file, [&] {
        auto warnings = spreadsheet::loadWorkbook(m_fps1->cells().workbook(), *file);
        m_fps1->cells().setWorkbook(&m_fps1->cells().workbook());
        forgetFetches();
        hookUpAgain();
        return warnings;
    });
}

/// The chosen name stays in the settings, even if the export fails.
bool frmEditor::exportFile(FileDialogSettings& settings, FileFormat format)
{
    settings.flags = exportFlags;
    const auto file = FileDialogInUse::current().chooseToSave(settings);
    if (!file || !m_fps1->entry().commit())
        return false;
    settings.fileName = *file;
    return transfer(*file, [&] {
        auto warnings =
            spreadsheet::saveWorkbook(m_fps1->cells().workbook(), *file, formatFor(*file, format));
        if (std::string failed = failedFetchesText(m_evaluation.diagnostics()); !failed.empty())
            warnings.push_back(std::move(failed));
        return warnings;
    });
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
        const std::string reason = failures::sentenceOf(error);
        m_diagnostics->showNotices(QStringLiteral("操作没有完成"), {reason});
        m_status->showMessage(QString::fromStdString(reason));
        return false;
    }
}

/// What import and export of workbooks end with: the current cell is unlocked and the report functions are
/// known to the grid, whatever it holds now.
void frmEditor::hookUpAgain()
{
    {
        const spreadsheet::DisplayOnly noEdit(m_fps1->cells().workbook()); // exporting changes no design
        m_fps1->cells().changeStyle([](spreadsheet::CellStyle& style) { style.locked = false; });
    }
    addSelfFunction();
    m_fps1->showChanges();
    enterCell();
}

} // namespace selfreport
