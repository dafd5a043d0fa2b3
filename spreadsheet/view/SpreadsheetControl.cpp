#include "spreadsheet/view/SpreadsheetControl.h"

#include "spreadsheet/view/DateEntry.h"
#include "spreadsheet/view/DropDownList.h"
#include "spreadsheet/view/GridMouse.h"
#include "spreadsheet/view/locked_cells.h"
#include "spreadsheet/view/SheetTabs.h"
#include "spreadsheet/view/SheetView.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QPaintEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace spreadsheet {

namespace {

constexpr int marchInterval = 150;
constexpr int wheelNotch = 120; // eighths of a degree

} // namespace

SpreadsheetControl::SpreadsheetControl(QWidget* parent)
    : QWidget(parent)
    , m_view(std::make_unique<SheetView>(*this, workbook()))
    , m_mouse(std::make_unique<GridMouse>(*this))
    , m_down(new QScrollBar(Qt::Vertical, this))
    , m_across(new QScrollBar(Qt::Horizontal, this))
    , m_tabs(new SheetTabs(this))
    , m_dropDown(new DropDownList(this))
    , m_dateEntry(new DateEntry(*this))
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMinimumSize(80, 60);
    workbook().setUndoEnabled(true);
    m_down->setObjectName(QStringLiteral("scrollDown"));
    m_across->setObjectName(QStringLiteral("scrollAcross"));
    connect(m_down, &QScrollBar::valueChanged, this, [this](int row) {
        scrollTo({m_view->geometry().topLeft().column, row});
    });
    connect(m_across, &QScrollBar::valueChanged, this, [this](int column) {
        scrollTo({column, m_view->geometry().topLeft().row});
    });
    m_tabs->mayRename = [this] { return !isEditing(); };
    connect(m_tabs, &SheetTabs::chosen, this, &SpreadsheetControl::showSheetByUser);
    connect(m_tabs, &SheetTabs::addWanted, this, &SpreadsheetControl::addSheet);
    connect(m_tabs, &SheetTabs::renameWanted, this, &SpreadsheetControl::renameSheet);
    connect(m_tabs, &SheetTabs::moveWanted, this, &SpreadsheetControl::moveSheet);
    connect(m_tabs, &SheetTabs::removeWanted, this, &SpreadsheetControl::removeSheet);
    connect(this, &SpreadsheetControl::sheetsChanged, this, &SpreadsheetControl::showTabs);
    connect(m_dropDown, &DropDownList::closed, this, &SpreadsheetControl::closeDropDown);
    m_march.setInterval(marchInterval);
    connect(&m_march, &QTimer::timeout, this, [this] { m_view->march(); });
    m_showChanges.setSingleShot(true);
    connect(&m_showChanges, &QTimer::timeout, this, &SpreadsheetControl::showChanges);
    showTabs();
}

SpreadsheetControl::~SpreadsheetControl()
{
    m_editing.reset(); // its editor is a child that still asks for the view
}

GridMode SpreadsheetControl::mode() const
{
    return m_mode;
}

void SpreadsheetControl::setMode(GridMode mode)
{
    if (mode == GridMode::run)
        cancelEdit();
    m_mode = mode;
    m_tabs->setEditable(mode == GridMode::edit);
    m_view->changeOverlays(
        [mode](CellOverlays& overlays) { overlays.hasFillHandle = mode == GridMode::edit; });
}

Refusal SpreadsheetControl::editRefusal(const CellRange& range) const
{
    if (m_mode == GridMode::run)
        return inRunMode;
    const Sheet& sheet = m_view->sheet();
    if (!holdsLockedCell(workbook(), sheet, range))
        return {};
    const bool isOne = sheet.extent({range.left, range.top}) == range;
    return isOne ? "单元格已锁定，不能更改" : "区域中有锁定的单元格，不能更改";
}

// --- what is seen

void SpreadsheetControl::layOut()
{
    const int bar = m_down->sizeHint().width();
    const int bottom = std::max(m_across->sizeHint().height(), m_tabsShown ? m_tabs->sizeHint().height() : 0);
    const QSize cells(std::max(width() - bar, 0), std::max(height() - bottom, 0));
    const int tabsWidth = m_tabsShown ? std::min(m_tabs->sizeHint().width() + 8, cells.width() * 3 / 5) : 0;
    m_tabs->setVisible(m_tabsShown);
    m_tabs->setGeometry(0, cells.height(), tabsWidth, bottom);
    m_across->setGeometry(tabsWidth, cells.height(), cells.width() - tabsWidth, bottom);
    m_down->setGeometry(cells.width(), 0, bar, cells.height());
    m_view->setArea(cells);
    placesChanged();
}

