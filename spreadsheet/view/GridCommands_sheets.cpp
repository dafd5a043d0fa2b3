// Commands on sheets.
#include "spreadsheet/view/GridCommands.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <algorithm>

namespace spreadsheet {

/// Behind the others, printed as the given one.
static Refusal addSheetLike(Workbook& workbook, const Sheet& other, const std::string& name)
{
    const UndoStep step(workbook, "插入表");
    const PrintSettings print = other.settings().print;
    if (auto refused = workbook.addSheet(name))
        return refused;
    printAlike(workbook, workbook.sheetCount(), print);
    return {};
}

void GridCommands::addSheet()
{
    if (m_control.refuseInRun() || !m_control.entry().commit())
        return;
    if (m_control.cells().workbook().sheetCount() >= maxSheets) {
        m_control.refuse("表的个数应在 1 到 256 之间");
        return;
    }
    int number = m_control.cells().workbook().sheetCount() + 1;
    while (m_control.cells().workbook().sheetIndex("Sheet" + std::to_string(number)) != 0)
        ++number;
    Workbook& workbook = m_control.cells().workbook();
    if (!m_control.cursor().leave(-1, -1) ||
        m_control.refuse(addSheetLike(m_control.cells().workbook(), m_control.cells().shownSheet(),
                                      "Sheet" + std::to_string(number))))
        return;
    m_control.cells().setActiveSheet(workbook.sheetCount());
    Q_EMIT m_control.sheetsChanged();
    Q_EMIT m_control.undoChanged();
}

void GridCommands::renameSheet(int index, const QString& name)
{
    if (m_control.refuseInRun() ||
        m_control.refuse(m_control.cells().workbook().renameSheet(index, name.toStdString())))
        return;
    m_control.showChanges();
    Q_EMIT m_control.sheetsChanged();
}

void GridCommands::moveSheet(int from, int to)
{
    const int activeId = m_control.cells().shownSheet().id();
    const bool done =
        !m_control.refuseInRun() && !m_control.refuse(m_control.cells().workbook().moveSheet(from, to));
    if (done)
        m_control.cells().workbook().setActiveSheet(m_control.cells().workbook().sheetIndexOfId(activeId));
    m_control.restoreTabs(); // the tab bar has moved its tab already
    if (done)
        Q_EMIT m_control.sheetsChanged();
}

void GridCommands::removeSheet(int index)
{
    if (m_control.refuseInRun() || index < 1 || index > m_control.cells().sheetCount() ||
        !m_control.entry().commit())
        return;
    const QString name = QString::fromStdString(m_control.cells().workbook().sheet(index).name());
    if (m_control.cells().workbook().sheetCount() == 1) {
        m_control.refuse("至少要有一张表");
        return;
    }
    if (!m_control.ask || !m_control.ask(QStringLiteral("确定要删除表“%1”吗?").arg(name)))
        return;
    const int activeId = m_control.cells().shownSheet().id();
    if (m_control.refuse(m_control.cells().workbook().removeSheet(index)))
        return;
    const int shown = m_control.cells().workbook().sheetIndexOfId(activeId);
    m_control.cells().workbook().setActiveSheet(
        shown != 0 ? shown : std::min(index, m_control.cells().workbook().sheetCount()));
    if (shown == 0)
        m_control.showActiveSheet();
    m_control.afterEdit();
    Q_EMIT m_control.sheetsChanged();
}

} // namespace spreadsheet
