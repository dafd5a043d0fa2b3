#include "windows/printing/PrintDlg.h"

#include "platform/services/Dialogs.h"
#include "platform/windows/settle.h"
#include "reports/ReportContext.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/page_number.h"
#include "windows/printing/pagesetup.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/PrintedGrid.h"

#include <QCheckBox>
#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace selfreport {

// The dialog's check boxes are choices for a printing, not a part of the design: they go to the sheet as a
// change of its display. The range is put back unless it was printed, so that a refused or cancelled printing
// leaves none behind.

namespace {

using spreadsheet::PrintSettings;

/// By index of the check box.
constexpr struct {
    const char* caption;
    bool PrintSettings::*setting;
} options[] = {{"列标题", &PrintSettings::columnHeadings},
               {"行标题", &PrintSettings::rowHeadings},
               {"表格线", &PrintSettings::gridLines},
               {"边框", &PrintSettings::border},
               {"仅打印数据", &PrintSettings::usedAreaOnly},
               {"颜色", &PrintSettings::colour},
               {"阴影", &PrintSettings::shadows}};

constexpr const char* ranges[] = {"全部", "选定单元格", "当前页", "页数"};
constexpr int pageRange = 3; // index of "页数"

} // namespace

PrintDlg::PrintDlg(PrintedGrid& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
{
    setObjectName("PrintDlg");
    setWindowTitle(QStringLiteral("打印"));
    auto* frames = new QHBoxLayout;
    frames->addWidget(optionFrame());
    frames->addWidget(rangeFrame());
    (new QVBoxLayout(this))->addLayout(frames);
    buildButtons();
    settle(*this);
}

QGroupBox* PrintDlg::optionFrame()
{
    auto* frame = new QGroupBox(QStringLiteral("打印选项"));
    auto* rows = new QVBoxLayout(frame);
    for (std::size_t i = 0; i < Check1.size(); ++i) {
        Check1[i] = new QCheckBox(QString::fromUtf8(options[i].caption));
        Check1[i]->setObjectName(QStringLiteral("Check1_%1").arg(i));
        Check1[i]->setChecked(true);
        rows->addWidget(Check1[i]);
    }
    return frame;
}

QGroupBox* PrintDlg::rangeFrame()
{
    auto* frame = new QGroupBox(QStringLiteral("范围"));
    auto* rows = new QVBoxLayout(frame);
    for (std::size_t i = 0; i < Option1.size(); ++i) {
        Option1[i] = new QRadioButton(QString::fromUtf8(ranges[i]));
        Option1[i]->setObjectName(QStringLiteral("Option1_%1").arg(i));
        connect(Option1[i], &QRadioButton::clicked, this, [this, i] { Option1_Click(static_cast<int>(i)); });
        rows->addWidget(Option1[i]);
    }
    Option1[0]->setChecked(true);
    auto* pages = new QHBoxLayout;
    for (std::size_t i = 0; i < Text1.size(); ++i) {
        if (i == 1)
            pages->addWidget(new QLabel(QStringLiteral("到")));
        Text1[i] = new QLineEdit(QStringLiteral("1"));
        Text1[i]->setObjectName(QStringLiteral("Text1_%1").arg(i));
        Text1[i]->setEnabled(false);
        Text1[i]->installEventFilter(this);
        pages->addWidget(Text1[i]);
    }
    rows->addLayout(pages);
    rows->addStretch();
    return frame;
}

void PrintDlg::buildButtons()
{
    static constexpr struct {
        const char *name, *caption;
        void (*clicked)(PrintDlg&);
    } buttons[] = {
        {"Command1", "设置", [](auto& window) { pagesetup(window.m_grid, &window).exec(); }},
        {"Command4", "打印机设置", [](auto& window) { window.Command4_Click(); }},
        {"Command2", "打印", [](auto& window) { window.Command2_Click(); }},
        {"Command3", "取消", [](auto& window) { window.close(); }},
    };
    auto* row = new QHBoxLayout;
    for (const auto& [name, caption, clicked] : buttons) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, handler = clicked] { handler(*this); });
        row->addWidget(button);
    }
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    findChild<QPushButton*>("Command2")->setDefault(true);
}

void PrintDlg::Option1_Click(int index)
{
    for (QLineEdit* const field : Text1)
        field->setEnabled(index == pageRange);
    if (index == pageRange)
        Text1[0]->setFocus();
}

bool PrintDlg::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::KeyRelease)
        for (QLineEdit* const field : Text1)
            if (object == field && !isNumber(field->text().toStdString()))
                field->setText(QStringLiteral("1"));
    return QDialog::eventFilter(object, event);
}

bool PrintDlg::takeRange()
{
    spreadsheet::PrintRange& range = m_grid.printRange;
    if (Option1[0]->isChecked()) {
        range.kind = spreadsheet::PrintRangeKind::all;
    } else if (Option1[1]->isChecked()) {
        range.cells = m_grid.selectedBlock();
        range.kind = spreadsheet::PrintRangeKind::cells;
    } else if (Option1[2]->isChecked()) {
        range.currentPage = frmPreview::exists() ? frmPreview::shared(m_grid).fpsp1().currentPage() : 1;
        range.kind = spreadsheet::PrintRangeKind::currentPage;
    } else {
        const auto first = pageNumber(Text1[0]->text().toStdString());
        const auto last = pageNumber(Text1[1]->text().toStdString());
        if (!first || !last) {
            dialogs().message(Icon::exclamation, m_grid.context.title, "页码不能大于32767!");
            (first ? Text1[1] : Text1[0])->setFocus();
            return false;
        }
        range.firstPage = *first;
        range.lastPage = *last;
        range.kind = spreadsheet::PrintRangeKind::pages;
    }
    return true;
}

PrintOutcome PrintDlg::PrintSpread()
{
    static constexpr std::size_t order[] = {0, 1, 3, 5, 2, 6, 4};
    const spreadsheet::PrintRange before = m_grid.printRange;
    if (!takeRange())
        return PrintOutcome::failed;
    {
        const spreadsheet::DisplayOnly display(m_grid.workbook());
        changeActiveSheetsPrint(m_grid.workbook(), [&](PrintSettings& print) {
            for (const std::size_t i : order)
                print.*options[i].setting = Check1[i]->isChecked();
        });
    }
    const PrintOutcome outcome = printSheet(m_grid);
    if (outcome != PrintOutcome::printed)
        m_grid.printRange = before;
    return outcome;
}

void PrintDlg::Command2_Click()
{
    const PrintOutcome outcome = PrintSpread();
    if (outcome == PrintOutcome::printed)
        m_grid.closeDesigner();
    else if (outcome == PrintOutcome::left)
        frmPreview::discard();
    else
        return;
    close();
}

void PrintDlg::Command4_Click()
{
    const auto chosen = PrinterSetupDialogInUse::current().choose(printerSetup());
    if (!chosen)
        return;
    printerSetup() = *chosen;
    if (frmPreview::exists())
        frmPreview::shared(m_grid).fpsp1().setRequest(previewRequest(m_grid));
}

} // namespace selfreport
