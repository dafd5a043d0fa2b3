#include "tool/frmRunParameters.h"

#include "platform/toolkit/QtSettings.h"
#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"

#include <QFormLayout>
#include <QLineEdit>

namespace selfreport {

namespace {

/// Each with the placeholder that it fills.
constexpr const char* labels[] = {"截止日期 (&&EndDate)：", "编制单位 (&&Comp)：", "操作员 (&&operator)：",
                                  "打印日期 (&&PrintDate)："};

std::string keyOf(int parameter)
{
    return "Value" + std::to_string(parameter + 1);
}

} // namespace

frmRunParameters::frmRunParameters(QWidget* parent)
    : QDialog(parent)
{
    setObjectName("frmRunParameters");
    setWindowTitle(QStringLiteral("运行参数"));
    auto* form = new QFormLayout(this);
    const QtSettings settings;
    for (int parameter = 0; parameter < 4; ++parameter) {
        m_txt[parameter] =
            new QLineEdit(QString::fromStdString(settings.value("ParamValue", keyOf(parameter))));
        m_txt[parameter]->setObjectName("txt_" + QString::number(parameter));
        form->addRow(QString::fromUtf8(labels[parameter]), m_txt[parameter]);
    }
    form->addRow(okAndClose(
        "确定(&O)", [this] { cmdXPOK_Click(); }, "关闭(&C)", [this] { close(); }));
    resize(textRoom(*this, 56, 1).width(), sizeHint().height());
    settle(*this);
}

void frmRunParameters::cmdXPOK_Click()
{
    for (int parameter = 0; parameter < 4; ++parameter)
        QtSettings::write("ParamValue", keyOf(parameter), m_txt[parameter]->text().toStdString());
    accept();
}

} // namespace selfreport
