// The commands that move the sheet between grid and files.
#include "failures/failure_text.h"
#include "platform/windows/own_file.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "state/shared_state.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/EditorFiles.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/EditorStatus.h"

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

void EditorFiles::MenuImpoertSpreadFile_Click()
{
    m_cd1.fileName = "*.ss7";
    m_cd1.title = "选择报表文件";
    m_cd1.filter = "ss7 files|(*.ss7)";
    importIntoReport();
}

void EditorFiles::MenuImportExcelFile_Click()
{
    m_cd1.fileName = "*.xls";
    m_cd1.title = "选择Excel文件";
    m_cd1.filter = "Excel files|(*.xls)";
    importIntoReport();
}

void EditorFiles::MenuEmportSpreadFile_Click()
{
    m_cd1.filter = "报表文件(*.ss7)|*.ss7";
    if (exportFile(m_cd1, FileFormat::ss7))
        hookUpAgain();
}

void EditorFiles::MenuExportExcel_Click()
{
    m_cd1.filter = "Excel文件(*.xls)|*.xls";
    exportFile(m_cd1, FileFormat::xls);
}

void EditorFiles::importXlsx()
{
    importFile({"*.xlsx", "选择Excel工作簿或文本文件",
                "Excel工作簿(*.xlsx)|*.xlsx|文本文件(*.csv;*.txt)|*.csv;*.txt|所有文件(*)|*", "",
                FileDialogSettings::hideReadOnly});
}

void EditorFiles::exportXlsx()
{
    exportUnderReportName(FileFormat::xlsx, "引出为Excel工作簿", "Excel工作簿(*.xlsx)|*.xlsx", ".xlsx");
}

void EditorFiles::exportCsv()
{
    exportUnderReportName(FileFormat::csv, "引出为文本文件", "文本文件(*.csv)|*.csv", ".csv");
}

void EditorFiles::exportHtml()
{
    exportUnderReportName(FileFormat::html, "引出为网页", "网页(*.html)|*.html", ".html");
}

/// With a dialog that stands apart from `m_cd1`, whose title and name belong to the commands that share it.
void EditorFiles::exportUnderReportName(FileFormat format, const char* title, const char* filter,
                                        const char* ending)
{
    std::string name = m_name.text().trimmed().toStdString();
    std::ranges::replace_if(
        name, [](char c) { return std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos; }, '_');
    FileDialogSettings settings{name.empty() ? name : name + ending, title, filter, "", 0};
    exportFile(settings, format);
}

void EditorFiles::importIntoReport()
{
    m_cd1.folder = componentFolder().toStdString();
    m_cd1.flags = FileDialogSettings::hideReadOnly;
    importFile(m_cd1);
}

void EditorFiles::importFile(const FileDialogSettings& settings)
{
    const auto file = FileDialogInUse::current().chooseToOpen(settings);
    if (!file || !m_grid.entry().commit())
        return;
    transfer(*file, [&] {
        auto warnings = spreadsheet::loadWorkbook(m_grid.cells().workbook(), *file);
        m_grid.cells().setWorkbook(&m_grid.cells().workbook());
        m_formulas.forgetFetches();
        hookUpAgain();
        return warnings;
    });
}

/// The chosen name stays in the settings, even if the export fails.
bool EditorFiles::exportFile(FileDialogSettings& settings, FileFormat format)
{
    settings.flags = exportFlags;
    const auto file = FileDialogInUse::current().chooseToSave(settings);
    if (!file || !m_grid.entry().commit())
        return false;
    settings.fileName = *file;
    return transfer(*file, [&] {
        auto warnings = spreadsheet::saveWorkbook(m_grid.cells().workbook(), *file, formatFor(*file, format));
        if (std::string failed = m_formulas.failedFetches(); !failed.empty())
            warnings.push_back(std::move(failed));
        return warnings;
    });
}

/// Runs an import or export. What it could not carry over, or why it failed, goes to the status bar and the
/// list below the grid.
bool EditorFiles::transfer(const std::string& file, const std::function<std::vector<std::string>()>& work)
{
    try {
        const std::vector<std::string> warnings = work();
        m_diagnostics.showNotices(QStringLiteral("未能完全转换的内容"), warnings);
        m_status.showMessage(QStringLiteral("完成: %1").arg(QString::fromStdString(file)));
        return true;
    } catch (const std::exception& error) {
        const std::string reason = failures::sentenceOf(error);
        m_diagnostics.showNotices(QStringLiteral("操作没有完成"), {reason});
        m_status.showMessage(QString::fromStdString(reason));
        return false;
    }
}

/// What import and export of workbooks end with: the current cell is unlocked and the report functions are
/// known to the grid, whatever it holds now.
void EditorFiles::hookUpAgain()
{
    {
        const spreadsheet::DisplayOnly noEdit(m_grid.cells().workbook()); // exporting changes no design
        m_grid.cells().changeStyle([](spreadsheet::CellStyle& style) { style.locked = false; });
    }
    m_formulas.addSelfFunction();
    m_grid.showChanges();
    Q_EMIT shown();
}

} // namespace selfreport
