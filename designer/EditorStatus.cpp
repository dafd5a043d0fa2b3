#include "designer/EditorStatus.h"

#include "spreadsheet/engine/CellAddress.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QLabel>
#include <QLocale>

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
    , m_cell(new QLabel)
    , m_mode(new QLabel)
    , m_figures(new QLabel)
{
    setObjectName("statusBar");
    setSizeGripEnabled(false);
    m_cell->setObjectName("lblStatusCell");
    m_mode->setObjectName("lblStatusMode");
    m_figures->setObjectName("lblStatusFigures");
    addPermanentWidget(m_figures);
    addPermanentWidget(m_mode);
    addPermanentWidget(m_cell);
}

void EditorStatus::showCell(const spreadsheet::SpreadsheetControl& grid, const QString& mode)
{
    m_cell->setText(grid.sheetName() + '!' +
                    QString::fromStdString(spreadsheet::cellName(grid.activeCell())));
    m_mode->setText(mode);
    m_figures->setText(figures(grid.selectionFigures()));
}

} // namespace selfreport
