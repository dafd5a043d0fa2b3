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
    m_ring = {};
    m_ringOffset = 0;
    spoilAll();
}

void BackingStore::scroll(const QRect& part, int down)
{
    const QRect ring = part & m_area;
    const bool whole = m_ratio == std::floor(m_ratio);
    if (!whole || std::abs(down) >= ring.height()) {
        spoil(ring);
        return;
    }
    if (ring != m_ring) {
        if (m_ringOffset != 0)
            spoil(m_ring);
        m_ring = ring;
        m_ringOffset = 0;
    }
    m_ringOffset = (m_ringOffset - down + ring.height()) % ring.height();
    const QRegion moved = (m_stale & ring).translated(0, down) & ring;
    m_stale = (m_stale - ring) + moved + (QRegion(ring) - ring.translated(0, down));
}

std::vector<BackingStore::Slice> BackingStore::slices() const
{
    const QPoint home = -m_area.topLeft();
    if (m_ringOffset == 0)
        return {{m_area, home}};
    std::vector<Slice> slices;
    for (const QRect& rect : QRegion(m_area) - m_ring)
        slices.push_back({rect, home});
    const int before = m_ring.height() - m_ringOffset; // rows shown before the picture's first one
    slices.push_back({m_ring.adjusted(0, 0, 0, -m_ringOffset), home + QPoint(0, m_ringOffset)});
    slices.push_back({m_ring.adjusted(0, before, 0, 0), home - QPoint(0, before)});
    return slices;
}

QRegion BackingStore::simplifiedStale() const
{
    constexpr int mostParts = 16; // one pass over all rows is quicker than many
    return m_stale.rectCount() > mostParts ? m_stale.boundingRect() : m_stale;
}

void BackingStore::freshen(const std::function<void(QPainter&, const QRect&)>& paint)
{
    if (m_stale.isEmpty())
        return;
    QPainter painter(&m_pixmap);
    const QRegion stale = simplifiedStale();
    for (const Slice& slice : slices()) {
        painter.resetTransform();
        painter.translate(slice.shift);
        for (const QRect& part : stale& slice.shown) {
            painter.setClipRect(part);
            paint(painter, part);
        }
    }
    m_stale = {};
}

void BackingStore::draw(QPainter& painter, const QRegion& region) const
{
    for (const Slice& slice : slices())
        for (const QRect& rect : region& slice.shown) {
            const QRect inside = rect.translated(slice.shift);
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
