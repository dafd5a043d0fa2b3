#include "windows/printing/headerfooter.h"

#include "platform/services/FontDialog.h"
#include "platform/windows/settle.h"
#include "reports/report_texts.h"
#include "reports/ReportContext.h"
#include "spreadsheet/display/header_fields.h"
#include "spreadsheet/view/needed_size.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/printing/frmPreview.h"
#include "windows/printing/header_sheet.h"
#include "windows/printing/LineNames.h"
#include "windows/printing/page_setup_statements.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/PrintedGrid.h"
#include "windows/printing/stored_page_setup.h"

#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <stdexcept>

namespace selfreport {

// The codes of a header are a little language that nobody wants to type. The editor is a sheet whose cells
// stand for the parts of the lines, so that typing, fonts and keys are the grid's own; codes are made of it
// only when it is stored.

namespace {

using spreadsheet::CellStyle;
using spreadsheet::headerFieldNames;
using spreadsheet::PrintSettings;

/// The report's header or footer as it is stored. A report that was never saved has none: the context's texts
/// are still those of the last one, and its grid alone knows its own.
std::string storedCodes(PrintedGrid& grid, bool footer)
{
    const OpenReport& report = grid.context.report;
    if (report.editFlag != 0)
        return footer ? report.footer : report.header;
    const PrintSettings& print = grid.workbook().sheet(1).settings().print;
    return footer ? print.footer : print.header;
}

void setOnGrid(PrintedGrid& grid, bool footer, const std::string& codes)
{
    changePrintSettings(grid.workbook(),
                        [&](PrintSettings& print) { (footer ? print.footer : print.header) = codes; });
    frmPreview::refresh();
}

void storeCodes(PrintedGrid& grid, bool footer, const std::string& codes)
{
    const auto refusal = [footer, codes](Connection& open) { return headerRefusal(open, footer, codes); };
    const auto isStored = [footer, codes](const StoredPageSetup& setup) {
        return (footer ? setup.footer : setup.header) == codes;
    };
    if (changeStoredPageSetup(grid, saveHeaderStatement(grid.context.report.id, footer), {codes}, isStored,
                              refusal))
        grid.headerStored(footer, codes);
}

} // namespace

headerfooter::headerfooter(PrintedGrid& grid, QWidget* parent)
    : QDialog(parent)
    , m_grid(grid)
    , fpSpread1(new spreadsheet::SpreadsheetControl)
{
    setObjectName("headerfooter");
    setWindowTitle(QStringLiteral("设置页眉页脚"));
    auto* const rows = new QVBoxLayout(this);
    rows->addWidget(new QLabel(QStringLiteral("自定义页眉页脚")));
    fpSpread1->setObjectName("fpSpread1");
    fpSpread1->setMinimumSize(700, 290);
    fpSpread1->installEventFilter(this);
    auto* const lines = new QHBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(new LineNames(*fpSpread1));
    lines->addWidget(fpSpread1, 1);
    rows->addLayout(lines, 1);
    buildHints();
    buildApplyFrame();
    buildButtons();
    connect(fpSpread1, &spreadsheet::SpreadsheetControl::editModeChanged, this, [this](bool on, bool) {
        if (on)
            Command3->setEnabled(true);
    });
    connect(fpSpread1, &spreadsheet::SpreadsheetControl::buttonClicked, this,
            &headerfooter::fpSpread1_ButtonClicked);
    InitSpread();
    Option3_Click();
    fpSpread1->setFocus();
    openOnScreen(*this);
}

void headerfooter::InitSpread()
{
    layOutHeaderSheet(fpSpread1->cells().sheet());
    fpSpread1->setSheetTabsShown(false);
    fpSpread1->setCommandsOffered(false);     // the stored texts are lost by a key too easily
    fpSpread1->setHeadingsShown(true, false); // the lines have names of their own
    fpSpread1->setColumnHeadings({"Left Justify", "", "Center", "", "Right Justify", ""});
    fpSpread1->showChanges();
}

void headerfooter::buildHints()
{
    auto* const hint = new QHBoxLayout;
    hint->addWidget(new QLabel(QStringLiteral("插入页数:")));
    hint->addWidget(new QLabel(QStringLiteral("点鼠标右键来插入或清除页数显示")), 1);
    auto* const field = new QPushButton(QStringLiteral("插入字段"));
    field->setObjectName("cmdField");
    field->setAutoDefault(false);
    auto* const menu = new QMenu(field);
    for (const auto& [number, text] : spreadsheet::headerFieldNames)
        menu->addAction(QString::fromUtf8(text).replace('&', QStringLiteral("&&")), this,
                        [this, name = text] { cmdField_Click(name); });
    field->setMenu(menu);
    hint->addWidget(field);
    static_cast<QVBoxLayout*>(layout())->addLayout(hint);
}

void headerfooter::buildApplyFrame()
{
    auto* frame = new QGroupBox(QStringLiteral("应用于"));
    auto* row = new QHBoxLayout(frame);
    for (std::size_t i = 0; i < Option3.size(); ++i) {
        Option3[i] = new QRadioButton(i == 0 ? QStringLiteral("页眉") : QStringLiteral("页脚"));
        Option3[i]->setObjectName(QStringLiteral("Option3_%1").arg(i));
        connect(Option3[i], &QRadioButton::clicked, this, &headerfooter::Option3_Click);
        row->addWidget(Option3[i]);
    }
    Option3[0]->setChecked(true);
    row->addStretch();
    static_cast<QVBoxLayout*>(layout())->addWidget(frame);
}

void headerfooter::buildButtons()
{
    static constexpr struct {
        const char *name, *caption;
        bool inFrame;
        void (*clicked)(headerfooter&);
    } buttons[] = {
        {"Command3", "保存页眉", true, [](auto& window) { window.Command3_Click(); }},
        {"Command4", "清空", true, [](auto& window) { window.Command4_Click(); }},
        {"cmdXPOK", "确定(&Q)", false, [](auto& window) { window.cmdXPOK_Click(); }},
        {"cmdXPClose", "取消(&E)", false, [](auto& window) { window.close(); }},
    };
    auto* const below = new QHBoxLayout;
    below->addStretch();
    for (const auto& [name, caption, inFrame, clicked] : buttons) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, handler = clicked] { handler(*this); });
        (inFrame ? findChild<QGroupBox*>()->layout() : below)->addWidget(button);
    }
    static_cast<QVBoxLayout*>(layout())->addLayout(below);
    Command3 = findChild<QPushButton*>("Command3");
    Command3->setEnabled(false);
}

