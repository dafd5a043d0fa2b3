#include "spreadsheet/print/cell_lines.h"

#include "spreadsheet/print/print_colour.h"

#include <QLineF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace spreadsheet {

namespace {

constexpr double normalWidth = 15; // twips
constexpr double fineWidth = 5;
constexpr double mediumWidth = 22;
constexpr double thickWidth = 30;
constexpr double doubledShift = 15; // of each of the two from the edge
constexpr BorderLine noLine{};

bool isFine(LineStyle style)
{
    return style >= LineStyle::fineSolid && style <= LineStyle::fineDashDotDot;
}

bool isHeavy(LineStyle style)
{
    return style == LineStyle::thick || style == LineStyle::doubled;
}

int weightOf(const BorderLine& line)
{
    if (line.style == LineStyle::none)
        return 0;
    if (line.style == LineStyle::erase)
        return 5;
    return isHeavy(line.style) ? 4 : line.style == LineStyle::medium ? 3 : isFine(line.style) ? 1 : 2;
}

double widthOf(LineStyle style)
{
    if (style == LineStyle::thick || style == LineStyle::medium)
        return style == LineStyle::thick ? thickWidth : mediumWidth;
    return isFine(style) ? fineWidth : normalWidth;
}

static_assert(doubledShift + normalWidth / 2 <= farthestLine && thickWidth / 2 <= farthestLine);

/// Lengths of strokes and gaps in twips; empty: a solid line.
QList<qreal> dashesOf(LineStyle style)
{
    switch (style) {
    case LineStyle::dash:
    case LineStyle::fineDash:
        return {90, 45};
    case LineStyle::dot:
    case LineStyle::fineDot:
        return {20, 30};
    case LineStyle::dashDot:
    case LineStyle::fineDashDot:
    case LineStyle::slantedDashDot:
        return {90, 40, 20, 40};
    case LineStyle::dashDotDot:
    case LineStyle::fineDashDotDot:
        return {90, 40, 20, 40, 20, 40};
    default:
        return {};
    }
}

/// Changes the lengths of dashes a little so that a whole number of them fits a line of that many pen widths.
void fitDashes(QPen& pen, double length)
{
    QList<qreal> dashes = pen.dashPattern();
    const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    const double fitting = length / std::max(1.0, std::round(length / period));
    for (qreal& dash : dashes)
        dash *= fitting / period;
    pen.setDashPattern(dashes);
}

/// Draws count edges as few lines; edge(i) is the i-th one, stroke(from, to, line) draws from..to. Dashes
/// begin anew with each cell: which of them are painted together must not show.
void drawRuns(int count, const auto& edge, const auto& stroke)
{
    for (int from = 0; from < count;) {
        int to = from + 1;
        while (to < count && edge(to) == edge(from) && dashesOf(edge(from).style).isEmpty())
            ++to;
        if (edge(from).style != LineStyle::none)
            stroke(from, to - 1, edge(from));
        from = to;
    }
}

} // namespace

QPen borderPen(const BorderLine& line, double scale, bool inColour, double twip)
{
    const double width = widthOf(line.style);
    const bool hairline = width * scale < 1;
    QColor colour = printColour(line.colour, 0x000000, inColour);
    if (hairline)
        colour.setAlphaF(static_cast<float>(std::max(width * scale, 0.55))); // a thinner line looks lighter
    QPen pen(colour, hairline ? 1 : width * twip);
    pen.setCosmetic(hairline);
    QList<qreal> dashes = dashesOf(line.style);
    // A toolkit's dash lengths count in pen widths.
    for (qreal& dash : dashes)
        dash = hairline ? std::max(dash * scale, 1.0) : dash / width;
    if (!dashes.isEmpty())
        pen.setDashPattern(dashes);
    pen.setCapStyle(dashes.isEmpty() ? Qt::SquareCap : Qt::FlatCap); // square: corners close
    return pen;
}

CellLines::CellLines(const PageCells& cells, const BorderLine& gridLine,
                     std::span<const TextOverflow> overflows)
    : m_cells(cells)
    , m_gridLine(gridLine)
    , m_rowEdges(static_cast<std::size_t>((cells.rows() + 1) * cells.columns()))
    , m_columnEdges(static_cast<std::size_t>(cells.rows() * (cells.columns() + 1)))
{
    for (int line = 0; line <= cells.rows(); ++line)
        placeRowEdges(line);
    for (int row = 0; row < cells.rows(); ++row)
        placeColumnEdges(row);
    for (const TextOverflow& overflow : overflows)
        for (int line = overflow.first + 1; line <= overflow.last; ++line)
            if (columnEdge(overflow.row, line) == gridLine)
                columnEdge(overflow.row, line) = noLine;
}

