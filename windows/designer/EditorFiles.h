#pragma once
#include "platform/services/FileDialog.h"
#include "windows/designer/EditedReport.h"
#include "windows/designer/Recovery.h"

#include <QObject>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QLineEdit;

namespace spreadsheet {
class SpreadsheetControl;
struct FileFormat;
} // namespace spreadsheet

namespace selfreport {

class DiagnosticsPanel;
class EditorFormulas;
class EditorStatus;
class FormulaBox;
struct ReportContext;

/// Whether closing asks about a changed design, among the user's preferences.
inline constexpr const char* asksAtClosing = "AskAtClosing";

/// An entry of the menu that a table of formats gives.
struct FileCommand {
    std::string name; ///< object name of the action
    std::string caption;
    std::function<void()> run;
};

/// The designer's report on its ways to and from the database, files of the user, and the copies of unsaved
/// designs.
class EditorFiles : public QObject {
    Q_OBJECT

public:
    EditorFiles(ReportContext& context, spreadsheet::SpreadsheetControl& grid, QLineEdit& name,
                EditorStatus& status, DiagnosticsPanel& diagnostics, EditorFormulas& formulas,
                FormulaBox& formulaBox);

    EditedReport& report() { return m_report; }
    const EditedReport& report() const { return m_report; }

    /// Loads the context's report, or begins a new one, as the context says.
    void open();
    void MenuFileSave_Click();
    void MenuImpoertSpreadFile_Click();
    void MenuEmportSpreadFile_Click();
    void MenuImportExcelFile_Click();
    void MenuExportExcel_Click();
    /// For the formats of files that have no command of their own above.
    std::vector<FileCommand> formatCommands();

    bool isChanged() const { return m_recovery && m_recovery->isChanged(); } ///< since it was saved
    /// Asks, if the user wishes to be asked, whether a changed design is to be saved as the window closes.
    /// False if the window is to stay.
    bool askToSave();

    // Copies of unsaved designs
    void keepForRecovery(); ///< from now on, and offers what earlier windows left
    /// Keeps the design as the window closes. False after telling, once, that it cannot be kept.
    bool keepDesign();
    void keepAtEnd(); ///< keeps the design, whatever becomes of it

Q_SIGNALS:
    void shown(); ///< the grid holds another content
    void stored();

private:
    bool save();
    void offerRecovery();
    void restoreDesign();
    void discardDesign();
    std::optional<std::int32_t> storedReport() const;
    [[nodiscard]] bool endEntry();
    void importIntoReport();
    bool importFile(FileDialogSettings& settings);
    void importOtherFormats();
    void exportWithCd1(const spreadsheet::FileFormat& format, const std::function<void()>& afterwards);
    bool exportFile(FileDialogSettings& settings, const spreadsheet::FileFormat& format,
                    const std::function<void()>& afterwards);
    void exportUnderReportName(const spreadsheet::FileFormat& format);
    void transfer(const std::string& file, const std::function<std::vector<std::string>()>& work);
    void unlockCurrentCell();
    void hookUpAgain();

    ReportContext& m_context;
    spreadsheet::SpreadsheetControl& m_grid;
    QLineEdit& m_name; ///< txtReportName
    EditorStatus& m_status;
    DiagnosticsPanel& m_diagnostics;
    EditorFormulas& m_formulas;
    FormulaBox& m_formulaBox;
    FileDialogSettings m_cd1; ///< keeps what a command does not set
    std::string m_chosenFile; ///< with it, for import or export; "": none yet
    EditedReport m_report;
    std::unique_ptr<Recovery> m_recovery;
    bool m_unkeptAtClosing = false; ///< a design that cannot be kept has held up closing once
};

} // namespace selfreport
