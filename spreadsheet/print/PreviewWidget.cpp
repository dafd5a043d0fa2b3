#include "spreadsheet/print/PreviewWidget.h"

#include "spreadsheet/print/page_words.h"
#include "spreadsheet/print/PagePainter.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace spreadsheet {

// A report may have thousands of pages. They are laid out together, since each must know where the one
// before ended, but a page is drawn when it comes into sight, into a picture that scrolling reuses. What
// changed in the workbook is seen by its revision when painting: nobody has to tell the preview.

namespace {

constexpr int gap = 12; // pixels around each page
constexpr int smallestPercentage = 10;
constexpr int largestPercentage = 400;
constexpr int mostPages = 10;  // across or down
constexpr int closeLook = 100; // per cent
constexpr int closerLook = 200;
constexpr int wheelStep = 120; // eighths of a degree of one notch

} // namespace

PreviewWidget::PreviewWidget(QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_text(std::make_unique<PageText>())
{
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
}

PreviewWidget::~PreviewWidget() = default;

void PreviewWidget::attach(const Workbook& workbook, int sheet, PageRequest request)
{
    m_workbook = &workbook;
    m_sheet = sheet;
    m_request = std::move(request);
    m_revision.reset();
    m_pictures.clear();
    m_currentPage = 1;
    m_toldPages = pageCount();
    arrange();
}

void PreviewWidget::setRequest(PageRequest request)
{
    m_request = std::move(request);
    m_revision.reset();
    m_pictures.clear();
    arrange();
}

void PreviewWidget::refresh()
{
    if (m_workbook && m_revision != m_workbook->revision())
        arrange();
}

const PageLayout* PreviewWidget::layout() const
{
    if (m_workbook && m_revision != m_workbook->revision()) {
        m_revision = m_workbook->revision();
        m_layout.reset();
        m_problem.clear();
        try {
            m_layout = std::make_unique<PageLayout>(m_workbook->sheet(m_sheet), m_request);
        } catch (const PageLayoutError& error) {
            m_problem = QString::fromUtf8(error.what());
        } catch (const std::out_of_range&) {
            m_problem = QStringLiteral("工作表已不存在。");
        }
    }
    return m_layout.get();
}

QString PreviewWidget::problem() const
{
    layout();
    return m_problem;
}

int PreviewWidget::pageCount() const
{
    return layout() ? layout()->pageCount() : 1;
}

void PreviewWidget::setCurrentPage(int page)
{
    page = std::clamp(page, 1, pageCount());
    if (page == m_currentPage)
        return;
    m_currentPage = page;
    arrange();
    verticalScrollBar()->setValue(0);
    Q_EMIT pageChanged(page);
}

bool PreviewWidget::find(const QString& text)
{
    const PageLayout* const pages = layout();
    const auto page =
        pages ? pageShowing(m_workbook->sheet(m_sheet), *pages, text, m_currentPage) : std::nullopt;
    if (page)
        setCurrentPage(*page);
    return page.has_value();
}

QString PreviewWidget::words() const
{
    return layout() ? pageWords(m_workbook->sheet(m_sheet), *layout(), m_currentPage) : QString();
}

int PreviewWidget::pageStep() const
{
    return m_look.view == PreviewView::severalPages ? m_look.across * m_look.down : 1;
}

void PreviewWidget::setView(PreviewView view)
{
    Look look = m_look;
    look.view = view;
    m_lookBefore.reset();
    changeLook(look);
}

void PreviewWidget::setZoomPercentage(int percentage)
{
    Look look = m_look;
    look.percentage = std::clamp(percentage, smallestPercentage, largestPercentage);
    m_lookBefore.reset();
    changeLook(look);
}

void PreviewWidget::setPagesAcross(int pages)
{
    Look look = m_look;
    look.across = std::clamp(pages, 1, mostPages);
    changeLook(look);
}

void PreviewWidget::setPagesDown(int pages)
{
    Look look = m_look;
    look.down = std::clamp(pages, 1, mostPages);
    changeLook(look);
}

void PreviewWidget::toggleZoom()
{
    if (m_lookBefore) {
        const Look before = *m_lookBefore;
        m_lookBefore.reset();
        changeLook(before);
        return;
    }
    const double shown = scale() * twipsPerInch / logicalDpiX() * 100;
    const Look before = m_look;
    Look close = m_look;
    close.view = PreviewView::percentage;
    close.percentage = shown < closeLook - 1 ? closeLook : closerLook;
    changeLook(close);
    m_lookBefore = before;
}

void PreviewWidget::changeLook(const Look& look)
{
    m_look = look;
    m_pictures.clear();
    arrange();
}

/// Scroll ranges for the pages in sight; the current page stays within the report.
void PreviewWidget::arrange()
{
    const int pageBefore = m_currentPage;
    m_currentPage = std::clamp(m_currentPage, 1, pageCount());
    const QRect last = pageRect(pageStep() - 1);
    const QSize area = viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, last.right() + gap - area.width()));
    horizontalScrollBar()->setPageStep(area.width());
    verticalScrollBar()->setRange(0, std::max(0, last.bottom() + gap - area.height()));
    verticalScrollBar()->setPageStep(area.height());
    verticalScrollBar()->setSingleStep(fontMetrics().height() * 2);
    viewport()->update();
    tellPages(pageBefore);
}

void PreviewWidget::tellPages(int pageBefore)
{
    const int pages = pageCount();
    if (std::exchange(m_toldPages, pages) != pages)
        Q_EMIT pageCountChanged(pages);
    if (m_currentPage != pageBefore)
        Q_EMIT pageChanged(m_currentPage);
}

