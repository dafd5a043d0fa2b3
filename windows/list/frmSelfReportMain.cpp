#include "windows/list/frmSelfReportMain.h"

#include "platform/list_grid/ListGrid.h"
#include "platform/windows/CancellableWait.h"
#include "platform/windows/ProportionalLayout.h"
#include "platform/windows/settle.h"
#include "reports/report_list.h"
#include "reports/report_texts.h"
#include "state/report_procedures.h"
#include "windows/list/report_rows.h"

#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include <utility>

namespace selfreport {

namespace {

constexpr QSize board(12300, 7500); // twips: all columns of the list show

} // namespace

frmSelfReportMain::frmSelfReportMain(ReportContext& context, std::function<void()> showDesigner,
                                     QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_showDesigner(std::move(showDesigner))
    , m_vsf1(new ListGrid)
    , m_warning(new QLabel)
{
    setObjectName("frmSelfReportMain");
    setWindowTitle(QStringLiteral("自定义报表"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    setLayout(new ProportionalLayout(this, board));
    buildList();
    buildButtons();
    resize(sizeHint()); // the toolkit would open it smaller on small screens
    m_vsf1->setFocus();
    getReport();
    settle(*this);
}

void frmSelfReportMain::buildList()
{
    m_vsf1->setObjectName("vsf1");
    m_vsf1->setColumns(
        {{"", 900}, {"报表名称", 4140}, {"上次修改人", 2910}, {"上次修改时间", 1845}, {"是否显示", 1305}});
    connect(m_vsf1, &ListGrid::dblClick, this, &frmSelfReportMain::vsf1_DblClick);
    auto* page = new QWidget;
    (new QVBoxLayout(page))->addWidget(m_vsf1);
    auto* tabs = new QTabWidget;
    tabs->setObjectName("SSTab1");
    tabs->addTab(page, windowTitle());
    static_cast<ProportionalLayout*>(layout())->place(tabs, {120, 120, 12060, 6600});
}

void frmSelfReportMain::buildButtons()
{
    m_warning->setObjectName("lblWarning");
    m_warning->setWordWrap(true);
    static_cast<ProportionalLayout*>(layout())->place(m_warning, {4620, 6900, 4590, 450});
    static const struct {
        const char *name, *caption;
        int left; // twips
        void (*clicked)(frmSelfReportMain&);
    } buttons[] = {
        {"cmd_0", "新增(&N)", 120, [](auto& window) { window.cmd_Click(0); }},
        {"cmd_1", "修改(&U)", 1620, [](auto& window) { window.cmd_Click(1); }},
        {"cmd_2", "删除(&D)", 3120, [](auto& window) { window.cmd_Click(2); }},
        {"cmdXPOK", "打开(&O)", 9330, [](auto& window) { window.cmdXPOK_Click(); }},
        {"cmdXPClose", "关闭(&E)", 10830, [](auto& window) { window.cmdXPClose_Click(); }},
    };
    for (const auto& [name, caption, left, clicked] : buttons) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, handler = clicked] { handler(*this); });
        static_cast<ProportionalLayout*>(layout())->place(button, {left, 6900, 1350, 450});
    }
    findChild<QPushButton*>("cmdXPOK")->setDefault(true); // Enter in the list opens
}

bool frmSelfReportMain::getReport()
{
    struct Listing {
        std::vector<ListedReport> reports;
        std::string warning;
    };
    const CancellableWait waiting(QStringLiteral("正在读取报表列表"), this);
    const auto listing = m_context.database.read<Listing>(Icon::exclamation, [](Connection& open) {
        std::vector<ListedReport> reports = storedReports(open);
        return Listing{std::move(reports), collationWarning(open)};
    });
    if (!listing)
        return false;
    m_warning->setText(QString::fromStdString(listing->warning));
    m_vsf1->clearRows();
    for (const ListedReport& report : listing->reports)
        m_vsf1->addRow(reportRow(report), reportSortRow(report));
    return true;
}

bool frmSelfReportMain::hasCurrentReport() const
{
    return m_vsf1->rowCount() > 1 && m_vsf1->row() != 0;
}

bool frmSelfReportMain::update()
{
    if (!hasCurrentReport())
        return false;
    m_context.report.id = m_vsf1->text(m_vsf1->row(), 0).toInt();
    return true;
}

/// False after telling that another user has deleted it, or why that is not known.
bool frmSelfReportMain::isStillStored()
{
    return m_context.database.run(Icon::exclamation, [id = m_context.report.id](Connection& open) {
        if (!isReportStored(open, id))
            throw ReportMissing();
    });
}

bool frmSelfReportMain::delete_()
{
    return hasCurrentReport() && dialogs().question(m_context.title, "确定要删除吗?") && update() &&
           deleteInfo(m_context);
}

void frmSelfReportMain::cmd_Click(int index)
{
    switch (index) {
    case 0:
        m_context.report.editFlag = 0;
        m_showDesigner();
        break;
    case 1:
        if (update() && isStillStored()) {
            m_context.report.editFlag = 1;
            m_showDesigner();
        }
        break;
    case 2:
        if (delete_()) {
            m_context.database.tell(Icon::information, "删除成功!");
            m_vsf1->removeRow(m_vsf1->row());
        }
        break;
    }
}

void frmSelfReportMain::cmdXPOK_Click()
{
    cmd_Click(1);
}

void frmSelfReportMain::cmdXPClose_Click()
{
    close();
}

void frmSelfReportMain::vsf1_DblClick()
{
    cmdXPOK_Click();
}

} // namespace selfreport
