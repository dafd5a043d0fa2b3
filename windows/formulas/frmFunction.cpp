#include "windows/formulas/frmFunction.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "windows/formulas/frmFunctionInput.h"
#include "windows/formulas/frmFunctionInput1.h"

#include <QTabWidget>
#include <QVBoxLayout>

namespace selfreport {

frmFunction::frmFunction(FormulaCell& cell, QWidget* parent)
    : QDialog(parent)
    , m_cell(cell)
    , m_vsf1(new ListGrid)
{
    setObjectName("frmFunction");
    setWindowTitle(QStringLiteral("选择函数"));
    m_vsf1->setObjectName("vsf1");
    m_vsf1->setColumns({{"", 900}, {"函数名称", 2145}, {"说明", 1935}});
    m_vsf1->addRow(QStringLiteral("1\tAcct\t总账取数公式"));
    m_vsf1->addRow(QStringLiteral("2\tREF_F\t表间取数公式"));
    connect(m_vsf1, &ListGrid::dblClick, this, &frmFunction::vsf1_DblClick);
    auto* tabs = new QTabWidget;
    tabs->setObjectName("SSTab1");
    tabs->addTab(m_vsf1, QStringLiteral("函数"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(okAndClose(
        "打开(&O)", [this] { cmdXPOK_Click(); }, "关闭(&E)", [this] { cmdXPClose_Click(); }));
    resize(textRoom(*this, 54, 13));
    m_vsf1->setFocus();
    settle(*this);
}

void frmFunction::cmdXPOK_Click()
{
    const QString chosen = m_vsf1->text(m_vsf1->row(), 0);
    // The chooser gives way to the dialog but stays until it is closed, so that whoever opened it waits.
    QWidget* const owner = parentWidget();
    hide();
    if (chosen == "1")
        frmFunctionInput(m_cell, owner).exec();
    else
        frmFunctionInput1(m_cell, owner).exec();
    close();
}

void frmFunction::cmdXPClose_Click()
{
    close();
}

void frmFunction::vsf1_DblClick()
{
    cmdXPOK_Click();
}

} // namespace selfreport
