// The commands that move the sheet between grid and files.
#include "failures/failure_text.h"
#include "platform/windows/own_file.h"
#include "spreadsheet/files/FileFormats.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "text/ascii.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/EditorFiles.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/EditorStatus.h"

#include <QLineEdit>

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace selfreport {

// A table of formats says which files can be read and written; the suite's own entries keep their names,
// titles and one shared dialog setting, as users find the last name and folder there. The entries of further
// formats are made from the table alone, so that a new format needs no line here.

namespace {

using spreadsheet::FileFormat;

constexpr int exportFlags = FileDialogSettings::overwritePrompt | FileDialogSettings::noReadOnlyFile;

/// Those whose programs mind the ending get the one that they expect.
const FileFormat& formatFor(const std::string& file, const FileFormat& asked)
{
    const FileFormat* const named = spreadsheet::fileFormatOfName(file);
    return named && named->isStrict && asked.isStrict ? *named : asked;
}

/// A name to propose: no file of another format is to be replaced by what goes out.
std::string withFittingEnding(const std::string& file, const FileFormat& format)
{
    const FileFormat* const named = spreadsheet::fileFormatOfName(file);
    if (!named || named == &formatFor(file, format))
        return file;
    return std::filesystem::path(file).replace_extension(format.ending()).string();
}

std::string withEnding(const FileFormat& format)
{
    return std::string(format.caption) + '(' + std::string(format.ending()) + ')';
}

/// "文本文件(*.csv;*.txt)|*.csv;*.txt"
std::string dialogFilter(const FileFormat& format, std::size_t endings)
{
    std::string patterns;
    for (const std::string_view ending : format.endings.first(endings))
        patterns.append(patterns.empty() ? "*" : ";*").append(ending);
    return std::string(format.caption) + '(' + patterns + ")|" + patterns;
}

/// The formats that the suite's own menu entries do not name.
std::vector<const FileFormat*> otherFormats(bool onlyRead)
{
    std::vector<const FileFormat*> formats;
    for (const FileFormat& format : spreadsheet::fileFormats()) {
        const bool hasOwnEntry = format.ending() == ".ss7" || format.ending() == ".xls";
        if (!hasOwnEntry && (format.read || !onlyRead))
            formats.push_back(&format);
    }
    return formats;
}

/// "甲、乙或丙"
std::string alternatives(const std::vector<std::string>& names)
{
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 == names.size() ? "或" : "、") + names[i];
    return text;
}

} // namespace

std::vector<FileCommand> EditorFiles::formatCommands()
{
    std::vector<std::string> read;
    for (const FileFormat* format : otherFormats(true))
        read.push_back(format->isStrict ? withEnding(*format) : std::string(format->caption));
    std::vector<FileCommand> commands{
        {"MenuImportXlsx", "引入" + alternatives(read), [this] { importOtherFormats(); }}};
    for (const FileFormat* format : otherFormats(false)) {
        std::string ending(format->ending().substr(1));
        ending[0] = ascii::upper(ending[0]);
        commands.push_back({"MenuExport" + ending, "引出为" + withEnding(*format),
                            [this, format] { exportUnderReportName(*format); }});
    }
    return commands;
}

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
    exportWithCd1(spreadsheet::fileFormat(".ss7"), [this] {
        unlockCurrentCell();
        hookUpAgain();
    });
}

void EditorFiles::MenuExportExcel_Click()
{
    exportWithCd1(spreadsheet::fileFormat(".xls"), [] {});
}

void EditorFiles::exportWithCd1(const FileFormat& format, const std::function<void()>& afterwards)
{
    m_cd1.filter = dialogFilter(format, 1);
    if (!m_chosenFile.empty())
        m_cd1.fileName = withFittingEnding(m_chosenFile, format);
    if (exportFile(m_cd1, format, afterwards))
        m_chosenFile = m_cd1.fileName;
}