bool headerfooter::isFooter() const
{
    return Option3[1]->isChecked();
}

void headerfooter::Option3_Click()
{
    for (QRadioButton* const option : Option3) {
        QFont font = option->font();
        font.setBold(option->isChecked());
        option->setFont(font);
    }
    fpSpread1->entry().cancel(); // changes that were not saved are dropped
    GetHeaderDetail(storedCodes(m_grid, isFooter()));
    Command3->setText(isFooter() ? QStringLiteral("保存页脚") : QStringLiteral("保存页眉"));
}

void headerfooter::GetHeaderDetail(const std::string& codes)
{
    HeaderGrid grid;
    const std::string_view problem = readHeaderCodes(codes, grid, m_reader);
    showHeaderGrid(fpSpread1->cells().sheet(), grid);
    fitLines();
    if (!problem.empty())
        dialogs().message(Icon::none, "GetHeaderDetail", problem);
}

/// Large fonts show whole.
void headerfooter::fitLines()
{
    const int least = fpSpread1->cells().sheet().settings().rows.defaultSize;
    for (int row = 1; row <= headerRows; ++row)
        fpSpread1->cells().setRowHeight(
            row, std::max(least, spreadsheet::neededRowHeight(fpSpread1->cells().sheet(), row)));
    fpSpread1->showChanges();
}

std::string headerfooter::GetCellData(std::int16_t column, std::int16_t row) const
{
    return headerCellCodes(headerCellOf(fpSpread1->cells().sheet(), column, row), column);
}

int headerfooter::exec()
{
    return isPageSetupRefused(m_grid) ? QDialog::Rejected : QDialog::exec();
}

