#include "windows/designer/frmGoTo.h"

#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace selfreport {

frmGoTo::frmGoTo(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_txtPlace(new QLineEdit)
    , m_hint(new QLabel(QStringLiteral("例如 B12、B2:C9、Sheet2!B12 或已定义的名称")))
{
    setObjectName("frmGoTo");
    setWindowTitle(QStringLiteral("定位"));
    m_txtPlace->setObjectName("txtPlace");
    m_hint->setObjectName("lblHint");
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("位置(&P)："), m_txtPlace);
    form->addRow(m_hint);
    form->addRow(okAndClose(
        "确定(&O)", [this] { cmdXPOK_Click(); }, "关闭(&C)", [this] { close(); }));
    settle(*this);
}

void frmGoTo::cmdXPOK_Click()
{
    const spreadsheet::Refusal why = m_grid.cursor().goTo(m_txtPlace->text().trimmed());
    if (!why) {
        accept();
        return;
    }
    m_hint->setText(QString::fromStdString(why.reason()));
    m_txtPlace->setFocus();
    m_txtPlace->selectAll();
}

} // namespace selfreport
