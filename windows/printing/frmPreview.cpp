#include "windows/printing/frmPreview.h"

#include "platform/windows/ProportionalLayout.h"
#include "platform/windows/settle.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/pagesetup.h"
#include "windows/printing/print_sheet.h"
#include "windows/printing/PrintDlg.h"
#include "windows/printing/PrintedGrid.h"

#include <QLabel>
#include <QPushButton>

#include <memory>

namespace selfreport {

namespace {

constexpr QSize board(12000, 8700); // twips

std::unique_ptr<frmPreview>& instance()
{
    static std::unique_ptr<frmPreview> only;
    return only;
}

} // namespace

frmPreview& frmPreview::shared(PrintedGrid& grid)
{
    if (!instance())
        instance() = std::make_unique<frmPreview>(grid);
    return *instance();
}

bool frmPreview::exists()
{
    return instance() != nullptr;
}

void frmPreview::discard()
{
    if (!instance())
        return;
    instance()->close();
    if (!instance()->m_shownModally)
        instance().reset();
}

void frmPreview::showModally(PrintedGrid& grid)
{
    frmPreview& window = shared(grid);
    window.m_shownModally = true;
    window.exec();
    window.m_shownModally = false;
    discard();
}

frmPreview::frmPreview(PrintedGrid& grid)
    : m_grid(grid)
    , m_fpsp1(new spreadsheet::PreviewWidget)
    , lblPage(new QLabel(QStringLiteral("页数 ")))
{
    setObjectName("frmPreview");
    setWindowTitle(QStringLiteral("报表打印"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* const places = new ProportionalLayout(this, board);
    setLayout(places);
    m_fpsp1->setObjectName("fpsp1");
    places->place(m_fpsp1, {60, 60, 11880, 7860});
    lblPage->setObjectName("lblPage");
    places->place(lblPage, {120, 8100, 2800, 420});
    buildButtons();
    resize(sizeHint());

    m_fpsp1->attach(grid.workbook(), grid.workbook().activeSheet(), previewRequest(grid));
    cmdPrevious->setEnabled(false);
    UpdatePageCount();
    connect(m_fpsp1, &spreadsheet::PreviewWidget::pageChanged, this, [this](int page) {
        if (page < m_fpsp1->pageCount())
            cmdNext->setEnabled(true); // keys may jump from the last page to the first
        UpdatePageCount();
    });
    m_fpsp1->setFocus();
    openOnScreen(*this);
}

void frmPreview::buildButtons()
{
    static constexpr struct {
        const char *name, *caption;
        void (*clicked)(frmPreview&);
    } buttons[] = {
        {"cmdPrevious", "前一页", [](auto& window) { window.cmdPrevious_Click(); }},
        {"cmdNext", "后一页", [](auto& window) { window.cmdNext_Click(); }},
        {"cmdHome", "缩放", [](auto& window) { window.cmdHome_Click(); }},
        {"cmdSupport", "设置", [](auto& window) { window.cmdSupport_Click(); }},
        {"cmdHelp", "打印", [](auto& window) { window.cmdHelp_Click(); }},
        {"cmdExit", "退出", [](auto& window) { window.close(); }},
    };
    int left = 3000; // twips
    for (const auto& [name, caption, clicked] : buttons) {
        auto* button = new QPushButton(QString::fromUtf8(caption));
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, handler = clicked] { handler(*this); });
        static_cast<ProportionalLayout*>(layout())->place(button, {left, 8100, 1350, 450});
        left += 1480;
    }
    cmdPrevious = findChild<QPushButton*>("cmdPrevious");
    cmdNext = findChild<QPushButton*>("cmdNext");
}

void frmPreview::UpdatePageCount()
{
    const int page = m_fpsp1->currentPage();
    const int pages = m_fpsp1->pageCount();
    lblPage->setText(QStringLiteral("第 %1 页,共 %2 页").arg(page).arg(pages));
    if (page == 1)
        cmdPrevious->setEnabled(false);
    if (page >= 2 && page < pages) {
        cmdPrevious->setEnabled(true);
        cmdNext->setEnabled(true);
    }
    if (page == pages)
        cmdNext->setEnabled(false);
}

void frmPreview::cmdNext_Click()
{
    if (m_fpsp1->currentPage() < m_fpsp1->pageCount()) {
        m_fpsp1->setCurrentPage(m_fpsp1->currentPage() + m_fpsp1->pageStep());
        cmdPrevious->setEnabled(true);
        cmdNext->setEnabled(true);
    }
    if (m_fpsp1->currentPage() >= m_fpsp1->pageCount())
        cmdNext->setEnabled(false);
}

void frmPreview::cmdPrevious_Click()
{
    if (m_fpsp1->currentPage() >= 2) {
        m_fpsp1->setCurrentPage(m_fpsp1->currentPage() - m_fpsp1->pageStep());
        cmdPrevious->setEnabled(true);
        cmdNext->setEnabled(true);
    }
    if (m_fpsp1->currentPage() == 1)
        cmdPrevious->setEnabled(false);
}

void frmPreview::cmdHome_Click()
{
    m_fpsp1->toggleZoom();
}

void frmPreview::cmdSupport_Click()
{
    pagesetup(m_grid, this).exec();
}

void frmPreview::cmdHelp_Click()
{
    PrintDlg(m_grid, this).exec();
}

} // namespace selfreport
