#include "spreadsheet/print/PreviewWidget.h"

#include "spreadsheet/print/page_words.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace spreadsheet {

// A report may have thousands of pages. They are laid out together, since each must know where the one
// before ended, but a page is drawn when it comes into sight, into a picture that scrolling reuses. What
// changed in the workbook is seen by its revision when painting: nobody has to tell the preview.
//
// The current page is kept apart from where the strip stands: near its end several pages are in sight, any of
// which may be the current one.

namespace {

constexpr int gap = 12; // pixels around each page
constexpr int smallestPercentage = 10;
constexpr int largestPercentage = 400;
constexpr int mostPages = 10;  // across or down
constexpr int closeLook = 100; // per cent
constexpr int closerLook = 200;
constexpr int wheelStep = 120; // eighths of a degree of one notch
constexpr int notchesOfAWindow = 8;
constexpr int frame = 3; // pixels around the current page

} // namespace

PreviewWidget::PreviewWidget(QWidget* parent)
    : QAbstractScrollArea(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
    connect(&m_counting, &QTimer::timeout, this, &PreviewWidget::countHits);
}

void PreviewWidget::attach(const Workbook& workbook, int sheet, PageRequest request)
{
    m_pages.attach(workbook, sheet, std::move(request));
    m_currentPage = 1;
    m_toldPages = pageCount();
    renew();
}

void PreviewWidget::setRequest(PageRequest request)
{
    m_pages.setRequest(std::move(request));
    renew();
}

void PreviewWidget::refresh()
{
    if (m_pages.areOld())
        renew();
}

void PreviewWidget::setCurrentPage(int page)
{
    page = std::clamp(page, 1, pageCount());
    if (page == m_currentPage)
        return;
    m_currentPage = page;
    scrollTo(0);
    viewport()->update();
    Q_EMIT pageChanged(page);
}

/// … also if it is the current one, but out of sight in part.
void PreviewWidget::showPage(int page)
{
    setCurrentPage(page);
    scrollTo(0);
}

void PreviewWidget::mark(const QString& text)
{
    m_search.setText(text);
    m_counting.start();
    viewport()->update();
    Q_EMIT hitsChanged();
}

bool PreviewWidget::find(const QString& text, bool isForward)
{
    m_search.setText(text);
    const bool isFound = m_search.go(isForward, m_currentPage);
    if (isFound) {
        setCurrentPage(m_search.current().page);
        showHit();
    }
    mark(text);
    return isFound;
}

/// Scrolls as far as the current hit needs.
void PreviewWidget::showHit()
{
    const auto [page, index] = m_search.current();
    const Strip strip = this->strip();
    const QRect onPaper = m_search.on(page)[static_cast<std::size_t>(index)];
    const QRect hit = onScreen(onPaper).translated(pageRect(strip, page).topLeft());
    const auto scroll = [](QScrollBar& bar, int first, int last, int room) {
        if (first - gap < bar.value() || last + gap > bar.value() + room)
            bar.setValue((first + last - room) / 2);
    };
    {
        const QScopedValueRollback placing(m_isPlacing, true); // the page stays the current one
        scroll(*verticalScrollBar(), hit.top(), hit.bottom(), viewport()->height());
        scroll(*horizontalScrollBar(), hit.left(), hit.right(), viewport()->width());
    }
    m_within = (verticalScrollBar()->value() - rowOf(page) * strip.pitch().height()) /
               static_cast<double>(strip.page.height());
}

void PreviewWidget::countHits()
{
    if (m_search.text().isEmpty() || !m_search.countOn())
        m_counting.stop();
    Q_EMIT hitsChanged();
}

/// Twips on a page as pixels on its picture.
QRect PreviewWidget::onScreen(const QRect& onPaper) const
{
    const double scale = this->scale();
    return QRectF(onPaper.x() * scale, onPaper.y() * scale, onPaper.width() * scale, onPaper.height() * scale)
        .toRect();
}

void PreviewWidget::drawHits(QPainter& painter, int page, const QRect& place)
{
    const QColor hitColour(255, 236, 150), currentColour(255, 190, 110);
    const std::vector<QRect>& hits = m_search.on(page);
    for (std::size_t i = 0; i < hits.size(); ++i) {
        const bool isCurrent = m_search.current() == PreviewSearch::Hit{page, static_cast<int>(i)};
        const QRect hit = onScreen(hits[i]).translated(place.topLeft());
        painter.setCompositionMode(QPainter::CompositionMode_Multiply); // letters stay as dark
        painter.fillRect(hit, isCurrent ? currentColour : hitColour);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        if (!isCurrent)
            continue;
        painter.setPen(QPen(QColor(200, 90, 0), 2));
        painter.drawRect(hit);
    }
}

QString PreviewWidget::words() const
{
    const PageLayout* const layout = m_pages.layout();
    return layout ? pageWords(m_pages.sheet(), *layout, m_currentPage) : QString();
}

