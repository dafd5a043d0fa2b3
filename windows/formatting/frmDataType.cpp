#include "windows/formatting/frmDataType.h"

#include "platform/windows/buttons.h"
#include "platform/windows/named_list.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QComboBox>
#include <QFormLayout>

namespace selfreport {

using spreadsheet::CellType;

namespace {

constexpr struct {
    const char* shown;
    CellType type;
} types[] = {
    {"日期型", CellType::date},           {"字符型", CellType::edit},
    {"货币型", CellType::currency},       {"数字型", CellType::number},
    {"百分比", CellType::percent},        {"科学计数法", CellType::scientific},
    {"静态文本框", CellType::staticText}, {"时间型", CellType::time},
    {"按钮型", CellType::button},         {"下拉框", CellType::dropDown},
    {"复选框", CellType::checkBox},
};

constexpr int maxDecimals = 15;
constexpr int firstType = 1;     // "字符型"
constexpr int firstDecimals = 2; // "2"

} // namespace

frmDataType::frmDataType(spreadsheet::SpreadsheetControl& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
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
}

void frmDataType::Form_Load()
{
    for (int decimals = 0; decimals <= maxDecimals; ++decimals)
        m_PC[0]->addItem(QString::number(decimals));
    for (const auto& [shown, type] : types)
        m_PC[1]->addItem(QString::fromUtf8(shown), static_cast<int>(type));
    m_PC[0]->setCurrentIndex(firstDecimals);
    m_PC[1]->setCurrentIndex(firstType);
}

void frmDataType::PC_SelChange(int element)
{
    if (element == 1)
        m_PC[0]->setEnabled(m_PC[1]->currentData().toInt() == static_cast<int>(CellType::number));
}

void frmDataType::cmdXPOK_Click()
{
    const int code = m_PC[1]->currentData().toInt();
    const auto decimals = static_cast<std::uint8_t>(m_PC[0]->currentIndex());
    setCellType(m_grid, static_cast<CellType>(code),
                m_PC[0]->isEnabled() ? std::optional(decimals) : std::nullopt);
    close();
}

} // namespace selfreport
