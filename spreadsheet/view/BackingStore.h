#pragma once
#include <QPixmap>
#include <QRegion>

namespace spreadsheet {

/// A picture of the cells in sight, of which only stale parts are painted anew. Coordinates are the widget's.
class BackingStore {
public:
    /// A picture for another area: all of it is stale.
    void reset(const QRect& area, qreal pixelRatio);
    const QRect& area() const { return m_area; }
    qreal pixelRatio() const { return m_ratio; }

    void spoil(const QRegion& region) { m_stale += region & m_area; }
    void spoilAll() { m_stale = m_area; }
    /// Moves what a part shows. What comes into sight is stale; all of it, if the pixels do not allow to move
    /// it.
    void scroll(const QRect& part, int across, int down);

    const QRegion& stale() const { return m_stale; }
    void markFresh() { m_stale = {}; }
    /// To paint on with the widget's coordinates after translating by -area().topLeft().
    QPixmap& pixmap() { return m_pixmap; }
    void draw(QPainter& painter, const QRegion& region) const;

private:
    QRect m_area;
    qreal m_ratio = 1;
    QPixmap m_pixmap;
    QRegion m_stale;
};

} // namespace spreadsheet
