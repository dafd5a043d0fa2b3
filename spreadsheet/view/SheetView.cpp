#include "spreadsheet/view/SheetView.h"

#include "spreadsheet/print/cell_lines.h"
#include "spreadsheet/view/commands/page_breaks.h"
#include "spreadsheet/workbook/Workbook.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace spreadsheet {

// Painting a text costs more than all else, so cells are painted into a picture that scrolling turns and of
// which only changed rows are done anew; selection, frames and marks change with every key and are painted
// over it. What changed is found by comparing cells in sight with what was painted: no command can forget to
// tell.

SheetView::SheetView(QWidget& widget, Workbook& workbook)
    : m_widget(widget)
    , m_workbook(&workbook)
    , m_cells(1 / twipsPerPixel)
    , m_headings(1)
{
    showSheet();
}

const Sheet& SheetView::sheet() const
{
    return m_workbook->sheet(m_workbook->activeSheet());
}

void SheetView::setWorkbook(Workbook& workbook)
{
    m_workbook = &workbook;
    m_states.clear();
    m_sheetId = 0;
    m_copied.reset();
    m_frames.clear();
    showSheet();
}

void SheetView::keepSheetState()
{
    if (m_sheetId != 0)
        m_states[m_sheetId] = {m_selection, m_geometry.topLeft()};
}

void SheetView::showSheet()
{
    keepSheetState();
    m_sheetId = sheet().id();
    const auto known = m_states.find(m_sheetId);
    const SheetState state = known == m_states.end() ? SheetState{} : known->second;
    m_selection = state.selection;
    if (known == m_states.end())
        m_selection.setActive(sheet(), {1, 1});
    m_selection.fitInto(sheet());
    m_fitted.forget();
    measure();
    m_geometry.scrollTo(state.topLeft);
    fitRows();
    setCopied(m_copied ? m_copied->first : 0, m_copied ? std::optional(m_copied->second) : std::nullopt);
    setReferences(std::move(m_frames));
    repaintAll();
}

/// Takes the places of rows and columns anew.
void SheetView::measure()
{
    m_settingsRevision = sheet().settingsRevision();
    m_geometry.setSheet(sheet(), m_zoom, m_fitted.heights());
    fitRows();
}

/// Rows without a height of their own follow their texts. True if one has another height now.
bool SheetView::fitRows()
{
    constexpr int mostRounds = 4; // taller rows leave fewer in sight, so it settles at once
    int round = 0;
    while (round < mostRounds && m_fitted.fit(sheet(), m_workbook->revision(), m_geometry)) {
        m_geometry.setSheet(sheet(), m_zoom, m_fitted.heights());
        ++round;
    }
    return round > 0;
}

void SheetView::setZoom(double zoom)
{
    m_zoom = zoom;
    m_cells = CellPainter(zoom / twipsPerPixel);
    m_headings = HeadingPainter(zoom);
    measure();
    repaintAll();
}

void SheetView::setArea(QSize area)
{
    m_geometry.setArea(area);
    fitRows();
    repaintAll();
}

void SheetView::setColumnTexts(const QStringList& texts)
{
    m_columnTexts = texts;
    repaintAll();
}

void SheetView::setHeadings(bool columns, bool rows)
{
    m_geometry.setHeadings(columns, rows);
    repaintAll();
}

void SheetView::setGridLines(bool shown)
{
    m_gridLines = shown;
    repaintAll();
}

void SheetView::setNotes(std::function<QString(int, CellAddress)> notes,
                         std::function<CornerMark(int, CellAddress)> marks)
{
    m_notes = std::move(notes);
    m_marks = std::move(marks);
    repaintAll();
}

QString SheetView::noteAt(CellAddress cell) const
{
    const CellRange extent = sheet().extent(cell);
    return m_notes ? m_notes(m_sheetId, {extent.left, extent.top}) : QString();
}

std::function<CornerMark(CellAddress)> SheetView::noteMarks() const
{
    if (m_marks)
        return [this](CellAddress cell) { return m_marks(m_sheetId, cell); };
    if (!m_notes)
        return {};
    return [this](CellAddress cell) {
        return m_notes(m_sheetId, cell).isEmpty() ? CornerMark::none : CornerMark::triangle;
    };
}

