#include "windows/formulas/frmFunctionInput.h"

#include "fetch/formula_text.h"
#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "windows/formulas/CallPreview.h"
#include "windows/formulas/FormulaCell.h"
#include "windows/formulas/write_formula.h"
#include "windows/pickers/ArgumentBoxes.h"
#include "windows/pickers/frmAccountWizard.h"
#include "windows/pickers/frmCurrency.h"
#include "windows/pickers/frmFilelList.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace selfreport {

frmFunctionInput::frmFunctionInput(FormulaCell& cell, QWidget* parent)
    : QDialog(parent)
    , m_cell(cell)
{
    setObjectName("frmFunctionInput");
    setWindowTitle(QStringLiteral("总账取数公式"));
    auto* heading = new QLabel(QStringLiteral("Acct函数表达式："));
    heading->setObjectName("Label1");
    auto* rows = new QGridLayout;
    m_txt = new ArgumentBoxes(this, rows,
                              {{"科目：", true},
                               {"取数类型：", true},
                               {"货币：", true},
                               {"年度："},
                               {"起始期间："},
                               {"截目期间："}});
    m_txt->seek = [this](int index) { openPicker(index); };
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addLayout(rows);
    auto* preview = new CallPreview(m_cell.context);
    m_txt->changed = [this, preview] { preview->textsChanged(m_txt->texts<std::array<std::string, 6>>()); };
    layout->addWidget(preview, 1);
    layout->addWidget(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { cmdXPClose_Click(); }));
    resize(textRoom(*this, 62, 24));
    settle(*this);
}

void frmFunctionInput::openPicker(int index)
{
    const auto handBack = [this, index](const QString& text) { m_txt->box(index).setText(text); };
    if (index == 0)
        frmAccountWizard(m_cell.context, handBack, this).exec();
    else if (index == 1)
        frmFilelList(m_cell.context, handBack, this).exec();
    else if (index == 2)
        frmCurrency(m_cell.context, handBack, this).exec();
}

void frmFunctionInput::setArguments(const std::array<std::string, 6>& arguments)
{
    m_txt->setTexts(arguments);
}

void frmFunctionInput::cmdXPOK_Click()
{
    if (writeCall(m_cell, m_txt->texts<std::array<std::string, 6>>(), acctFormula))
        close();
}

void frmFunctionInput::cmdXPClose_Click()
{
    close();
}

} // namespace selfreport
