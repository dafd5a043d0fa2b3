#include "windows/printing/frmPreview.h"

#include "platform/services/Dialogs.h"
#include "platform/windows/ProportionalLayout.h"
#include "platform/windows/settle.h"
#include "platform/windows/WaitCursor.h"
#include "reports/ReportContext.h"
#include "spreadsheet/print/PageThumbnails.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/GetZoom.h"
#include "windows/printing/pagesetup.h"
#include "windows/printing/print_sheet.h"
#include "windows/printing/PrintDlg.h"
#include "windows/printing/PrintedGrid.h"
#include "windows/printing/zoom_entries.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>

#include <memory>

namespace selfreport {

namespace {

constexpr const char* windowCaption = "报表打印";
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

void frmPreview::refresh()
{
    if (!instance())
        return;
    instance()->m_fpsp1->refresh();
    instance()->UpdatePageCount();
}

void frmPreview::showModally(PrintedGrid& grid)
{
    const QPointer<QWidget> beneath = QApplication::activeWindow();
    frmPreview& window = shared(grid);
    window.m_shownModally = true;
    window.exec();
    window.m_shownModally = false;
    discard();
    if (beneath && beneath->isVisible())
        beneath->activateWindow(); // it owns nothing, so a window manager chooses freely who comes next
}

frmPreview::frmPreview(PrintedGrid& grid)
    : m_grid(grid)
    , m_fpsp1(new spreadsheet::PreviewWidget)
    , lblPage(new QLabel(QStringLiteral("页数 ")))
{
    setObjectName("frmPreview");
    setWindowTitle(QString::fromUtf8(windowCaption));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* const places = new ProportionalLayout(this, board);
    setLayout(places);
    m_fpsp1->setObjectName("fpsp1");
    lblPage->setObjectName("lblPage");
    places->place(lblPage, {120, 8100, 2800, 420});
    buildView();
    buildSearch();
    buildButtons();
    resize(sizeHint());

    m_fpsp1->attach(grid.workbook(), grid.workbook().activeSheet(), previewRequest(grid));
    UpdatePageCount();
    connect(m_fpsp1, &spreadsheet::PreviewWidget::pageChanged, this, &frmPreview::UpdatePageCount);
    connect(m_fpsp1, &spreadsheet::PreviewWidget::pageCountChanged, this, &frmPreview::UpdatePageCount);
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
    findChild<QPushButton*>("cmdHelp")->setShortcut(QKeySequence::Print);
    cmdPrevious = findChild<QPushButton*>("cmdPrevious");
    cmdNext = findChild<QPushButton*>("cmdNext");
}

/// The pages with their thumbnails, and how they are shown.
void frmPreview::buildView()
{
    auto* const places = static_cast<ProportionalLayout*>(layout());
    auto* const pages = new QSplitter;
    auto* const thumbnails = new spreadsheet::PageThumbnails(*m_fpsp1);
    thumbnails->setObjectName("thumbnails");
    pages->addWidget(thumbnails);
    pages->addWidget(m_fpsp1);
    pages->setStretchFactor(1, 1);
    pages->setChildrenCollapsible(false);
    places->place(pages, {60, 60, 11880, 7380});

    auto* const cmdThumbnails = new QPushButton(QStringLiteral("缩略图(&T)"));
    cmdThumbnails->setObjectName("cmdThumbnails");
    cmdThumbnails->setAutoDefault(false);
    cmdThumbnails->setCheckable(true);
    cmdThumbnails->setChecked(true);
    connect(cmdThumbnails, &QPushButton::toggled, thumbnails, &QWidget::setVisible);
    places->place(cmdThumbnails, {5960, 7540, 1350, 450});

    cboZoom = new QComboBox;
    cboZoom->setObjectName("cboZoom");
    for (const ZoomEntry& entry : zoomEntries)
        cboZoom->addItem(QString::fromUtf8(entry.caption));
    auto* const label = new QLabel(QStringLiteral("显示(&V):"));
    label->setBuddy(cboZoom);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    places->place(label, {7440, 7540, 1350, 450});
    places->place(cboZoom, {8920, 7540, 1350, 450});
    connect(cboZoom, &QComboBox::activated, this, &frmPreview::cboZoom_Click);
    connect(m_fpsp1, &spreadsheet::PreviewWidget::lookChanged, this, &frmPreview::showView);
    showView();
}

/// What is shown in a way that no entry names is told in percent.
void frmPreview::showView()
{
    cboZoom->setPlaceholderText(QStringLiteral("%1%").arg(m_fpsp1->zoomPercentage()));
    cboZoom->setCurrentIndex(zoomShown(*m_fpsp1));
}

void frmPreview::cboZoom_Click(int index)
{
    showZoom(*m_fpsp1, index);
    m_grid.context.report.zoomIndex = static_cast<std::int16_t>(index); // page set-up begins with it
}

void frmPreview::buildSearch()
{
    auto* const places = static_cast<ProportionalLayout*>(layout());
    txtFind = new QLineEdit;
    txtFind->setObjectName("txtFind");
    txtFind->setPlaceholderText(QStringLiteral("在各页中查找"));
    places->place(txtFind, {120, 7540, 2800, 450});
    connect(txtFind, &QLineEdit::returnPressed, this, &frmPreview::cmdFind_Click);
    const auto button = [&](const char* name, const char* caption, int left, auto clicked) {
        auto* const made = new QPushButton(QString::fromUtf8(caption));
        made->setObjectName(QLatin1String(name));
        made->setAutoDefault(false);
        places->place(made, {left, 7540, 1350, 450});
        connect(made, &QPushButton::clicked, this, clicked);
    };
    button("cmdFind", "查找下一个", 3000, &frmPreview::cmdFind_Click);
    button("cmdCopy", "复制文字", 4480, &frmPreview::cmdCopy_Click);
    const auto shortcut = [this](QKeySequence::StandardKey key, auto act) {
        auto* const action = new QAction(this);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, act);
        addAction(action);
    };
    shortcut(QKeySequence::Find, [this] { txtFind->setFocus(Qt::ShortcutFocusReason); });
    shortcut(QKeySequence::Copy, [this] { cmdCopy_Click(); }); // the search box copies its own text
    // Not the button's: that would wait for a picture of it pressed.
    shortcut(QKeySequence::FindNext, [this] { findOn(true); });
    shortcut(QKeySequence::FindPrevious, [this] { findOn(false); });
    lblHits = new QLabel;
    lblHits->setObjectName("lblHits");
    places->place(lblHits, {10400, 7540, 1480, 450});
    connect(txtFind, &QLineEdit::textChanged, m_fpsp1, &spreadsheet::PreviewWidget::mark);
    connect(m_fpsp1, &spreadsheet::PreviewWidget::hitsChanged, this, &frmPreview::showHits);
}

void frmPreview::cmdFind_Click()
{
    findOn(true);
}

/// Goes to the next place that shows the text, or to the former one.
void frmPreview::findOn(bool isForward)
{
    if (txtFind->text().isEmpty())
        return txtFind->setFocus();
    const WaitCursor waiting;
    if (!m_fpsp1->find(txtFind->text(), isForward))
        dialogs().message(Icon::information, m_grid.context.title,
                          "没有找到“" + txtFind->text().toStdString() + "”。");
}

/// Which of how many hits, as far as they have been counted.
void frmPreview::showHits()
{
    spreadsheet::PreviewSearch& search = m_fpsp1->search();
    const auto number = [](std::optional<int> count) {
        return count ? QString::number(*count) : QStringLiteral("…");
    };
    if (search.text().isEmpty())
        return lblHits->clear();
    const bool isAtHit = search.current().page != 0;
    lblHits->setText((isAtHit ? number(search.ordinal()) + '/' : QString()) + number(search.total()) +
                     QStringLiteral(" 处"));
}

void frmPreview::cmdCopy_Click()
{
    QGuiApplication::clipboard()->setText(m_fpsp1->words());
}

/// Keys that turn pages do so from the buttons, too, which leave them.
void frmPreview::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_PageDown:
    case Qt::Key_PageUp:
    case Qt::Key_Home:
    case Qt::Key_End:
        QCoreApplication::sendEvent(m_fpsp1, event);
        break;
    default:
        QDialog::keyPressEvent(event);
    }
}

void frmPreview::UpdatePageCount()
{
    const int page = m_fpsp1->currentPage();
    const int pages = m_fpsp1->pageCount();
    lblPage->setText(QStringLiteral("第 %1 页,共 %2 页").arg(page).arg(pages));
    cmdPrevious->setEnabled(page > 1);
    cmdNext->setEnabled(page < pages);
    const spreadsheet::PageLayout* const layout = m_fpsp1->pages().layout();
    const std::string leftOut = layout ? layout->titlesLeftOut() : std::string();
    setWindowTitle(QString::fromUtf8(windowCaption) +
                   (leftOut.empty() ? QString() : "  (" + QString::fromStdString(leftOut) + ')'));
}

void frmPreview::cmdNext_Click()
{
    m_fpsp1->setCurrentPage(m_fpsp1->currentPage() + m_fpsp1->pageStep());
}

void frmPreview::cmdPrevious_Click()
{
    m_fpsp1->setCurrentPage(m_fpsp1->currentPage() - m_fpsp1->pageStep());
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
