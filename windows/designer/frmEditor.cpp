#include "windows/designer/frmEditor.h"

#include "failures/failure_text.h"
#include "fetch/ledger_query.h"
#include "platform/windows/CancellableWait.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "state/mdlMain.h"
#include "state/shared_state.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/EditorGrid.h"
#include "windows/designer/EditorStatus.h"
#include "windows/designer/FailedFetchBar.h"
#include "windows/designer/FormulaBox.h"
#include "windows/designer/frmFind.h"
#include "windows/designer/frmTableInfo.h"
#include "windows/formatting/cell_commands.h"
#include "windows/formatting/FormatPainter.h"
#include "windows/formatting/frmCellBorder.h"
#include "windows/formatting/frmDataType.h"
#include "windows/formulas/edit_call.h"
#include "windows/formulas/frmCoverage.h"
#include "windows/formulas/frmFunction.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/print_sheet.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace selfreport {

using spreadsheet::CellAddress;
using spreadsheet::GridMode;

namespace {

std::optional<std::int32_t> storedReport()
{
    return gEditFlag == 0 ? std::nullopt : std::optional(gReportId);
}

} // namespace

frmEditor::frmEditor(QWidget* parent)
    : QDialog(parent)
    , m_fps1(new spreadsheet::SpreadsheetControl)
    , m_evaluation(m_fps1->cells().workbook())
{
    setObjectName("frmEditor");
    setWindowTitle(QStringLiteral("报表系统"));
    setWindowFlags(Qt::Window | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                   Qt::WindowCloseButtonHint);
    buildControls();
    m_grid = std::make_unique<EditorGrid>(*this);
    connectGrid();
    initForm();
    openReport();
    m_fps1->setFocus();
}

/// The end of the host's event loop, and of the window's parent, close nothing.
frmEditor::~frmEditor()
{
    if (!m_left)
        m_fps1->cells().recalculateChanged = [] {};
    if (m_left || !m_fps1->entry().commit())
        m_fps1->entry().cancel(); // an open formula box is the grid's editor
    if (!m_left && m_recovery)
        m_recovery->keep(true);
    m_fps1->disconnect(this);
}

// Start-up

void frmEditor::openReport()
{
    if (gEditFlag == 1) {
        std::string name;
        if (m_report.load(name, m_fps1->cells().workbook()))
            m_txtReportName->setText(QString::fromStdString(name));
        m_fps1->cells().setWorkbook(
            &m_fps1->cells().workbook()); // another content: shown from its first cell
    } else {
        m_report.beginNew();
    }
    addSelfFunction();
    m_fps1->setMode(gRunMode ? GridMode::run : GridMode::edit);
    m_txtFormula->setReadOnly(gRunMode);
    if (gRunMode) {
        m_evaluation.showStoredData();
        m_opensForUse = true;
    }
    enterCell();
    if (!gRunMode)
        keepForRecovery();
}

void frmEditor::keepForRecovery()
{
    m_recovery = std::make_unique<Recovery>(m_fps1->cells().workbook(), storedReport(), [this] {
        return Recovery::Heading{m_txtReportName->text().toStdString(), m_report.version()};
    });
    m_recovery->tell = [this](const std::string& trouble) {
        m_status->showTrouble(trouble.empty() ? QString()
                                              : QStringLiteral("未保存的设计不能备份: ") +
                                                    QString::fromStdString(trouble));
    };
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { m_recovery->keep(true); },
        Qt::DirectConnection); // the session ends
    connect(m_status, &EditorStatus::restoreWanted, this, &frmEditor::restoreDesign);
    connect(m_status, &EditorStatus::discardWanted, this, &frmEditor::discardDesign);
    offerRecovery();
}

/// The first frame does not wait for the ledger.
void frmEditor::paintEvent(QPaintEvent* event)
{
    QDialog::paintEvent(event);
    if (m_opensForUse)
        QTimer::singleShot(0, this, &frmEditor::finishOpening);
}

