#include "windows/formatting/FormatPainter.h"

#include "spreadsheet/view/SpreadsheetControl.h"
#include "windows/formatting/cell_commands.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace selfreport {

using spreadsheet::CellRange;
using spreadsheet::CellStyle;
using spreadsheet::Sheet;
using spreadsheet::SpreadsheetControl;

namespace {

constexpr long long maxPatternCells = 100'000, maxPaintedCells = 1'000'000;

long long cellsOf(const CellRange& range)
{
    return static_cast<long long>(range.columns()) * range.rows();
}

} // namespace

void FormatPainter::start(SpreadsheetControl& grid)
{
    if (stop(grid))
        return;
    if (grid.refuseInRun() || !grid.entry().commit())
        return;
    if (grid.cursor().selection().size() > 1) {
        Q_EMIT grid.refused(QStringLiteral("不能对多个选定区域使用此命令"));
        return;
    }
    const CellRange source = grid.cursor().firstRange();
    const auto& settings = grid.cells().sheet().settings();
    const bool lines =
        source.bottom - source.top + 1 >= settings.rowCount || source.columns() >= settings.columnCount;
    if (!lines && cellsOf(source) > maxPatternCells) {
        Q_EMIT grid.refused(QStringLiteral("选定的区域太大，不能用格式刷"));
        return;
    }
    new FormatPainter(grid, source); // the grid owns it
}

bool FormatPainter::stop(SpreadsheetControl& grid)
{
    auto* const atWork = grid.findChild<FormatPainter*>(QString(), Qt::FindDirectChildrenOnly);
    if (!atWork || atWork->m_ended)
        return false;
    atWork->end();
    return true;
}

FormatPainter::FormatPainter(SpreadsheetControl& grid, const CellRange& source)
    : QObject(&grid)
    , m_grid(grid)
    , m_sheetId(grid.cells().shownSheet().id())
{
    lift(source);
    grid.installEventFilter(this);
    grid.commands().setCopiedRange(m_sheetId, source);
}

/// Of whole columns and rows one line stands for all: their last cells, which headings do not reach.
void FormatPainter::lift(const CellRange& source)
{
    const Sheet& sheet = m_grid.cells().shownSheet();
    CellRange pattern = source;
    if (source.top == 1 && source.bottom >= sheet.settings().rowCount)
        pattern.top = pattern.bottom;
    if (source.left == 1 && source.right >= sheet.settings().columnCount)
        pattern.left = pattern.right;
    m_columns = pattern.columns();
    m_rows = pattern.rows();
    for (int row = pattern.top; row <= pattern.bottom; ++row)
        for (int column = pattern.left; column <= pattern.right; ++column)
            m_styles.push_back(sheet.style({column, row}));
}

bool FormatPainter::eventFilter(QObject* watched, QEvent* event)
{
    const auto paintSoon = [this] { QTimer::singleShot(0, this, &FormatPainter::paint); };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        m_pressed = static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
        break;
    case QEvent::MouseButtonRelease:
        if (std::exchange(m_pressed, false))
            paintSoon(); // when the grid has ended its selection
        break;
    case QEvent::KeyPress:
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Escape:
            end();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            paint();
            return true;
        default:
            break;
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void FormatPainter::paint()
{
    if (m_ended)
        return;
    const std::vector<CellRange> goals = this->goals();
    end();
    const auto isTooLarge = [this](const CellRange& goal) {
        return m_rows > 1 && m_columns > 1 && cellsOf(goal) > maxPaintedCells;
    };
    if (std::ranges::any_of(goals, isTooLarge)) {
        Q_EMIT m_grid.refused(QStringLiteral("选定的区域太大，不能用格式刷"));
        return;
    }
    m_grid.cells().setAddressedSheet(m_grid.cells().activeSheet());
    {
        const spreadsheet::UndoStep step(m_grid.cells().workbook(), "格式刷");
        for (const CellRange& goal : goals)
            paintOver(goal);
    }
    m_grid.afterEdit();
}

/// What is selected; of one cell alone as much as was taken up.
std::vector<CellRange> FormatPainter::goals() const
{
    std::vector<CellRange> goals = m_grid.cursor().selection();
    const auto& settings = m_grid.cells().shownSheet().settings();
    if (!m_grid.cursor().isBlockSelected()) {
        CellRange& goal = goals.front();
        goal.right = std::min(std::max(goal.right, goal.left + m_columns - 1), settings.columnCount);
        goal.bottom = std::min(std::max(goal.bottom, goal.top + m_rows - 1), settings.rowCount);
    }
    return goals;
}

void FormatPainter::paintOver(const CellRange& goal)
{
    const int acrossStep = m_columns == 1 ? goal.columns() : 1, downStep = m_rows == 1 ? goal.rows() : 1;
    for (int row = goal.top; row <= goal.bottom; row += downStep) {
        for (int column = goal.left; column <= goal.right; column += acrossStep) {
            const int place = (row - goal.top) % m_rows * m_columns + (column - goal.left) % m_columns;
            const CellStyle& look = m_styles[static_cast<std::size_t>(place)];
            m_grid.cells().changeStyle({column, row, column + acrossStep - 1, row + downStep - 1},
                                       [&look](CellStyle& style) { style = look; });
        }
    }
    Sheet& sheet = m_grid.cells().sheet();
    bringSides(m_grid.cells().workbook(), sheet, goal);
    retag(sheet, goal);
}

void FormatPainter::end()
{
    m_ended = true;
    m_grid.removeEventFilter(this);
    m_grid.commands().setCopiedRange(m_sheetId, std::nullopt);
    deleteLater();
}

} // namespace selfreport
