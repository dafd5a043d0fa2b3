#include "windows/designer/EditorStatus.h"

#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QToolButton>

namespace selfreport {

namespace {

/// With grouping commas, as amounts are read; up to ten decimals, without zeros at the end.
QString figure(double number)
{
    QString text = QLocale::c().toString(number, 'f', 10);
    while (text.endsWith('0'))
        text.chop(1);
    if (text.endsWith('.'))
        text.chop(1);
    return text == "-0" ? "0" : text;
}

QString figures(const spreadsheet::SelectionFigures& of)
{
    if (of.filled < 2)
        return {};
    QString text = QStringLiteral("计数=%1").arg(of.filled);
    if (const auto average = of.average())
        text = QStringLiteral("平均值=%1  %2  求和=%3").arg(figure(*average), text, figure(of.sum));
    return text;
}

} // namespace

EditorStatus::EditorStatus(QWidget* parent)
    : QStatusBar(parent)
    , m_offer(offerLine())
    , m_trouble(new QLabel)
    , m_cell(new QLabel)
    , m_mode(new QLabel)
    , m_figures(new QLabel)
{
    setObjectName("statusBar");
    setSizeGripEnabled(false);
    m_cell->setObjectName("lblStatusCell");
    m_mode->setObjectName("lblStatusMode");
    m_figures->setObjectName("lblStatusFigures");
    m_trouble->setObjectName("lblStatusTrouble");
    for (QWidget* const waiting : {static_cast<QWidget*>(m_trouble), m_offer}) {
        addPermanentWidget(waiting);
        waiting->hide();
    }
    addPermanentWidget(m_figures);
    addPermanentWidget(m_mode);
    addPermanentWidget(m_cell);
}

/// With buttons that Enter elsewhere in the window does not press.
QWidget* EditorStatus::offerLine()
{
    auto* line = new QWidget;
    line->setObjectName("lineUnsaved");
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new QLabel(QStringLiteral("有未保存的设计")));
    const auto add = [&](const char* name, const char* caption, void (EditorStatus::*wanted)()) {
        auto* button = new QToolButton;
        button->setObjectName(name);
        button->setText(QString::fromUtf8(caption));
        connect(button, &QToolButton::clicked, this, wanted);
        row->addWidget(button);
    };
    add("cmdRestore", "恢复", &EditorStatus::restoreWanted);
    add("cmdDiscard", "放弃", &EditorStatus::discardWanted);
    return line;
}

void EditorStatus::offerDesign(bool offered)
{
    m_offer->setVisible(offered);
}

void EditorStatus::showTrouble(const QString& why)
{
    m_trouble->setText(why);
    m_trouble->setToolTip(why);
    m_trouble->setVisible(!why.isEmpty());
}

void EditorStatus::showCell(const spreadsheet::SpreadsheetControl& grid, const QString& mode)
{
    m_cell->setText(grid.cells().sheetName() + '!' +
                    QString::fromStdString(spreadsheet::cellName(grid.cursor().activeCell())));
    m_mode->setText(mode);
    m_figures->setText(figures(grid.cursor().selectionFigures()));
}

} // namespace selfreport