bool headerfooter::SaveConfiguration()
{
    if (isPageSetupRefused(m_grid))
        return false;
    if (!fpSpread1->entry().commit())
        return false;
    DatabaseAccess& database = m_grid.context.database;
    if (!database.done(Icon::critical, [&] { database.opened(); }))
        return true;
    const std::string codes = headerCodes(headerGridOf(fpSpread1->cells().sheet()));
    setOnGrid(m_grid, isFooter(), codes);
    OpenReport& report = m_grid.context.report;
    (isFooter() ? report.footer : report.header) = codes;
    if (report.editFlag == 0)
        m_grid.tellStatus("报表尚未保存,页眉页脚没有存入数据库");
    else
        storeCodes(m_grid, isFooter(), codes);
    database.close();
    return true;
}

void headerfooter::Command3_Click()
{
    if (SaveConfiguration())
        Command3->setEnabled(false);
}

void headerfooter::Command4_Click()
{
    if (!dialogs().ask(Icon::none, "清除文本", "确定要清除吗?"))
        return;
    fpSpread1->entry().cancel();
    setOnGrid(m_grid, isFooter(), {});
    const PrintSettings& print = m_grid.workbook().sheet(1).settings().print;
    GetHeaderDetail(isFooter() ? print.footer : print.header);
}

void headerfooter::cmdXPOK_Click()
{
    if (SaveConfiguration())
        accept();
}

bool headerfooter::eventFilter(QObject* object, QEvent* event)
{
    if (object == fpSpread1 && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton)
        fpSpread1_RightButton();
    return QDialog::eventFilter(object, event);
}

/// Puts the page number into the active cell, which need not be the one under the pointer, or takes it out.
void headerfooter::fpSpread1_RightButton()
{
    const auto [column, row] = fpSpread1->cursor().activeCell();
    if (!isHeaderTextColumn(column) || !fpSpread1->entry().commit())
        return;
    const std::string text = fpSpread1->cells().sheet().displayText({column, row});
    const bool takesOut = text == pageNumberText;
    if (!takesOut && !text.empty() &&
        !dialogs().question("替换现有文本", "插入页数将会替换当前的文本,确定吗?"))
        return;
    setPageNumber(fpSpread1->cells().sheet(), column, row, !takesOut);
    fpSpread1->showChanges();
}

/// Puts a field behind the active cell's text. A page number that stands alone becomes a field too, as texts
/// cannot stand beside it.
void headerfooter::cmdField_Click(std::string_view field)
{
    const auto [column, row] = fpSpread1->cursor().activeCell();
    if (!isHeaderTextColumn(column) || !fpSpread1->entry().commit())
        return;
    spreadsheet::Sheet& sheet = fpSpread1->cells().sheet();
    std::string text = sheet.displayText({column, row});
    if (text == pageNumberText) {
        setPageNumber(sheet, column, row, false);
        text = headerFieldNames[static_cast<std::size_t>(spreadsheet::HeaderField::page)].text;
    }
    sheet.setText({column, row}, text.append(field));
    Command3->setEnabled(true);
    fpSpread1->showChanges();
}

void headerfooter::fpSpread1_ButtonClicked(int column, int row)
{
    const spreadsheet::CellAddress target{column - 1, row};
    if (!isHeaderTextColumn(target.column) || !fpSpread1->entry().commit())
        return;
    const CellStyle& style = fpSpread1->cells().sheet().style(target);
    const HeaderCellFont font = headerCellOf(fpSpread1->cells().sheet(), target.column, row).font;
    const auto chosen =
        FontDialogInUse::current().choose({font.family, font.points, font.bold, font.italic, font.underline,
                                           font.strikeThrough, style.foreground & 0xFFFFFF});
    if (!chosen)
        return;
    fpSpread1->cells().sheet().restyle({target.column, row, target.column, row}, [&](CellStyle& changed) {
        changed.font.family = spreadsheet::Text(chosen->family);
        changed.font.points = static_cast<float>(chosen->points);
        changed.font.bold = chosen->bold;
        changed.font.italic = chosen->italic;
        changed.font.underline = chosen->underline;
        changed.font.strikeThrough = chosen->strikeOut;
    });
    fitLines();
}

} // namespace selfreport