int PreviewWidget::pageStep() const
{
    return pagesInRow() * pagesBelow();
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
    arrangeAnew();
    Q_EMIT lookChanged();
}

/// Other pages: the current one stays within the report.
void PreviewWidget::renew()
{
    const int pageBefore = m_currentPage;
    m_pictures.clear();
    m_shownVersion = m_pages.version();
    if (!m_search.text().isEmpty())
        m_counting.start(); // there may be others
    m_currentPage = std::clamp(m_currentPage, 1, pageCount());
    arrange();
    Q_EMIT pagesRenewed();
    tellPages(pageBefore);
}

/// Scroll ranges. Each row of pages can stand at the window's top, unless all pages fit into it. The part of
/// the current page that was at the window's top stays there.
void PreviewWidget::arrange()
{
    const Strip strip = this->strip();
    const QSize area = viewport()->size();
    {
        const QScopedValueRollback placing(m_isPlacing, true);
        horizontalScrollBar()->setRange(0, std::max(0, strip.extent().width() - area.width()));
        horizontalScrollBar()->setPageStep(area.width());
        const int beyond = strip.extent().height() - area.height();
        const int lastRow = (strip.rows - 1) * strip.pitch().height();
        verticalScrollBar()->setRange(0, beyond <= 0 ? 0 : std::max(beyond, lastRow));
        verticalScrollBar()->setPageStep(area.height());
        verticalScrollBar()->setSingleStep(fontMetrics().height() * 2);
    }
    scrollTo(m_within);
    viewport()->update();
}

/// In another size a page that fits into the window is shown as a whole.
void PreviewWidget::arrangeAnew()
{
    if (strip().page.height() + 2 * gap <= viewport()->height())
        m_within = 0;
    arrange();
}

/// @param within  how far down the current page the window's top lies, in parts of its height
void PreviewWidget::scrollTo(double within)
{
    const Strip strip = this->strip();
    const QScopedValueRollback placing(m_isPlacing, true);
    m_within = within;
    verticalScrollBar()->setValue(rowOf(m_currentPage) * strip.pitch().height() +
                                  static_cast<int>(std::lround(within * strip.page.height())));
}

void PreviewWidget::tellPages(int pageBefore)
{
    const int pages = pageCount();
    if (std::exchange(m_toldPages, pages) != pages)
        Q_EMIT pageCountChanged(pages);
    if (m_currentPage != pageBefore)
        Q_EMIT pageChanged(m_currentPage);
}

/// Pixels per twip. Fitting views use the size beside a scroll bar, whether it shows or not: bars that came
/// and went would change what fits.
double PreviewWidget::scale() const
{
    const PageLayout* const layout = m_pages.layout();
    const double natural = logicalDpiX() / twipsPerInch;
    if (!layout || m_look.view == PreviewView::percentage)
        return natural * m_look.percentage / 100;
    const QSize area = maximumViewportSize();
    const int barWidth = verticalScrollBar()->sizeHint().width();
    const int across = pagesInRow(), down = pagesBelow();
    const double byWidth =
        static_cast<double>(area.width() - barWidth - gap * (across + 1)) / across / layout->paperWidth();
    const double room =
        area.height() - gap * (down + 1) - (m_look.view == PreviewView::pageHeight ? barWidth : 0);
    const double byHeight = room / down / layout->paperHeight();
    const double smallest = natural * smallestPercentage / 100 / 2;
    switch (m_look.view) {
    case PreviewView::pageWidth:
        return std::max(byWidth, smallest);
    case PreviewView::pageHeight:
        return std::max(byHeight, smallest);
    default:
        return std::max(std::min(byWidth, byHeight), smallest);
    }
}

QSize PreviewWidget::Strip::pitch() const
{
    return {page.width() + gap, page.height() + gap};
}

QSize PreviewWidget::Strip::extent() const
{
    return {across * pitch().width() + gap, rows * pitch().height() + gap};
}

/// Pages that do not fill the window stand in its middle.
PreviewWidget::Strip PreviewWidget::strip() const
{
    Strip strip;
    const PageLayout* const layout = m_pages.layout();
    if (!layout)
        return strip;
    const double scale = this->scale();
    const auto pixels = [scale](int twips) {
        return std::max(1, static_cast<int>(std::lround(twips * scale)));
    };
    strip.page = {pixels(layout->paperWidth()), pixels(layout->paperHeight())};
    strip.across = pagesInRow();
    strip.rows = rowOf(pageCount()) + 1;
    strip.first = {gap + std::max(0, (viewport()->width() - strip.extent().width()) / 2),
                   gap + std::max(0, (viewport()->height() - strip.extent().height()) / 2)};
    return strip;
}

/// In pixels of the unscrolled strip.
QRect PreviewWidget::pageRect(const Strip& strip, int page) const
{
    const int column = (page - 1) % strip.across;
    return {strip.first + QPoint(column * strip.pitch().width(), rowOf(page) * strip.pitch().height()),
            strip.page};
}

