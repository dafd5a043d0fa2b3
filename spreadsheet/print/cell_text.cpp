#include "spreadsheet/print/cell_text.h"

#include "spreadsheet/print/CellBehaviour.h"
#include "spreadsheet/print/page_rect.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/print_colour.h"
#include "spreadsheet/print/text_decoration.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr int paddingDown = 20;     // twips between a cell's edge and its text
constexpr double figureSlack = 1.5; // of 2 paddings that a figure may use before it turns into "####"

const QFont& fontOf(PageText& text, const CellFont& font)
{
    return text.font({font.family.view(), font.points, font.bold, font.italic});
}

double widest(const std::vector<TextLine>& lines)
{
    return std::ranges::max_element(lines, {}, &TextLine::width)->width;
}

double leftOf(HorizontalAlignment alignment, double left, double right, double width)
{
    if (alignment == HorizontalAlignment::right)
        return right - width;
    return alignment == HorizontalAlignment::centre ? (left + right - width) / 2 : left;
}

/// Top of a block of lines. One that is higher than the box begins at the box's top: its end is cut.
double topOf(VerticalAlignment alignment, const PageBox& box, double height, bool severalLines,
             double padding)
{
    if (alignment == VerticalAlignment::top || (severalLines && height > box.height))
        return box.top + padding;
    if (alignment == VerticalAlignment::bottom)
        return box.bottom() - padding - height;
    return box.top + (box.height - height) / 2;
}

QString numberSigns(PageText& text, const QFont& font, double width)
{
    const double one = std::max(widest(text.lines(QStringLiteral("#"), font)), 1.0);
    return QString(std::max(1, static_cast<int>(width / one)), QChar('#'));
}

} // namespace

std::vector<TextOverflow> CellTextPainter::draw()
{
    for (m_row = 0; m_row < m_cells.rows(); ++m_row) {
        for (m_column = 0; m_column < m_cells.columns(); ++m_column)
            if (m_column == 0 || m_cells.isBehindRepeated(m_column))
                drawTextFromPageBefore();
        drawTextFromPageBehind();
        for (m_column = 0; m_column < m_cells.columns(); ++m_column) {
            const PageCell& cell = m_cells.at(m_row, m_column);
            if (cell.span >= 0)
                continue;
            const Room room = roomOf(m_row, m_column);
            drawCell(cell, m_cells.boxOf(m_row, m_column), &room);
        }
    }
    for (const PageSpan& span : m_cells.spans()) {
        PageBox box = span.whole;
        if (!m_isOnScreen) { // a screen shows the part that is scrolled to
            box.top = span.visible.top;
            box.height = span.visible.height;
        }
        const bool isCut = box.left < span.visible.left || box.right() > span.visible.right();
        if (isCut) { // it may end, or begin, beside columns that it does not reach
            m_painter.save();
            m_painter.setClipRect(rectOf(span.visible), Qt::IntersectClip);
        }
        drawCell(span.anchor, box, nullptr);
        if (isCut)
            m_painter.restore();
    }
    return std::move(m_overflows);
}

void CellTextPainter::drawCell(const PageCell& cell, const PageBox& box, const Room* neighbours)
{
    const CellBehaviour& behaviour = behaviourOf(cell.style->type);
    const double twip = m_text.twip();
    const int room = m_isOnScreen ? behaviour.roomBeside(twip) : 0;
    if (!m_isOnScreen)
        behaviour.draw(m_painter, cell, rectOf(box), twip,
                       printColour(cell.style->foreground, 0x000000, m_inColour));
    if (room > 0)
        drawText(cell, {box.left, box.top, std::max(box.width - room, 0), box.height}, nullptr);
    else if (!cell.text.isEmpty())
        drawText(cell, box, neighbours);
}

