#include "windows/designer/frmEditor.h"

#include "platform/services/Dialogs.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/designer/DiagnosticsPanel.h"
#include "windows/designer/EditorFiles.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/EditorGrid.h"
#include "windows/designer/EditorStatus.h"
#include "windows/designer/FailedFetchBar.h"
#include "windows/designer/FormulaBox.h"
#include "windows/designer/frmFind.h"
#include "windows/designer/frmTableInfo.h"
#include "windows/designer/referred_report.h"
#include "windows/explain/frmDrill.h"
#include "windows/explain/frmProve.h"
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
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace selfreport {

// Every road out of the window (close box, menu, end of the session, a host that ends its parent) must leave
// the typed entry and the unsaved design in the same state. So all of them meet in `done`, and what cannot
// pass it, because the window is destroyed, is caught up in the destructor.

using spreadsheet::CellAddress;
using spreadsheet::GridMode;

namespace {

constexpr const char* caption = "报表系统";

} // namespace

frmEditor::frmEditor(ReportContext& context, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_fps1(new spreadsheet::SpreadsheetControl)
{
    setObjectName("frmEditor");
    setWindowTitle(QString::fromUtf8(caption));
    setWindowFlags(Qt::Window | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                   Qt::WindowCloseButtonHint);
    buildControls();
    m_grid = std::make_unique<EditorGrid>(context, *this);
    connectGrid();
    initForm();
    openReport();
    m_fps1->installEventFilter(this);
    m_fps1->setFocus();
    openOnScreen(*this);
}

/// The end of the host's event loop, and of the window's parent, close nothing.
frmEditor::~frmEditor()
{
    if (!m_left)
        m_formulas->stop();
    if (m_left || !m_fps1->entry().commit())
        m_fps1->entry().cancel(); // an open formula box is the grid's editor
    if (!m_left)
        m_files->keepAtEnd();
    m_fps1->disconnect(this);
    frmPreview::discard(); // it shows what ends here
}

// Start-up

void frmEditor::openReport()
{
    m_files->open();
    m_formulas->addSelfFunction();
    m_fps1->setMode(m_context.report.isRun ? GridMode::run : GridMode::edit);
    if (m_context.report.isRun) {
        m_formulas->evaluation().showStoredData();
        m_opensForUse = true;
    }
    enterCell();
    if (!m_context.report.isRun && !m_files->report().isOfLaterProgram())
        m_files->keepForRecovery();
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
        m_formulas->MenuRecalculate_Click();
}

/// An empty sheet in its place would be taken for the report, and saved.
int frmEditor::exec()
{
    if (!m_files->report().isOfLaterProgram())
        return QDialog::exec();
    done(Rejected);
    return Rejected;
}

void frmEditor::done(int result)
{
    if (!endEntry() || !m_files->askToSave() || !m_files->keepDesign())
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

/// Esc ends what is under way in the grid, one thing at a time, and never the window.
void frmEditor::keyPressEvent(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::Cancel))
        QDialog::keyPressEvent(event);
    else if (!FormatPainter::stop(*m_fps1))
        m_fps1->giveUp();
}

// Formulas

void frmEditor::fps1_LeaveCell(int column, int row, int newColumn, int newRow, bool& cancel)
{
    if (column == newColumn && row == newRow)
        return;
    if (!m_context.report.isRun && !m_formulaBox->commit())
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
    m_status->showCell(*m_fps1, m_formulas->modeText());
    m_formulas->tellCell();
}

/// Dialogs work on this cell, whatever becomes active meanwhile.
void frmEditor::keepCell()
{
    m_context.cellRow = m_fps1->cursor().activeCell().row;
    m_context.cellCol = m_fps1->cursor().activeCell().column;
}

CellAddress frmEditor::keptCell() const
{
    return {m_context.cellCol, m_context.cellRow};
}

/// Told before anything is filled in for the active cell.
static bool mayTakeFormula(spreadsheet::SpreadsheetControl& grid)
{
    return !grid.refuse(grid.editRefusal(grid.cells().shownSheet().extent(grid.cursor().activeCell())));
}

void frmEditor::MenuFormula_Click()
{
    if (!mayTakeFormula(*m_fps1))
        return;
    keepCell();
    frmFunction(*m_grid, this).exec();
}

void frmEditor::MenuFormulaBox_Click()
{
    m_formulaBox->switchOver();
}

void frmEditor::editCallInCell()
{
    if (!mayTakeFormula(*m_fps1))
        return;
    keepCell();
    const std::string formula = m_fps1->cells().sheet().formula(m_fps1->cursor().activeCell());
    if (!editCall(*m_grid, formula, this))
        m_status->showMessage(QStringLiteral("当前单元格不是单独的 Acct 或 REF_F 取数公式"));
}

/// It stays open while cells are looked at and mended.
void frmEditor::showCoverage()
{
    auto* window = findChild<frmCoverage*>();
    if (!window) {
        window = new frmCoverage(m_context, *m_fps1, m_formulas->evaluation().record(), this);
        window->setAttribute(Qt::WA_DeleteOnClose);
    }
    window->show();
    window->activateWindow();
    window->check();
}

/// It stays open while cells are looked at. A design is not computed when it opens.
void frmEditor::showDrill()
{
    auto* window = findChild<frmDrill*>();
    if (!window) {
        window = new frmDrill(m_context, *m_fps1, this);
        window->openReport = [this, window](const std::string& report, const frmDrill::PlaceIn& place) {
            showReferredReport(m_context, report, place, window);
        };
    }
    const auto explain = [this, window] {
        return window->explain(m_txtReportName->text().toStdString(), m_formulas->evaluation().record());
    };
    if (!explain()) {
        if (!dialogs().question(m_context.title,
                                "这张报表打开后还没有计算过，联查要先重新计算，现在计算吗？"))
            return;
        m_formulas->MenuShowDate_Click();
        if (!explain())
            return m_status->showMessage(QStringLiteral("没有计算完，不能联查"));
    }
    window->show();
    window->activateWindow();
}

void frmEditor::showProof()
{
    frmProve(m_context, this).exec();
}

/// In use there is nothing to type into a figure: a double click asks where it comes from.
bool frmEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::MouseButtonDblClick && m_context.report.isRun) {
        const auto* click = static_cast<const QMouseEvent*>(event);
        const auto cell = m_fps1->cellAt(click->position().toPoint());
        const spreadsheet::Sheet& sheet = m_fps1->cells().shownSheet();
        if (cell && click->button() == Qt::LeftButton && sheet.hasFormula(*cell) &&
            m_fps1->editRefusal(sheet.extent(*cell))) {
            finishOpening();
            showDrill();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

// Cells

/// A changed design has a mark.
void frmEditor::showTitle()
{
    setWindowTitle(QString::fromUtf8(caption) + (m_files->isChanged() ? " *" : ""));
}

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
    if (m_fps1->refuseInRun())
        return;
    keepCell();
    frmDataType(*m_fps1, keptCell(), this).exec();
}

void frmEditor::MenuCellBorder_Click()
{
    if (m_fps1->refuseInRun())
        return;
    keepCell();
    frmCellBorder(*m_fps1, keptCell(), this).exec();
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
    if (m_context.report.isRun) {
        m_context.database.tell(Icon::exclamation, "报表在运行状态，不能设置表格信息。");
        return;
    }
    m_context.activeSheet = static_cast<std::int16_t>(m_fps1->cells().activeSheet());
    frmTableInfo(m_context, m_fps1->cells(), this).exec();
    m_fps1->showChanges();
    enterCell();
}

PrintedGrid& frmEditor::printedGrid()
{
    return *m_grid;
}

void frmEditor::MenuPreview_Click()
{
    frmPreview::showModally(*m_grid);
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

} // namespace selfreport
