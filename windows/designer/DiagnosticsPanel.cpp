#include "windows/designer/DiagnosticsPanel.h"

#include "platform/list_grid/ListGrid.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace selfreport {

namespace {

QString placeName(const spreadsheet::CallPlace& place, const spreadsheet::Workbook& workbook)
{
    return QString::fromStdString(workbook.sheet(place.sheet).name()) + '!' +
           QString::fromStdString(spreadsheet::cellName({place.column, place.row}));
}

} // namespace

DiagnosticsPanel::DiagnosticsPanel(QWidget* parent)
    : QWidget(parent)
    , m_heading(new QLabel)
    , m_list(new ListGrid)
{
    setObjectName("panelDiagnostics");
    m_heading->setObjectName("lblDiagnostics");
    m_list->setObjectName("listDiagnostics");
    auto* close = new QToolButton;
    close->setObjectName("cmdCloseDiagnostics");
    close->setText(QStringLiteral("关闭"));
    close->setAutoRaise(true);
    connect(close, &QToolButton::clicked, this, [this] {
        m_isClosed = true;
        hide();
    });
    auto* top = new QHBoxLayout;
    top->setContentsMargins(6, 0, 0, 0);
    top->addWidget(m_heading, 1);
    top->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(m_list);
    connect(m_list, &ListGrid::dblClick, this, [this] {
        const auto line = static_cast<std::size_t>(m_list->row() - 1);
        if (m_showsDiagnostics && line < m_diagnostics.size())
            Q_EMIT chosen(m_diagnostics[line]);
    });
    hide();
}

void DiagnosticsPanel::setDiagnostics(const std::vector<CellDiagnostic>& diagnostics,
                                      const spreadsheet::Workbook& workbook)
{
    QStringList lines; // a sheet may have got another name
    for (const CellDiagnostic& diagnostic : diagnostics)
        lines.append(placeName(diagnostic.place, workbook) + '\t' +
                     ListGrid::columnText(diagnostic.function) + '\t' +
                     ListGrid::columnText(diagnostic.reason));
    m_diagnostics = diagnostics;
    if (m_showsDiagnostics && lines == m_lines && m_list->rowCount() > 1)
        return;
    m_lines = lines;
    m_showsDiagnostics = true;
    m_list->setColumns({{"单元格", 1800}, {"取数函数", 1300}, {"原因", 8000}});
    m_list->clearRows();
    for (const QString& line : lines)
        m_list->addRow(line);
    showHeading(QStringLiteral("取数诊断"), diagnostics.size());
    setVisible(!diagnostics.empty() && !m_isClosed);
}

void DiagnosticsPanel::open()
{
    m_isClosed = false;
    show();
}

void DiagnosticsPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (std::exchange(m_hasOpened, true))
        return;
    QTimer::singleShot(0, this, [this] { // once all is laid out
        if (auto* const splitter = qobject_cast<QSplitter*>(parentWidget())) {
            const int own = heightAtFirst();
            splitter->setSizes({splitter->height() - own, own});
        }
    });
}

int DiagnosticsPanel::heightAtFirst() const
{
    constexpr int fewest = 2, most = 5; // lines
    const int lines = std::clamp(m_list->rowCount() - 1, fewest, most);
    return layout()->itemAt(0)->sizeHint().height() + m_list->horizontalHeader()->height() +
           lines * m_list->verticalHeader()->defaultSectionSize() + 2 * m_list->frameWidth();
}

void DiagnosticsPanel::showHeading(const QString& about, std::size_t count)
{
    m_heading->setText(QStringLiteral("%1：%2 处").arg(about).arg(count));
}

void DiagnosticsPanel::showNotices(const QString& heading, const std::vector<std::string>& notices)
{
    m_showsDiagnostics = false;
    const std::string name = heading.toStdString();
    m_list->setColumns({{name.c_str(), 11000}});
    m_list->clearRows();
    for (const std::string& notice : notices)
        m_list->addRow(ListGrid::columnText(notice));
    showHeading(heading, notices.size());
    setVisible(!notices.empty());
}

} // namespace selfreport
