#include "windows/printing/frmPrintOptions.h"

#include "platform/services/Dialogs.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/PrintedGrid.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>
#include <QSpinBox>

namespace selfreport {

namespace {

using spreadsheet::PrintSettings;

const spreadsheet::Sheet& activeSheet(PrintedGrid& grid)
{
    spreadsheet::Workbook& workbook = grid.workbook();
    return workbook.sheet(workbook.activeSheet());
}

QSpinBox* rowField(const char* name, int row, int rowCount)
{
    auto* const field = new QSpinBox;
    field->setObjectName(QLatin1String(name));
    field->setRange(0, rowCount);
    field->setSpecialValueText(QStringLiteral("无"));
    field->setValue(row);
    return field;
}

QCheckBox* checkBox(const char* name, const char* caption, bool on)
{
    auto* const box = new QCheckBox(QString::fromUtf8(caption));
    box->setObjectName(QLatin1String(name));
    box->setChecked(on);
    return box;
}

void toggle(spreadsheet::PrintSettings& print, int column, int row)
{
    const bool marked = print.rowBreaks.contains(row) || print.columnBreaks.contains(column);
    print.rowBreaks.erase(row);
    print.columnBreaks.erase(column);
    if (!marked && row > 1)
        print.rowBreaks[row] = true;
    if (!marked && column > 1)
        print.columnBreaks[column] = true;
}

} // namespace

frmPrintOptions::frmPrintOptions(PrintedGrid& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
{
    setObjectName("frmPrintOptions");
    setWindowTitle(QStringLiteral("打印选项"));
    const spreadsheet::SheetSettings& sheet = activeSheet(grid).settings();
    const PrintSettings& print = sheet.print;
    txtTitleTop = rowField("txtTitleTop", print.titleTop, sheet.rowCount);
    txtTitleBottom = rowField("txtTitleBottom", print.titleBottom, sheet.rowCount);
    chkFitWidth = checkBox("chkFitWidth", "缩小到一页宽", print.fitWidth);
    chkCentredAcross = checkBox("chkCentredAcross", "水平居中", print.centredAcross);
    chkCentredDown = checkBox("chkCentredDown", "垂直居中", print.centredDown);
    chkStamp = checkBox("chkStamp", "打印戳记(时间、操作员、账套、取数诊断)", print.stamp);

    auto* const form = new QFormLayout(this);
    form->addRow(QStringLiteral("每页重复的首行:"), txtTitleTop);
    form->addRow(QStringLiteral("每页重复的末行:"), txtTitleBottom);
    for (QCheckBox* const box : {chkFitWidth, chkCentredAcross, chkCentredDown, chkStamp})
        form->addRow(box);
    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("确定(&Q)"), QDialogButtonBox::AcceptRole)->setObjectName("cmdXPOK");
    buttons->addButton(QStringLiteral("取消(&E)"), QDialogButtonBox::RejectRole)->setObjectName("cmdXPClose");
    connect(buttons, &QDialogButtonBox::accepted, this, &frmPrintOptions::cmdXPOK_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
    settle(*this);
}

void frmPrintOptions::cmdXPOK_Click()
{
    const int top = txtTitleTop->value();
    const int bottom = txtTitleBottom->value();
    if ((top == 0) != (bottom == 0) || top > bottom) {
        dialogs().message(Icon::exclamation, m_grid.context.title, "重复的末行不能在首行之前!");
        txtTitleBottom->setFocus();
        return;
    }
    changeActiveSheetsPrint(m_grid.workbook(), [&](PrintSettings& print) {
        print.titleTop = top;
        print.titleBottom = bottom;
        print.fitWidth = chkFitWidth->isChecked();
        print.centredAcross = chkCentredAcross->isChecked();
        print.centredDown = chkCentredDown->isChecked();
        print.stamp = chkStamp->isChecked();
    });
    accept();
}

void togglePageBreaks(PrintedGrid& grid, int column, int row)
{
    changeActiveSheetsPrint(grid.workbook(), [&](PrintSettings& print) { toggle(print, column, row); });
}

void togglePageBreaksAtSelection(PrintedGrid& grid)
{
    const spreadsheet::CellRange block = grid.selectedBlock();
    togglePageBreaks(grid, block.left, block.top);
}

} // namespace selfreport