void SheetView::setPressed(std::optional<CellAddress> cell)
{
    for (const auto& changed : {std::exchange(m_cells.pressed, cell), cell})
        if (changed) {
            const CellRange extent = sheet().extent(*changed);
            for (int row = extent.top; row <= extent.bottom && row < extent.top + 100; ++row)
                spoilRow(row);
        }
}

bool SheetView::scrollTo(CellAddress topLeft)
{
    const CellGeometry before = m_geometry;
    update();
    m_geometry.scrollTo(topLeft);
    if (fitRows()) {
        repaintAll();
        return true;
    }
    if (m_geometry.topLeft() == before.topLeft())
        return false;
    if (m_geometry.headingWidth() != before.headingWidth() || m_geometry.cellArea() != before.cellArea()) {
        repaintAll();
        return true;
    }
    const auto step = [](const AxisPositions& axis, int from, int to) {
        constexpr std::int64_t far = 100'000; // pixels; more than any view shows
        return static_cast<int>(std::clamp(axis.start(from) - axis.start(to), -far, far));
    };
    const int down = step(m_geometry.rows(), before.topLeft().row, m_geometry.topLeft().row);
    if (m_geometry.topLeft().column != before.topLeft().column)
        m_store.spoilAll(); // texts run in from columns that were out of sight
    else
        scrollStore(down);
    m_shown.take(sheet(), m_geometry, noteMarks());
    updateArea();
    return true;
}

/// With the line of the headings, where borders of the first column and of the first row in sight lie. Lines
/// reach beyond their rows: what is at an end of the area, or was, shows the ends of those that have gone and
/// lacks those of rows that have come.
void SheetView::scrollStore(int down)
{
    const QRect all = m_store.area(), area = m_geometry.scrolledArea();
    const QRect scrolled(all.left(), area.top(), all.width(), area.height());
    m_store.scroll(scrolled, down);
    const int reach = lineReach(), first = scrolled.top(), end = first + scrolled.height();
    m_store.spoil({all.left(), first - 1, all.width(), 1});
    for (const int edge : {first, end, first + down, end + down})
        m_store.spoil(QRect(all.left(), edge - reach, all.width(), 2 * reach) & scrolled);
}

/// How far lines go beyond their edges, in pixels.
int SheetView::lineReach() const
{
    return 1 + static_cast<int>(std::ceil(farthestLine * m_geometry.twip()));
}

void SheetView::changeSelection(const std::function<void(Selection&, const Sheet&)>& change)
{
    QRegion touched = painter().touched();
    change(m_selection, sheet());
    touched += painter().touched();
    m_widget.update(touched);
}

void SheetView::changeOverlays(const std::function<void(CellOverlays&)>& change)
{
    change(m_overlays);
    updateArea();
}

void SheetView::setReferences(std::vector<ReferenceFrame> frames)
{
    m_frames = std::move(frames);
    changeOverlays([this](CellOverlays& overlays) {
        overlays.references.clear();
        std::ranges::copy_if(m_frames, std::back_inserter(overlays.references),
                             [this](const ReferenceFrame& frame) { return frame.sheetId == m_sheetId; });
    });
}

void SheetView::setCopied(int sheetId, std::optional<CellRange> range)
{
    m_copied.reset();
    if (range)
        m_copied = {sheetId, *range};
    changeOverlays([&](CellOverlays& overlays) {
        overlays.copied.reset();
        if (range && sheetId == m_sheetId)
            overlays.copied = *range;
    });
}

void SheetView::march()
{
    if (!m_overlays.copied)
        return;
    m_overlays.copiedPhase = (m_overlays.copiedPhase + 1) % 6;
    m_widget.update(frameRegion(m_geometry.visibleRect(*m_overlays.copied)));
}

bool SheetView::update()
{
    if (sheet().id() != m_sheetId) {
        showSheet();
        return true;
    }
    if (sheet().settingsRevision() != m_settingsRevision) {
        measure();
        m_selection.fitInto(sheet());
        repaintAll();
        return true;
    }
    if (fitRows()) {
        repaintAll();
        return true;
    }
    for (const int row : m_shown.changedRows(sheet(), m_geometry, noteMarks()))
        spoilRow(row);
    return false;
}

/// The row's cells, and the borders that it shares with its neighbours.
void SheetView::spoilRow(int row)
{
    QRect rect = m_geometry.visibleRect({1, row, m_geometry.columns().count(), row});
    if (rect.isEmpty())
        return;
    rect.adjust(-1, -lineReach(), 0, lineReach());
    m_store.spoil(rect);
    m_widget.update(rect);
}

