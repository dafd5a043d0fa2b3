#include "windows/designer/EditorStatus.h"

#include "platform/services/Preferences.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace selfreport {

namespace {

/// With grouping commas, as amounts are read, in the digits that a number really has, and without zeros at
/// the end of its decimals.
QString figure(double number)
{
    constexpr int digits = 15, mostDecimals = 10;
    const int whole = number == 0 ? 1 : static_cast<int>(std::floor(std::log10(std::abs(number)))) + 1;
    QLocale grouping = QLocale::c();
    grouping.setNumberOptions(QLocale::DefaultNumberOptions);
    QString text = grouping.toString(number, 'f', std::clamp(digits - whole, 0, mostDecimals));
    while (text.contains('.') && (text.endsWith('0') || text.endsWith('.')))
        text.chop(1);
    return text == "-0" ? "0" : text;
}

using spreadsheet::SelectionFigures;

/// A figure that the user may choose to see, in the order shown.
struct ShownFigure {
    const char* name; ///< of the choice, and kept under it
    const char* caption;
    bool isShownAtFirst;
    bool ofNumbers; ///< told only where numbers are selected
    double (*of)(const SelectionFigures& figures);
};

constexpr ShownFigure shownFigures[] = {
    {"FigureAverage", "平均值", true, true,
     [](const SelectionFigures& f) { return f.average().value_or(0); }},
    {"FigureCount", "计数", true, false, [](const SelectionFigures& f) { return double(f.filled); }},
    {"FigureLargest", "最大值", false, true, [](const SelectionFigures& f) { return f.largest; }},
    {"FigureSmallest", "最小值", false, true, [](const SelectionFigures& f) { return f.smallest; }},
    {"FigureSum", "求和", true, true, [](const SelectionFigures& f) { return f.sum; }},
};

} // namespace

EditorStatus::EditorStatus(QWidget* parent)
    : QStatusBar(parent)
    , m_offer(offerLine())
    , m_trouble(new QLabel)
    , m_cell(new QLabel)
    , m_mode(new QLabel)
    , m_figures(new QLabel)
    , m_diagnostics(new QToolButton)
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
    m_diagnostics->setObjectName("cmdStatusDiagnostics");
    m_diagnostics->setToolTip(QStringLiteral("单击列出取数有疑问的单元格"));
    m_diagnostics->setAutoRaise(true);
    m_diagnostics->hide();
    connect(m_diagnostics, &QToolButton::clicked, this, &EditorStatus::diagnosticsWanted);
    addPermanentWidget(m_diagnostics);
    addPermanentWidget(m_figures);
    addPermanentWidget(m_mode);
    addPermanentWidget(m_cell);
    buildChoices();
}

void EditorStatus::buildChoices()
{
    m_figures->setContextMenuPolicy(Qt::ActionsContextMenu);
    for (const ShownFigure& shown : shownFigures) {
        auto* choice = new QAction(QString::fromUtf8(shown.caption), m_figures);
        choice->setObjectName(shown.name);
        choice->setCheckable(true);
        choice->setChecked(preferences().isOn(shown.name, shown.isShownAtFirst));
        connect(choice, &QAction::toggled, this, [this, name = shown.name](bool isShown) {
            preferences().keepOn(name, isShown);
            showFigures();
        });
        m_figures->addAction(choice);
    }
}

void EditorStatus::addFigureChoices(QMenu& menu)
{
    QMenu* const choices = menu.addMenu(QStringLiteral("状态栏"));
    choices->setObjectName("MenuFigures");
    choices->addActions(m_figures->actions());
}

void EditorStatus::showDiagnostics(int count)
{
    m_diagnostics->setText(QStringLiteral("取数诊断 %1 处").arg(count));
    m_diagnostics->setVisible(count > 0);
}

/// One filled cell is seen anyway.
void EditorStatus::showFigures()
{
    const SelectionFigures selected = m_grid ? m_grid->cursor().selectionFigures() : SelectionFigures();
    QStringList texts;
    const QList<QAction*> choices = m_figures->actions();
    for (int i = 0; selected.filled > 1 && i < choices.size(); ++i) {
        const ShownFigure& shown = shownFigures[i];
        if (choices[i]->isChecked() && (!shown.ofNumbers || selected.numbers > 0))
            texts << QString::fromUtf8(shown.caption) + '=' + figure(shown.of(selected));
    }
    m_figures->setText(texts.join(QStringLiteral("  ")));
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
    m_grid = &grid;
    showFigures();
}

} // namespace selfreport
