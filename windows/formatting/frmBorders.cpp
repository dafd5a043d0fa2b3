#include "windows/formatting/frmBorders.h"

#include "platform/services/ColourDialog.h"
#include "platform/windows/buttons.h"
#include "platform/windows/named_list.h"
#include "platform/windows/settle.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QComboBox>
#include <QFormLayout>
#include <QPixmap>
#include <QPushButton>

namespace selfreport {

namespace {

using spreadsheet::BorderLine;
using spreadsheet::BorderLines;
using spreadsheet::LineStyle;

constexpr struct {
    const char* shown;
    BorderLines (*lines)(const BorderLine& line);
    bool takesLine;
} edges[] = {
    {"外边框", &BorderLines::outline, true},
    {"内部", &BorderLines::inside, true},
    {"全部", &BorderLines::all, true},
    {"无", [](const BorderLine&) { return BorderLines::all({}); }, false},
};

constexpr struct {
    const char* shown;
    LineStyle style;
} lines[] = {
    {"细线", LineStyle::fineSolid}, {"普通线", LineStyle::solid}, {"粗线", LineStyle::thick},
    {"双线", LineStyle::doubled},   {"虚线", LineStyle::dash},    {"点线", LineStyle::dot},
};
constexpr int firstLine = 1; // "普通线"

} // namespace

frmBorders::frmBorders(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_edges(namedList("edges"))
    , m_line(namedList("line"))
    , m_colour(new QPushButton(QStringLiteral("选择")))
{
    setObjectName("frmBorders");
    setWindowTitle(QStringLiteral("边框"));
    for (const auto& edge : edges)
        m_edges->addItem(QString::fromUtf8(edge.shown));
    for (const auto& line : lines)
        m_line->addItem(QString::fromUtf8(line.shown));
    m_line->setCurrentIndex(firstLine);
    m_colour->setObjectName("colour");
    m_colour->setAutoDefault(false);
    showColour();
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("边框(&B)："), m_edges);
    form->addRow(QStringLiteral("线条(&L)："), m_line);
    form->addRow(QStringLiteral("颜色(&C)："), m_colour);
    form->addRow(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { close(); }));
    connect(m_edges, &QComboBox::currentIndexChanged, this, &frmBorders::edgesChosen);
    connect(m_colour, &QPushButton::clicked, this, &frmBorders::chooseColour);
    m_edges->setFocus();
    settle(*this);
}

void frmBorders::edgesChosen()
{
    const bool takesLine = edges[m_edges->currentIndex()].takesLine;
    m_line->setEnabled(takesLine);
    m_colour->setEnabled(takesLine);
}

void frmBorders::chooseColour()
{
    if (const auto colour = ColourDialogInUse::current().choose(m_chosen)) {
        m_chosen = *colour;
        showColour();
    }
}

void frmBorders::showColour()
{
    QPixmap sample(m_colour->iconSize());
    sample.fill(QColor(static_cast<QRgb>(m_chosen)));
    m_colour->setIcon(sample);
}

void frmBorders::cmdXPOK_Click()
{
    drawBorders(m_grid,
                edges[m_edges->currentIndex()].lines({lines[m_line->currentIndex()].style, m_chosen}));
    close();
}

} // namespace selfreport
