#pragma once
#include <QPixmap>
#include <QRegion>

#include <functional>
#include <vector>

namespace spreadsheet {

/// A picture of the cells in sight, of which only stale parts are painted anew. Coordinates are the widget's.
/// The part that scrolls is a ring of pixel rows: scrolling moves its beginning, and no pixels.
class BackingStore {
public:
    /// A picture for another area: all of it is stale.
    void reset(const QRect& area, qreal pixelRatio);
    const QRect& area() const { return m_area; }
    qreal pixelRatio() const { return m_ratio; }

    void spoil(const QRegion& region) { m_stale += region & m_area; }
    void spoilAll() { m_stale = m_area; }
    /// Moves what a part shows down, or up if negative. What comes into sight is stale; all of it, if the
    /// pixels do not allow to move it.
    void scroll(const QRect& part, int down);

    /// Paints what is stale: `paint` gets a painter that takes the widget's coordinates and the part to
    /// paint, to which the painter is clipped.
    void freshen(const std::function<void(QPainter&, const QRect&)>& paint);
    void draw(QPainter& painter, const QRegion& region) const;

private:
    /// Where pixels that the widget shows in one piece lie in one piece in the picture.
    struct Slice {
        QRect shown;
        QPoint shift; ///< from there to the place in the picture
    };
    std::vector<Slice> slices() const;
    QRegion simplifiedStale() const;

    QRect m_area;
    qreal m_ratio = 1;
    QPixmap m_pixmap;
    QRegion m_stale;
    QRect m_ring;         ///< the part that was scrolled
    int m_ringOffset = 0; ///< rows of its picture that lie before the one shown first
};

} // namespace spreadsheet
