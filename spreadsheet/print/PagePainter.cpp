#include "spreadsheet/print/PagePainter.h"

#include "spreadsheet/print/cell_backgrounds.h"
#include "spreadsheet/print/cell_lines.h"
#include "spreadsheet/print/cell_text.h"
#include "spreadsheet/print/header_pieces.h"
#include "spreadsheet/print/page_rect.h"
#include "spreadsheet/print/PageCells.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/print_colour.h"
#include "spreadsheet/print/text_decoration.h"

#include <QPainter>

#include <algorithm>
#include <utility>
#include <vector>

namespace spreadsheet {

namespace {

constexpr int lineRoom = 15; // twips around the cells that a border on their outline needs
constexpr BorderLine frameLine{LineStyle::solid, 0x000000};
constexpr BorderLine headingLine{LineStyle::fineSolid, 0x606060};
constexpr Colour headingShadow = 0xDCDCDC;

/// Where the tracks of a band begin, behind the repeated ones.
int bandStart(const std::vector<PageTrack>& tracks, const PageBand& band)
{
    const auto first = std::ranges::find(tracks, band.first, &PageTrack::index);
    return first == tracks.end() ? 0 : first->start + band.skipped;
}

/// The part of a track that a page shows: one that goes on from the page before, or over to the next, is
/// longer.
PageTrack shownPart(PageTrack track, const PageBand& band, int bandStart)
{
    if (track.index < band.first)
        return track; // repeated
    const int end = std::min(track.end(), bandStart + band.length);
    track.start = std::max(track.start, bandStart);
    track.size = end - track.start;
    return track;
}

/// Cuts pages where the repeated tracks end, if a track that goes on from the page before would lie over
/// them. The part behind them comes first: their lines lie over it.
template <class Tracks, class Cut>
std::vector<PrintedPage> cutBehindRepeated(std::vector<PrintedPage> pages, PageBand PrintedPage::*band,
                                           Tracks PrintedPage::*tracks, const Cut& cut)
{
    if ((pages[0].*band).skipped == 0 || !(pages[0].*band).repeats)
        return pages;
    std::vector<PrintedPage> parts;
    for (const PrintedPage& page : pages) {
        PrintedPage repeated = page, rest = page;
        const auto first = std::ranges::find(page.*tracks, (page.*band).first, &PageTrack::index);
        (repeated.*tracks).assign((page.*tracks).begin(), first);
        (rest.*tracks).assign(first, (page.*tracks).end());
        cut(repeated.cells, rest.cells, bandStart(page.*tracks, page.*band));
        parts.push_back(std::move(rest));
        parts.push_back(std::move(repeated));
    }
    return parts;
}

/// The page as it is drawn, nearly always in one piece.
std::vector<PrintedPage> piecesOf(const PrintedPage& page)
{
    const auto below = [](PageBox& repeated, PageBox& rest, int at) {
        rest.height = rest.bottom() - at;
        rest.top = at;
        repeated.height = at - repeated.top;
    };
    const auto beside = [](PageBox& repeated, PageBox& rest, int at) {
        rest.width = rest.right() - at;
        rest.left = at;
        repeated.width = at - repeated.left;
    };
    std::vector<PrintedPage> pieces =
        cutBehindRepeated({page}, &PrintedPage::rows, &PrintedPage::rowTracks, below);
    const bool isCutBeside = page.columns.skipped > 0;
    pieces = cutBehindRepeated(std::move(pieces), &PrintedPage::columns, &PrintedPage::columnTracks, beside);
    for (PrintedPage& piece : pieces)
        piece.repeatedColumns = isCutBeside ? 0 : page.repeatedColumns;
    return pieces;
}

} // namespace

void PagePainter::paint(QPainter& painter, int number)
{
    const PrintedPage page = m_layout.page(number);
    painter.save();
    if (!page.rowTracks.empty())
        paintTable(painter, page);
    m_fields = m_layout.fieldValues(number);
    paintHeaderLines(painter, m_layout.header(), m_layout.printable().top);
    paintHeaderLines(painter, m_layout.footer(), m_layout.footerTop());
    painter.restore();
}

void PagePainter::paintTable(QPainter& painter, const PrintedPage& page)
{
    const PageBox& body = m_layout.body();
    painter.save();
    painter.translate(body.left, body.top);
    painter.scale(m_layout.scale(), m_layout.scale());
    painter.translate(-body.left, -body.top);
    for (const PrintedPage& piece : piecesOf(page))
        paintCells(painter, piece);
    paintHeadings(painter, page);
    if (m_layout.print().border)
        paintBorder(painter, page);
    painter.restore();
}

void PagePainter::paintCells(QPainter& painter, const PrintedPage& page)
{
    const PrintSettings& print = m_layout.print();
    int lastColumn = page.columnTracks.back().index;
    while (lastColumn < page.range.right && m_sheet.settings().columns.size(lastColumn + 1) == 0)
        ++lastColumn;
    const int rightLimit = lastColumn == page.range.right ? m_layout.body().right() : page.cells.right();
    // What goes on from the page before has no line at its beginning.
    const int left = page.cells.left - (page.columnTracks.front().start < page.cells.left ? 0 : lineRoom);
    const int top = page.cells.top - (page.rowTracks.front().start < page.cells.top ? 0 : lineRoom);
    painter.save();
    painter.setClipRect(
        QRect(QPoint(left, top), QPoint(rightLimit + lineRoom, page.cells.bottom() + lineRoom)));
    TrackLengths lengths = lengthsInTwips(m_sheet);
    lengths.rows = [this](int first, int last) {
        int sum = 0;
        for (int row = first; row <= last; ++row)
            sum += m_layout.rowSize(row).value_or(m_sheet.settings().rows.size(row));
        return sum;
    };
    const PageCells cells(m_sheet, page, std::move(lengths));
    drawBackgrounds(painter, cells, print.colour);
    const std::vector<TextOverflow> overflows =
        CellTextPainter(painter, m_text, cells, print.colour, rightLimit).draw();
    CellLines(cells, print.gridLines ? printedGridLine : BorderLine{}, overflows).draw(painter, print.colour);
    painter.restore();
}

void PagePainter::paintHeadings(QPainter& painter, const PrintedPage& page)
{
    const int width = m_layout.rowHeadingWidth();
    const int height = m_layout.columnHeadingHeight();
    painter.setClipRect(QRect(page.cells.left - width - lineRoom, page.cells.top - height - lineRoom,
                              page.cells.width + width + 2 * lineRoom,
                              page.cells.height + height + 2 * lineRoom));
    const PageBox& cells = page.cells;
    if (width > 0 && height > 0)
        paintHeading(painter, {cells.left - width, cells.top - height, width, height}, {});
    if (height > 0)
        for (const PageTrack& whole : page.columnTracks) {
            const PageTrack track =
                shownPart(whole, page.columns, bandStart(page.columnTracks, page.columns));
            paintHeading(painter, {track.start, cells.top - height, track.size, height},
                         QString::fromUtf8(columnName(track.index)));
        }
    if (width > 0)
        for (const PageTrack& whole : page.rowTracks) {
            const PageTrack track = shownPart(whole, page.rows, bandStart(page.rowTracks, page.rows));
            paintHeading(painter, {cells.left - width, track.start, width, track.size},
                         QString::number(track.index));
        }
    painter.setClipping(false);
}

void PagePainter::paintHeading(QPainter& painter, const PageBox& box, const QString& text)
{
    const PrintSettings& print = m_layout.print();
    if (print.shadows)
        painter.fillRect(rectOf(box), printColour(headingShadow, 0xFFFFFF, print.colour));
    painter.setPen(borderPen(headingLine, painter.deviceTransform().m11(), print.colour));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rectOf(box));
    if (text.isEmpty())
        return;
    const FontRequest request;
    const TextLine line = m_text.lines(text, m_text.font(request)).front();
    const double em = request.points * twipsPerPoint;
    const double top = box.top + (box.height - em * lineDistance) / 2;
    m_text.draw(painter, {box.left + (box.width - line.width) / 2, top + baselineInLine * em}, line,
                Qt::black);
}

