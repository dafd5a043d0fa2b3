#include "spreadsheet/print/PageThumbnails.h"

#include "spreadsheet/print/PreviewWidget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr int pictureGap = 8; // pixels around each picture
constexpr int pictureFrame = 2;
constexpr std::size_t mostPictures = 60; // kept

} // namespace

PageThumbnails::PageThumbnails(PreviewWidget& preview, QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_preview(preview)
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("缩略图"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setBackgroundRole(QPalette::Window);
    viewport()->setAutoFillBackground(true);
    connect(&preview, &PreviewWidget::pageChanged, this, &PageThumbnails::showCurrent);
    connect(&preview, &PreviewWidget::pagesRenewed, this, &PageThumbnails::renew);
}

QSize PageThumbnails::sizeHint() const
{
    return {fontMetrics().height() * 7, fontMetrics().height() * 20};
}

QSize PageThumbnails::pageSize() const
{
    const int width = std::max(viewport()->width() - 2 * pictureGap, 1);
    const PageLayout* const layout = m_preview.pages().layout();
    return {width, layout ? std::max(width * layout->paperHeight() / layout->paperWidth(), 1) : width};
}

int PageThumbnails::pitch() const
{
    return pageSize().height() + fontMetrics().height() + pictureGap;
}

QRect PageThumbnails::pageRect(int page) const
{
    return {QPoint(pictureGap, pictureGap + (page - 1) * pitch() - verticalScrollBar()->value()), pageSize()};
}

int PageThumbnails::firstInSight() const
{
    return std::clamp((verticalScrollBar()->value() - pictureGap) / pitch() + 1, 1, m_preview.pageCount());
}

int PageThumbnails::lastInSight() const
{
    return std::clamp((verticalScrollBar()->value() + viewport()->height() - pictureGap) / pitch() + 1, 1,
                      m_preview.pageCount());
}

void PageThumbnails::arrange()
{
    const int height = m_preview.pageCount() * pitch() + pictureGap;
    verticalScrollBar()->setRange(0, std::max(height - viewport()->height(), 0));
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(pitch() / 4);
    showCurrent();
}

void PageThumbnails::renew()
{
    m_pictures.clear();
    arrange();
}

/// Scrolls no more than needed.
void PageThumbnails::showCurrent()
{
    const QRect rect = pageRect(m_preview.currentPage());
    const int above = rect.top() - pictureGap;
    const int below = rect.top() + pitch() - viewport()->height();
    QScrollBar& bar = *verticalScrollBar();
    if (above < 0)
        bar.setValue(bar.value() + above);
    else if (below > 0)
        bar.setValue(bar.value() + below);
    viewport()->update();
}

void PageThumbnails::paintEvent(QPaintEvent* /*event*/)
{
    if (!m_preview.pages().layout())
        return;
    QPainter painter(viewport());
    for (int page = firstInSight(); page <= lastInSight(); ++page) {
        const QRect rect = pageRect(page);
        const bool isCurrent = page == m_preview.currentPage();
        painter.fillRect(rect.adjusted(-pictureFrame, -pictureFrame, pictureFrame, pictureFrame),
                         isCurrent ? palette().highlight() : palette().mid());
        const auto picture = m_pictures.find(page);
        if (picture != m_pictures.end()) {
            painter.drawPixmap(rect.topLeft(), picture->second);
        } else {
            painter.fillRect(rect, Qt::white);
            m_drawing.start(0, this);
        }
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(
            QRect(rect.left(), rect.bottom() + pictureFrame, rect.width(), fontMetrics().height()),
            Qt::AlignCenter, QString::number(page));
    }
}

void PageThumbnails::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_drawing.timerId())
        return QAbstractScrollArea::timerEvent(event);
    m_drawing.stop();
    if (!m_preview.pages().layout())
        return;
    if (m_pictures.size() > mostPictures)
        m_pictures.clear();
    for (int page = firstInSight(); page <= lastInSight(); ++page)
        if (!m_pictures.contains(page)) {
            m_pictures[page] = drawn(page);
            viewport()->update(); // which asks for the next one
            return;
        }
}

/// Made smaller from a larger picture: lines, which take a pixel at least, would be all that is seen.
QPixmap PageThumbnails::drawn(int page) const
{
    constexpr int larger = 3;
    const double ratio = devicePixelRatioF();
    QPixmap picture = m_preview.pages()
                          .picture(page, pageSize() * larger, ratio)
                          .scaled(pageSize() * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    picture.setDevicePixelRatio(ratio);
    return picture;
}

void PageThumbnails::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    renew();
}

void PageThumbnails::keyPressEvent(QKeyEvent* event)
{
    const int inSight = std::max(viewport()->height() / pitch(), 1);
    const int page = m_preview.currentPage();
    switch (event->key()) {
    case Qt::Key_Down:
    case Qt::Key_Right:
        return m_preview.setCurrentPage(page + 1);
    case Qt::Key_Up:
    case Qt::Key_Left:
        return m_preview.setCurrentPage(page - 1);
    case Qt::Key_PageDown:
        return m_preview.setCurrentPage(page + inSight);
    case Qt::Key_PageUp:
        return m_preview.setCurrentPage(page - inSight);
    case Qt::Key_Home:
        return m_preview.setCurrentPage(1);
    case Qt::Key_End:
        return m_preview.setCurrentPage(m_preview.pageCount());
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void PageThumbnails::mousePressEvent(QMouseEvent* event)
{
    const int y = event->position().toPoint().y() + verticalScrollBar()->value() - pictureGap;
    if (event->button() == Qt::LeftButton && y >= 0 && y / pitch() < m_preview.pageCount())
        m_preview.setCurrentPage(y / pitch() + 1);
}

} // namespace spreadsheet
