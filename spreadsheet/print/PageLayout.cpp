#include "spreadsheet/print/PageLayout.h"

#include "spreadsheet/print/grown_rows.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/printed_ranges.h"

#include <QDateTime>

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>

namespace spreadsheet {

// Where pages end depends on the scale, and a fitted scale on how many pages it gives. So the sizes of rows
// and columns are measured once and dealt out to pages as often as needed; a page's cells are placed only
// when that page is asked for, or a preview of 100,000 rows would not open.

namespace {

constexpr int smallestBody = 720;      // twips; less than half an inch shows no cell worth printing
constexpr int headingDigitWidth = 110; // twips of one digit of a row heading
constexpr int headingPadding = 160;
constexpr double smallestScale = smallestPrintScale / 100.0; // smaller prints cannot be read
constexpr double largestScale = largestPrintScale / 100.0;
constexpr double stampPoints = 7;
constexpr double noticePoints = 10;

/// Sizes of the tracks first..last; 0 for a hidden one.
std::vector<int> sizesOf(const AxisSizes& axis, int first, int last)
{
    std::vector<int> sizes(static_cast<std::size_t>(std::max(last - first + 1, 0)), axis.defaultSize);
    for (auto own = axis.sizes.lower_bound(first); own != axis.sizes.end() && own->first <= last; ++own)
        sizes[static_cast<std::size_t>(own->first - first)] = own->second;
    for (auto own = axis.hidden.lower_bound(first); own != axis.hidden.end() && own->first <= last; ++own)
        if (own->second)
            sizes[static_cast<std::size_t>(own->first - first)] = 0;
    return sizes;
}

/// Rows without a height of their own follow their texts.
std::vector<int> rowSizesOf(const Sheet& sheet, int first, int last)
{
    PageText text;
    std::vector<int> sizes = sizesOf(sheet.settings().rows, first, last);
    for (const auto& [row, height] : grownRows(sheet, first, last, text))
        sizes[static_cast<std::size_t>(row - first)] = height;
    return sizes;
}

/// Of a track that is one of sizes.size() from `first` on.
std::optional<int> sizeAmong(const std::vector<int>& sizes, int first, int index)
{
    const bool isThere = index >= first && index - first < static_cast<int>(sizes.size());
    return isThere ? std::optional(sizes[static_cast<std::size_t>(index - first)]) : std::nullopt;
}

std::string textOr(const std::string& text, const QDateTime& now, const char* format)
{
    return text.empty() ? now.toString(QLatin1String(format)).toStdString() : text;
}

/// A line of its own at the left margin.
HeaderLine lineOf(const std::string& text, double points, bool bold)
{
    HeaderFont font;
    font.points = points;
    font.bold = bold;
    HeaderLine line;
    line.points = points;
    line.parts[static_cast<std::size_t>(HeaderPart::left)].push_back({font, text, false});
    return line;
}

/// Adds the shown tracks first..last to `tracks`, the first one at `start`; gives the end of the last.
int addTracks(std::vector<PageTrack>& tracks, std::span<const int> sizes, int sizesFrom, int first, int last,
              int start)
{
    for (int index = first; index <= last; ++index) {
        const int size = sizes[static_cast<std::size_t>(index - sizesFrom)];
        if (size > 0)
            tracks.push_back({index, start, size});
        start += size;
    }
    return start;
}

} // namespace

PageLayout::PageLayout(const Sheet& sheet, const PageRequest& request)
    : m_print(request.print.value_or(sheet.settings().print))
{
    const std::vector<CellRange> ranges = printedRanges(sheet, m_print, request.ranges);
    if (m_print.rowHeadings && !ranges.empty()) {
        const int lastRow = std::ranges::max(ranges, {}, &CellRange::bottom).bottom;
        m_rowHeadingWidth =
            headingPadding + headingDigitWidth * static_cast<int>(std::to_string(lastRow).size());
    }
    const QDateTime now = QDateTime::currentDateTime();
    const auto value = [&](HeaderField field) -> std::string& {
        return m_fields[static_cast<std::size_t>(field)];
    };
    value(HeaderField::date) = textOr(request.date, now, "yyyy-MM-dd");
    value(HeaderField::time) = textOr(request.time, now, "HH:mm");
    value(HeaderField::sheet) = sheet.name();
    value(HeaderField::report) = request.report;
    measurePaper(request);
    if (ranges.empty())
        return;
    measureCells(sheet, ranges);
    dealOut();
}

void PageLayout::measurePaper(const PageRequest& request)
{
    const bool ownPaper = m_print.paperWidth > 0 && m_print.paperHeight > 0;
    m_paperWidth = ownPaper ? m_print.paperWidth : request.paperWidth;
    m_paperHeight = ownPaper ? m_print.paperHeight : request.paperHeight;
    if (m_print.landscape)
        std::swap(m_paperWidth, m_paperHeight);
    const auto margin = [](int twips, int paper) { return std::clamp(twips, 0, paper); };
    m_printable.left = margin(m_print.marginLeft, m_paperWidth);
    m_printable.top = margin(m_print.marginTop, m_paperHeight);
    m_printable.width = m_paperWidth - m_printable.left - margin(m_print.marginRight, m_paperWidth);
    m_printable.height = m_paperHeight - m_printable.top - margin(m_print.marginBottom, m_paperHeight);
    m_header = readHeaderFooter(m_print.header);
    m_footer = readHeaderFooter(m_print.footer);
    if (!request.notice.empty())
        m_header.insert(m_header.begin(), lineOf(request.notice, noticePoints, true));
    if (m_print.stamp && !request.stamp.empty())
        m_footer.push_back(lineOf(request.stamp, stampPoints, false));
    if (m_print.columnHeadings)
        m_columnHeadingHeight = defaultRowHeight;
    const int above = headerHeight(m_header);
    m_wholeBody = {m_printable.left, m_printable.top + above, m_printable.width,
                   m_printable.height - above - headerHeight(m_footer)};
    m_scale = m_print.isFitted() ? 1 : std::clamp(m_print.scale / 100.0, smallestScale, largestScale);
    m_body = bodyAt(m_scale);
    if (m_body.width - m_rowHeadingWidth < smallestBody ||
        m_body.height - m_columnHeadingHeight < smallestBody)
        throw PageLayoutError("页边距、页眉和页脚占满了纸张，没有打印表格的地方。");
}

/// In the twips of cells.
PageBox PageLayout::bodyAt(double scale) const
{
    PageBox body = m_wholeBody;
    constexpr double slack = 1e-6; // 2880 / 0.72 is 4000
    body.width = static_cast<int>(body.width / scale + slack);
    body.height = static_cast<int>(body.height / scale + slack);
    return body;
}

void PageLayout::measureCells(const Sheet& sheet, const std::vector<CellRange>& ranges)
{
    const AxisSizes& columns = sheet.settings().columns;
    for (const CellRange& range : ranges)
        m_parts.push_back({range,
                           rowSizesOf(sheet, range.top, range.bottom),
                           sizesOf(columns, range.left, range.right),
                           {},
                           {}});
    if (m_print.titleTop > 0)
        m_titleRows = {m_print.titleTop, rowSizesOf(sheet, m_print.titleTop, m_print.titleBottom)};
    if (m_print.titleLeft > 0)
        m_titleColumns = {m_print.titleLeft, sizesOf(columns, m_print.titleLeft, m_print.titleRight)};
    if (m_print.isFitted())
        fit();
}

/// Deals the cells out at the scale and body in force. What is fitted knows no breaks by hand.
void PageLayout::dealOut()
{
    for (Part& part : m_parts) {
        part.rowBands = rowBands(part, m_body);
        part.columnBands = columnBands(part, m_body);
    }
}

std::vector<PageBand> PageLayout::rowBands(const Part& part, const PageBox& body) const
{
    return pageBands(part.rowSizes, part.range.top, body.height - m_columnHeadingHeight,
                     m_titleRows.repeated(), m_print.fitDown > 0 ? PageBreaks() : m_print.rowBreaks);
}

std::vector<PageBand> PageLayout::columnBands(const Part& part, const PageBox& body) const
{
    return pageBands(part.columnSizes, part.range.left, body.width - m_rowHeadingWidth,
                     m_titleColumns.repeated(), m_print.fitAcross > 0 ? PageBreaks() : m_print.columnBreaks);
}

bool PageLayout::fits(double scale) const
{
    const PageBox body = bodyAt(scale);
    return std::ranges::all_of(m_parts, [&](const Part& part) {
        return (m_print.fitAcross == 0 || std::ssize(columnBands(part, body)) <= m_print.fitAcross) &&
               (m_print.fitDown == 0 || std::ssize(rowBands(part, body)) <= m_print.fitDown);
    });
}

/// Finds the largest scale, in thousandths, at which the pages suffice; each range is fitted by itself, all
/// at the same scale.
void PageLayout::fit()
{
    constexpr int steps = 1000;
    int fitting = static_cast<int>(smallestScale * steps), tooLarge = steps + 1;
    while (tooLarge - fitting > 1) {
        const int middle = (fitting + tooLarge) / 2;
        (fits(static_cast<double>(middle) / steps) ? fitting : tooLarge) = middle;
    }
    m_scale = static_cast<double>(fitting) / steps;
    m_body = bodyAt(m_scale);
}

int PageLayout::Titles::length() const
{
    return std::accumulate(sizes.begin(), sizes.end(), 0);
}

RepeatedRows PageLayout::Titles::repeated() const
{
    return {first + static_cast<int>(sizes.size()) - 1, length()};
}

std::optional<int> PageLayout::Titles::size(int index) const
{
    return sizeAmong(sizes, first, index);
}

std::optional<int> PageLayout::rowSize(int row) const
{
    for (const Part& part : m_parts)
        if (const auto size = sizeAmong(part.rowSizes, part.range.top, row))
            return size;
    return m_titleRows.size(row);
}

int PageLayout::footerTop() const
{
    int top = m_printable.bottom();
    for (const HeaderLine& line : m_footer)
        top -= headerLineHeight(line);
    return top;
}

std::string PageLayout::titlesLeftOut() const
{
    const auto areLeftOut = [this](const Titles& titles, int capacity, auto bands) {
        return isLeftOut(titles.repeated(), capacity) && std::ranges::any_of(m_parts, [&](const Part& part) {
                   return std::ranges::any_of(part.*bands, [&](const PageBand& band) {
                       return band.first > titles.repeated().last;
                   });
               });
    };
    if (areLeftOut(m_titleRows, m_body.height - m_columnHeadingHeight, &Part::rowBands))
        return "重复的行高于半页，没有在各页重复";
    if (areLeftOut(m_titleColumns, m_body.width - m_rowHeadingWidth, &Part::columnBands))
        return "重复的列宽于半页，没有在各页重复";
    return {};
}

HeaderFieldValues PageLayout::fieldValues(int number) const
{
    HeaderFieldValues values = m_fields;
    values[static_cast<std::size_t>(HeaderField::page)] = std::to_string(shownNumber(number));
    values[static_cast<std::size_t>(HeaderField::pages)] = std::to_string(pageCount());
    return values;
}

int PageLayout::pageCount() const
{
    std::size_t pages = 0;
    for (const Part& part : m_parts)
        pages += part.pages();
    return std::max(1, static_cast<int>(pages));
}

void PageLayout::centre(PrintedPage& page) const
{
    const int titleWidth = page.columns.repeats ? m_titleColumns.length() : 0;
    const int titleHeight = page.rows.repeats ? m_titleRows.length() : 0;
    if (m_print.centredAcross)
        page.cells.left += (m_body.width - m_rowHeadingWidth - titleWidth - page.columns.length) / 2;
    if (m_print.centredDown)
        page.cells.top += (m_body.height - m_columnHeadingHeight - titleHeight - page.rows.length) / 2;
}

PrintedPage PageLayout::page(int number) const
{
    if (number < 1 || number > pageCount())
        throw std::out_of_range("page number");
    PrintedPage page;
    page.number = number;
    page.cells = {m_body.left + m_rowHeadingWidth, m_body.top + m_columnHeadingHeight, 0, 0};
    std::size_t place = static_cast<std::size_t>(number - 1);
    for (const Part& part : m_parts) {
        if (place >= part.pages()) {
            place -= part.pages();
            continue;
        }
        const std::size_t down = part.rowBands.size(), across = part.columnBands.size();
        page.range = part.range;
        page.rows = part.rowBands[m_print.downFirst ? place % down : place / across];
        page.columns = part.columnBands[m_print.downFirst ? place / down : place % across];
        placeTracks(page, part);
        break;
    }
    return page;
}

void PageLayout::placeTracks(PrintedPage& page, const Part& part) const
{
    centre(page);
    int top = page.cells.top, left = page.cells.left;
    if (page.rows.repeats)
        top = addTracks(page.rowTracks, m_titleRows.sizes, m_titleRows.first, m_titleRows.first,
                        m_titleRows.repeated().last, top);
    if (page.columns.repeats)
        left = addTracks(page.columnTracks, m_titleColumns.sizes, m_titleColumns.first, m_titleColumns.first,
                         m_titleColumns.repeated().last, left);
    page.repeatedColumns = static_cast<int>(page.columnTracks.size());
    addTracks(page.rowTracks, part.rowSizes, part.range.top, page.rows.first, page.rows.last,
              top - page.rows.skipped);
    addTracks(page.columnTracks, part.columnSizes, part.range.left, page.columns.first, page.columns.last,
              left - page.columns.skipped);
    page.cells.height = top - page.cells.top + page.rows.length;
    page.cells.width = left - page.cells.left + page.columns.length;
}

} // namespace spreadsheet
