#include "spreadsheet/view/CellPainter.h"

#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/print/cell_backgrounds.h"
#include "spreadsheet/print/cell_lines.h"
#include "spreadsheet/print/cell_text.h"
#include "spreadsheet/workbook/Sheet.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr BorderLine screenGridLine{LineStyle::fineSolid, 0xB4B4B4};
// Cells look alike with every palette of the surroundings, so their controls have colours of their own.
const QColor faceTop(0xFA, 0xFA, 0xFA), faceBottom(0xE6, 0xE6, 0xE6), facePressed(0xD0, 0xD0, 0xD0);
const QColor faceLine(0x8C, 0x8C, 0x8C), faceMark(0x30, 0x30, 0x30), noteMark(0xD0, 0x20, 0x20);

QRect rectOf(const PageBox& box)
{
    return {box.left, box.top, box.width, box.height};
}

int scaled(double twips, double twip, int least)
{
    return std::max(static_cast<int>(std::lround(twips * twip)), least);
}

void paintFace(QPainter& painter, const QRect& rect, bool pressed, double radius)
{
    QLinearGradient gradient(rect.topLeft(), rect.bottomLeft());
    gradient.setColorAt(0, faceTop);
    gradient.setColorAt(1, faceBottom);
    painter.setPen(QPen(faceLine, 1));
    painter.setBrush(pressed ? QBrush(facePressed) : QBrush(gradient));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

void paintArrow(QPainter& painter, const QRect& face)
{
    const double half = std::max(std::min(face.width(), face.height()) * 0.2, 2.0);
    const QPointF middle = QRectF(face).center();
    QPainterPath arrow(middle + QPointF(-half, -half / 2));
    arrow.lineTo(middle + QPointF(half, -half / 2));
    arrow.lineTo(middle + QPointF(0, half / 2));
    arrow.closeSubpath();
    painter.fillPath(arrow, faceMark);
}

void paintCheckBox(QPainter& painter, const QRect& square, bool checked)
{
    painter.setPen(QPen(faceLine, 1));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(square).adjusted(0.5, 0.5, -0.5, -0.5), 1.5, 1.5);
    if (!checked)
        return;
    const double size = square.width();
    const QPointF origin = square.topLeft();
    const QPointF tick[] = {origin + QPointF(0.22, 0.52) * size, origin + QPointF(0.43, 0.74) * size,
                            origin + QPointF(0.8, 0.26) * size};
    painter.setPen(QPen(faceMark, std::max(size / 7, 1.5), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(tick, 3);
}

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

QRect checkBoxRect(const QRect& cell, double twip)
{
    const int size = std::min(scaled(190, twip, 7), std::max(cell.height() - 2, 3));
    return {cell.left() + (cell.width() - size) / 2, cell.top() + (cell.height() - size) / 2, size, size};
}

QRect arrowRect(const QRect& cell, double twip)
{
    const int width = std::min(scaled(240, twip, 8), cell.width());
    return {cell.right() + 1 - width, cell.top(), width - 1, std::max(cell.height() - 1, 1)};
}

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
    texts.drawForScreen(scaled(240, m_text.twip(), 8));
    const std::vector<TextOverflow> overflows = texts.draw();
    painter.translate(-1, -1); // a line lies on the last pixel of its cell
    CellLines(cells, gridLines ? screenGridLine : BorderLine{}, overflows).draw(painter, true, m_text.twip());
    painter.translate(1, 1);
    if (hasNote)
        paintMarks(painter, cells);
}

void CellPainter::paintControls(QPainter& painter, const PageCells& cells)
{
    painter.setRenderHint(QPainter::Antialiasing);
    const double twip = m_text.twip();
    eachBox(cells, [&](const PageCell& cell, const QRect& rect) {
        const QRect inside = rect.adjusted(0, 0, -1, -1); // the line is not covered
        const CellFace control = cellTypeRow(cell.style->type).face;
        if (control == CellFace::button) {
            paintFace(painter, inside.adjusted(1, 1, -1, -1), pressed == cell.address, 3);
        } else if (control == CellFace::arrow) {
            const QRect face = arrowRect(rect, twip);
            paintFace(painter, face.adjusted(0, 1, -1, -1), pressed == cell.address, 2);
            paintArrow(painter, face);
        } else if (control == CellFace::checkBox && cell.text.isEmpty()) {
            paintCheckBox(painter, checkBoxRect(inside, twip), cell.isTrue);
        }
    });
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void CellPainter::paintMarks(QPainter& painter, const PageCells& cells)
{
    const int size = scaled(90, m_text.twip(), 5);
    eachBox(cells, [&](const PageCell& cell, const QRect& rect) {
        if (!hasNote(cell.address))
            return;
        QPainterPath corner(QPointF(rect.right() - size, rect.top()));
        corner.lineTo(rect.right(), rect.top());
        corner.lineTo(rect.right(), rect.top() + size);
        corner.closeSubpath();
        painter.fillPath(corner, noteMark);
    });
}

} // namespace spreadsheet
