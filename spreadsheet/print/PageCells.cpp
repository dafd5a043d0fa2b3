#include "spreadsheet/print/PageCells.h"

#include "spreadsheet/display/cell_indent.h"
#include "spreadsheet/display/cell_types.h"
#include "spreadsheet/display/display_text.h"
#include "spreadsheet/print/CellBehaviour.h"

#include <algorithm>
#include <utility>

namespace spreadsheet {

namespace {

struct Extent {
    int start, size;
    int end() const { return start + size; }
};

/// Whole and visible extent, on one axis, of what covers the tracks first..last.
struct TrackExtent {
    Extent whole, visible;
    std::size_t from, to; ///< places of its tracks on the page, `to` excluded
};

std::optional<TrackExtent> extentOf(const std::vector<PageTrack>& tracks,
                                    const std::function<int(int, int)>& length, int first, int last)
{
    if (tracks.empty() || last < tracks.front().index || first > tracks.back().index)
        return std::nullopt; // most spans of a long sheet
    const auto inside = [&](const PageTrack& track) { return track.index >= first && track.index <= last; };
    const auto from = std::ranges::find_if(tracks, inside);
    if (from == tracks.end())
        return std::nullopt;
    const auto to = std::find_if_not(from, tracks.end(), inside);
    const int before = length(first, from->index - 1);
    const int total = length(first, last);
    const Extent visible{from->start, std::prev(to)->end() - from->start};
    return TrackExtent{{from->start - before, total},
                       visible,
                       static_cast<std::size_t>(from - tracks.begin()),
                       static_cast<std::size_t>(to - tracks.begin())};
}

HorizontalAlignment alignmentOf(const CellStyle& style, const Value& value, bool isFigure,
                                bool showsOtherText)
{
    if (cellTypeRow(style.type).isControl)
        return HorizontalAlignment::centre;
    if (showsOtherText)
        return HorizontalAlignment::left; // what is cut off a formula is its end
    if (style.horizontal != HorizontalAlignment::general)
        return style.horizontal;
    if (value.isBoolean() || value.isError())
        return HorizontalAlignment::centre;
    return isFigure ? HorizontalAlignment::right : HorizontalAlignment::left;
}

} // namespace

TrackLengths lengthsInTwips(const Sheet& sheet)
{
    const auto lengthOn = [](const AxisSizes& axis) {
        return [&axis](int first, int last) {
            int sum = 0;
            for (int index = first; index <= last; ++index)
                sum += axis.size(index);
            return sum;
        };
    };
    return {lengthOn(sheet.settings().rows), lengthOn(sheet.settings().columns)};
}

PageCells::PageCells(const Sheet& sheet, const PrintedPage& page)
    : PageCells(sheet, page, lengthsInTwips(sheet))
{
}

PageCells::PageCells(const Sheet& sheet, const PrintedPage& page, TrackLengths lengths)
    : m_sheet(sheet)
    , m_page(page)
    , m_lengths(std::move(lengths))
{
    m_cells.reserve(page.rowTracks.size() * page.columnTracks.size());
    for (const PageTrack& row : page.rowTracks)
        for (const PageTrack& column : page.columnTracks)
            m_cells.push_back(read({column.index, row.index}));
    for (const CellRange& span : sheet.settings().spans)
        placeSpan(span);
}

PageCell PageCells::read(CellAddress cell) const
{
    PageCell read;
    read.address = cell;
    read.style = &m_sheet.style(cell);
    const Value value = m_sheet.value(cell);
    const bool showsOtherText = !m_sheet.shownText(cell).empty();
    const std::string* caption = behaviourOf(read.style->type).caption(m_sheet, cell);
    read.isFigure = !showsOtherText && !caption &&
                    (value.isNumber() || (value.isText() && value.text().countsAsNumber()));
    read.isTrue = countsAsChecked(value);
    read.alignment = alignmentOf(*read.style, value, read.isFigure, showsOtherText);
    read.indent = showsOtherText ? 0 : indentOf(*read.style, read.alignment);
    read.colour = read.isFigure ? textColour(value, *read.style) : read.style->foreground;
    read.text = QString::fromUtf8(caption ? *caption : m_sheet.displayText(cell));
    return read;
}

void PageCells::placeSpan(const CellRange& range)
{
    const auto down = extentOf(m_page.rowTracks, m_lengths.rows, range.top, range.bottom);
    const auto across = extentOf(m_page.columnTracks, m_lengths.columns, range.left, range.right);
    if (!down || !across)
        return;
    for (std::size_t row = down->from; row < down->to; ++row)
        for (std::size_t column = across->from; column < across->to; ++column)
            m_cells[row * m_page.columnTracks.size() + column].span = static_cast<int>(m_spans.size());
    m_spans.push_back(
        {range,
         read({range.left, range.top}),
         {across->whole.start, down->whole.start, across->whole.size, down->whole.size},
         {across->visible.start, down->visible.start, across->visible.size, down->visible.size}});
}

/// Tells most empty cells apart without a look at their looks.
bool PageCells::showsText(CellAddress cell) const
{
    return !m_sheet.value(cell).isEmpty() || !m_sheet.shownText(cell).empty() ||
           (!m_sheet.settings().captions.empty() && !read(cell).text.isEmpty());
}

std::optional<PageCells::TextBeyond> PageCells::textBefore(int rowPlace, int columnPlace) const
{
    const PageTrack& down = row(rowPlace);
    const PageTrack& edge = column(columnPlace);
    int start = edge.start;
    for (int index = edge.index - 1; index >= 1 && edge.start - start < m_lengths.farthestText; --index) {
        const int size = m_lengths.columns(index, index);
        start -= size;
        const CellAddress address{index, down.index};
        if (m_sheet.spanAt(address))
            return std::nullopt;
        if (size == 0 || !showsText(address))
            continue;
        PageCell cell = read(address);
        if (!cell.text.isEmpty())
            return TextBeyond{std::move(cell), {start, down.start, size, down.size}};
    }
    return std::nullopt;
}

std::optional<PageCells::TextBeyond> PageCells::textBehind(int rowPlace) const
{
    const PageTrack& down = row(rowPlace);
    const PageTrack& edge = column(columns() - 1);
    const int last = std::max(m_sheet.storedColumns(),
                              m_sheet.settings().captions.empty() ? 0 : m_sheet.settings().columnCount);
    int start = edge.end();
    for (int index = edge.index + 1; index <= last && start - edge.end() < m_lengths.farthestText; ++index) {
        const int size = m_lengths.columns(index, index);
        const CellAddress address{index, down.index};
        if (m_sheet.spanAt(address))
            return std::nullopt;
        if (size > 0 && showsText(address)) {
            PageCell cell = read(address);
            if (!cell.text.isEmpty())
                return TextBeyond{std::move(cell), {start, down.start, size, down.size}};
        }
        start += size;
    }
    return std::nullopt;
}

PageBox PageCells::boxOf(int rowPlace, int columnPlace) const
{
    const PageTrack& down = row(rowPlace);
    const PageTrack& across = column(columnPlace);
    return {across.start, down.start, across.size, down.size};
}

} // namespace spreadsheet
