#include "spreadsheet/view/ShownCells.h"

#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace spreadsheet {

namespace {

bool meets(const std::vector<int>& lines, int first, int last)
{
    return std::ranges::any_of(lines, [=](int line) { return line >= first && line <= last; });
}

} // namespace

void ShownCells::take(const Sheet& sheet, const CellGeometry& geometry,
                      const std::function<CornerMark(CellAddress)>& markOf)
{
    constexpr int overflowColumns = 12; // beside what is in sight: their texts run into it
    m_rows.clear();
    m_columns.clear();
    m_looks.clear();
    m_spans.clear();
    for (const PageTrack& track : geometry.rowTracks())
        m_rows.push_back(track.index);
    for (const PageTrack& track : geometry.columnTracks())
        m_columns.push_back(track.index);
    const int first = geometry.topLeft().column;
    for (int column = std::max(first - overflowColumns, geometry.frozenColumns() + 1); column < first;
         ++column)
        m_columns.push_back(column);
    const int last = geometry.columnTracks().empty() ? first : geometry.columnTracks().back().index;
    for (int column = last + 1; column <= std::min(last + overflowColumns, geometry.columns().count());
         ++column)
        m_columns.push_back(column);
    const auto look = [&](CellAddress cell) {
        return Look{sheet.value(cell), sheet.shownText(cell), sheet.styleNumber(cell),
                    markOf ? markOf(cell) : CornerMark::none};
    };
    m_looks.reserve(m_rows.size() * m_columns.size());
    for (const int row : m_rows)
        for (const int column : m_columns)
            m_looks.push_back(look({column, row}));
    for (const CellRange& span : sheet.settings().spans)
        if (meets(m_rows, span.top, span.bottom) && meets(m_columns, span.left, span.right))
            m_spans.push_back({span, look({span.left, span.top})});
}

std::vector<int> ShownCells::changedRows(const Sheet& sheet, const CellGeometry& geometry,
                                         const std::function<CornerMark(CellAddress)>& markOf)
{
    const ShownCells before = std::exchange(*this, {});
    take(sheet, geometry, markOf);
    std::vector<int> changed;
    const auto width = static_cast<std::ptrdiff_t>(m_columns.size());
    for (std::size_t place = 0; place < m_rows.size(); ++place) {
        const auto former = std::ranges::lower_bound(before.m_rows, m_rows[place]);
        const bool wasThere =
            former != before.m_rows.end() && *former == m_rows[place] && before.m_columns == m_columns;
        const auto now = m_looks.begin() + static_cast<std::ptrdiff_t>(place) * width;
        if (!wasThere ||
            !std::equal(now, now + width, before.m_looks.begin() + (former - before.m_rows.begin()) * width))
            changed.push_back(m_rows[place]);
    }
    for (const SpanLook& span : m_spans) {
        const auto former = std::ranges::find(before.m_spans, span.range, &SpanLook::range);
        if (former == before.m_spans.end() || former->look != span.look)
            std::ranges::copy_if(m_rows, std::back_inserter(changed),
                                 [&](int row) { return row >= span.range.top && row <= span.range.bottom; });
    }
    return changed;
}

} // namespace spreadsheet
