#include "windows/designer/frmSaveAs.h"

#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "reports/report_texts.h"
#include "state/report_procedures.h"

#include <QFormLayout>
#include <QLineEdit>

namespace selfreport {

frmSaveAs::frmSaveAs(ReportContext& context, const QString& name, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_txtName(new QLineEdit(name))
{
    setObjectName("frmSaveAs");
    setWindowTitle(QStringLiteral("另存为新报表"));
    m_txtName->setObjectName("txtName");
    m_txtName->setMinimumWidth(textRoom(*this, 40, 1).width());
    m_txtName->selectAll();
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("报表名称(&N)："), m_txtName);
    form->addRow(okAndClose(
        "确定(&O)", [this] { cmdXPOK_Click(); }, "取消(&C)", [this] { close(); }));
    settle(*this);
}

QString frmSaveAs::name() const
{
    return m_txtName->text();
}

void frmSaveAs::cmdXPOK_Click()
{
    const std::string name = m_txtName->text().toStdString();
    std::string refusal;
    if (isBlankName(name))
        refusal = "报表名称不能为空！";
    else {
        const std::optional<bool> isTaken = isReportName(m_context, name);
        if (!isTaken)
            return; // told
        if (*isTaken)
            refusal = "已经有名为“" + name + "”的报表，请换一个名称。";
    }
    if (refusal.empty())
        return accept();
    m_context.database.tell(Icon::exclamation, refusal);
    m_txtName->setFocus();
    m_txtName->selectAll();
}

} // namespace selfreport
