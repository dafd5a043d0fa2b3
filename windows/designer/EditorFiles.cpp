#include "windows/designer/EditorFiles.h"

#include "failures/failure_text.h"
#include "platform/services/Preferences.h"
#include "platform/windows/CancellableWait.h"
#include "reports/report_texts.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/designer/EditorFormulas.h"
#include "windows/designer/EditorStatus.h"
#include "windows/designer/FormulaBox.h"

#include <QApplication>
#include <QLineEdit>

#include <utility>

namespace selfreport {

EditorFiles::EditorFiles(ReportContext& context, spreadsheet::SpreadsheetControl& grid, QLineEdit& name,
                         EditorStatus& status, DiagnosticsPanel& diagnostics, EditorFormulas& formulas,
                         FormulaBox& formulaBox)
    : m_context(context)
    , m_grid(grid)
    , m_name(name)
    , m_status(status)
    , m_diagnostics(diagnostics)
    , m_formulas(formulas)
    , m_formulaBox(formulaBox)
    , m_report(context)
{
}

std::optional<std::int32_t> EditorFiles::storedReport() const
{
    return m_context.report.editFlag == 0 ? std::nullopt : std::optional(m_context.report.id);
}

void EditorFiles::open()
{
    if (m_context.report.editFlag != 1) {
        m_report.beginNew();
        return;
    }
    std::string name;
    const CancellableWait waiting(QStringLiteral("正在打开报表"), m_grid.window());
    if (m_report.load(name, m_grid.cells().workbook()))
        m_name.setText(QString::fromStdString(name));
    m_grid.cells().setWorkbook(&m_grid.cells().workbook()); // another content: shown from its first cell
}

/// False: what is being typed is no formula, and its reason is on screen.
bool EditorFiles::endEntry()
{
    return m_grid.entry().commit() && m_formulaBox.commit();
}

void EditorFiles::MenuFileSave_Click()
{
    save();
}

/// False after telling why it was not.
bool EditorFiles::save()
{
    if (m_context.report.isRun) {
        m_context.database.tell(Icon::exclamation, "请在报表编辑状态下进行保存,保存不成功!");
        return false;
    }
    if (!endEntry())
        return false;
    std::string name = m_name.text().toStdString();
    if (isBlankName(name)) {
        m_context.database.tell(Icon::exclamation, "报表名称不能为空！");
        m_name.setFocus();
        return false;
    }
    const auto told = m_report.save(name, m_grid.cells().workbook(), m_grid.window());
    if (!told)
        return false;
    m_name.setText(QString::fromStdString(name)); // another one if it was stored as a new report
    m_recovery->saved(m_context.report.id);
    Q_EMIT stored();
    m_context.database.tell(Icon::information, *told);
    return true;
}

bool EditorFiles::askToSave()
{
    if (!isChanged() || !preferences().isOn(asksAtClosing))
        return true;
    const auto chosen = dialogs().choose(Icon::question, m_context.title,
                                         "报表设计已经更改，尚未保存。关闭前是否保存？", {"保存", "不保存"});
    return chosen && (*chosen == 1 || save());
}

// Recovery

void EditorFiles::keepForRecovery()
{
    m_recovery = std::make_unique<Recovery>(m_context, m_grid.cells().workbook(), storedReport(), [this] {
        return Recovery::Heading{m_name.text().toStdString(), m_report.version()};
    });
    m_recovery->tell = [this](const std::string& trouble) {
        m_status.showTrouble(trouble.empty() ? QString()
                                             : QStringLiteral("未保存的设计不能备份: ") +
                                                   QString::fromStdString(trouble));
    };
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { m_recovery->keep(true); },
        Qt::DirectConnection); // the session ends
    connect(&m_status, &EditorStatus::restoreWanted, this, &EditorFiles::restoreDesign);
    connect(&m_status, &EditorStatus::discardWanted, this, &EditorFiles::discardDesign);
    offerRecovery();
}

bool EditorFiles::keepDesign()
{
    if (!m_recovery || m_recovery->keep(true))
        return true;
    if (std::exchange(m_unkeptAtClosing, true))
        return true;
    m_context.database.tell(Icon::exclamation,
                            "未保存的设计不能备份，窗口没有关闭。请先保存；再关闭一次则放弃未保存的修改。");
    return false;
}

void EditorFiles::keepAtEnd()
{
    if (m_recovery)
        m_recovery->keep(true);
}

/// A crash is asked about; what was closed without saving waits in the status bar.
void EditorFiles::offerRecovery()
{
    if (m_recovery->isOfferAfterCrash()) {
        if (dialogs().question(m_context.title, "上次关闭时有未保存的报表设计,是否恢复?"))
            return restoreDesign();
        m_recovery->putOff();
    }
    m_status.offerDesign(m_recovery->isOffering());
}

void EditorFiles::restoreDesign()
{
    if (!endEntry())
        return;
    try {
        spreadsheet::Workbook& workbook = m_grid.cells().workbook();
        const Recovery::Heading restored = m_recovery->restore(workbook);
        m_report.showStoredPageSetup(workbook);
        if (!restored.name.empty()) // earlier programs kept none
            m_name.setText(QString::fromStdString(restored.name));
        if (m_context.report.editFlag == 1)
            m_report.setVersion(restored.madeFrom); // saving asks if the stored report is another by now
        m_grid.cells().setWorkbook(&workbook);      // another content: shown from its first cell
        m_formulas.tellFetches();
        unlockCurrentCell();
        hookUpAgain();
    } catch (const std::exception& error) {
        m_context.database.tell(Icon::exclamation, "未保存的设计不能恢复: " + failures::sentenceOf(error));
    }
    m_status.offerDesign(m_recovery->isOffering());
}

void EditorFiles::discardDesign()
{
    try {
        m_recovery->discard();
    } catch (const std::exception& error) {
        m_context.database.tell(Icon::exclamation, failures::sentenceOf(error));
    }
    m_status.offerDesign(m_recovery->isOffering());
}

} // namespace selfreport
