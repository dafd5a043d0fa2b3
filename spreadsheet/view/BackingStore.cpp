#include "spreadsheet/view/BackingStore.h"

#include <QPainter>

#include <cmath>
#include <cstdlib>

namespace spreadsheet {

void BackingStore::reset(const QRect& area, qreal pixelRatio)
{
    const QSize size = (QSizeF(area.size()) * pixelRatio).toSize().expandedTo({1, 1});
    if (m_pixmap.size() != size)
        m_pixmap = QPixmap(size);
    m_pixmap.setDevicePixelRatio(pixelRatio);
    m_area = area;
    m_ratio = pixelRatio;
    spoilAll();
}

void BackingStore::scroll(const QRect& part, int across, int down)
{
    const double pixelsAcross = across * m_ratio;
    const double pixelsDown = down * m_ratio;
    const bool whole = pixelsAcross == std::floor(pixelsAcross) && pixelsDown == std::floor(pixelsDown) &&
                       m_ratio == std::floor(m_ratio);
    if (!whole || std::abs(across) >= part.width() || std::abs(down) >= part.height()) {
        spoil(part);
        return;
    }
    const QRect inside = part.translated(-m_area.topLeft());
    const int ratio = static_cast<int>(m_ratio);
    m_pixmap.scroll(static_cast<int>(pixelsAcross), static_cast<int>(pixelsDown),
                    QRect(inside.topLeft() * ratio, inside.size() * ratio));
    const QRegion moved = (m_stale & part).translated(across, down) & part;
    m_stale = (m_stale - part) + moved + (QRegion(part) - part.translated(across, down));
}

void BackingStore::draw(QPainter& painter, const QRegion& region) const
{
    for (const QRect& rect : region& m_area) {
        const QRect inside = rect.translated(-m_area.topLeft());
        const bool isPart = region.rectCount() > 1;
        if (isPart) { // within a clip of several rectangles the painter would not just copy
            painter.save();
            painter.setClipRect(rect, Qt::IntersectClip);
        }
        painter.drawPixmap(QRectF(rect), m_pixmap,
                           QRectF(QPointF(inside.topLeft()) * m_ratio, QSizeF(inside.size()) * m_ratio));
        if (isPart)
            painter.restore();
    }
}

} // namespace spreadsheet
