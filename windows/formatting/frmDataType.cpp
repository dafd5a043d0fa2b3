#include "windows/formatting/frmDataType.h"

#include "platform/windows/buttons.h"
#include "platform/windows/named_list.h"
#include "platform/windows/settle.h"
#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QComboBox>
#include <QFormLayout>

namespace selfreport {

using spreadsheet::CellType;

namespace {

constexpr int maxDecimals = 15;
constexpr int firstDecimals = 2;

} // namespace

frmDataType::frmDataType(spreadsheet::SpreadsheetControl& grid, spreadsheet::CellAddress cell,
                         QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , m_cell(cell)
    , m_PC{namedList("PC_0"), namedList("PC_1")}
{
    setObjectName("frmDataType");
    setWindowTitle(QStringLiteral("数据类型"));
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("数据类型："), m_PC[1]);
    form->addRow(QStringLiteral("小数点位数："), m_PC[0]);
    form->addRow(okAndClose(
        "确定(&Q)", [this] { cmdXPOK_Click(); }, "关闭(&E)", [this] { close(); }));
    for (int element : {0, 1})
        connect(m_PC[element], &QComboBox::currentIndexChanged, this, [=, this] { PC_SelChange(element); });
    Form_Load();
    m_PC[1]->setFocus();
    settle(*this);
}

void frmDataType::Form_Load()
{
    for (int decimals = 0; decimals <= maxDecimals; ++decimals)
        m_PC[0]->addItem(QString::number(decimals));
    for (const spreadsheet::CellTypeRow& row : spreadsheet::cellTypes())
        m_PC[1]->addItem(QString::fromUtf8(row.name), static_cast<int>(row.type));
    m_PC[0]->setCurrentIndex(firstDecimals);
    m_PC[1]->setCurrentIndex(m_PC[1]->findData(static_cast<int>(CellType::edit)));
}

CellType frmDataType::chosenType() const
{
    return static_cast<CellType>(m_PC[1]->currentData().toInt());
}

void frmDataType::PC_SelChange(int element)
{
    if (element == 1)
        m_PC[0]->setEnabled(spreadsheet::cellTypeRow(chosenType()).takesDecimals);
}

void frmDataType::cmdXPOK_Click()
{
    const auto decimals = static_cast<std::uint8_t>(m_PC[0]->currentIndex());
    setCellType(m_grid, m_cell, chosenType(), m_PC[0]->isEnabled() ? std::optional(decimals) : std::nullopt);
    close();
}

} // namespace selfreport
