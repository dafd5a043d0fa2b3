#include "spreadsheet/workbook/border_sides.h"

#include <map>

namespace spreadsheet {

// Cells that come, go or are parted from their neighbours share edges with them. What they bring is drawn
// like what a user draws; what they leave goes with them.

namespace {

/// The cells of a range along one of its sides.
CellRange stripAt(const CellRange& range, const Side& side)
{
    CellRange strip = range;
    if (side.across != 0)
        strip.left = strip.right = side.across < 0 ? range.left : range.right;
    else
        strip.top = strip.bottom = side.down < 0 ? range.top : range.bottom;
    return strip;
}

class Strip {
public:
    Strip(const Sheet& sheet, const CellRange& range, const Side& side)
        : m_sheet(sheet)
        , m_side(side)
        , m_cells(stripAt(range, side))
        , m_spans(spansNear(sheet, m_cells))
    {
        const CellAddress beyond = neighbour(0);
        const SheetSettings& settings = sheet.settings();
        const bool isInside = beyond.column >= 1 && beyond.row >= 1 &&
                              beyond.column <= settings.columnCount && beyond.row <= settings.rowCount;
        m_count = isInside ? m_cells.columns() * m_cells.rows() : 0;
    }

    const Side& side() const { return m_side; }
    int count() const { return m_count; } ///< 0 at the sheet's edge
    CellAddress cell(int place) const
    {
        return m_side.across != 0 ? CellAddress{m_cells.left, m_cells.top + place}
                                  : CellAddress{m_cells.left + place, m_cells.top};
    }
    CellAddress neighbour(int place) const
    {
        const CellAddress at = cell(place);
        return {at.column + m_side.across, at.row + m_side.down};
    }
    BorderLine own(int place) const { return shown(cell(place), m_side.own); }
    BorderLine facing(int place) const { return shown(neighbour(place), m_side.facing); }
    CellRange part(int first, int last) const
    {
        return {cell(first).column, cell(first).row, cell(last).column, cell(last).row};
    }
    bool isWholeLine() const
    {
        return m_side.across != 0 ? coversColumns(m_sheet, m_cells) : coversRows(m_sheet, m_cells);
    }
    /// Calls visit(first, last) for each stretch of places that are wanted and show the same line.
    void eachRun(const auto& isWanted, const auto& visit) const
    {
        for (int first = 0; first < m_count;) {
            int behind = first + 1;
            if (isWanted(first)) {
                const BorderLine line = own(first);
                while (behind < m_count && isWanted(behind) && isSameLine(own(behind), line))
                    ++behind;
                visit(first, behind - 1);
            }
            first = behind;
        }
    }

private:
    BorderLine shown(CellAddress cell, BorderLine CellStyle::*side) const
    {
        const BorderLine& line = m_sheet.style(cell).*side;
        const auto span =
            std::ranges::find_if(m_spans, [cell](const CellRange& range) { return range.contains(cell); });
        return span == m_spans.end() ? line : spanLine(line, m_sheet.style({span->left, span->top}).*side);
    }

    const Sheet& m_sheet;
    const Side& m_side;
    CellRange m_cells;
    std::vector<CellRange> m_spans;
    int m_count = 0;
};

/// The whole row or column before others, or behind them.
CellRange lineBefore(CellRange lines, bool areRows)
{
    int& first = areRows ? lines.top : lines.left;
    (areRows ? lines.bottom : lines.right) = --first;
    return lines;
}

CellRange lineBehind(CellRange lines, bool areRows)
{
    int& last = areRows ? lines.bottom : lines.right;
    (areRows ? lines.top : lines.left) = ++last;
    return lines;
}

bool isWithin(const Sheet& sheet, const CellRange& line)
{
    const SheetSettings& settings = sheet.settings();
    return line.left >= 1 && line.top >= 1 && line.left <= settings.columnCount &&
           line.top <= settings.rowCount;
}

/// The edge of rows or columns and others that lie beside them, or did before some came between.
class SharedEdge {
public:
    enum class Owner { before, behind, both };

    SharedEdge(const Sheet& sheet, const CellRange& before, const CellRange& behind, bool areRows)
        : m_farBefore(sheet, before, sides[areRows ? 2 : 0])
        , m_nearBefore(sheet, before, sides[areRows ? 3 : 1])
        , m_nearBehind(sheet, behind, sides[areRows ? 2 : 0])
        , m_farBehind(sheet, behind, sides[areRows ? 3 : 1])
    {
    }

    /// The cells that have a line of one which is the other's.
    std::vector<CellRange> losses(Owner owner) const
    {
        const Strip& losing = owner == Owner::before ? m_nearBehind : m_nearBefore;
        std::vector<CellRange> cells;
        losing.eachRun([&](int place) { return ownerAt(place) == owner; },
                       [&](int first, int last) { cells.push_back(losing.part(first, last)); });
        return cells;
    }

private:
    /// How much of a sign there is that the edge belongs to a line: 2 the like, 1 another on its other side.
    static int signOf(const BorderLine& other, const BorderLine& shared)
    {
        return isSameLine(other, shared) ? 2 : other.style != LineStyle::none ? 1 : 0;
    }

    Owner ownerAt(int place) const
    {
        const BorderLine shared = m_nearBefore.own(place);
        if (shared.style == LineStyle::none || !isSameLine(shared, m_nearBehind.own(place)))
            return Owner::both;
        const int forBefore = signOf(m_farBefore.own(place), shared),
                  forBehind = signOf(m_farBehind.own(place), shared);
        return forBefore == forBehind ? Owner::both : forBefore > forBehind ? Owner::before : Owner::behind;
    }