void CellTextPainter::drawText(const PageCell& cell, const PageBox& box, const Room* neighbours)
{
    const CellStyle& style = *cell.style;
    if (const TextTurn turn = turnOf(style); !turn.isNone())
        return drawTurned(cell, box, turn);
    const QFont& font = fontOf(m_text, style.font);
    const double twip = m_text.twip();
    const TextEdges edges = edgesOf(cell, box);
    const double inner = std::max(edges.right - edges.left, 0.0);
    const bool wraps = style.wrap && !cell.isFigure;
    std::vector<TextLine> lines =
        m_text.lines(cell.text, font, wraps ? std::optional<double>(inner) : std::nullopt);
    if (cell.isFigure && widest(lines) > inner + figureSlack * paddingAcross())
        lines = m_text.lines(numberSigns(m_text, font, inner), font);

    const double em = style.font.points * twipsPerPoint * twip;
    const double height = em * lineDistance * static_cast<double>(lines.size());
    const double width = widest(lines);
    const double left = leftOf(cell.alignment, edges.left, edges.right, width);
    Room room{box.left, box.right(), m_column, m_column};
    if (neighbours && !wraps && !cell.isFigure && (left < box.left || left + width > box.right())) {
        room = {left < box.left ? neighbours->left : box.left,
                left + width > box.right() ? neighbours->right : box.right(), neighbours->firstColumn,
                neighbours->lastColumn};
        m_overflows.push_back(reached(left, left + width, room));
    }
    const double textHeight = height - em * (lineDistance - 1); // the air above the first line may be cut
    const bool cut = left < room.left || left + width > room.right || textHeight > box.height;
    if (cut) {
        m_painter.save();
        m_painter.setClipRect(QRect(room.left, box.top, room.right - room.left, box.height),
                              Qt::IntersectClip);
    }
    double baseline =
        topOf(style.vertical, box, height, lines.size() > 1, paddingDown * twip) + baselineInLine * em;
    const QColor colour = printColour(cell.colour, 0x000000, m_inColour);
    for (const TextLine& line : lines) {
        const double start = leftOf(cell.alignment, edges.left, edges.right, line.width);
        m_text.draw(m_painter, {start, baseline}, line, colour);
        drawDecoration(m_painter, {start, baseline}, line.width, em,
                       {style.font.underline, style.font.strikeThrough}, colour);
        baseline += em * lineDistance;
    }
    if (cut)
        m_painter.restore();
}

/// The lines of a turned text; signs for a figure that does not fit.
std::vector<TextLine> CellTextPainter::turnedLines(const PageCell& cell, QSizeF room, const TextTurn& turn)
{
    const CellStyle& style = *cell.style;
    const QFont& font = fontOf(m_text, style.font);
    const double height = style.font.points * twipsPerPoint * m_text.twip() * lineDistance;
    if (turn.isStacked) {
        const QString letters = stackedLetters(cell.text);
        const bool isCut = static_cast<double>(letters.count('\n') + 1) * height > room.height();
        return m_text.lines(cell.isFigure && isCut ? QStringLiteral("#") : letters, font);
    }
    const bool wraps = style.wrap && turn.isUpright() && !cell.isFigure;
    std::vector<TextLine> lines =
        m_text.lines(cell.text, font, wraps ? std::optional<double>(room.height()) : std::nullopt);
    const double longest = turn.longestLine(room, height);
    return cell.isFigure && widest(lines) > longest ? m_text.lines(numberSigns(m_text, font, longest), font)
                                                    : lines;
}

void CellTextPainter::drawTurned(const PageCell& cell, const PageBox& box, const TextTurn& turn)
{
    const CellStyle& style = *cell.style;
    const double twip = m_text.twip(), em = style.font.points * twipsPerPoint * twip,
                 padding = paddingDown * twip;
    const TextEdges edges = edgesOf(cell, box);
    const QSizeF room(std::max(edges.right - edges.left, 0.0), std::max(box.height - padding, 0.0));
    const std::vector<TextLine> lines = turnedLines(cell, room, turn);
    const QSizeF block(widest(lines), em * lineDistance * static_cast<double>(lines.size()));
    const QSizeF extent = turn.extent(block);
    const QRectF place(leftOf(cell.alignment, edges.left, edges.right, extent.width()),
                       topOf(style.vertical, box, extent.height(), false, padding), extent.width(),
                       extent.height());
    m_painter.save();
    m_painter.setRenderHint(QPainter::Antialiasing); // of oblique lines under and through it
    if (!QRectF(rectOf(box)).contains(place))
        m_painter.setClipRect(rectOf(box), Qt::IntersectClip);
    const QColor colour = printColour(cell.colour, 0x000000, m_inColour);
    double down = baselineInLine * em - block.height() / 2;
    for (const TextLine& line : lines) {
        const double across = turn.isStacked ? -line.width / 2 : -block.width() / 2;
        const QPointF start = place.center() + turn.turned({across, down});
        m_text.draw(m_painter, start, line, colour, turn.degrees);
        drawDecoration(m_painter, start, line.width, em, {style.font.underline, style.font.strikeThrough},
                       colour, turn);
        down += em * lineDistance;
    }
    m_painter.restore();
}

