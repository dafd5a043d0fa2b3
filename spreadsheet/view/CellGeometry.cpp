#include "spreadsheet/view/CellGeometry.h"

#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace spreadsheet {

// Painting, mouse, keys and editors must agree to the pixel on where a cell stands. So nobody else adds up
// sizes: edges are rounded from the sum of all rows before, never row by row, which keeps neighbours without
// gaps at every zoom and makes the place of a far row a look into sums instead of a walk.

namespace {

constexpr double pixelsPerTwip = 1 / twipsPerPixel; // at 100 %

int pixels(std::int64_t value)
{
    constexpr std::int64_t farAway = 1'000'000; // pixels; beyond every screen, and safe to add to
    return static_cast<int>(std::clamp(value, -farAway, farAway));
}

/// The first row of the last screenful: from it on everything fits into `room`.
int lastFirst(const AxisPositions& axis, int frozen, int room)
{
    const std::int64_t end = axis.end(axis.count());
    const std::int64_t place = std::max(end - room, axis.start(frozen + 1));
    int first = axis.indexAt(place);
    if (axis.start(first) < place)
        first = axis.moved(first, 1); // cut at its top there
    return std::max(first, std::min(frozen + 1, axis.count()));
}

/// Whether beside frozen lines one of the others can be seen, or `enough` pixels of it.
bool leavesRoom(const AxisPositions& axis, int frozen, int room, int enough)
{
    const int next = axis.shown(frozen + 1, 1);
    return frozen == 0 || next == 0 || axis.length(1, frozen) + std::min(axis.size(next), enough) <= room;
}

} // namespace

void CellGeometry::setSheet(const Sheet& sheet, double zoom, const std::map<int, int>& grown)
{
    const SheetSettings& settings = sheet.settings();
    m_twip = zoom * pixelsPerTwip;
    m_rows = AxisPositions(settings.rows, settings.rowCount, m_twip, grown);
    m_columns = AxisPositions(settings.columns, settings.columnCount, m_twip);
    m_wantedRows = std::clamp(settings.frozenRows, 0, settings.rowCount - 1);
    m_wantedColumns = std::clamp(settings.frozenColumns, 0, settings.columnCount - 1);
    keepFull();
}

void CellGeometry::setArea(QSize area)
{
    m_area = area;
    keepFull();
}

bool CellGeometry::holdsFrozen(int rows, int columns) const
{
    return m_area.isEmpty() || (leavesRoom(m_rows, rows, m_area.height() - m_headingHeight, 20) &&
                                leavesRoom(m_columns, columns, m_area.width() - m_headingWidth, 60));
}

void CellGeometry::freeze()
{
    measureHeadings();
    // What is not scrolled stays so, with more frozen lines or less.
    const auto hold = [](int& first, int& frozen, int wanted, bool fits) {
        const int held = fits ? wanted : 0;
        if (first <= frozen + 1)
            first = held + 1;
        frozen = held;
    };
    hold(m_firstRow, m_frozenRows, m_wantedRows, holdsFrozen(m_wantedRows, 0));
    hold(m_firstColumn, m_frozenColumns, m_wantedColumns, holdsFrozen(0, m_wantedColumns));
    m_frozenHeight = pixels(m_rows.length(1, m_frozenRows));
    m_frozenWidth = pixels(m_columns.length(1, m_frozenColumns));
}

/// No emptiness below and beside the cells while others are scrolled out of sight.
void CellGeometry::keepFull()
{
    freeze();
    scrollTo(topLeft());
    const CellAddress last = lastTopLeft();
    scrollTo({std::min(m_firstColumn, last.column), std::min(m_firstRow, last.row)});
}

void CellGeometry::setHeadings(bool columns, bool rows)
{
    m_columnHeadings = columns;
    m_rowHeadings = rows;
    measureHeadings();
}