void frmEditor::finishOpening()
{
    if (std::exchange(m_opensForUse, false))
        recalculateAll([this] { return m_evaluation.recalculate(); });
}

void frmEditor::addSelfFunction()
{
    m_evaluation.addSelfFunction();
}

// Saving and closing

void frmEditor::MenuFileSave_Click()
{
    if (gRunMode) {
        tellUser(Icon::exclamation, "请在报表编辑状态下进行保存,保存不成功!");
        return;
    }
    if (!m_fps1->entry().commit() || !m_formulaBox->commit())
        return; // what is being typed is no formula: its reason is on screen
    std::string name = m_txtReportName->text().toStdString();
    if (trimmed(name).empty()) {
        tellUser(Icon::exclamation, "报表名称不能为空！");
        m_txtReportName->setFocus();
        return;
    }
    const auto told = m_report.save(name, m_fps1->cells().workbook(), this);
    if (!told)
        return;
    m_txtReportName->setText(QString::fromStdString(name)); // another one if it was stored as a new report
    m_recovery->saved(gReportId);
    tellUser(Icon::information, *told);
}

void frmEditor::done(int result)
{
    if (!endEntry() || !keepDesign())
        return;
    m_left = true;
    frmPreview::discard();
    QDialog::done(result);
}

/// What is being typed is kept with the rest, unless it is no formula.
bool frmEditor::endEntry()
{
    if (m_fps1->entry().commit())
        return true;
    const QString typed = m_fps1->entry().text();
    if (std::exchange(m_refusedAtClosing, typed) != typed) {
        m_status->showMessage(QStringLiteral("公式有误，窗口没有关闭；再关闭一次则放弃这个公式"));
        return false;
    }
    m_fps1->entry().cancel();
    return true;
}

bool frmEditor::keepDesign()
{
    if (!m_recovery || m_recovery->keep(true))
        return true;
    if (std::exchange(m_unkeptAtClosing, true))
        return true;
    tellUser(Icon::exclamation,
             "未保存的设计不能备份，窗口没有关闭。请先保存；再关闭一次则放弃未保存的修改。");
    return false;
}

/// Esc ends what is under way in the grid, one thing at a time, and never the window.
void frmEditor::keyPressEvent(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::Cancel))
        QDialog::keyPressEvent(event);
    else if (!FormatPainter::stop(*m_fps1))
        m_fps1->giveUp();
}

// Recovery

/// A crash is asked about; what was closed without saving waits in the status bar.
void frmEditor::offerRecovery()
{
    if (m_recovery->isOfferAfterCrash()) {
        if (dialogs().question(gTitle, "上次关闭时有未保存的报表设计,是否恢复?"))
            return restoreDesign();
        m_recovery->putOff();
    }
    m_status->offerDesign(m_recovery->isOffering());
}

void frmEditor::restoreDesign()
{
    if (!m_fps1->entry().commit() || !m_formulaBox->commit())
        return; // its reason is on screen
    try {
        const Recovery::Heading restored = m_recovery->restore(m_fps1->cells().workbook());
        if (!restored.name.empty()) // earlier programs kept none
            m_txtReportName->setText(QString::fromStdString(restored.name));
        if (gEditFlag == 1)
            m_report.setVersion(restored.madeFrom); // saving asks if the stored report is another by now
        m_fps1->cells().setWorkbook(
            &m_fps1->cells().workbook()); // another content: shown from its first cell
        forgetFetches();
        hookUpAgain();
    } catch (const std::exception& error) {
        tellUser(Icon::exclamation, "未保存的设计不能恢复: " + failures::sentenceOf(error));
    }
    m_status->offerDesign(m_recovery->isOffering());
}

void frmEditor::discardDesign()
{
    try {
        m_recovery->discard();
    } catch (const std::exception& error) {
        tellUser(Icon::exclamation, failures::sentenceOf(error));
    }
    m_status->offerDesign(m_recovery->isOffering());
}

// Formulas