double CellTextPainter::paddingAcross() const
{
    return m_cells.sheet().settings().print.textDistance * m_text.twip();
}

CellTextPainter::TextEdges CellTextPainter::edgesOf(const PageCell& cell, const PageBox& box) const
{
    const double padding = paddingAcross(), indent = cell.indent * m_text.twip();
    const bool isRight = cell.alignment == HorizontalAlignment::right;
    return {box.left + padding + (isRight ? 0 : indent), box.right() - padding - (isRight ? indent : 0)};
}

/// Draws the rest of a text that began on the page to the left of a column.
void CellTextPainter::drawTextFromPageBefore()
{
    const PageTrack& column = m_cells.column(m_column);
    if (!m_cells.isBlank(m_row, m_column) || column.index == 1)
        return;
    const auto before = m_cells.textBefore(m_row, m_column);
    if (!before || before->cell.isFigure || before->cell.style->wrap || !turnOf(*before->cell.style).isNone())
        return;
    const double width = widest(m_text.lines(before->cell.text, fontOf(m_text, before->cell.style->font)));
    const TextEdges edges = edgesOf(before->cell, before->box);
    if (leftOf(before->cell.alignment, edges.left, edges.right, width) + width <= column.start)
        return;
    const Room room = roomOf(m_row, m_column);
    m_painter.save();
    if (m_column > 0) // not over the repeated ones
        m_painter.setClipRect(
            QRect(column.start, before->box.top, room.right - column.start, before->box.height),
            Qt::IntersectClip);
    drawText(before->cell, before->box, &room);
    m_painter.restore();
}

/// Draws the beginning of a text that is aligned to the right, or centred, on the page to the right.
void CellTextPainter::drawTextFromPageBehind()
{
    m_column = m_cells.columns() - 1;
    if (!m_cells.isBlank(m_row, m_column))
        return;
    const auto behind = m_cells.textBehind(m_row);
    if (!behind || behind->cell.alignment == HorizontalAlignment::left || behind->cell.isFigure ||
        behind->cell.style->wrap || !turnOf(*behind->cell.style).isNone())
        return;
    const double width = widest(m_text.lines(behind->cell.text, fontOf(m_text, behind->cell.style->font)));
    const TextEdges edges = edgesOf(behind->cell, behind->box);
    if (leftOf(behind->cell.alignment, edges.left, edges.right, width) >= m_cells.column(m_column).end())
        return;
    const Room room = roomOf(m_row, m_column);
    drawText(behind->cell, behind->box, &room);
}

/// The places of a room into which a text runs from the cell's.
TextOverflow CellTextPainter::reached(double left, double right, const Room& room) const
{
    TextOverflow overflow{m_row, m_column, m_column};
    while (overflow.first > room.firstColumn && m_cells.column(overflow.first).start > left)
        --overflow.first;
    while (overflow.last < room.lastColumn && m_cells.column(overflow.last).end() < right)
        ++overflow.last;
    return overflow;
}

/// The cell with its blank neighbours.
CellTextPainter::Room CellTextPainter::roomOf(int row, int column) const
{
    int first = column;
    while (first > 0 && m_cells.isBlank(row, first - 1) && !m_cells.isBehindRepeated(first))
        --first;
    int last = column;
    while (last + 1 < m_cells.columns() && m_cells.isBlank(row, last + 1) &&
           !m_cells.isBehindRepeated(last + 1))
        ++last;
    const bool reachesEnd = last + 1 == m_cells.columns();
    return {m_cells.column(first).start, std::max(m_cells.column(last).end(), reachesEnd ? m_rightLimit : 0),
            first, last};
}

} // namespace spreadsheet
