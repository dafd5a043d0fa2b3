#include "spreadsheet/workbook/cell_borders.h"

#include "spreadsheet/workbook/border_sides.h"

namespace spreadsheet {

// An edge lies between two cells, and each keeps its side of it; of two that differ the heavier one shows. So
// a command that drew one side alone would change nothing where the other has a line, and every command here
// writes both. Ranges are restyled in the parts whose cells get the same lines, whole rows and columns by
// their own style; the cells of spans, which show their outline alone, are put right one by one afterwards.

namespace {

class EdgeDrawing {
public:
    EdgeDrawing(Workbook& workbook, Sheet& sheet, const CellRange& range, const BorderLines& lines)
        : m_workbook(workbook)
        , m_sheet(sheet)
        , m_range(range)
        , m_lines(lines)
        , m_byColumns(coversColumns(sheet, range))
        , m_byRows(!m_byColumns && coversRows(sheet, range))
    {
        for (const CellRange& span : spansNear(sheet, range))
            m_spans.push_back({span, numbersOf(span)});
        keepEnds();
    }

    void draw()
    {
        restyleParts();
        for (const auto& [cell, number] : m_ends)
            put(cell, drawn(cell, m_workbook.styles()[number]));
        for (const auto& [span, numbers] : m_spans)
            drawSpan(span, numbers);
    }

private:
    /// Lines of one axis that get the same lines, and one that stands for them.
    struct Part {
        int first, last, example;
    };
    using Lines = std::array<std::optional<BorderLine>, 4>; ///< by side
    struct FormerSpan {
        CellRange range;
        std::vector<std::uint32_t> styles; ///< column by column
    };

    std::vector<std::uint32_t> numbersOf(const CellRange& range) const
    {
        std::vector<std::uint32_t> numbers;
        for (int column = range.left; column <= range.right; ++column)
            for (int row = range.top; row <= range.bottom; ++row)
                numbers.push_back(m_sheet.styleNumber({column, row}));
        return numbers;
    }

    /// What is drawn at a side of a cell, as if there were no spans.
    std::optional<BorderLine> lineAt(CellAddress cell, const Side& side) const
    {
        const bool runsDown = side.across != 0;
        const int place = runsDown ? cell.row : cell.column;
        const int edge = runsDown ? cell.column + (side.across > 0) : cell.row + (side.down > 0);
        const int first = runsDown ? m_range.left : m_range.top,
                  behind = (runsDown ? m_range.right : m_range.bottom) + 1;
        const bool isBeside = runsDown ? place < m_range.top || place > m_range.bottom
                                       : place < m_range.left || place > m_range.right;
        if (isBeside || edge < first || edge > behind)
            return std::nullopt;
        if (edge == first)
            return runsDown ? m_lines.left : m_lines.top;
        if (edge == behind)
            return runsDown ? m_lines.right : m_lines.bottom;
        return runsDown ? m_lines.betweenColumns : m_lines.betweenRows;
    }

    Lines linesAt(CellAddress cell) const
    {
        return {lineAt(cell, sides[0]), lineAt(cell, sides[1]), lineAt(cell, sides[2]),
                lineAt(cell, sides[3])};
    }

    CellStyle drawn(CellAddress cell, CellStyle style) const
    {
        for (const Side& side : sides)
            style.*side.own = lineAt(cell, side).value_or(style.*side.own);
        return style;
    }

    void put(CellAddress cell, const CellStyle& style)
    {
        if (m_sheet.style(cell) != style)
            m_sheet.setStyle(cell, style);
    }

    static std::vector<Part> partsOf(int first, int last, int count, bool whole)
    {
        if (whole)
            return {{1, count, std::min(2, count)}};
        count = std::max(count, last); // a program may draw beyond the sheet's end
        std::vector<Part> parts;
        const auto add = [&](int from, int to) {
            if (from >= 1 && from <= to && to <= count)
                parts.push_back({from, to, from});
        };
        add(first - 1, first - 1);
        add(first, first);
        add(first + 1, last - 1);
        if (last > first)
            add(last, last);
        add(last + 1, last + 1);
        return parts;
    }

