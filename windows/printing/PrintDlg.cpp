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

// The dialog's choices are those of a printing, not a part of the design: they are handed to preview and
// printing beside the sheet, which gets them, as a change of its display, once they are printed.

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
    if (frmPreview::exists())
        m_page = frmPreview::shared(grid).fpsp1().currentPage();
    showChoice();
}

QGroupBox* PrintDlg::optionFrame()
{
    auto* frame = new QGroupBox(QStringLiteral("打印选项"));
    auto* rows = new QVBoxLayout(frame);
    for (std::size_t i = 0; i < Check1.size(); ++i) {
        Check1[i] = new QCheckBox(QString::fromUtf8(options[i].caption));
        Check1[i]->setObjectName(QStringLiteral("Check1_%1").arg(i));
        Check1[i]->setChecked(true);
        connect(Check1[i], &QCheckBox::toggled, this, &PrintDlg::showChoice);
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
        connect(Text1[i], &QLineEdit::textChanged, this, &PrintDlg::showChoice);
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
        {"Command1", "设置", [](auto& window) { window.Command1_Click(); }},
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
    showChoice();
}

void PrintDlg::Command1_Click()
{
    pagesetup(m_grid, this).exec();
    showChoice();
}

bool PrintDlg::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::KeyRelease)
        for (QLineEdit* const field : Text1)
            if (object == field && !isNumber(field->text().toStdString()))
                field->setText(QStringLiteral("1"));
    return QDialog::eventFilter(object, event);
}

std::optional<spreadsheet::PrintRange> PrintDlg::range()
{
    spreadsheet::PrintRange range = m_grid.printRange;
    if (Option1[0]->isChecked()) {
        range.kind = spreadsheet::PrintRangeKind::all;
    } else if (Option1[1]->isChecked()) {
        range.cells = m_grid.selectedRanges();
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
            return std::nullopt;
        }
        range.firstPage = *first;
        range.lastPage = *last;
        range.kind = spreadsheet::PrintRangeKind::pages;
    }
    return range;
}

PrintSettings PrintDlg::settings() const
{
    PrintSettings print = activeSheetsPrint(m_grid.workbook());
    for (std::size_t i = 0; i < Check1.size(); ++i)
        print.*options[i].setting = Check1[i]->isChecked();
    return print;
}

/// The preview behind the dialog shows what would be printed; of a range of pages it shows the first.
void PrintDlg::showChoice()
{
    if (!frmPreview::exists())
        return;
    spreadsheet::PreviewWidget& pages = frmPreview::shared(m_grid).fpsp1();
    spreadsheet::PageRequest request = previewRequest(m_grid);
    request.print = settings();
    if (Option1[1]->isChecked())
        request.ranges = m_grid.selectedRanges();
    pages.setRequest(std::move(request));
    const auto first = pageNumber(Text1[0]->text().toStdString());
    pages.setCurrentPage(Option1[pageRange]->isChecked() && first ? *first : m_page);
}

PrintOutcome PrintDlg::PrintSpread()
{
    const auto chosen = range();
    if (!chosen)
        return PrintOutcome::failed;
    const PrintSettings print = settings();
    const PrintOutcome outcome = printSheet(m_grid, PrintChoice{print, *chosen});
    if (outcome != PrintOutcome::printed)
        return outcome;
    const spreadsheet::DisplayOnly display(m_grid.workbook());
    changeActiveSheetsPrint(m_grid.workbook(), [&](PrintSettings& kept) { kept = print; });
    m_grid.printRange = *chosen;
    return outcome;
}

void PrintDlg::Command2_Click()
{
    const PrintOutcome outcome = PrintSpread();
    m_isPrinted = outcome == PrintOutcome::printed;
    if (m_isPrinted)
        m_grid.closeDesigner();
    else if (outcome == PrintOutcome::left)
        frmPreview::discard();
    else
        return;
    close();
}

void PrintDlg::Command4_Click()
{
    PrinterSetup first = printerSetup();
    first.paper = paperName(m_grid);
    const auto chosen = PrinterSetupDialogInUse::current().choose(first);
    if (!chosen)
        return;
    if (chosen->paper != first.paper)
        setPaper(m_grid, chosen->paper);
    printerSetup() = *chosen;
    printerSetup().paper.clear(); // it belongs to the report
    showChoice();
}

void PrintDlg::done(int result)
{
    if (!m_isPrinted && frmPreview::exists()) {
        spreadsheet::PreviewWidget& pages = frmPreview::shared(m_grid).fpsp1();
        pages.setRequest(previewRequest(m_grid));
        pages.setCurrentPage(m_page);
    }
    QDialog::done(result);
}

} // namespace selfreport
