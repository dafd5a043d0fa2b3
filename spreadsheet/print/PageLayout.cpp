#include "spreadsheet/print/PageLayout.h"

#include "spreadsheet/print/grown_rows.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>

namespace spreadsheet {

namespace {

constexpr int smallestBody = 720;      // twips; less than half an inch shows no cell worth printing
constexpr int headingDigitWidth = 110; // twips of one digit of a row heading
constexpr int headingPadding = 160;
constexpr double smallestScale = 0.1; // smaller prints cannot be read
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

/// A span that begins in the used area is used as a whole.
CellRange withSpans(CellRange area, const std::vector<CellRange>& spans)
{
    CellRange whole = area;
    for (const CellRange& span : spans) {
        if (!area.contains(CellAddress{span.left, span.top}))
            continue;
        whole.right = std::max(whole.right, span.right);
        whole.bottom = std::max(whole.bottom, span.bottom);
    }
    return whole;
}

std::optional<CellRange> rangeToPrint(const Sheet& sheet, const PageRequest& request)
{
    const SheetSettings& settings = sheet.settings();
    CellRange range{1, 1, settings.columnCount, settings.rowCount};
    if (request.range) {
        range = {std::max(request.range->left, 1), std::max(request.range->top, 1),
                 std::min(request.range->right, range.right), std::min(request.range->bottom, range.bottom)};
    } else if (settings.print.usedAreaOnly) {
        range = withSpans({1, 1, sheet.lastDataColumn(), sheet.lastDataRow()}, settings.spans);
    }
    if (range.columns() <= 0 || range.rows() <= 0)
        return std::nullopt;
    return range;
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
    : m_range(rangeToPrint(sheet, request))
{
    measurePaper(sheet, request);
    if (m_range)
        dealOut(sheet);
}

void PageLayout::measurePaper(const Sheet& sheet, const PageRequest& request)
{
    const PrintSettings& print = sheet.settings().print;
    m_paperWidth = request.paperWidth;
    m_paperHeight = request.paperHeight;
    if (print.landscape)
        std::swap(m_paperWidth, m_paperHeight);
    m_printable = {print.marginLeft, print.marginTop, m_paperWidth - print.marginLeft - print.marginRight,
                   m_paperHeight - print.marginTop - print.marginBottom};
    m_header = readHeaderFooter(print.header);
    m_footer = readHeaderFooter(print.footer);
    if (!request.notice.empty())
        m_header.insert(m_header.begin(), lineOf(request.notice, noticePoints, true));
    if (print.stamp && !request.stamp.empty())
        m_footer.push_back(lineOf(request.stamp, stampPoints, false));
    if (print.columnHeadings)
        m_columnHeadingHeight = defaultRowHeight;
    if (print.rowHeadings && m_range)
        m_rowHeadingWidth =
            headingPadding + headingDigitWidth * static_cast<int>(std::to_string(m_range->bottom).size());
    const int above = headerHeight(m_header);
    m_body = {m_printable.left, m_printable.top + above, m_printable.width,
              m_printable.height - above - headerHeight(m_footer)};
    if (m_body.width - m_rowHeadingWidth < smallestBody ||
        m_body.height - m_columnHeadingHeight < smallestBody)
        throw PageLayoutError("页边距、页眉和页脚占满了纸张，没有打印表格的地方。");
}

void PageLayout::dealOut(const Sheet& sheet)
{
    const SheetSettings& settings = sheet.settings();
    m_rowSizes = rowSizesOf(sheet, m_range->top, m_range->bottom);
    m_columnSizes = sizesOf(settings.columns, m_range->left, m_range->right);
    m_centredAcross = settings.print.centredAcross;
    m_centredDown = settings.print.centredDown;
    if (settings.print.fitWidth)
        fitWidth();
    RepeatedRows repeated;
    if (settings.print.titleTop > 0) {
        m_titleTop = settings.print.titleTop;
        m_titleSizes = rowSizesOf(sheet, m_titleTop, settings.print.titleBottom);
        repeated = {settings.print.titleBottom, std::accumulate(m_titleSizes.begin(), m_titleSizes.end(), 0)};
    }
    m_rowBands = pageBands(m_rowSizes, m_range->top, m_body.height - m_columnHeadingHeight, repeated,
                           settings.print.rowBreaks);
    m_columnBands = pageBands(m_columnSizes, m_range->left, m_body.width - m_rowHeadingWidth, {},
                              settings.print.fitWidth ? PageBreaks() : settings.print.columnBreaks);
}

/// Makes the body as many twips wide as the columns take, and as much higher.
void PageLayout::fitWidth()
{
    const long long needed =
        std::accumulate(m_columnSizes.begin(), m_columnSizes.end(), 0LL) + m_rowHeadingWidth;
    if (needed <= m_body.width)
        return;
    m_scale = std::max(static_cast<double>(m_body.width) / static_cast<double>(needed), smallestScale);
    m_body.width =
        m_scale > smallestScale ? static_cast<int>(needed) : static_cast<int>(m_body.width / smallestScale);
    m_body.height = static_cast<int>(m_body.height / m_scale);
}

std::optional<int> PageLayout::rowSize(int row) const
{
    const auto among = [row](const std::vector<int>& sizes, int first) {
        const bool isThere = row >= first && row - first < static_cast<int>(sizes.size());
        return isThere ? std::optional(sizes[static_cast<std::size_t>(row - first)]) : std::nullopt;
    };
    const std::optional<int> printed = m_range ? among(m_rowSizes, m_range->top) : std::nullopt;
    return printed ? printed : among(m_titleSizes, m_titleTop);
}

int PageLayout::pageCount() const
{
    return std::max(1, static_cast<int>(m_rowBands.size() * m_columnBands.size()));
}

void PageLayout::centre(PrintedPage& page) const
{
    const int repeated = page.rows.repeats ? std::accumulate(m_titleSizes.begin(), m_titleSizes.end(), 0) : 0;
    if (m_centredAcross)
        page.cells.left += (m_body.width - m_rowHeadingWidth - page.columns.length) / 2;
    if (m_centredDown)
        page.cells.top += (m_body.height - m_columnHeadingHeight - repeated - page.rows.length) / 2;
}

PrintedPage PageLayout::page(int number) const
{
    if (number < 1 || number > pageCount())
        throw std::out_of_range("page number");
    PrintedPage page;
    page.number = number;
    page.cells = {m_body.left + m_rowHeadingWidth, m_body.top + m_columnHeadingHeight, 0, 0};
    if (m_rowBands.empty() || m_columnBands.empty())
        return page;
    const std::size_t place = static_cast<std::size_t>(number - 1);
    page.rows = m_rowBands[place / m_columnBands.size()];
    page.columns = m_columnBands[place % m_columnBands.size()];

    centre(page);
    int top = page.cells.top;
    if (page.rows.repeats)
        top = addTracks(page.rowTracks, m_titleSizes, m_titleTop, m_titleTop,
                        m_titleTop + static_cast<int>(m_titleSizes.size()) - 1, top);
    addTracks(page.rowTracks, m_rowSizes, m_range->top, page.rows.first, page.rows.last,
              top - page.rows.skipped);
    addTracks(page.columnTracks, m_columnSizes, m_range->left, page.columns.first, page.columns.last,
              page.cells.left - page.columns.skipped);
    page.cells.height = top - page.cells.top + page.rows.length;
    page.cells.width = page.columns.length;
    return page;
}

} // namespace spreadsheet