void frmEditor::fps1_LeaveCell(int column, int row, int newColumn, int newRow, bool& cancel)
{
    if (column == newColumn && row == newRow)
        return;
    if (!gRunMode && !m_formulaBox->commit())
        cancel = true; // the refused text stays in the box until it is right or given up
}

/// The control that moves the cursor tells of it before; what the entered cell holds is shown after.
void frmEditor::enterCell()
{
    if (m_fps1->entry().isOpen() && !m_formulaBox->isOfShownSheet())
        return; // another sheet is shown to point at its cells
    m_formulaBox->fill();
    const CellAddress cell = m_fps1->cursor().activeCell();
    m_label1->setText(QString::fromStdString(spreadsheet::cellName(cell)) + QStringLiteral("单元格公式为："));
    showCellLooks();
    m_status->showCell(*m_fps1, modeText());
    const QString reason =
        m_diagnostics->reasonFor({m_fps1->cells().activeSheet(), m_fps1->cursor().activeCell().column,
                                  m_fps1->cursor().activeCell().row});
    if (!reason.isEmpty())
        m_status->showMessage(reason);
    else if (m_cancelled != Extent::none)
        m_status->showMessage(QStringLiteral("重算已取消,各单元格保留原来的数值"));
    else
        m_status->clearMessage();
}

QString frmEditor::modeText() const
{
    const QString mode = gRunMode                            ? QStringLiteral("使用")
                         : m_evaluation.isShowFormula() == 1 ? QStringLiteral("显示公式")
                                                             : QStringLiteral("设计");
    return m_cancelled == Extent::none ? mode : mode + QStringLiteral(" 数值未更新");
}

/// Recalculates while the user may cancel. What was cancelled stays told until it is computed.
void frmEditor::compute(Extent extent, const std::function<bool()>& recalculation)
{
    bool isComplete = false;
    {
        const CancellableWait waiting(QStringLiteral("正在重算"));
        isComplete = recalculation();
    }
    if (!isComplete)
        m_cancelled = std::max(m_cancelled, extent);
    else if (extent >= m_cancelled)
        m_cancelled = Extent::none;
    tellFetches();
}

void frmEditor::recalculateAll(const std::function<bool()>& recalculation)
{
    compute(Extent::everything, recalculation);
    m_fps1->showChanges();
    enterCell();
}

/// The list and the bar show what the last recalculation found.
void frmEditor::tellFetches()
{
    m_diagnostics->setDiagnostics(m_evaluation.diagnostics(), m_fps1->cells().workbook());
    m_failedFetches->tell(failedFetchesText(m_evaluation.diagnostics()));
}

/// The grid holds another content, whose values are as they were stored.
void frmEditor::forgetFetches()
{
    m_evaluation.forgetDiagnostics();
    tellFetches();
}

void frmEditor::MenuRecalculate_Click()
{
    recalculateAll([this] { return m_evaluation.recalculate(); });
}

void frmEditor::MenuShowFormula_Click()
{
    m_evaluation.showFormulas();
    m_fps1->showChanges();
    enterCell();
}

void frmEditor::MenuShowDate_Click()
{
    recalculateAll([this] { return m_evaluation.showData(); });
}

/// Dialogs work on this cell, whatever becomes active meanwhile.
void frmEditor::keepCell()
{
    gCellRow = m_fps1->cursor().activeCell().row;
    gCellCol = m_fps1->cursor().activeCell().column;
}

void frmEditor::MenuFormula_Click()
{
    keepCell();
    frmFunction(*m_grid, this).exec();
}

void frmEditor::editCallInCell()
{
    keepCell();
    const std::string formula = m_fps1->cells().sheet().formula(m_fps1->cursor().activeCell());
    if (!editCall(*m_grid, formula, this))
        m_status->showMessage(QStringLiteral("当前单元格不是单独的 Acct 或 REF_F 取数公式"));
}

void frmEditor::showDiagnostics()
{
    tellFetches();
    m_diagnostics->setVisible(true);
}