void SpreadsheetControl::adjustScrollBars()
{
    const CellGeometry& geometry = m_view->geometry();
    const CellAddress last = geometry.lastTopLeft();
    const auto adjust = [](QScrollBar& bar, int first, int lastValue, int page, int value) {
        const QSignalBlocker quiet(bar);
        bar.setRange(first, std::max({lastValue, value, first}));
        bar.setPageStep(page);
        bar.setSingleStep(1);
        bar.setValue(value);
    };
    adjust(*m_down, geometry.frozenRows() + 1, last.row, geometry.wholeRows(), geometry.topLeft().row);
    adjust(*m_across, geometry.frozenColumns() + 1, last.column, geometry.wholeColumns(),
           geometry.topLeft().column);
}

/// Cells stand elsewhere on screen than before.
void SpreadsheetControl::placesChanged()
{
    adjustScrollBars();
    if (m_editing)
        m_editing->place();
    Q_EMIT viewChanged();
}

void SpreadsheetControl::scrollTo(CellAddress topLeft)
{
    if (m_view->scrollTo(topLeft))
        placesChanged();
    else
        adjustScrollBars(); // the bar may stand at a hidden line
}

CellAddress SpreadsheetControl::topLeftCell() const
{
    return m_view->geometry().topLeft();
}

void SpreadsheetControl::setTopLeftCell(CellAddress cell)
{
    scrollTo(cell);
}

void SpreadsheetControl::bringIntoSight(CellAddress cell)
{
    const CellGeometry& geometry = m_view->geometry();
    CellAddress topLeft = geometry.topLeft();
    if (geometry.scrolledArea().isEmpty())
        return; // not laid out yet
    // Towards the end: as little as brings the line's end into sight.
    const auto lineFor = [](const AxisPositions& axis, int line, int frozen, int first, int room) {
        if (line <= frozen)
            return first;
        if (line < first)
            return line;
        int top = first;
        if (axis.end(line) - axis.start(first) > room) {
            const std::int64_t start = std::max<std::int64_t>(axis.end(line) - room, 0);
            top = axis.indexAt(start);
            if (axis.start(top) < start)
                top = axis.moved(top, 1);
        }
        return std::min(top, line);
    };
    const QRect room = geometry.scrolledArea();
    const QRect area(QPoint(room.topLeft()),
                     QPoint(geometry.area().width() - 1, geometry.area().height() - 1));
    topLeft.row = lineFor(geometry.rows(), cell.row, geometry.frozenRows(), topLeft.row, area.height());
    topLeft.column =
        lineFor(geometry.columns(), cell.column, geometry.frozenColumns(), topLeft.column, area.width());
    if (topLeft != geometry.topLeft())
        scrollTo(topLeft);
}

double SpreadsheetControl::zoom() const
{
    return m_view->zoom();
}

void SpreadsheetControl::setZoom(double zoom)
{
    const double fitting = std::clamp(zoom, 0.25, 4.0);
    if (fitting == m_view->zoom())
        return;
    m_view->setZoom(fitting);
    placesChanged();
}

void SpreadsheetControl::zoomIn()
{
    setZoom(std::floor(zoom() * 10 + 1.001) / 10);
}

void SpreadsheetControl::zoomOut()
{
    setZoom(std::ceil(zoom() * 10 - 1.001) / 10);
}

QRect SpreadsheetControl::cellRect(CellAddress cell) const
{
    return m_view->geometry().visibleRect(m_view->sheet().extent(cell));
}

QRect SpreadsheetControl::cellArea() const
{
    return m_view->geometry().cellArea();
}

std::optional<CellAddress> SpreadsheetControl::cellAt(QPoint place) const
{
    if (!m_view->geometry().cellArea().contains(place))
        return std::nullopt;
    return m_view->geometry().nearestCell(place);
}

void SpreadsheetControl::setCellNotes(std::function<QString(int, CellAddress)> notes)
{
    m_view->setNotes(std::move(notes));
}

void SpreadsheetControl::setHeadingsShown(bool columns, bool rows)
{
    m_view->setHeadings(columns, rows);
    placesChanged();
}

void SpreadsheetControl::setColumnHeadings(const QStringList& texts)
{
    m_view->setColumnTexts(texts);
}

void SpreadsheetControl::setSheetTabsShown(bool shown)
{
    m_tabsShown = shown;
    layOut();
}

void SpreadsheetControl::setGridLinesShown(bool shown)
{
    m_view->setGridLines(shown);
}

void SpreadsheetControl::setReferenceFrames(std::vector<ReferenceFrame> frames)
{
    m_view->setReferences(std::move(frames));
}

