#pragma once
#include <QDialog>

#include <functional>
#include <memory>
#include <string>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QToolBar;

namespace spreadsheet {
class Refusal;
struct CellAddress;
class SpreadsheetControl;
} // namespace spreadsheet

namespace selfreport {

class DiagnosticsPanel;
class FailedFetchBar;
class EditorFiles;
class EditorFormulas;
class EditorStatus;
class FormulaBox;
class PrintedGrid;
class ProportionalLayout;
struct ReportContext;
struct EditorCommand;
struct EditorMenu;

/// The designer: a report is built and saved in it, or, in run mode, a stored one is shown with its data.
/// What it opens on is the report of its context at that moment.
class frmEditor : public QDialog {
    Q_OBJECT

public:
    explicit frmEditor(ReportContext& context, QWidget* parent = nullptr);
    ~frmEditor() override;

    spreadsheet::SpreadsheetControl& fps1() { return *m_fps1; }
    EditorFiles& files() { return *m_files; }
    /// Entries for the formats of files that have none of their own.
    void addFileFormats(QMenu& menu);
    /// What the user may choose for the window itself.
    void addPreferences(QMenu& menu);
    EditorFormulas& formulas() { return *m_formulas; }
    /// As printing windows see it.
    PrintedGrid& printedGrid();

    // The commands behind menus and toolbar; each works alike from both.
    void MenuSetTableInfo_Click();
    void MenuFormula_Click();
    void MenuFormulaBox_Click();
    void MenuPreview_Click();
    void MenuPrint_Click();
    void MenuInsertRow_Click();
    void MenuInsertCol_Click();
    void MenuDataType_Click();
    void MenuCellBorder_Click();
    void exportPdf();
    void editCallInCell();
    void copyActiveText();
    void find(bool replacing);
    void sortSelection(bool descending); ///< by the active cell's column
    void showCoverage();
    void showDrill(); ///< what the active cell's figure is made of
    void showProof(); ///< whether the ledger is sound

    /// What opening for use ends with, once the window is seen: the recalculation. Commands that come earlier
    /// call it first.
    void finishOpening();

    /// Brings formula box, caption, lists, buttons and status bar in line with the active cell.
    void enterCell();
    /// Brings lists and buttons alone in line with it: of a command that was refused they show nothing, and
    /// its reason stays in the status bar.
    void showCellLooks();

    void tell(const spreadsheet::Refusal& refusal); ///< in the status bar
    /// The one way out, whatever closes the window. It stays open, once, if what is typed is no formula or
    /// the unsaved design cannot be kept.
    void done(int result) override;
    /// Not shown if a later program saved the report, which the user has been told.
    int exec() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class EditorGrid;

    // Building
    void buildControls();
    void buildLabels(ProportionalLayout& board);
    void buildCommands();
    void connectLists();
    void connectGrid();
    QAction* newAction(const QString& name, const QString& caption, std::function<void()> run,
                       bool whileTyping = false);
    QAction* actionOf(const EditorCommand& command);
    void fillMenu(QMenu& shown, const EditorMenu& menu);
    QMenu* newPopup(const EditorMenu& menu);

    // Start-up, in this order
    void initForm();
    void openReport();

    bool endEntry();

    // Procedures
    void fps1_LeaveCell(int column, int row, int newColumn, int newRow, bool& cancel);
    void keepCell();
    spreadsheet::CellAddress keptCell() const;
    void showTitle();

    ReportContext& m_context;
    spreadsheet::SpreadsheetControl* m_fps1;
    QToolBar* m_toolbar1 = nullptr;
    QComboBox* m_list1 = nullptr; ///< font names
    QComboBox* m_list2 = nullptr; ///< font sizes
    QLineEdit* m_txtReportName = nullptr;
    QLineEdit* m_txtFormula = nullptr;
    QLabel* m_label1 = nullptr;
    QMenu* m_popup = nullptr; ///< of the grid's right button
    DiagnosticsPanel* m_diagnostics = nullptr;
    FailedFetchBar* m_failedFetches = nullptr;
    EditorStatus* m_status = nullptr;
    FormulaBox* m_formulaBox = nullptr;
    bool m_opensForUse = false; ///< the recalculation that opening ends with is still to come
    QString m_refusedAtClosing; ///< a formula that does not parse has held up closing once
    bool m_left = false;        ///< what closing does is done
    std::unique_ptr<EditorFormulas> m_formulas;
    std::unique_ptr<EditorFiles> m_files;
    std::unique_ptr<EditorGrid> m_grid;
};

} // namespace selfreport