void EditorFiles::importOtherFormats()
{
    std::vector<std::string> captions;
    std::string filter;
    for (const FileFormat* format : otherFormats(true)) {
        captions.emplace_back(format->caption);
        filter += dialogFilter(*format, format->endings.size()) + '|';
    }
    FileDialogSettings settings{"*.xlsx", "选择" + alternatives(captions), filter + "所有文件(*)|*", "",
                                FileDialogSettings::hideReadOnly};
    importFile(settings);
}

/// With a dialog that stands apart from `m_cd1`, whose title and name belong to the commands that share it.
void EditorFiles::exportUnderReportName(const FileFormat& format)
{
    std::string name = m_name.text().trimmed().toStdString();
    std::ranges::replace_if(
        name, [](char c) { return std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos; }, '_');
    if (!name.empty())
        name += format.ending();
    FileDialogSettings settings{name, "引出为" + std::string(format.caption), dialogFilter(format, 1), "", 0};
    exportFile(settings, format, [] {});
}

void EditorFiles::importIntoReport()
{
    m_cd1.folder = componentFolder().toStdString();
    m_cd1.flags = FileDialogSettings::hideReadOnly;
    if (importFile(m_cd1))
        m_chosenFile = m_cd1.fileName;
}

/// The chosen name stays in the settings, even if nothing comes of it. False without one.
bool EditorFiles::importFile(FileDialogSettings& settings)
{
    if (m_context.report.isRun) {
        m_context.database.tell(Icon::exclamation, "报表在运行状态，不能引入文件。");
        return false;
    }
    const auto file = FileDialogInUse::current().chooseToOpen(settings);
    if (!file || !m_grid.entry().commit())
        return false;
    settings.fileName = *file;
    transfer(*file, [&] {
        spreadsheet::Workbook& workbook = m_grid.cells().workbook();
        std::vector<std::string> warnings;
        {
            const spreadsheet::UndoStep step(workbook, "引入");
            warnings = spreadsheet::loadWorkbook(workbook, *file);
            m_grid.cells().setWorkbook(&workbook);
            unlockCurrentCell();
        }
        m_formulas.tellFetches();
        hookUpAgain();
        return warnings;
    });
    return true;
}

/// Likewise.
bool EditorFiles::exportFile(FileDialogSettings& settings, const FileFormat& format,
                             const std::function<void()>& afterwards)
{
    settings.flags = exportFlags;
    const auto file = FileDialogInUse::current().chooseToSave(settings);
    if (!file || !m_grid.entry().commit())
        return false;
    settings.fileName = *file;
    transfer(*file, [&] {
        auto warnings = spreadsheet::saveWorkbook(m_grid.cells().workbook(), *file, formatFor(*file, format));
        if (std::string failed = m_formulas.failedFetches(); !failed.empty())
            warnings.push_back(std::move(failed));
        afterwards();
        return warnings;
    });
    return true;
}

/// Runs an import or export. What it could not carry over, or why it failed, goes to the status bar and the
/// list below the grid.
void EditorFiles::transfer(const std::string& file, const std::function<std::vector<std::string>()>& work)
{
    try {
        const std::vector<std::string> warnings = work();
        m_diagnostics.showNotices(QStringLiteral("未能完全转换的内容"), warnings);
        m_status.showMessage(QStringLiteral("完成: %1").arg(QString::fromStdString(file)));
    } catch (const std::exception& error) {
        const std::string reason = failures::sentenceOf(error);
        m_diagnostics.showNotices(QStringLiteral("操作没有完成"), {reason});
        m_status.showMessage(QString::fromStdString(reason));
    }
}

/// As import and export of workbooks do.
void EditorFiles::unlockCurrentCell()
{
    const spreadsheet::DisplayOnly noEdit(m_grid.cells().workbook()); // exporting changes no design
    m_grid.cells().changeStyle([](spreadsheet::CellStyle& style) { style.locked = false; });
}

/// The report functions are known to the grid, whatever it holds now.
void EditorFiles::hookUpAgain()
{
    m_formulas.addSelfFunction();
    m_grid.showChanges();
    Q_EMIT shown();
}

} // namespace selfreport