const QPixmap& PreviewWidget::picture(int page, QSize size)
{
    QPixmap& picture = m_pictures[page];
    if (picture.isNull())
        picture = m_pages.picture(page, size, devicePixelRatioF());
    return picture;
}

void PreviewWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    if (m_shownVersion != m_pages.version())
        renew();
    if (!m_pages.layout()) {
        painter.setPen(palette().color(QPalette::BrightText));
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, problem());
        return;
    }
    const Strip strip = this->strip();
    const QPoint scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const int top = scrolled.y() - strip.first.y();
    const int first = std::max(top / strip.pitch().height(), 0) * strip.across + 1;
    const int last = std::clamp(((top + viewport()->height()) / strip.pitch().height() + 1) * strip.across, 1,
                                pageCount());
    std::erase_if(m_pictures, [&](const auto& entry) { return entry.first < first || entry.first > last; });
    for (int page = first; page <= last; ++page) {
        const QRect rect = pageRect(strip, page).translated(-scrolled);
        if (!rect.adjusted(-gap, -gap, gap, gap).intersects(event->rect()))
            continue;
        painter.fillRect(rect.translated(3, 3), QColor(0, 0, 0, 90));
        if (page == m_currentPage && last > first)
            painter.fillRect(rect.adjusted(-frame, -frame, frame, frame), palette().highlight());
        painter.drawPixmap(rect.topLeft(), picture(page, rect.size()));
        drawHits(painter, page, rect);
    }
}

void PreviewWidget::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    if (m_look.view != PreviewView::percentage)
        m_pictures.clear();
    arrangeAnew();
}

void PreviewWidget::scrollContentsBy(int across, int down)
{
    QAbstractScrollArea::scrollContentsBy(across, down);
    if (!m_isPlacing && down != 0)
        noteScrolling();
}

/// The current page becomes the first one of which half is in sight.
void PreviewWidget::noteScrolling()
{
    const Strip strip = this->strip();
    const int top = verticalScrollBar()->value(), pitch = strip.pitch().height();
    const int middle = top + std::min(strip.page.height(), viewport()->height()) / 2 - strip.first.y();
    const int row = std::clamp(middle / pitch, 0, strip.rows - 1);
    const bool turns = row != rowOf(m_currentPage);
    if (turns)
        m_currentPage = row * strip.across + 1;
    m_within = (top - row * pitch) / static_cast<double>(strip.page.height());
    if (turns)
        Q_EMIT pageChanged(m_currentPage);
}

/// By what fits into the window, down or up: rows of pages, or a part of a page that is higher.
void PreviewWidget::goOn(int screens)
{
    const Strip strip = this->strip();
    const int room = viewport()->height() - gap;
    if (const int rows = room / strip.pitch().height(); rows > 0)
        return showPage((rowOf(m_currentPage) + screens * rows) * strip.across + 1);
    QScrollBar& bar = *verticalScrollBar();
    bar.setValue(bar.value() + screens * std::max(room - bar.singleStep(), 1));
}

void PreviewWidget::keyPressEvent(QKeyEvent* event)
{
    const bool byPages = event->modifiers() & Qt::ControlModifier;
    QScrollBar& bar = *verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return byPages ? setCurrentPage(m_currentPage + pageStep()) : goOn(1);
    case Qt::Key_PageUp:
    case Qt::Key_Backspace:
        return byPages ? setCurrentPage(m_currentPage - pageStep()) : goOn(-1);
    case Qt::Key_Down:
        return bar.setValue(bar.value() + bar.singleStep());
    case Qt::Key_Up:
        return bar.setValue(bar.value() - bar.singleStep());
    case Qt::Key_Home:
        return showPage(1);
    case Qt::Key_End:
        return showPage(pageCount());
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PreviewWidget::wheelEvent(QWheelEvent* event)
{
    event->accept();
    const QPoint angle = event->angleDelta();
    if (!(event->modifiers() & Qt::ControlModifier)) {
        const auto scroll = [](QScrollBar& bar, int turned, int window) {
            bar.setValue(bar.value() - static_cast<int>(std::lround(static_cast<double>(turned) * window /
                                                                    notchesOfAWindow / wheelStep)));
        };
        scroll(*horizontalScrollBar(), angle.x(), viewport()->width());
        return scroll(*verticalScrollBar(), angle.y(), viewport()->height());
    }
    m_wheel += angle.y();
    const int notches = m_wheel / wheelStep;
    if (notches == 0)
        return;
    m_wheel -= notches * wheelStep;
    const double shown = scale() * twipsPerInch / logicalDpiX() * 100;
    setView(PreviewView::percentage);
    setZoomPercentage(static_cast<int>(std::lround(shown * std::pow(1.1, notches))));
}

void PreviewWidget::mouseDoubleClickEvent(QMouseEvent*)
{
    toggleZoom();
}

} // namespace spreadsheet
