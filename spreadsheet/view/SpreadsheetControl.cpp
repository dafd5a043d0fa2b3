#include "spreadsheet/view/SpreadsheetControl.h"

#include "spreadsheet/view/GridMouse.h"
#include "spreadsheet/view/locked_cells.h"
#include "spreadsheet/view/SheetTabs.h"
#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/tool_tip.h"
#include "spreadsheet/workbook/UndoJournal.h"

#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace spreadsheet {

// The widget only joins its parts: it lays them out, hands events to the one they concern and tells windows
// what happened. Changes by program show with the next pass of the event loop, all at once, since a report
// that is filled changes thousands of cells; what the user did shows at once.

/// The operations by program, which the control shows.
class SpreadsheetControl::Cells : public CellOperations {
public:
    explicit Cells(SpreadsheetControl& control)
        : m_control(control)
    {
    }

protected:
    void changed() override { m_control.m_showChanges.start(0); }
    void sheetSwitched() override { m_control.showActiveSheet(); }
    void workbookSwitched() override { m_control.showAnotherWorkbook(); }

private:
    SpreadsheetControl& m_control;
};

SpreadsheetControl::SpreadsheetControl(QWidget* parent)
    : QWidget(parent)
    , m_cells(std::make_unique<Cells>(*this))
    , m_view(std::make_unique<SheetView>(*this, m_cells->workbook()))
    , m_cursor(*this, *m_view)
    , m_mouse(std::make_unique<GridMouse>(*this, *m_view))
    , m_down(new QScrollBar(Qt::Vertical, this))
    , m_across(new QScrollBar(Qt::Horizontal, this))
    , m_tabs(new SheetTabs(this))
    , m_commands(std::make_unique<GridCommands>(*this, *m_view))
    , m_entry(std::make_unique<GridEntry>(*this, *m_view))
    , m_actions(std::make_unique<CellActions>(*this, *m_view))
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMinimumSize(80, 60);
    m_cells->workbook().setUndoEnabled(true);
    m_showChanges.setSingleShot(true);
    connect(&m_showChanges, &QTimer::timeout, this, &SpreadsheetControl::showChanges);
    connectBars();
    connectTabs();
    showTabs();
}

SpreadsheetControl::~SpreadsheetControl() = default;

void SpreadsheetControl::connectBars()
{
    m_down->setObjectName(QStringLiteral("scrollDown"));
    m_across->setObjectName(QStringLiteral("scrollAcross"));
    connect(m_down, &QScrollBar::valueChanged, this, [this](int row) {
        m_cursor.setTopLeftCell({m_cursor.topLeftCell().column, row});
    });
    connect(m_across, &QScrollBar::valueChanged, this, [this](int column) {
        m_cursor.setTopLeftCell({column, m_cursor.topLeftCell().row});
    });
}

void SpreadsheetControl::connectTabs()
{
    GridCommands& commands = *m_commands;
    m_tabs->mayRename = [this] { return !m_entry->isOpen(); };
    connect(m_tabs, &SheetTabs::chosen, this, [this](int index) { m_cursor.showSheet(index); });
    connect(m_tabs, &SheetTabs::addWanted, this, [&commands] { commands.addSheet(); });
    connect(m_tabs, &SheetTabs::renameWanted, this,
            [&commands](int index, const QString& name) { commands.renameSheet(index, name); });
    connect(m_tabs, &SheetTabs::moveWanted, this,
            [&commands](int from, int to) { commands.moveSheet(from, to); });
    connect(m_tabs, &SheetTabs::removeWanted, this, [&commands](int index) { commands.removeSheet(index); });
    connect(this, &SpreadsheetControl::sheetsChanged, this, &SpreadsheetControl::showTabs);
}

CellOperations& SpreadsheetControl::cells()
{
    return *m_cells;
}

const CellOperations& SpreadsheetControl::cells() const
{
    return *m_cells;
}

void SpreadsheetControl::setMode(GridMode mode)
{
    if (mode == GridMode::run)
        m_entry->cancel();
    m_mode = mode;
    m_tabs->setEditable(mode == GridMode::edit);
    showFillHandle();
}