    void restyleParts()
    {
        const SheetSettings& settings = m_sheet.settings();
        const std::vector<Part> across = partsOf(m_range.left, m_range.right, settings.columnCount, m_byRows);
        const std::vector<Part> down = partsOf(m_range.top, m_range.bottom, settings.rowCount, m_byColumns);
        for (const Part& columns : across) {
            for (const Part& rows : down) {
                const CellAddress example{columns.example, rows.example};
                if (linesAt(example) != Lines{})
                    m_sheet.restyle({columns.first, rows.first, columns.last, rows.last},
                                    [&](CellStyle& style) { style = drawn(example, style); });
            }
        }
    }

    /// Where whole columns (rows) are drawn by one style, their first and last cells, which have the range's
    /// outline, are put right afterwards.
    void keepEnds()
    {
        if (!m_byColumns && !m_byRows)
            return;
        const SheetSettings& settings = m_sheet.settings();
        const int first = m_byColumns ? m_range.left : m_range.top;
        const int last = m_byColumns ? m_range.right : m_range.bottom;
        const int count = m_byColumns ? settings.columnCount : settings.rowCount;
        const int length = m_byColumns ? settings.rowCount : settings.columnCount;
        for (int line = std::max(first - 1, 1); line <= std::min(last + 1, count); ++line) {
            const auto cellAt = [&](int place) {
                return m_byColumns ? CellAddress{line, place} : CellAddress{place, line};
            };
            for (const int end : {1, length}) {
                if (linesAt(cellAt(end)) != linesAt(cellAt(std::min(2, length))))
                    m_ends.emplace_back(cellAt(end), m_sheet.styleNumber(cellAt(end)));
            }
        }
    }

    void drawSpan(const CellRange& span, const std::vector<std::uint32_t>& numbers)
    {
        const CellAddress anchor{span.left, span.top};
        const CellStyle former = m_workbook.styles()[numbers.front()];
        CellStyle first = former; // the anchor's, which comes first, as it is drawn
        auto number = numbers.begin();
        for (int column = span.left; column <= span.right; ++column) {
            for (int row = span.top; row <= span.bottom; ++row) {
                const CellAddress cell{column, row};
                CellStyle style = m_workbook.styles()[*number++];
                for (const Side& side : sides) {
                    BorderLine& own = style.*side.own;
                    const BorderLine shown = lineAt(cell, side).value_or(spanLine(own, former.*side.own));
                    if (!isOutline(span, cell, side))
                        continue;
                    if (cell == anchor)
                        own = first.*side.own = shown;
                    else if (!isSameLine(spanLine(own, first.*side.own), shown))
                        own = asOwn(shown, first.*side.own);
                }
                put(cell, style);
            }
        }
    }

    /// The side that makes a cell of a span show a line.
    /// @param first  the side of the span's first cell
    static BorderLine asOwn(const BorderLine& shown, const BorderLine& first)
    {
        const bool isOpen = shown.style == LineStyle::none && first.style != LineStyle::none;
        return isOpen ? openSide : shown;
    }

    Workbook& m_workbook;
    Sheet& m_sheet;
    CellRange m_range;
    const BorderLines& m_lines;
    bool m_byColumns, m_byRows;
    std::vector<FormerSpan> m_spans;
    std::vector<std::pair<CellAddress, std::uint32_t>> m_ends; ///< with their former styles
};

} // namespace

void drawBorders(Workbook& workbook, Sheet& sheet, const CellRange& range, const BorderLines& lines)
{
    BorderLines plain = lines;
    for (auto line : {&BorderLines::left, &BorderLines::right, &BorderLines::top, &BorderLines::bottom,
                      &BorderLines::betweenColumns, &BorderLines::betweenRows})
        if (plain.*line && (plain.*line)->style == LineStyle::none)
            plain.*line = BorderLine{};
    const UndoStep step(workbook, "边框");
    EdgeDrawing(workbook, sheet, range, plain).draw();
}

} // namespace spreadsheet