void CellGeometry::scrollTo(CellAddress topLeft)
{
    const auto fit = [](const AxisPositions& axis, int index, int frozen) {
        const int first = axis.shown(std::clamp(index, frozen + 1, std::max(axis.count(), 1)), 1);
        return first != 0 ? first : std::max(axis.shown(axis.count(), -1), 1);
    };
    m_firstRow = fit(m_rows, topLeft.row, m_frozenRows);
    m_firstColumn = fit(m_columns, topLeft.column, m_frozenColumns);
    measureHeadings();
}

void CellGeometry::measureHeadings()
{
    const double zoom = m_twip / pixelsPerTwip;
    m_headingHeight = m_columnHeadings ? static_cast<int>(std::lround(20 * std::max(zoom, 0.6))) : 0;
    m_headingWidth = 0;
    if (!m_rowHeadings)
        return;
    const int inSight = m_firstRow + m_area.height(); // no row is lower than a pixel
    const int last = std::min(m_rows.count(), std::max(inSight, 999));
    const auto digits = std::to_string(last).size();
    m_headingWidth =
        static_cast<int>(std::lround((14 + 7.5 * static_cast<double>(digits)) * std::max(zoom, 0.6)));
}

CellAddress CellGeometry::lastTopLeft() const
{
    const int roomDown = m_area.height() - m_headingHeight - m_frozenHeight;
    const int roomAcross = m_area.width() - m_headingWidth - m_frozenWidth;
    return {lastFirst(m_columns, m_frozenColumns, roomAcross), lastFirst(m_rows, m_frozenRows, roomDown)};
}

QRect CellGeometry::cellArea() const
{
    const int right = pixels(columnStart(m_columns.count() + 1));
    const int bottom = pixels(rowStart(m_rows.count() + 1));
    const int width = std::min(m_area.width(), right) - m_headingWidth;
    const int height = std::min(m_area.height(), bottom) - m_headingHeight;
    return {m_headingWidth, m_headingHeight, std::max(width, 0), std::max(height, 0)};
}

QRect CellGeometry::scrolledArea() const
{
    return cellArea().adjusted(m_frozenWidth, m_frozenHeight, 0, 0);
}

int CellGeometry::wholeRows() const
{
    const std::int64_t end = m_rows.start(m_firstRow) + scrolledArea().height();
    int last = m_rows.indexAt(end - 1);
    if (m_rows.end(last) > end)
        --last;
    return std::max(last - m_firstRow + 1, 1);
}

int CellGeometry::wholeColumns() const
{
    const std::int64_t end = m_columns.start(m_firstColumn) + scrolledArea().width();
    int last = m_columns.indexAt(end - 1);
    if (m_columns.end(last) > end)
        --last;
    return std::max(last - m_firstColumn + 1, 1);
}

std::vector<PageTrack> CellGeometry::tracks(const AxisPositions& axis, int frozen, int first, int start,
                                            int end) const
{
    std::vector<PageTrack> tracks;
    int place = start;
    const auto add = [&](int from, int to) {
        for (int index = axis.shown(from, 1); index != 0 && index <= to && place < end;
             index = axis.shown(index + 1, 1)) {
            const int size = axis.size(index);
            tracks.push_back({index, place, size});
            place += size;
        }
    };
    add(1, frozen);
    add(std::max(first, frozen + 1), axis.count());
    return tracks;
}

std::vector<PageTrack> CellGeometry::rowTracks() const
{
    return tracks(m_rows, m_frozenRows, m_firstRow, m_headingHeight, m_area.height());
}

std::vector<PageTrack> CellGeometry::columnTracks() const
{
    return tracks(m_columns, m_frozenColumns, m_firstColumn, m_headingWidth, m_area.width());
}

