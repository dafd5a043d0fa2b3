#include "spreadsheet/view/SelectionPainter.h"

#include "spreadsheet/view/Selection.h"
#include "spreadsheet/workbook/Sheet.h"

#include <QPainter>
#include <QRegion>

namespace spreadsheet {

namespace {

constexpr int handleSize = 7;

/// The colour of cursor and selection. Cells are light whatever the palette is, so it must be dark enough.
QColor markColour(const QPalette& palette)
{
    const QColor highlight = palette.color(QPalette::Active, QPalette::Highlight);
    return highlight.lightness() > 150 ? highlight.darker(160) : highlight;
}

void drawFrame(QPainter& painter, const QRect& rect, const QColor& colour, int width)
{
    // Along the grid lines: half of it in the range, half outside.
    const int out = width / 2 + 1;
    const QRect outer = rect.adjusted(-out, -out, out - 1 + (width % 2), out - 1 + (width % 2));
    painter.fillRect(QRect(outer.left(), outer.top(), outer.width(), width), colour);
    painter.fillRect(QRect(outer.left(), outer.bottom() - width + 1, outer.width(), width), colour);
    painter.fillRect(QRect(outer.left(), outer.top(), width, outer.height()), colour);
    painter.fillRect(QRect(outer.right() - width + 1, outer.top(), width, outer.height()), colour);
}

/// A cell of the range stands in the pane: the frame of another one must not show at the pane's edge.
bool meets(const Pane& pane, const CellRange& range)
{
    const PrintedPage& cells = pane.cells;
    return range.intersects({cells.columnTracks.front().index, cells.rowTracks.front().index,
                             cells.columnTracks.back().index, cells.rowTracks.back().index});
}

void drawMarchingFrame(QPainter& painter, const QRect& rect, const QColor& colour, int phase)
{
    const QRect line = rect.adjusted(-1, -1, -1, -1);
    QPen pen(Qt::white, 2);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(pen);
    painter.drawRect(line);
    pen.setColor(colour);
    pen.setDashPattern({3, 3});
    pen.setDashOffset(phase);
    painter.setPen(pen);
    painter.drawRect(line);
}

} // namespace

QRegion frameRegion(const QRect& rect)
{
    constexpr int reach = 3;
    if (rect.isEmpty())
        return {};
    const QRegion outer(rect.adjusted(-reach, -reach, reach, reach));
    const QRect inner = rect.adjusted(reach, reach, -reach, -reach);
    return inner.isEmpty() ? outer : outer - inner;
}

void SelectionPainter::paint(QPainter& painter, const CellOverlays& overlays, const QPalette& palette) const
{
    for (const Pane& pane : m_geometry.panes()) {
        painter.save();
        // The frame of a cell at the edge lies on the headings' line.
        const int left = pane.rect.left() == m_geometry.headingWidth() ? -1 : 0;
        const int top = pane.rect.top() == m_geometry.headingHeight() ? -1 : 0;
        painter.setClipRect(pane.rect.adjusted(left, top, 0, 0), Qt::IntersectClip);
        paintPane(painter, pane, overlays, palette);
        painter.restore();
    }
    const QRect area(QPoint(0, 0), m_geometry.area());
    const QColor guide(0x60, 0x60, 0x60);
    if (overlays.guideDown)
        painter.fillRect(QRect(0, *overlays.guideDown, area.width(), 1), guide);
    if (overlays.guideAcross)
        painter.fillRect(QRect(*overlays.guideAcross, 0, 1, area.height()), guide);
    if (const QRect handle = fillHandle(); overlays.hasFillHandle && !handle.isEmpty()) {
        painter.fillRect(handle, Qt::white);
        painter.fillRect(handle.adjusted(1, 1, -1, -1), markColour(palette));
    }
}

void SelectionPainter::paintPane(QPainter& painter, const Pane& pane, const CellOverlays& overlays,
                                 const QPalette& palette) const
{
    const QColor mark = markColour(palette);
    QColor tint = mark;
    tint.setAlphaF(0.16F);
    const CellRange active = m_sheet.extent(m_selection.active());
    const QRect activeRect = m_geometry.rectIn(pane, active);
    QRegion tinted;
    for (const CellRange& range : m_selection.ranges())
        tinted += m_geometry.rectIn(pane, range) & pane.rect;
    for (const QRect& rect : tinted - activeRect)
        painter.fillRect(rect, tint);
    const auto frame = [&](const CellRange& range, const QColor& colour, int width) {
        if (meets(pane, range))
            drawFrame(painter, m_geometry.rectIn(pane, range), colour, width);
    };
    frame(m_selection.ranges().size() == 1 ? m_selection.lastRange() : active, mark, 2);
    for (const ReferenceFrame& reference : overlays.references) {
        QColor light = reference.colour;
        light.setAlphaF(0.10F);
        painter.fillRect(m_geometry.rectIn(pane, reference.range) & pane.rect, light);
        frame(reference.range, reference.colour, 2);
    }
    if (overlays.fillGoal)
        frame(*overlays.fillGoal, mark.darker(130), 1);
    if (overlays.copied && meets(pane, *overlays.copied))
        drawMarchingFrame(painter, m_geometry.rectIn(pane, *overlays.copied), mark, overlays.copiedPhase);
}

QRect SelectionPainter::fillHandle() const
{
    if (m_selection.ranges().size() != 1)
        return {};
    const CellRange& range = m_selection.lastRange();
    const CellAddress corner{range.right, range.bottom};
    const QRect visible = m_geometry.visibleRect({corner.column, corner.row, corner.column, corner.row});
    if (visible.isEmpty() || visible.bottom() != m_geometry.rowStart(corner.row + 1) - 1 ||
        visible.right() != m_geometry.columnStart(corner.column + 1) - 1)
        return {};
    return {visible.right() - handleSize / 2 - 1, visible.bottom() - handleSize / 2 - 1, handleSize,
            handleSize};
}

QRegion SelectionPainter::touched() const
{
    QRegion region = frameRegion(m_geometry.visibleRect(m_sheet.extent(m_selection.active())));
    region += m_geometry.visibleRect(m_sheet.extent(m_selection.active()));
    for (const CellRange& range : m_selection.ranges()) {
        const QRect rect = m_geometry.visibleRect(range);
        region += rect.isEmpty() ? QRect() : rect.adjusted(-3, -3, 3, 3);
        // The headings of the range.
        region += QRect(rect.left(), 0, rect.width(), m_geometry.headingHeight());
        region += QRect(0, rect.top(), m_geometry.headingWidth(), rect.height());
    }
    if (const QRect handle = fillHandle(); !handle.isEmpty())
        region += handle;
    return region;
}

} // namespace spreadsheet
