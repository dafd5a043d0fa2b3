#include "windows/formatting/frmCellBorder.h"

#include "platform/windows/buttons.h"
#include "platform/windows/named_list.h"
#include "platform/windows/settle.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QComboBox>
#include <QFormLayout>

namespace selfreport {

namespace {

struct Entry {
    const char* shown;
    int value;
};

constexpr Entry sides[] = {
    {"无", spreadsheet::noSide},  {"左", spreadsheet::leftSide},   {"右", spreadsheet::rightSide},
    {"上", spreadsheet::topSide}, {"下", spreadsheet::bottomSide}, {"全部", spreadsheet::allSides},
};
constexpr int firstSides = 5; // "全部"

// The values are those of spreadsheet::LineStyle.
constexpr Entry styles[] = {
    {"No border", 0},
    {"Solid border ", 1},
    {"Dash border ", 2},
    {"Dot border ", 3},
    {"Dash dot border ", 4},
    {"Dash dot dot border ", 5},
    {"Erases border and grid ", 6},
    {"Fine solid border ", 7},
    {"Fine dash border ", 8},
    {"Fine dot border ", 9},
    {"Fine dash dot border ", 10},
    {"Fine dash dot dot border ", 11},
};
constexpr int firstStyle = 1; // "Solid border "

} // namespace

frmCellBorder::frmCellBorder(spreadsheet::SpreadsheetControl& grid, spreadsheet::CellAddress cell,
                             QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_cell(cell)
    , m_PC{namedList("PC_0"), namedList("PC_1")}
{
    setObjectName("frmCellBorder");
    setWindowTitle(QStringLiteral("边框设置"));
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("边  框："), m_PC[1]);
    form->addRow(QStringLiteral("线   条："), m_PC[0]);
    form->addRow(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "取消(&E)", [this] { close(); }));
    Form_Load();
    m_PC[1]->setFocus();
    settle(*this);
}

void frmCellBorder::Form_Load()
{
    for (const Entry& side : sides)
        m_PC[1]->addItem(QString::fromUtf8(side.shown), side.value);
    for (const Entry& style : styles)
        m_PC[0]->addItem(QString::fromUtf8(style.shown), style.value);
    m_PC[1]->setCurrentIndex(firstSides);
    m_PC[0]->setCurrentIndex(firstStyle);
}

void frmCellBorder::cmdXPOK_Click()
{
    drawBorders(m_grid, m_cell, m_PC[1]->currentData().toInt(),
                static_cast<spreadsheet::LineStyle>(m_PC[0]->currentData().toInt()));
    close();
}

} // namespace selfreport
