#include "windows/formulas/frmFunctionInput1.h"

#include "fetch/formula_text.h"
#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "windows/formulas/write_formula.h"
#include "windows/pickers/ArgumentBoxes.h"

#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace selfreport {

frmFunctionInput1::frmFunctionInput1(FormulaCell& cell, QWidget* parent)
    : QDialog(parent)
    , m_cell(cell)
{
    setObjectName("frmFunctionInput1");
    setWindowTitle(QStringLiteral("表间取数公式"));
    auto* heading = new QLabel(QStringLiteral("REF_F函数表达式："));
    heading->setObjectName("Label1");
    auto* hint = new QLabel(QStringLiteral("输入数字，如第一标签输入1"));
    hint->setObjectName("Label3");
    auto* rows = new QGridLayout;
    m_txt = new ArgumentBoxes(this, rows, {{"表名："}, {"单元格名称："}, {"标签："}});
    rows->addWidget(hint, rows->rowCount(), 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(rows);
    layout->addStretch();
    layout->addWidget(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { cmdXPClose_Click(); }));
    resize(textRoom(*this, 56, 1).width(), sizeHint().height());
    settle(*this);
}

void frmFunctionInput1::setArguments(const std::array<std::string, 3>& arguments)
{
    m_txt->setTexts(arguments);
}

void frmFunctionInput1::cmdXPOK_Click()
{
    if (writeCall(m_cell, m_txt->texts<std::array<std::string, 3>>(), refFormula))
        close();
}

void frmFunctionInput1::cmdXPClose_Click()
{
    close();
}

} // namespace selfreport