void PagePainter::paintBorder(QPainter& painter, const PrintedPage& page)
{
    const int width = m_layout.rowHeadingWidth();
    const int height = m_layout.columnHeadingHeight();
    painter.setPen(borderPen(frameLine, painter.deviceTransform().m11(), true));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRect(page.cells.left - width, page.cells.top - height, page.cells.width + width,
                           page.cells.height + height));
}

void PagePainter::paintHeaderLines(QPainter& painter, const std::vector<HeaderLine>& lines, int top)
{
    double lineTop = top;
    for (const HeaderLine& line : lines) {
        const double em = line.points * twipsPerPoint;
        const double baseline =
            lineTop + (headerLineHeight(line) - em * lineDistance) / 2 + baselineInLine * em;
        paintHeaderLine(painter, line, baseline);
        lineTop += headerLineHeight(line);
    }
}

void PagePainter::paintHeaderLine(QPainter& painter, const HeaderLine& line, double baseline)
{
    const auto& [pieces, widths, places] = headerPieces(line, m_fields, m_layout.printable().width, m_text);
    painter.save();
    painter.translate(m_layout.printable().left, baseline);
    painter.scale(places.scale, places.scale);
    for (std::size_t part = 0; part < pieces.size(); ++part) {
        double left = places.left[part];
        for (std::size_t i = 0; i < pieces[part].size(); ++i) {
            const HeaderFont& font = line.parts[part][i].font;
            m_text.draw(painter, {left, 0}, pieces[part][i], Qt::black);
            drawDecoration(painter, {left, 0}, pieces[part][i].width, font.points * twipsPerPoint,
                           {font.underline, font.strikeThrough}, Qt::black);
            left += pieces[part][i].width;
        }
    }
    painter.restore();
}

} // namespace spreadsheet
