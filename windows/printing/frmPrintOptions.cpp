#include "windows/printing/frmPrintOptions.h"

#include "platform/services/Dialogs.h"
#include "platform/windows/number_fields.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "spreadsheet/cells/papers.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/print_area_text.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/print_sheet.h"
#include "windows/printing/PrintedGrid.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>

#include <cmath>
#include <tuple>

namespace selfreport {

// Everything is checked before anything is taken, so that a refused field leaves the report as it was and
// gets the focus. The settings are the sheet's but for the paper, which lies in the printer for the whole
// report.

namespace {

using spreadsheet::PrintSettings;

constexpr double millimetresPerTwip = 25.4 / spreadsheet::twipsPerInch;
constexpr int printersPaper = -1; // data of the entry; that of the other entries is an index into papers()
constexpr int ownPaper = -2;

/// Letters, digits and signs of full width as plain ones.
std::string plainText(const QLineEdit& field)
{
    return field.text().normalized(QString::NormalizationForm_KC).toStdString();
}

/// @param zero  what is shown for 0; empty: nothing else
QSpinBox* numberField(const char* name, int value, int least, int most, const char* zero = "")
{
    auto* const field = new WholeNumberField;
    field->setObjectName(QLatin1String(name));
    field->setRange(least, most);
    field->setSpecialValueText(QString::fromUtf8(zero));
    field->setValue(value);
    return field;
}

QDoubleSpinBox* millimetreField(const char* name, int twips, double least, double most)
{
    auto* const field = new DecimalField;
    field->setObjectName(QLatin1String(name));
    field->setDecimals(1);
    field->setRange(least, most);
    field->setSuffix(QStringLiteral(" 毫米"));
    field->setValue(twips * millimetresPerTwip);
    return field;
}

template <class Widget>
Widget* named(const char* name, const QString& text)
{
    auto* const widget = new Widget(text);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QCheckBox* checkBox(const char* name, const char* caption, bool on)
{
    auto* const box = named<QCheckBox>(name, QString::fromUtf8(caption));
    box->setChecked(on);
    return box;
}

QFormLayout* frameAt(QGridLayout& places, int row, int column, const char* caption)
{
    auto* const frame = new QGroupBox(QString::fromUtf8(caption));
    places.addWidget(frame, row, column);
    return new QFormLayout(frame);
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
    const spreadsheet::Workbook& workbook = grid.workbook();
    const spreadsheet::SheetSettings& sheet = workbook.sheet(workbook.activeSheet()).settings();
    auto* const places = new QGridLayout(this);
    buildScale(sheet.print, *places);
    buildArea(sheet.print, sheet.rowCount, *places);
    buildPaper(sheet.print, *places);
    buildPages(sheet.print, *places);
    buildButtons(*places);
    settle(*this);
}

void frmPrintOptions::buildScale(const PrintSettings& print, QGridLayout& places)
{
    QFormLayout* const form = frameAt(places, 0, 0, "缩放");
    optScale = named<QRadioButton>("optScale", QStringLiteral("缩放比例(%):"));
    optFit = named<QRadioButton>("optFit", QStringLiteral("缩小到,页宽:"));
    txtScale =
        numberField("txtScale", print.scale, spreadsheet::smallestPrintScale, spreadsheet::largestPrintScale);
    const bool fits = print.isFitted();
    const int most = spreadsheet::mostFittedPages;
    txtFitAcross = numberField("txtFitAcross", fits ? print.fitAcross : 1, 0, most, "不限");
    txtFitDown = numberField("txtFitDown", print.fitDown, 0, most, "不限");
    form->addRow(optScale, txtScale);
    form->addRow(optFit, txtFitAcross);
    form->addRow(QStringLiteral("页高:"), txtFitDown);
    (fits ? optFit : optScale)->setChecked(true);
    const auto choose = [this] {
        txtScale->setEnabled(optScale->isChecked());
        txtFitAcross->setEnabled(optFit->isChecked());
        txtFitDown->setEnabled(optFit->isChecked());
    };
    connect(optFit, &QRadioButton::toggled, this, choose);
    choose();
}

void frmPrintOptions::buildArea(const PrintSettings& print, int rowCount, QGridLayout& places)
{
    QFormLayout* const form = frameAt(places, 0, 1, "打印区域和标题");
    txtPrintArea = named<QLineEdit>("txtPrintArea", QString::fromStdString(areaText(print.area)));
    txtPrintArea->setPlaceholderText(QStringLiteral("全部"));
    auto* const fromSelection = named<QPushButton>("cmdArea", QStringLiteral("用选定单元格"));
    fromSelection->setAutoDefault(false);
    connect(fromSelection, &QPushButton::clicked, this, &frmPrintOptions::cmdArea_Click);
    auto* const area = new QHBoxLayout;
    area->addWidget(txtPrintArea, 1);
    area->addWidget(fromSelection);
    form->addRow(QStringLiteral("打印区域:"), area);
    txtTitleTop = numberField("txtTitleTop", print.titleTop, 0, rowCount, "无");
    txtTitleBottom = numberField("txtTitleBottom", print.titleBottom, 0, rowCount, "无");
    txtTitleColumns = named<QLineEdit>(
        "txtTitleColumns", QString::fromStdString(columnsText(print.titleLeft, print.titleRight)));
    txtTitleColumns->setPlaceholderText(QStringLiteral("无"));
    form->addRow(QStringLiteral("每页重复的首行:"), txtTitleTop);
    form->addRow(QStringLiteral("每页重复的末行:"), txtTitleBottom);
    form->addRow(QStringLiteral("每页重复的列:"), txtTitleColumns);
}

void frmPrintOptions::buildPaper(const PrintSettings& print, QGridLayout& places)
{
    QFormLayout* const form = frameAt(places, 1, 0, "整张报表的纸张");
    cboPaper = new QComboBox;
    cboPaper->setObjectName("cboPaper");
    cboPaper->addItem(QStringLiteral("打印机的纸张"), printersPaper);
    const auto all = spreadsheet::papers();
    for (std::size_t i = 0; i < all.size(); ++i)
        cboPaper->addItem(QString::fromUtf8(all[i].caption), static_cast<int>(i));
    cboPaper->addItem(QStringLiteral("自定义"), ownPaper);
    constexpr double least = 20, most = 2000;
    const spreadsheet::PageRequest usual; // an own size begins with its paper
    const bool isOwn = print.paperWidth > 0;
    txtPaperWidth =
        millimetreField("txtPaperWidth", isOwn ? print.paperWidth : usual.paperWidth, least, most);
    txtPaperHeight =
        millimetreField("txtPaperHeight", isOwn ? print.paperHeight : usual.paperHeight, least, most);
    form->addRow(QStringLiteral("纸张:"), cboPaper);
    form->addRow(QStringLiteral("宽:"), txtPaperWidth);
    form->addRow(QStringLiteral("高:"), txtPaperHeight);
    const spreadsheet::Paper* const paper = spreadsheet::paperOfSize(print.paperWidth, print.paperHeight);
    cboPaper->setCurrentIndex(cboPaper->findData(print.paperWidth == 0 ? printersPaper
                                                 : paper               ? static_cast<int>(paper - all.data())
                                                                       : ownPaper));
    connect(cboPaper, &QComboBox::currentIndexChanged, this, &frmPrintOptions::cboPaper_Change);
    cboPaper_Change();
}

/// The fields show the chosen paper's size; that of an own one is typed.
void frmPrintOptions::cboPaper_Change()
{
    const int chosen = cboPaper->currentData().toInt();
    txtPaperWidth->setEnabled(chosen == ownPaper);
    txtPaperHeight->setEnabled(chosen == ownPaper);
    if (chosen < 0)
        return;
    const spreadsheet::Paper& paper = spreadsheet::papers()[static_cast<std::size_t>(chosen)];
    txtPaperWidth->setValue(paper.millimetresWide);
    txtPaperHeight->setValue(paper.millimetresHigh);
}

void frmPrintOptions::buildPages(const PrintSettings& print, QGridLayout& places)
{
    QFormLayout* const form = frameAt(places, 1, 1, "页");
    cboOrder = new QComboBox;
    cboOrder->setObjectName("cboOrder");
    cboOrder->addItems({QStringLiteral("先行后列"), QStringLiteral("先列后行")});
    cboOrder->setCurrentIndex(print.downFirst ? 1 : 0);
    txtFirstPage = numberField("txtFirstPage", print.firstPage, 1, spreadsheet::largestFirstPage);
    constexpr double farthest = 5;
    txtTextDistance = millimetreField("txtTextDistance", print.textDistance, 0, farthest);
    txtTextDistance->setSingleStep(0.1);
    chkCentredAcross = checkBox("chkCentredAcross", "水平居中", print.centredAcross);
    chkCentredDown = checkBox("chkCentredDown", "垂直居中", print.centredDown);
    chkStamp = checkBox("chkStamp", "打印戳记(时间、操作员、账套、取数诊断)", print.stamp);
    form->addRow(QStringLiteral("打印顺序:"), cboOrder);
    form->addRow(QStringLiteral("起始页码:"), txtFirstPage);
    form->addRow(QStringLiteral("文字与表线的距离:"), txtTextDistance);
    auto* const centred = new QHBoxLayout;
    centred->addWidget(chkCentredAcross);
    centred->addWidget(chkCentredDown);
    form->addRow(centred);
    chkStrict = checkBox("chkStrict", "严格打印(有不存在的科目、项目等或取数失败时先询问)", print.strict);
    form->addRow(chkStamp);
    form->addRow(chkStrict);
}

void frmPrintOptions::buildButtons(QGridLayout& places)
{
    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("确定(&Q)"), QDialogButtonBox::AcceptRole)->setObjectName("cmdXPOK");
    buttons->addButton(QStringLiteral("取消(&E)"), QDialogButtonBox::RejectRole)->setObjectName("cmdXPClose");
    connect(buttons, &QDialogButtonBox::accepted, this, &frmPrintOptions::cmdXPOK_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    places.addWidget(buttons, 2, 0, 1, 2);
}

void frmPrintOptions::cmdArea_Click()
{
    txtPrintArea->setText(QString::fromStdString(areaText(m_grid.selectedRanges())));
}

bool frmPrintOptions::refuse(const char* reason, QWidget& field)
{
    dialogs().message(Icon::exclamation, m_grid.context.title, reason);
    field.setFocus();
    return false;
}

bool frmPrintOptions::takeTitles(PrintSettings& print)
{
    print.titleTop = txtTitleTop->value();
    print.titleBottom = txtTitleBottom->value();
    if ((print.titleTop == 0) != (print.titleBottom == 0) || print.titleTop > print.titleBottom)
        return refuse("重复的末行不能在首行之前!", *txtTitleBottom);
    const auto columns = readColumns(plainText(*txtTitleColumns));
    if (!columns)
        return refuse("重复的列写作 A 或 A:B!", *txtTitleColumns);
    std::tie(print.titleLeft, print.titleRight) = *columns;
    return true;
}

static void takePaper(PrintSettings& print, const PrintSettings& other)
{
    print.paperWidth = other.paperWidth;
    print.paperHeight = other.paperHeight;
}

bool frmPrintOptions::take(PrintSettings& print)
{
    const auto area = readArea(plainText(*txtPrintArea));
    if (!area)
        return refuse("打印区域写作 A1:F20,几块之间用逗号分开!", *txtPrintArea);
    print.area = *area;
    if (!takeTitles(print))
        return false;
    print.scale = txtScale->value();
    print.fitAcross = optFit->isChecked() ? txtFitAcross->value() : 0;
    print.fitDown = optFit->isChecked() ? txtFitDown->value() : 0;
    print.downFirst = cboOrder->currentIndex() == 1;
    print.firstPage = txtFirstPage->value();
    const int shown = static_cast<int>(std::lround(txtTextDistance->value() * 10));
    if (shown != std::lround(print.textDistance * millimetresPerTwip * 10)) // the field rounds
        print.textDistance = spreadsheet::twipsOfMillimetres(txtTextDistance->value());
    const bool own = cboPaper->currentData().toInt() != printersPaper;
    print.paperWidth = own ? spreadsheet::twipsOfMillimetres(txtPaperWidth->value()) : 0;
    print.paperHeight = own ? spreadsheet::twipsOfMillimetres(txtPaperHeight->value()) : 0;
    print.centredAcross = chkCentredAcross->isChecked();
    print.centredDown = chkCentredDown->isChecked();
    print.stamp = chkStamp->isChecked();
    print.strict = chkStrict->isChecked();
    const std::string problem = layoutProblemOfAll(m_grid, [&](int sheet, PrintSettings& changed) {
        if (sheet == m_grid.workbook().activeSheet())
            changed = print;
        else
            takePaper(changed, print);
    });
    return problem.empty() || refuse(problem.c_str(), *cboPaper);
}

void frmPrintOptions::cmdXPOK_Click()
{
    PrintSettings changed = activeSheetsPrint(m_grid.workbook());
    if (!take(changed))
        return;
    const std::string former = titlesLeftOut(m_grid);
    {
        const spreadsheet::UndoStep step(m_grid.workbook(), "打印选项");
        changeActiveSheetsPrint(m_grid.workbook(), [&](PrintSettings& print) { print = changed; });
        changeReportsPrint(m_grid.workbook(), [&](PrintSettings& print) { takePaper(print, changed); });
    }
    frmPreview::refresh();
    if (const std::string leftOut = titlesLeftOut(m_grid); !leftOut.empty() && former.empty())
        dialogs().message(Icon::information, m_grid.context.title, leftOut + "。");
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