/// Asks for all headings and cells, not for what stands beside them: a plain rectangle is copied quicker.
void SheetView::updateArea()
{
    m_widget.update(QRect(QPoint(0, 0), m_geometry.area()));
}

void SheetView::repaintAll()
{
    m_store.reset(QRect({m_geometry.headingWidth() - 1, m_geometry.headingHeight() - 1},
                        QPoint(m_geometry.area().width() - 1, m_geometry.area().height() - 1)),
                  m_widget.devicePixelRatioF());
    m_shown.take(sheet(), m_geometry, noteMarks());
    updateArea();
}

void SheetView::paint(QPainter& painter, const QRegion& region)
{
    if (sheet().id() != m_sheetId || sheet().settingsRevision() != m_settingsRevision ||
        m_store.pixelRatio() != m_widget.devicePixelRatioF())
        refreshPlaces();
    freshenStore();
    m_headings.paint(painter, m_geometry, m_selection, m_widget.palette(), m_columnTexts, region);
    m_store.draw(painter, region);
    this->painter().paint(painter, m_overlays, m_widget.palette());
}

/// Before painting: the workbook or the screen may have changed without a word.
void SheetView::refreshPlaces()
{
    if (!update())
        repaintAll();
}

void SheetView::freshenStore()
{
    m_cells.gridLines = m_gridLines;
    m_cells.markOf = noteMarks();
    const std::vector<Pane> panes = m_geometry.panes();
    m_store.freshen([&](QPainter& painter, const QRect& part) {
        paintSurroundings(painter, part);
        for (const Pane& pane : panes)
            paintPane(painter, pane, part);
        paintPageBreaks(painter);
        paintFreezeLines(painter);
    });
}

/// What is no cell: the line under the headings, and the emptiness beyond the last row and column.
void SheetView::paintSurroundings(QPainter& painter, const QRect& part) const
{
    const QPalette& palette = m_widget.palette();
    painter.fillRect(part, palette.color(QPalette::Window));
    const QRect& area = m_store.area();
    const QColor line = HeadingPainter::lineColour(palette);
    if (m_geometry.headingHeight() > 0)
        painter.fillRect(QRect(area.left(), area.top(), area.width(), 1), line);
    if (m_geometry.headingWidth() > 0)
        painter.fillRect(QRect(area.left(), area.top(), 1, area.height()), line);
}

void SheetView::paintPane(QPainter& painter, const Pane& pane, const QRect& part)
{
    // Borders of the first row and column lie on the line of the headings.
    const QRect reach = pane.rect.adjusted(pane.rect.left() == m_geometry.headingWidth() ? -1 : 0,
                                           pane.rect.top() == m_geometry.headingHeight() ? -1 : 0, 0, 0);
    const QRect clip = reach & part;
    if (clip.isEmpty())
        return;
    painter.save();
    painter.setClipRect(clip);
    m_cells.paint(painter, sheet(), m_geometry, pane, clip);
    painter.restore();
}

/// Where pages begin by hand.
void SheetView::paintPageBreaks(QPainter& painter) const
{
    painter.save();
    painter.setPen(QPen(QColor(0x20, 0x60, 0xC0), 1, Qt::DashLine));
    const QRect cells = m_geometry.cellArea();
    for (const PageTrack& row : m_geometry.rowTracks())
        if (pageMarkAt(sheet(), Axis::rows, row.index))
            painter.drawLine(cells.left(), row.start - 1, cells.right(), row.start - 1);
    for (const PageTrack& column : m_geometry.columnTracks())
        if (pageMarkAt(sheet(), Axis::columns, column.index))
            painter.drawLine(column.start - 1, cells.top(), column.start - 1, cells.bottom());
    painter.restore();
}

void SheetView::paintFreezeLines(QPainter& painter) const
{
    const QRect area = m_geometry.cellArea();
    const QRect scrolled = m_geometry.scrolledArea();
    const QColor line(0x80, 0x80, 0x80);
    if (m_geometry.frozenRows() > 0)
        painter.fillRect(QRect(area.left(), scrolled.top() - 1, area.width(), 1), line);
    if (m_geometry.frozenColumns() > 0)
        painter.fillRect(QRect(scrolled.left() - 1, area.top(), 1, area.height()), line);
}

} // namespace spreadsheet