std::vector<Pane> CellGeometry::panes() const
{
    const auto split = [](const std::vector<PageTrack>& tracks, int frozen) {
        const auto scrolled =
            std::ranges::find_if(tracks, [&](const PageTrack& t) { return t.index > frozen; });
        return std::array{std::vector<PageTrack>(tracks.begin(), scrolled),
                          std::vector<PageTrack>(scrolled, tracks.end())};
    };
    std::vector<Pane> panes;
    const QRect area = cellArea();
    for (const auto& rows : split(rowTracks(), m_frozenRows))
        for (const auto& columns : split(columnTracks(), m_frozenColumns)) {
            if (rows.empty() || columns.empty())
                continue;
            const QRect rect(columns.front().start, rows.front().start,
                             columns.back().end() - columns.front().start,
                             rows.back().end() - rows.front().start);
            Pane pane;
            pane.rect = rect & area;
            pane.cells.rowTracks = rows;
            pane.cells.columnTracks = columns;
            pane.cells.cells = {rect.left(), rect.top(), rect.width(), rect.height()};
            panes.push_back(std::move(pane));
        }
    return panes;
}

std::int64_t CellGeometry::rowStart(int row) const
{
    if (row <= m_frozenRows)
        return m_headingHeight + m_rows.start(row);
    return m_headingHeight + m_frozenHeight + m_rows.start(row) - m_rows.start(m_firstRow);
}

std::int64_t CellGeometry::columnStart(int column) const
{
    if (column <= m_frozenColumns)
        return m_headingWidth + m_columns.start(column);
    return m_headingWidth + m_frozenWidth + m_columns.start(column) - m_columns.start(m_firstColumn);
}

QRect CellGeometry::visibleRect(const CellRange& range) const
{
    // A part that begins in scrolled cells is covered by the frozen ones as far as it lies under them.
    const auto visible = [](int first, int last, int frozen, std::int64_t edge, auto start) {
        const std::int64_t from = first <= frozen ? start(first) : std::max(start(first), edge);
        const std::int64_t to = last < frozen ? start(last + 1) : std::max(start(last + 1), edge);
        return std::pair(pixels(from), pixels(to));
    };
    const auto [top, bottom] =
        visible(range.top, range.bottom, m_frozenRows, m_headingHeight + m_frozenHeight,
                [this](int row) { return rowStart(row); });
    const auto [left, right] =
        visible(range.left, range.right, m_frozenColumns, m_headingWidth + m_frozenWidth,
                [this](int column) { return columnStart(column); });
    return QRect(left, top, right - left, bottom - top) & cellArea();
}

QRect CellGeometry::rectIn(const Pane& pane, const CellRange& range) const
{
    const PageTrack& row = pane.cells.rowTracks.front();
    const PageTrack& column = pane.cells.columnTracks.front();
    const std::int64_t top = row.start + m_rows.start(range.top) - m_rows.start(row.index);
    const std::int64_t left = column.start + m_columns.start(range.left) - m_columns.start(column.index);
    const int x = pixels(left);
    const int y = pixels(top);
    return {x, y, pixels(left + m_columns.length(range.left, range.right)) - x,
            pixels(top + m_rows.length(range.top, range.bottom)) - y};
}

int CellGeometry::rowAt(int y) const
{
    const int inside = y - m_headingHeight;
    return inside < m_frozenHeight ? m_rows.indexAt(inside)
                                   : m_rows.indexAt(m_rows.start(m_firstRow) + inside - m_frozenHeight);
}

int CellGeometry::columnAt(int x) const
{
    const int inside = x - m_headingWidth;
    return inside < m_frozenWidth
               ? m_columns.indexAt(inside)
               : m_columns.indexAt(m_columns.start(m_firstColumn) + inside - m_frozenWidth);
}

CellAddress CellGeometry::nearestCell(QPoint place) const
{
    const QRect area = cellArea();
    return {columnAt(std::clamp(place.x(), area.left(), std::max(area.right(), area.left()))),
            rowAt(std::clamp(place.y(), area.top(), std::max(area.bottom(), area.top())))};
}

TrackLengths CellGeometry::lengths() const
{
    TrackLengths lengths;
    lengths.rows = [this](int first, int last) { return pixels(m_rows.length(first, last)); };
    lengths.columns = [this](int first, int last) { return pixels(m_columns.length(first, last)); };
    lengths.farthestText = static_cast<int>(lengths.farthestText * m_twip);
    return lengths;
}

} // namespace spreadsheet