void CellLines::placeRowEdges(int line)
{
    for (int column = 0; column < m_cells.columns(); ++column) {
        if (line > 0 && line < m_cells.rows() && sameSpan(line - 1, column, line, column))
            continue;
        // Beyond the page's edge the neighbour still has a say: a table cut by a page is closed there.
        rowEdge(line, column) =
            edgeBetween(sideOf(line - 1, column, &CellStyle::bottom), sideOf(line, column, &CellStyle::top));
    }
}

void CellLines::placeColumnEdges(int row)
{
    for (int line = 0; line <= m_cells.columns(); ++line) {
        if (line > 0 && line < m_cells.columns() && sameSpan(row, line - 1, row, line))
            continue;
        columnEdge(row, line) =
            edgeBetween(sideOf(row, line - 1, &CellStyle::right), sideOf(row, line, &CellStyle::left));
    }
}

BorderLine CellLines::sideOf(int row, int column, Side side) const
{
    const int rows = m_cells.rows();
    const int columns = m_cells.columns();
    if (row >= 0 && row < rows && column >= 0 && column < columns) {
        const PageCell& cell = m_cells.at(row, column);
        const BorderLine& own = cell.style->*side;
        return cell.span < 0
                   ? own
                   : spanLine(own, m_cells.spans()[static_cast<std::size_t>(cell.span)].anchor.style->*side);
    }
    CellAddress neighbour =
        m_cells.at(std::clamp(row, 0, rows - 1), std::clamp(column, 0, columns - 1)).address;
    neighbour.row += row < 0 ? -1 : row >= rows ? 1 : 0;
    neighbour.column += column < 0 ? -1 : column >= columns ? 1 : 0;
    const SheetSettings& settings = m_cells.sheet().settings();
    if (neighbour.row < 1 || neighbour.column < 1 || neighbour.row > settings.rowCount ||
        neighbour.column > settings.columnCount)
        return noLine;
    return m_cells.sheet().style(neighbour).*side;
}

BorderLine CellLines::edgeBetween(const BorderLine& before, const BorderLine& after) const
{
    const BorderLine& edge = weightOf(before) > weightOf(after) ? before : after;
    if (edge.style == LineStyle::erase)
        return noLine;
    return edge.style == LineStyle::none ? m_gridLine : edge;
}

bool CellLines::sameSpan(int row, int column, int otherRow, int otherColumn) const
{
    const int span = m_cells.at(row, column).span;
    return span >= 0 && span == m_cells.at(otherRow, otherColumn).span;
}

void CellLines::draw(QPainter& painter, bool inColour, double twip) const
{
    const double scale = painter.deviceTransform().m11() * twip;
    // The two lines of a double one keep a pixel between them.
    const double shift = std::max(1.0, std::round(doubledShift * scale)) / scale * twip;
    const auto stroke = [&](const BorderLine& edge, const QPointF& from, const QPointF& to) {
        QPen pen = borderPen(edge, scale, inColour, twip);
        if (pen.style() == Qt::CustomDashLine)
            fitDashes(pen, QLineF(from, to).length() * (pen.isCosmetic() ? scale / twip : 1 / pen.widthF()));
        painter.setPen(pen);
        if (edge.style != LineStyle::doubled)
            return painter.drawLine(from, to);
        const QPointF aside = from.y() == to.y() ? QPointF(0, shift) : QPointF(shift, 0);
        painter.drawLine(from - aside, to - aside);
        painter.drawLine(from + aside, to + aside);
    };
    const int rows = m_cells.rows();
    const int columns = m_cells.columns();
    for (int line = 0; line <= rows && columns > 0; ++line) {
        const int y = line < rows ? m_cells.row(line).start : m_cells.row(rows - 1).end();
        drawRuns(
            columns,
            [&](int column) -> const BorderLine& {
                return m_rowEdges[static_cast<std::size_t>(line * columns + column)];
            },
            [&](int from, int to, const BorderLine& edge) {
                stroke(edge, QPointF(m_cells.column(from).start, y), QPointF(m_cells.column(to).end(), y));
            });
    }
    for (int line = 0; line <= columns && rows > 0; ++line) {
        const int x = line < columns ? m_cells.column(line).start : m_cells.column(columns - 1).end();
        drawRuns(
            rows,
            [&](int row) -> const BorderLine& {
                return m_columnEdges[static_cast<std::size_t>(row * (columns + 1) + line)];
            },
            [&](int from, int to, const BorderLine& edge) {
                stroke(edge, QPointF(x, m_cells.row(from).start), QPointF(x, m_cells.row(to).end()));
            });
    }
}

} // namespace spreadsheet
