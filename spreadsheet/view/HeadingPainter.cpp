#include "spreadsheet/view/HeadingPainter.h"

#include "spreadsheet/view/Selection.h"

#include <QPainter>

#include <algorithm>

namespace spreadsheet {

namespace {

enum HeadingState { plain, touched, whole }; // by the selection

QColor mixed(const QColor& a, const QColor& b, double part)
{
    const auto mix = [part](double from, double to) { return static_cast<float>(from + (to - from) * part); };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()));
}

HeadingState stateOf(const Selection& selection, const CellGeometry& geometry, int index, bool isRow)
{
    HeadingState state = plain;
    for (const CellRange& range : selection.ranges()) {
        if (index < (isRow ? range.top : range.left) || index > (isRow ? range.bottom : range.right))
            continue;
        const bool isWhole = isRow ? range.left == 1 && range.right >= geometry.columns().count()
                                   : range.top == 1 && range.bottom >= geometry.rows().count();
        state = std::max(state, isWhole ? whole : touched);
    }
    return state;
}

} // namespace

HeadingPainter::HeadingPainter(double zoom)
    : m_zoom(std::max(zoom, 0.6))
    , m_text(nullptr, m_zoom / twipsPerPixel)
{
    m_text.keepLines();
}

void HeadingPainter::paint(QPainter& painter, const CellGeometry& geometry, const Selection& selection,
                           const QPalette& palette, const QStringList& columnTexts, const QRegion& region)
{
    const int width = geometry.headingWidth();
    const int height = geometry.headingHeight();
    // Beyond the last row and column nothing else is painted in these bands.
    const QRect seen = region.boundingRect();
    for (const QRect& band :
         {QRect(seen.left(), 0, seen.width(), height), QRect(0, seen.top(), width, seen.height())})
        painter.fillRect(band & seen, palette.color(QPalette::Window));
    const auto wanted = [&](const QRect& rect) { return region.intersects(rect); };
    if (height > 0)
        for (const PageTrack& track : geometry.columnTracks())
            if (const QRect rect(track.start, 0, track.size, height); wanted(rect))
                paintOne(painter, rect,
                         columnTexts.value(track.index - 1, QString::fromStdString(columnName(track.index))),
                         stateOf(selection, geometry, track.index, false), palette);
    if (width > 0)
        for (const PageTrack& track : geometry.rowTracks())
            if (const QRect rect(0, track.start, width, track.size); wanted(rect))
                paintOne(painter, rect, QString::number(track.index),
                         stateOf(selection, geometry, track.index, true), palette);
    if (const QRect corner(0, 0, width, height); width > 0 && height > 0 && wanted(corner))
        paintOne(painter, corner, {}, plain, palette);
}

QColor HeadingPainter::lineColour(const QPalette& palette)
{
    return mixed(palette.color(QPalette::Button), palette.color(QPalette::ButtonText), 0.3);
}

void HeadingPainter::paintOne(QPainter& painter, const QRect& rect, const QString& label, int state,
                              const QPalette& palette)
{
    const QColor face = palette.color(QPalette::Button);
    const QColor text = palette.color(QPalette::ButtonText);
    const QColor mark = palette.color(QPalette::Highlight);
    constexpr double parts[] = {0, 0.22, 0.45};
    painter.fillRect(rect, mixed(face, mark, parts[state]));
    const QColor line = lineColour(palette);
    painter.fillRect(QRect(rect.right(), rect.top(), 1, rect.height()), line);
    painter.fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), line);
    if (label.isEmpty() || rect.height() < 4)
        return;
    const FontRequest request{"黑体", 9, state == whole, false};
    const TextLine laidOut = m_text.lines(label, m_text.font(request)).front();
    const double em = request.points * twipsPerPoint * m_text.twip();
    const double top = rect.top() + (rect.height() - 1 - em * lineDistance) / 2;
    const bool isCut = laidOut.width > rect.width() || em * lineDistance > rect.height();
    if (isCut) {
        painter.save();
        painter.setClipRect(rect, Qt::IntersectClip);
    }
    m_text.draw(painter, {rect.left() + (rect.width() - 1 - laidOut.width) / 2, top + baselineInLine * em},
                laidOut, text);
    if (isCut)
        painter.restore();
}

} // namespace spreadsheet