/// Pixels per twip. Fitting views use the size without scroll bars that would come and go.
double PreviewWidget::scale() const
{
    const PageLayout* const pages = layout();
    const double natural = logicalDpiX() / twipsPerInch;
    if (!pages || m_look.view == PreviewView::percentage)
        return natural * m_look.percentage / 100;
    const QSize area = maximumViewportSize();
    const int across = m_look.view == PreviewView::severalPages ? m_look.across : 1;
    const int down = m_look.view == PreviewView::severalPages ? m_look.down : 1;
    const double byWidth =
        static_cast<double>(area.width() - gap * (across + 1)) / across / pages->paperWidth();
    const double byHeight =
        static_cast<double>(area.height() - gap * (down + 1)) / down / pages->paperHeight();
    const double barWidth = verticalScrollBar()->sizeHint().width();
    const double smallest = natural * smallestPercentage / 100 / 2;
    switch (m_look.view) {
    case PreviewView::pageWidth:
        return std::max(byWidth - barWidth / pages->paperWidth(), smallest);
    case PreviewView::pageHeight:
        return std::max(byHeight - barWidth / pages->paperHeight(), smallest);
    default:
        return std::max(std::min(byWidth, byHeight), smallest);
    }
}

/// Of a page in sight, 0 for the current one; in pixels of the unscrolled area. Pages that do not fill the
/// window stand in its middle.
QRect PreviewWidget::pageRect(int place) const
{
    const PageLayout* const pages = layout();
    if (!pages)
        return viewport()->rect();
    const int across = m_look.view == PreviewView::severalPages ? m_look.across : 1;
    const int down = m_look.view == PreviewView::severalPages ? m_look.down : 1;
    const QSize size(std::max(1, static_cast<int>(std::lround(pages->paperWidth() * scale()))),
                     std::max(1, static_cast<int>(std::lround(pages->paperHeight() * scale()))));
    const int left = std::max(gap, (viewport()->width() - across * size.width() - (across - 1) * gap) / 2);
    const int top = std::max(gap, (viewport()->height() - down * size.height() - (down - 1) * gap) / 2);
    return {
        QPoint(left + place % across * (size.width() + gap), top + place / across * (size.height() + gap)),
        size};
}

const QPixmap& PreviewWidget::picture(int page, QSize size)
{
    QPixmap& picture = m_pictures[page];
    if (!picture.isNull())
        return picture;
    picture = QPixmap(size * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(scale(), scale());
    PagePainter(m_workbook->sheet(m_sheet), *m_layout, *m_text).paint(painter, page);
    return picture;
}

void PreviewWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    if (!layout()) {
        painter.setPen(palette().color(QPalette::BrightText));
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, m_problem);
        return;
    }
    if (m_picturesRevision != m_revision) {
        m_picturesRevision = m_revision;
        m_pictures.clear();
        arrange();
    }
    const int last = std::min(m_currentPage + pageStep() - 1, pageCount());
    std::erase_if(m_pictures,
                  [&](const auto& entry) { return entry.first < m_currentPage || entry.first > last; });
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    for (int page = m_currentPage; page <= last; ++page) {
        const QRect rect = pageRect(page - m_currentPage).translated(-scrolled);
        if (!rect.adjusted(-gap, -gap, gap, gap).intersects(event->rect()))
            continue;
        painter.fillRect(rect.translated(3, 3), QColor(0, 0, 0, 90));
        painter.drawPixmap(rect.topLeft(), picture(page, rect.size()));
    }
}

void PreviewWidget::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    if (m_look.view != PreviewView::percentage)
        m_pictures.clear();
    arrange();
}

void PreviewWidget::goOn(int pixels, bool turnsPage)
{
    QScrollBar& bar = *verticalScrollBar();
    const int before = bar.value();
    bar.setValue(before + pixels);
    if (bar.value() != before || !turnsPage)
        return;
    const int page = m_currentPage;
    setCurrentPage(page + (pixels > 0 ? pageStep() : -pageStep()));
    if (pixels < 0 && m_currentPage != page)
        bar.setValue(bar.maximum());
}

void PreviewWidget::keyPressEvent(QKeyEvent* event)
{
    const int page = std::max(viewport()->height() - 2 * gap, 1);
    switch (event->key()) {
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return goOn(page, true);
    case Qt::Key_PageUp:
    case Qt::Key_Backspace:
        return goOn(-page, true);
    case Qt::Key_Down:
        return goOn(verticalScrollBar()->singleStep(), false);
    case Qt::Key_Up:
        return goOn(-verticalScrollBar()->singleStep(), false);
    case Qt::Key_Home:
        return setCurrentPage(1);
    case Qt::Key_End:
        return setCurrentPage(pageCount());
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PreviewWidget::wheelEvent(QWheelEvent* event)
{
    event->accept();
    m_wheel += event->angleDelta().y();
    const int notches = m_wheel / wheelStep;
    if (notches == 0)
        return;
    m_wheel -= notches * wheelStep;
    if (!(event->modifiers() & Qt::ControlModifier))
        return goOn(-notches * verticalScrollBar()->singleStep() * 2, true);
    const double shown = scale() * twipsPerInch / logicalDpiX() * 100;
    setView(PreviewView::percentage);
    setZoomPercentage(static_cast<int>(std::lround(shown * std::pow(1.1, notches))));
}

void PreviewWidget::mouseDoubleClickEvent(QMouseEvent*)
{
    toggleZoom();
}

} // namespace spreadsheet
