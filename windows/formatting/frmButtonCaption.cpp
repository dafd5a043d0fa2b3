#include "windows/formatting/frmButtonCaption.h"

#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QFormLayout>
#include <QLineEdit>

namespace selfreport {

frmButtonCaption::frmButtonCaption(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_caption(new QLineEdit)
{
    setObjectName("frmButtonCaption");
    setWindowTitle(QStringLiteral("按钮标题"));
    m_caption->setObjectName("caption");
    m_caption->setMaxLength(255);
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("按钮标题(&T)："), m_caption);
    form->addRow(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { close(); }));
    const spreadsheet::CellAddress cell = grid.cursor().activeCell();
    grid.cells().setCurrent(cell.column, cell.row);
    m_caption->setText(grid.cells().buttonCaption());
    m_caption->setFocus();
    resize(textRoom(*this, 43, 1).width(), sizeHint().height());
    settle(*this);
}

void frmButtonCaption::cmdXPOK_Click()
{
    setButtonCaption(m_grid, m_caption->text().trimmed());
    close();
}

} // namespace selfreport