/// It stays open while cells are looked at and mended.
void frmEditor::showCoverage()
{
    auto* window = findChild<frmCoverage*>();
    if (!window) {
        window = new frmCoverage(*m_fps1, this);
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->show();
    window->activateWindow();
    window->check();
}

void frmEditor::goToDiagnostic(const CellDiagnostic& diagnostic)
{
    if (!m_fps1->entry().commit() || diagnostic.place.sheet > m_fps1->cells().sheetCount())
        return;
    m_fps1->cells().setActiveSheet(diagnostic.place.sheet);
    m_fps1->cursor().setActiveCell(diagnostic.place.column, diagnostic.place.row);
    m_fps1->setFocus();
}

void frmEditor::goToFailedFetch()
{
    if (const CellDiagnostic* failed = firstFailed(m_evaluation.diagnostics()))
        goToDiagnostic(*failed);
}

// Cells

void frmEditor::tell(const spreadsheet::Refusal& refusal)
{
    if (refusal)
        m_status->showMessage(QString::fromStdString(refusal.reason()));
}

void frmEditor::MenuInsertRow_Click()
{
    tell(insertRow(*m_fps1));
}

void frmEditor::MenuInsertCol_Click()
{
    tell(insertColumn(*m_fps1));
}

void frmEditor::MenuDataType_Click()
{
    keepCell();
    frmDataType(*m_fps1, this).exec();
}

void frmEditor::MenuCellBorder_Click()
{
    keepCell();
    frmCellBorder(*m_fps1, this).exec();
}

void frmEditor::sortSelection(bool descending)
{
    if (!m_fps1->cursor().isBlockSelected()) {
        m_status->showMessage(QStringLiteral("请先选定要排序的区域,按活动单元格所在的列排序"));
        return;
    }
    m_fps1->commands().sortBlock({{m_fps1->cursor().activeCell().column, descending}}, false);
}

// Other windows and the clipboard

void frmEditor::find(bool replacing)
{
    auto* window = findChild<frmFind*>();
    if (!window)
        window = new frmFind(*m_fps1, this);
    window->begin(replacing);
}

void frmEditor::MenuSetTableInfo_Click()
{
    gActiveSheet = static_cast<std::int16_t>(m_fps1->cells().activeSheet());
    frmTableInfo(m_fps1->cells(), this).exec();
    m_fps1->showChanges();
    enterCell();
}

void frmEditor::MenuPreview_Click()
{
    frmPreview::showModally();
}

void frmEditor::MenuPrint_Click()
{
    printSheet(*m_grid);
}

void frmEditor::exportPdf()
{
    selfreport::exportPdf(*m_grid);
}

void frmEditor::copyActiveText()
{
    const CellAddress cell = m_fps1->cursor().activeCell();
    const spreadsheet::Sheet& sheet = m_fps1->cells().shownSheet();
    // Pasted it may be read as a number again, so it is not the text that a number format code makes.
    const bool showsFormula = !sheet.shownText(cell).empty();
    const std::string text = showsFormula ? sheet.displayText(cell) : sheet.textByType(cell);
    QApplication::clipboard()->setText(QString::fromStdString(text));
}

void frmEditor::pasteIntoActiveCell()
{
    const CellAddress cell = m_fps1->cursor().activeCell();
    const spreadsheet::CellRange range{cell.column, cell.row, cell.column, cell.row};
    const QMimeData nothing;
    const QMimeData* const offer = QApplication::clipboard()->mimeData();
    const auto text = spreadsheet::clipboardText(offer ? *offer : nothing, spreadsheet::longestCellText);
    if (m_fps1->refuseEdit({range}) ||
        m_fps1->refuse(overlapRefusal(m_fps1->cells().sheet(), range, std::nullopt, false)))
        return;
    if (const auto* why = std::get_if<spreadsheet::Refusal>(&text)) {
        m_fps1->refuse(*why);
        return;
    }
    m_fps1->cells().setText(cell.column, cell.row, std::get<QString>(text));
    m_fps1->afterEdit(cell);
}

} // namespace selfreport
