#include "spreadsheet/print/printed_ranges.h"

#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace spreadsheet {

namespace {

constexpr Colour white = 0xFFFFFF;

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

CellRange usedArea(const Sheet& sheet)
{
    const CellAddress last = lastShownCell(sheet);
    return withSpans({1, 1, last.column, last.row}, sheet.settings().spans);
}

/// Whole columns and rows are chosen by their headings, without a thought of all that is empty in them.
void endWithWhatShows(std::vector<CellRange>& ranges, const Sheet& sheet)
{
    const SheetSettings& settings = sheet.settings();
    std::optional<CellRange> used;
    for (CellRange& range : ranges) {
        const bool wholeColumns = range.top == 1 && range.bottom == settings.rowCount;
        const bool wholeRows = range.left == 1 && range.right == settings.columnCount;
        if (!used && (wholeColumns || wholeRows))
            used = usedArea(sheet);
        if (wholeColumns)
            range.bottom = std::clamp(used->bottom, 1, range.bottom);
        if (wholeRows)
            range.right = std::clamp(used->right, 1, range.right);
    }
}

/// What of `range` lies outside `other`, which it intersects: above, left, right, below.
std::vector<CellRange> restOf(const CellRange& range, const CellRange& other)
{
    const int top = std::max(range.top, other.top), bottom = std::min(range.bottom, other.bottom);
    std::vector<CellRange> rest{{range.left, range.top, range.right, top - 1},
                                {range.left, top, other.left - 1, bottom},
                                {other.right + 1, top, range.right, bottom},
                                {range.left, bottom + 1, range.right, range.bottom}};
    std::erase_if(rest, [](const CellRange& part) { return part.columns() <= 0 || part.rows() <= 0; });
    return rest;
}

/// What cells of a style show, besides their texts.
struct Shown {
    bool itself = false;    ///< a background, or a line at its right or lower edge
    bool lineAbove = false; ///< at its upper edge
    bool lineBefore = false;
    bool any() const { return itself || lineAbove || lineBefore; }
};

Shown shownBy(const CellStyle& style)
{
    const auto shows = [](const BorderLine& line) {
        return line.style != LineStyle::none && line.style != LineStyle::erase;
    };
    return {shows(style.right) || shows(style.bottom) ||
                (style.background != automaticColour && style.background != white),
            shows(style.top), shows(style.left)};
}

/// Looks for cells that show beyond a column and row. Looks are judged once for each style.
class ShownCellFinder {
public:
    explicit ShownCellFinder(const Sheet& sheet)
        : m_sheet(sheet)
        , m_last{sheet.lastDataColumn(), sheet.lastDataRow()}
    {
    }

    void look(int number, const Column& column)
    {
        const auto& slots = column.slots();
        for (auto slot = slots.rbegin(); slot != slots.rend(); ++slot) {
            if (!slot->block->hasStyles())
                continue;
            for (int row = slot->lastRow(); row >= slot->firstRow; --row) {
                if (number <= m_last.column && row <= m_last.row)
                    return;
                if (const std::uint32_t style = slot->block->style(row - slot->firstRow))
                    note(number, row, shown(style, {number, row}));
            }
        }
    }
    CellAddress last() const { return m_last; }

private:
    const Shown& shown(std::uint32_t style, CellAddress cell)
    {
        if (style >= m_shown.size())
            m_shown.resize(style + 1);
        std::optional<Shown>& known = m_shown[style];
        if (!known)
            known = shownBy(m_sheet.style(cell));
        return *known;
    }

    void note(int column, int row, const Shown& shows)
    {
        if (!shows.any())
            return;
        const bool whole = shows.itself;
        m_last.column = std::max(m_last.column, whole || shows.lineAbove ? column : std::max(column - 1, 1));
        m_last.row = std::max(m_last.row, whole || shows.lineBefore ? row : std::max(row - 1, 1));
    }

    const Sheet& m_sheet;
    CellAddress m_last;
    std::vector<std::optional<Shown>> m_shown; ///< by style
};

} // namespace

CellAddress lastShownCell(const Sheet& sheet)
{
    ShownCellFinder finder(sheet);
    for (int number = sheet.storedColumns(); number >= 1; --number)
        if (const Column* const column = sheet.column(number))
            finder.look(number, *column);
    return finder.last();
}

std::vector<CellRange> withoutOverlaps(std::vector<CellRange> ranges)
{
    const auto place = [](const CellRange& range) { return std::tuple(range.top, range.left); };
    std::ranges::stable_sort(ranges, {}, place);
    std::vector<CellRange> apart;
    for (const CellRange& range : ranges) {
        std::vector<CellRange> left{range};
        for (std::size_t i = 0, kept = apart.size(); i < kept; ++i) {
            std::vector<CellRange> next;
            for (const CellRange& part : left) {
                const auto rest = part.intersects(apart[i]) ? restOf(part, apart[i]) : std::vector{part};
                next.insert(next.end(), rest.begin(), rest.end());
            }
            left = std::move(next);
        }
        apart.insert(apart.end(), left.begin(), left.end());
    }
    std::ranges::sort(apart, {}, place);
    return apart;
}

std::vector<CellRange> printedRanges(const Sheet& sheet, const PrintSettings& print,
                                     std::vector<CellRange> asked)
{
    const SheetSettings& settings = sheet.settings();
    if (asked.empty())
        asked = print.area;
    if (asked.empty() && print.usedAreaOnly)
        asked = {usedArea(sheet)};
    else if (asked.empty())
        asked = {{1, 1, settings.columnCount, settings.rowCount}};
    for (CellRange& range : asked)
        range = {std::max(range.left, 1), std::max(range.top, 1), std::min(range.right, settings.columnCount),
                 std::min(range.bottom, settings.rowCount)};
    if (print.usedAreaOnly)
        endWithWhatShows(asked, sheet);
    std::erase_if(asked, [](const CellRange& range) { return range.columns() <= 0 || range.rows() <= 0; });
    return withoutOverlaps(std::move(asked));
}

} // namespace spreadsheet
