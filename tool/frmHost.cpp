#include "tool/frmHost.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/windows/settle.h"
#include "platform/windows/text_room.h"
#include "reports/report_list.h"
#include "state/shared_state.h"
#include "tool/frmRunParameters.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <utility>

namespace selfreport {

frmHost::frmHost(Operations operations, QWidget* parent)
    : QDialog(parent)
    , m_operations(std::move(operations))
    , m_vsf1(new ListGrid)
{
    setObjectName("frmHost");
    setWindowTitle(QStringLiteral("财务报表"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    m_vsf1->setObjectName("vsf1");
    m_vsf1->setColumns({{"编号", 900}, {"报表名称", 6000}});
    connect(m_vsf1, &ListGrid::dblClick, this, &frmHost::cmdRun_Click);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_vsf1);
    auto* row = new QHBoxLayout;
    const auto add = [&](const char* name, const char* caption, void (frmHost::*clicked)()) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, clicked);
        row->addWidget(button);
        return button;
    };
    add("cmdRun", "打开(&O)", &frmHost::cmdRun_Click)->setDefault(true);
    add("cmdDesign", "报表设计(&D)", &frmHost::cmdDesign_Click);
    add("cmdParameters", "运行参数(&P)", &frmHost::cmdParameters_Click);
    row->addStretch();
    layout->addLayout(row);
    resize(textRoom(*this, 75, 22));
    fillMenu();
    m_vsf1->setFocus();
    settle(*this);
}

void frmHost::fillMenu()
{
    const auto reports = sharedContext.database.read<std::vector<MenuReport>>(Icon::exclamation, reportMenu);
    if (!reports)
        return;
    m_vsf1->clearRows();
    for (const MenuReport& report : *reports)
        m_vsf1->addRow(QString::number(report.id) + '\t' +
                       QString::fromStdString(report.name).replace('\t', ' '));
}

void frmHost::cmdDesign_Click()
{
    m_operations.design();
    fillMenu();
}

void frmHost::cmdRun_Click()
{
    if (m_vsf1->row() > 0)
        m_operations.use(m_vsf1->text(m_vsf1->row(), 0).toInt());
}

void frmHost::cmdParameters_Click()
{
    frmRunParameters(this).exec();
}

} // namespace selfreport
