#include "spreadsheet/view/commands/fill.h"

#include "spreadsheet/view/commands/fill_series.h"
#include "spreadsheet/view/commands/paste.h"
#include "spreadsheet/workbook/cell_borders.h"
#include "spreadsheet/workbook/Workbook.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr long long maxFilledCells = 10'000'000;

int wrapped(int number, int size)
{
    return (number % size + size) % size;
}

/// A block that is filled along one axis, seen so that the axis always runs down.
class Filling {
    template <typename Cells>
    auto& at(Cells& cells, int line, int place) const
    {
        return m_down ? cells.at(line, place) : cells.at(place, line);
    }

public:
    Filling(const Workbook& workbook, const LiftedCells& source, bool down, bool asSeries)
        : m_workbook(workbook)
        , m_source(source)
        , m_down(down)
        , m_asSeries(asSeries)
    {
    }

    /// @param first  place of the result's first line; the source's first line is 0
    LiftedCells lines(int first, int count) const
    {
        LiftedCells result =
            m_down ? LiftedCells(m_source.columns, count) : LiftedCells(count, m_source.rows);
        const int across = m_down ? m_source.columns : m_source.rows;
        const int length = m_down ? m_source.rows : m_source.columns;
        for (int line = 1; line <= across; ++line) {
            const Series series = seriesOf(line, length);
            for (int place = 0; place < count; ++place) {
                CellContent& cell = at(result, line, place + 1);
                cell = at(m_source, line, wrapped(first + place, length) + 1);
                if (cell.shown.empty()) // a cell that shows its formula keeps its type there
                    cell.tag = {};
                cell.shown = {};
                if (cell.formula == 0 && m_asSeries)
                    cell.value = series(first + place);
            }
        }
        return result;
    }

private:
    Series seriesOf(int line, int length) const
    {
        std::vector<SeriesCell> cells;
        for (int place = 1; place <= length; ++place) {
            const CellContent& cell = at(m_source, line, place);
            cells.push_back({cell.value, cell.formula != 0, m_workbook.styles()[cell.style].type});
        }
        return continuedSeries(cells);
    }

    const Workbook& m_workbook;
    const LiftedCells& m_source;
    bool m_down;
    bool m_asSeries;
};

/// The part of the goal beyond the source.
CellRange beyond(const CellRange& source, const CellRange& goal)
{
    CellRange rest = goal;
    if (goal.bottom > source.bottom)
        rest.top = source.bottom + 1;
    else if (goal.top < source.top)
        rest.bottom = source.top - 1;
    else if (goal.right > source.right)
        rest.left = source.right + 1;
    else
        rest.right = source.left - 1;
    return rest;
}

/// Spans of the source repeated over the lines, whole ones only.
void repeatSpans(const LiftedCells& source, bool down, int first, LiftedCells& lines)
{
    const int length = down ? source.rows : source.columns;
    const int count = down ? lines.rows : lines.columns;
    for (const CellRange& span : source.spans) {
        const int start = (down ? span.top : span.left) - 1;
        for (int place = wrapped(start - first, length); place < count; place += length) {
            CellRange copy = span;
            (down ? copy.top : copy.left) = place + 1;
            (down ? copy.bottom : copy.right) = place + (down ? span.rows() : span.columns());
            if ((down ? copy.bottom : copy.right) <= count)
                lines.spans.push_back(copy);
        }
    }
}

/// What drop-downs offer and buttons show, repeated likewise.
void repeatLists(const CellLists& source, int length, bool down, int first, LiftedCells& lines)
{
    const int count = down ? lines.rows : lines.columns;
    const auto repeat = [&](const auto& entries, auto& goal) {
        for (const auto& [place, entry] : entries) {
            const int line = (down ? place.row : place.column) - 1;
            for (int at = wrapped(line - first, length); at < count; at += length) {
                CellAddress copy = place;
                (down ? copy.row : copy.column) = at + 1;
                goal.emplace(copy, entry);
            }
        }
    };
    CellLists& goal = lines.lists.emplace();
    repeat(source.dropDowns, goal.dropDowns);
    repeat(source.captions, goal.captions);
}

} // namespace

Refusal fillFromBlock(Workbook& workbook, Sheet& sheet, const CellRange& source, const CellRange& goal,
                      bool asSeries)
{
    if (source == goal || !goal.contains(source))
        return {};
    const CellRange rest = beyond(source, goal);
    if (static_cast<long long>(rest.columns()) * rest.rows() > maxFilledCells)
        return "填充的区域太大(超过 1000 万个单元格)";
    for (const CellRange& range : {source, rest}) {
        if (auto problem = overlapRefusal(sheet, range))
            return problem;
    }
    const LiftedCells lifted = sheet.lift(source);
    if (!lifted.arrays.empty())
        return "不能更改数组公式的一部分";
    const bool down = rest.left == source.left && rest.right == source.right;
    const int first = down ? rest.top - source.top : rest.left - source.left;
    LiftedCells lines =
        Filling(workbook, lifted, down, asSeries).lines(first, down ? rest.rows() : rest.columns());
    repeatSpans(lifted, down, first, lines);
    repeatLists(*lifted.lists, down ? source.rows() : source.columns(), down, first, lines);
    const UndoStep step(workbook, "填充");
    if (auto problem = sheet.put(lines, {rest.left, rest.top}))
        return problem;
    bringSides(workbook, sheet, rest, source);
    return {};
}

CellRange fillGoal(const CellRange& source, CellAddress cell)
{
    const int down = std::max({cell.row - source.bottom, source.top - cell.row, 0});
    const int across = std::max({cell.column - source.right, source.left - cell.column, 0});
    CellRange goal = source;
    if (down == 0 && across == 0)
        return goal;
    if (down >= across) {
        goal.top = std::min(source.top, cell.row);
        goal.bottom = std::max(source.bottom, cell.row);
    } else {
        goal.left = std::min(source.left, cell.column);
        goal.right = std::max(source.right, cell.column);
    }
    return goal;
}

CellRange fillGoalBesides(const Sheet& sheet, const CellRange& source)
{
    const auto inUse = [&](int column, int row) {
        return !sheet.value({column, row}).isEmpty() || sheet.hasFormula({column, row});
    };
    const auto isFree = [&](int row) {
        for (int column = source.left; column <= source.right; ++column)
            if (inUse(column, row))
                return false;
        return true;
    };
    CellRange goal = source;
    for (const int beside : {source.left - 1, source.right + 1}) {
        if (beside < 1 || beside > sheet.settings().columnCount)
            continue;
        while (goal.bottom < sheet.settings().rowCount && inUse(beside, goal.bottom + 1) &&
               isFree(goal.bottom + 1))
            ++goal.bottom;
        if (goal.bottom > source.bottom)
            break;
    }
    return goal;
}

} // namespace spreadsheet