    Strip m_farBefore, m_nearBefore, m_nearBehind, m_farBehind;
};

void drawAt(Workbook& workbook, Sheet& sheet, const CellRange& cells, const Side& side,
            const BorderLine& line)
{
    BorderLines lines;
    lines.*side.outline = line;
    drawBorders(workbook, sheet, cells, lines);
}

/// The line that most places of a strip show.
BorderLine usualLine(const Strip& strip)
{
    std::map<std::pair<LineStyle, Colour>, int> counts;
    for (int place = 0; place < strip.count(); ++place)
        ++counts[{strip.own(place).style, strip.own(place).colour}];
    const auto most = std::ranges::max_element(counts, {}, [](const auto& entry) { return entry.second; });
    return {most->first.first, most->first.second};
}

/// Draws what a strip shows where that is wanted; of a whole row or column, if it may, most at once.
void drawStrip(Workbook& workbook, Sheet& sheet, const Strip& strip, const auto& isWanted, bool mayBeWhole)
{
    struct Run {
        int first, last;
        BorderLine line;
    };
    std::vector<Run> runs; // drawing the usual line changes what the strip shows
    const auto keep = [&](int first, int last) { runs.push_back({first, last, strip.own(first)}); };
    if (mayBeWhole && strip.isWholeLine()) {
        const BorderLine usual = usualLine(strip);
        strip.eachRun([&](int place) { return !isSameLine(strip.own(place), usual); }, keep);
        drawAt(workbook, sheet, strip.part(0, strip.count() - 1), strip.side(), usual);
    } else {
        strip.eachRun(isWanted, keep);
    }
    for (const Run& run : runs)
        drawAt(workbook, sheet, strip.part(run.first, run.last), strip.side(), run.line);
}

} // namespace

void bringSides(Workbook& workbook, Sheet& sheet, const CellRange& range,
                const std::optional<CellRange>& origin)
{
    if (!anyLines(workbook))
        return;
    const UndoStep step(workbook, "边框");
    for (const Side& side : sides) {
        const Strip strip(sheet, range, side);
        const auto differs = [&](int place) {
            return !(origin && origin->contains(strip.neighbour(place))) &&
                   !isSameLine(strip.own(place), strip.facing(place));
        };
        bool any = false;
        for (int place = 0; place < strip.count() && !any; ++place)
            any = differs(place);
        if (any)
            drawStrip(workbook, sheet, strip, differs, !origin);
    }
}

void partSharedEdge(Workbook& workbook, Sheet& sheet, const CellRange& inserted)
{
    const bool areRows = coversRows(sheet, inserted);
    const CellRange before = lineBefore(inserted, areRows), behind = lineBehind(inserted, areRows);
    if (!isWithin(sheet, before) || !isWithin(sheet, behind) || !anyLines(workbook))
        return;
    const SharedEdge edge(sheet, before, behind, areRows);
    const UndoStep step(workbook, "边框");
    const auto dropBehind = edge.losses(SharedEdge::Owner::before),
               dropBefore = edge.losses(SharedEdge::Owner::behind);
    for (const CellRange& cells : dropBehind)
        drawAt(workbook, sheet, cells, sides[areRows ? 2 : 0], {});
    for (const CellRange& cells : dropBefore)
        drawAt(workbook, sheet, cells, sides[areRows ? 3 : 1], {});
}

void takeSharedEdges(Workbook& workbook, Sheet& sheet, const CellRange& leaving)
{
    using Owner = SharedEdge::Owner;
    const bool areRows = coversRows(sheet, leaving);
    const CellRange before = lineBefore(leaving, areRows), behind = lineBehind(leaving, areRows);
    if (!anyLines(workbook))
        return;
    std::vector<CellRange> ofBefore, ofBehind;
    if (isWithin(sheet, before))
        ofBefore = SharedEdge(sheet, before, leaving, areRows).losses(Owner::behind);
    if (isWithin(sheet, behind))
        ofBehind = SharedEdge(sheet, leaving, behind, areRows).losses(Owner::before);
    const UndoStep step(workbook, "边框");
    for (const CellRange& cells : ofBefore)
        drawAt(workbook, sheet, cells, sides[areRows ? 3 : 1], {});
    for (const CellRange& cells : ofBehind)
        drawAt(workbook, sheet, cells, sides[areRows ? 2 : 0], {});
}

SharedLines::SharedLines(const Workbook& workbook, const Sheet& sheet, const CellRange& leaving)
{
    if (!anyLines(workbook))
        return;
    for (std::size_t side = 0; side < sides.size(); ++side) {
        const Strip strip(sheet, leaving, sides[side]);
        const auto isShared = [&](int place) {
            const BorderLine own = strip.own(place);
            return own.style != LineStyle::none && isSameLine(own, strip.facing(place));
        };
        strip.eachRun(isShared, [&](int first, int last) {
            m_runs.push_back({strip.part(first, last), side});
        });
    }
}

void SharedLines::clear(Workbook& workbook, Sheet& sheet, const std::optional<CellRange>& taken) const
{
    const UndoStep step(workbook, "边框");
    for (const Run& run : m_runs) {
        const Side& side = sides[run.side];
        const Strip strip(sheet, run.cells, side);
        const auto isLeft = [&](int place) {
            return !taken || !(taken->contains(strip.cell(place)) || taken->contains(strip.neighbour(place)));
        };
        std::vector<std::pair<int, int>> stretches; // drawing changes what the strip shows
        strip.eachRun(isLeft, [&](int first, int last) { stretches.emplace_back(first, last); });
        for (const auto& [first, last] : stretches)
            drawAt(workbook, sheet, strip.part(first, last), side, {});
    }
}

} // namespace spreadsheet
