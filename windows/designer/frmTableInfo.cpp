#include "windows/designer/frmTableInfo.h"

#include "platform/windows/buttons.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "spreadsheet/view/CellOperations.h"

#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace selfreport {

namespace {

constexpr const char* labels[] = {"总行数：", "总列数：", "标签页：", "标签页："};

template <class Button>
Button* button(const char* name, const char* caption)
{
    auto* made = new Button(QString::fromUtf8(caption));
    made->setObjectName(name);
    return made;
}

} // namespace

frmTableInfo::frmTableInfo(ReportContext& context, spreadsheet::CellOperations& grid, QWidget* parent)
    : QDialog(parent)
    , m_context(context)
    , m_grid(grid)
{
    setObjectName("frmTableInfo");
    setWindowTitle(QStringLiteral("属性"));
    auto* form = new QFormLayout(this);
    for (int box = 0; box < 4; ++box) {
        m_txt[box] = new QLineEdit;
        m_txt[box]->setObjectName("txt_" + QString::number(box));
        form->addRow(QString::fromUtf8(labels[box]), m_txt[box]);
    }
    auto* buttons = new QHBoxLayout;
    auto* ok = button<DefaultButton>("cmdOK", "确定(&O)");
    auto* close = button<QPushButton>("cmdClose", "关闭(&C)");
    close->setAutoDefault(false);
    connect(ok, &QPushButton::clicked, this, &frmTableInfo::cmdOK_Click);
    connect(close, &QPushButton::clicked, this, &frmTableInfo::cmdClose_Click);
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(close);
    form->addRow(buttons);
    getEditInfo();
    m_txt[0]->setFocus();
    settle(*this);
}

void frmTableInfo::getEditInfo()
{
    m_txt[0]->setText(QString::number(m_grid.rowCount()));
    m_txt[1]->setText(QString::number(m_grid.columnCount()));
    m_txt[2]->setText(QString::number(m_grid.sheetCount()));
    m_txt[3]->setText(m_grid.sheetName());
}

bool frmTableInfo::refuse(int box, const QString& why)
{
    m_context.database.tell(Icon::exclamation, why.toStdString());
    m_txt[box]->setFocus();
    m_txt[box]->selectAll();
    return false;
}

bool frmTableInfo::readNumber(int box, int most, int& number)
{
    bool whole = false;
    const QString typed = m_txt[box]->text().normalized(QString::NormalizationForm_KC); // １２ is 12
    number = typed.trimmed().toInt(&whole);
    return (whole && number >= 1 && number <= most) ||
           refuse(box, QString::fromUtf8(labels[box]) + QStringLiteral("请输入 1 到 %1 的整数。").arg(most));
}

void frmTableInfo::cmdOK_Click()
{
    int rows = 0;
    int columns = 0;
    int sheets = 0;
    if (!readNumber(0, spreadsheet::maxRows, rows) || !readNumber(1, spreadsheet::maxColumns, columns) ||
        !readNumber(2, spreadsheet::maxSheets, sheets))
        return;
    int box = 0;
    const spreadsheet::Refusal why = apply(rows, columns, sheets, box);
    if (!why) {
        accept();
        return;
    }
    const QString about = box < 2 ? QString::fromUtf8(labels[box]) : QString();
    refuse(box, about + QString::fromStdString(why.reason()));
}

/// As one undo step. Refused, all is as before. @param box  whose number or text was refused
spreadsheet::Refusal frmTableInfo::apply(int rows, int columns, int sheets, int& box)
{
    const int shown = m_grid.activeSheet();
    spreadsheet::UndoStep step(m_grid.workbook(), "设置表格信息");
    box = 0;
    spreadsheet::Refusal why = m_grid.setRowCount(rows);
    if (!why) {
        box = 1;
        why = m_grid.setColumnCount(columns);
    }
    if (!why) {
        box = 2;
        why = m_grid.setSheetCount(sheets);
    }
    m_grid.setAddressedSheet(m_context.activeSheet);
    // The sheet may be among those taken away; then no name is left to be set.
    if (!why && m_context.activeSheet <= m_grid.sheetCount()) {
        box = 3;
        why = m_grid.setSheetName(m_txt[3]->text());
    }
    if (why) {
        step.takeBack();
        m_grid.setActiveSheet(shown);
    }
    return why;
}

void frmTableInfo::cmdClose_Click()
{
    reject();
}

} // namespace selfreport