void SpreadsheetControl::setCopiedRange(int sheetId, std::optional<CellRange> range)
{
    m_view->setCopied(sheetId, range);
    if (range)
        m_march.start();
    else
        m_march.stop();
}

// --- changes

void SpreadsheetControl::changed()
{
    m_showChanges.start(0);
}

void SpreadsheetControl::refresh()
{
    showChanges();
    m_view->repaintAll();
}

void SpreadsheetControl::showChanges()
{
    m_showChanges.stop();
    if (m_view->update())
        placesChanged();
    showTabs();
    Q_EMIT undoChanged();
}

void SpreadsheetControl::afterEdit(std::optional<CellAddress> cell)
{
    recalculateAfterEdit();
    showChanges();
    Q_EMIT cellChanged(cell ? cell->column : -1, cell ? cell->row : -1);
}

void SpreadsheetControl::setEditing(std::unique_ptr<CellEditing> editing)
{
    m_editing = std::move(editing);
    m_editing->place();
    Q_EMIT editModeChanged(true, false);
}

void SpreadsheetControl::editingEnded(bool changed)
{
    const std::unique_ptr<CellEditing> ended = std::move(m_editing);
    setReferenceFrames({});
    setFocus();
    Q_EMIT editModeChanged(false, changed);
    const int own = workbook().sheetIndexOfId(std::exchange(m_entrySheetId, 0));
    if (own != 0 && own != activeSheet())
        setActiveSheet(own); // back from pointing at another one
}

// --- events of the widget

void SpreadsheetControl::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    m_view->paint(painter, event->region());
    const QRect corner(m_down->x(), m_across->y(), m_down->width(), m_across->height());
    painter.fillRect(corner, palette().window());
    painter.fillRect(m_tabs->geometry(), palette().window());
}

void SpreadsheetControl::resizeEvent(QResizeEvent*)
{
    const bool first = m_view->geometry().area().isEmpty();
    layOut();
    if (first)
        bringIntoSight(activeCell()); // may have been set before there was a size
}

void SpreadsheetControl::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        m_view->repaintAll();
    QWidget::changeEvent(event);
}

bool SpreadsheetControl::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto& help = static_cast<const QHelpEvent&>(*event);
        const auto cell = cellAt(help.pos());
        const QString note = cell ? m_view->noteAt(*cell) : QString();
        if (note.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help.globalPos(), note, this, cellRect(*cell));
        return true;
    }
    return QWidget::event(event);
}

void SpreadsheetControl::wheelEvent(QWheelEvent* event)
{
    // Touch pads tell small parts of a notch, which add up.
    const auto notches = [](int& sum, int delta, int notch) {
        sum += delta;
        const int whole = sum / notch;
        sum -= whole * notch;
        return whole;
    };
    constexpr int rowsPerNotch = 3;
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        const int steps = notches(m_wheelZoom, event->angleDelta().y(), wheelNotch);
        for (int step = 0; step < std::abs(steps); ++step)
            steps > 0 ? zoomIn() : zoomOut();
    } else {
        const bool turned = event->modifiers().testFlag(Qt::ShiftModifier);
        const QPoint delta = turned ? event->angleDelta().transposed() : event->angleDelta();
        const int down = notches(m_wheelDown, delta.y(), wheelNotch / rowsPerNotch);
        const int across = notches(m_wheelAcross, delta.x(), wheelNotch);
        const CellGeometry& geometry = m_view->geometry();
        const CellAddress last = geometry.lastTopLeft();
        const auto moved = [](const AxisPositions& axis, int from, int steps, int lastFirst) {
            return std::min(axis.moved(from, -steps), std::max(lastFirst, from));
        };
        scrollTo({moved(geometry.columns(), geometry.topLeft().column, across, last.column),
                  moved(geometry.rows(), geometry.topLeft().row, down, last.row)});
    }
    event->accept();
}

void SpreadsheetControl::mousePressEvent(QMouseEvent* event)
{
    m_mouse->press(*event);
}

void SpreadsheetControl::mouseMoveEvent(QMouseEvent* event)
{
    m_mouse->move(*event);
}

void SpreadsheetControl::mouseReleaseEvent(QMouseEvent* event)
{
    m_mouse->release(*event);
}

void SpreadsheetControl::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_mouse->doubleClick(*event);
}

void SpreadsheetControl::contextMenuEvent(QContextMenuEvent* event)
{
    // The mouse's was told when the button went down.
    if (event->reason() == QContextMenuEvent::Keyboard)
        Q_EMIT contextMenuWanted(mapToGlobal(cellRect(activeCell()).center()), activeCell().column,
                                 activeCell().row);
}

} // namespace spreadsheet
