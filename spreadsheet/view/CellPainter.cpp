#include "spreadsheet/view/CellPainter.h"

#include "spreadsheet/print/cell_backgrounds.h"
#include "spreadsheet/print/cell_lines.h"
#include "spreadsheet/print/cell_text.h"
#include "spreadsheet/print/CellBehaviour.h"
#include "spreadsheet/print/page_rect.h"
#include "spreadsheet/workbook/Sheet.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr BorderLine screenGridLine{LineStyle::fineSolid, 0xB4B4B4};
const QColor noteMark(0xD0, 0x20, 0x20);

/// Every cell of the part that stands alone, and every span once, with its place.
void eachBox(const PageCells& cells, const auto& visit)
{
    for (int row = 0; row < cells.rows(); ++row)
        for (int column = 0; column < cells.columns(); ++column)
            if (cells.at(row, column).span < 0)
                visit(cells.at(row, column), rectOf(cells.boxOf(row, column)));
    for (const PageSpan& span : cells.spans())
        visit(span.anchor, rectOf(span.whole));
}

void drawMark(QPainter& painter, CornerMark mark, const QRectF& place)
{
    const double line = place.width() / 4;
    if (mark == CornerMark::square)
        return painter.fillRect(place, noteMark);
    if (mark == CornerMark::bar)
        return painter.fillRect(QRectF(place.left(), place.top() + line, place.width(), 2 * line), noteMark);
    QPainterPath corner(place.topLeft());
    corner.lineTo(place.topRight());
    corner.lineTo(place.bottomRight());
    corner.closeSubpath();
    if (mark == CornerMark::triangle)
        painter.fillPath(corner, noteMark);
    else
        painter.strokePath(corner, QPen(noteMark, 1));
}

/// The tracks that meet first..last (pixels) with one more on either side, whose borders reach there.
std::vector<PageTrack> tracksIn(const std::vector<PageTrack>& tracks, int first, int last)
{
    auto from = std::ranges::lower_bound(tracks, first + 1, {}, &PageTrack::end);
    auto to = std::ranges::upper_bound(tracks, last, {}, &PageTrack::start);
    from -= from != tracks.begin() ? 1 : 0;
    to += to != tracks.end() ? 1 : 0;
    return {from, std::max(from, to)};
}

} // namespace

CellPainter::CellPainter(double twip)
    : m_text(nullptr, twip)
{
    m_text.keepLines();
}

void CellPainter::paint(QPainter& painter, const Sheet& sheet, const CellGeometry& geometry, const Pane& pane,
                        const QRect& clip)
{
    PrintedPage part;
    part.rowTracks = tracksIn(pane.cells.rowTracks, clip.top(), clip.bottom());
    part.columnTracks = pane.cells.columnTracks;
    if (part.rowTracks.empty() || part.columnTracks.empty())
        return;
    const PageCells cells(sheet, part, geometry.lengths());
    m_paintedCells += part.rowTracks.size() * part.columnTracks.size();
    painter.fillRect(pane.rect, Qt::white);
    drawBackgrounds(painter, cells, true);
    paintControls(painter, cells);
    CellTextPainter texts(painter, m_text, cells, true, part.columnTracks.back().end());
    texts.drawForScreen();
    const std::vector<TextOverflow> overflows = texts.draw();
    painter.translate(-1, -1); // a line lies on the last pixel of its cell
    CellLines(cells, gridLines ? screenGridLine : BorderLine{}, overflows).draw(painter, true, m_text.twip());
    painter.translate(1, 1);
    if (markOf)
        paintMarks(painter, cells);
}

void CellPainter::paintControls(QPainter& painter, const PageCells& cells)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const double twip = m_text.twip();
    eachBox(cells, [&](const PageCell& cell, const QRect& rect) {
        behaviourOf(cell.style->type).paint(painter, cell, rect, twip, pressed == cell.address);
    });
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void CellPainter::paintMarks(QPainter& painter, const PageCells& cells)
{
    const int size = pixelsAtLeast(5, 90, m_text.twip());
    eachBox(cells, [&](const PageCell& cell, const QRect& rect) {
        if (const CornerMark mark = markOf(cell.address); mark != CornerMark::none)
            drawMark(painter, mark, QRectF(rect.right() - size, rect.top(), size, size));
    });
}

} // namespace spreadsheet
