#include "windows/formatting/frmDropDownEntries.h"

#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace selfreport {

frmDropDownEntries::frmDropDownEntries(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_entries(new QPlainTextEdit)
{
    setObjectName("frmDropDownEntries");
    setWindowTitle(QStringLiteral("下拉框列表"));
    m_entries->setObjectName("entries");
    m_entries->setTabChangesFocus(true);
    auto* label = new QLabel(QStringLiteral("列表项（每行一项）(&L)："));
    label->setBuddy(m_entries);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_entries);
    layout->addWidget(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { close(); }));
    const spreadsheet::CellAddress cell = grid.cursor().activeCell();
    grid.cells().setCurrent(cell.column, cell.row);
    m_entries->setPlainText(grid.cells().dropDown().join('\n'));
    m_entries->setFocus();
    resize(textRoom(*this, 43, 15));
    settle(*this);
}

void frmDropDownEntries::cmdXPOK_Click()
{
    QStringList entries;
    for (const QString& line : m_entries->toPlainText().split('\n'))
        if (const QString entry = line.trimmed(); !entry.isEmpty() && !entries.contains(entry))
            entries.append(entry);
    setDropDownEntries(m_grid, entries);
    close();
}

} // namespace selfreport