void SpreadsheetControl::setCommandsOffered(bool offered)
{
    m_offersCommands = offered;
    showFillHandle();
}

void SpreadsheetControl::showFillHandle()
{
    const bool shown = m_mode == GridMode::edit && m_offersCommands;
    m_view->changeOverlays([shown](CellOverlays& overlays) { overlays.hasFillHandle = shown; });
}

Refusal SpreadsheetControl::editRefusal(const CellRange& range) const
{
    if (m_mode == GridMode::run)
        return inRunMode;
    const Sheet& sheet = m_view->sheet();
    if (!holdsLockedCell(m_cells->workbook(), sheet, range))
        return {};
    const bool isOne = sheet.extent({range.left, range.top}) == range;
    return isOne ? "单元格已锁定，不能更改" : "区域中有锁定的单元格，不能更改";
}

bool SpreadsheetControl::refuse(const Refusal& why)
{
    if (why)
        Q_EMIT refused(QString::fromStdString(why.reason()));
    return static_cast<bool>(why);
}

bool SpreadsheetControl::refuseEdit(const std::vector<CellRange>& ranges)
{
    return std::ranges::any_of(ranges, [this](const CellRange& range) { return refuse(editRefusal(range)); });
}

bool SpreadsheetControl::refuseInRun()
{
    return m_mode == GridMode::run && refuse(inRunMode);
}

bool SpreadsheetControl::giveUp()
{
    if (hideToolTip())
        return true;
    if (m_entry->isOpen()) {
        m_entry->cancel();
        return true;
    }
    if (m_mouse->cancel())
        return true;
    const bool copied = m_view->hasCopied();
    if (copied)
        m_commands->setCopiedRange(0, std::nullopt);
    return copied;
}

// --- what is seen

QFont SpreadsheetControl::screenFont(const CellFont& font) const
{
    return m_view->text().font({font.family.view(), font.points, font.bold, font.italic});
}

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

void SpreadsheetControl::fitScrollBars()
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

void SpreadsheetControl::placesChanged()
{
    fitScrollBars();
    m_entry->place();
    Q_EMIT viewChanged();
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

/// To the next ten per cent, in (1) or out (-1).
void SpreadsheetControl::zoomBy(int steps)
{
    for (int step = 0; step < std::abs(steps); ++step)
        setZoom(steps > 0 ? std::floor(zoom() * 10 + 1.001) / 10 : std::ceil(zoom() * 10 - 1.001) / 10);
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

void SpreadsheetControl::setCellNotes(std::function<QString(int, CellAddress)> notes,
                                      std::function<CornerMark(int, CellAddress)> marks)
{
    m_view->setNotes(std::move(notes), std::move(marks));
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

// --- changes

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
    m_cells->recalculateAfterEdit();
    showChanges();
    Q_EMIT cellChanged(cell ? cell->column : -1, cell ? cell->row : -1);
}

// --- sheets

void SpreadsheetControl::showAnotherWorkbook()
{
    m_entry->sheetSwitched();
    m_commands->forgetCut();
    m_view->setWorkbook(m_cells->workbook());
    showActiveSheet();
}

void SpreadsheetControl::showActiveSheet()
{
    Workbook& workbook = m_cells->workbook();
    if (!workbook.journal().enabled())
        workbook.setUndoEnabled(true); // which forgets former steps
    m_entry->sheetSwitched();
    m_view->update();
    m_cursor.forgetTab();
    placesChanged();
    showTabs();
    Q_EMIT sheetChanged(m_cells->activeSheet());
    Q_EMIT selectionChanged();
}

void SpreadsheetControl::restoreTabs()
{
    m_tabNames.clear();
    showTabs();
}

void SpreadsheetControl::showTabs()
{
    const Workbook& workbook = m_cells->workbook();
    QStringList names;
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        names.append(QString::fromStdString(workbook.sheet(index).name()));
    if (names == m_tabNames && m_tabActive == workbook.activeSheet())
        return;
    m_tabNames = names;
    m_tabActive = workbook.activeSheet();
    m_tabs->showSheets(names, m_tabActive);
    if (!m_view->geometry().area().isEmpty())
        layOut();
}

} // namespace spreadsheet
