#include "spreadsheet/view/FittedRows.h"

#include "spreadsheet/print/grown_rows.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>

namespace spreadsheet {

FittedRows::FittedRows()
{
    m_text.keepLines();
}

void FittedRows::forget()
{
    m_heights.clear();
    m_around.reset();
    m_end.reset();
}

bool FittedRows::measure(const Sheet& sheet, int first, int last)
{
    if (first > last)
        return false;
    const std::map<int, int> found = grownRows(sheet, first, last, m_text);
    const auto from = m_heights.lower_bound(first), to = m_heights.upper_bound(last);
    if (std::equal(from, to, found.begin(), found.end()))
        return false;
    m_heights.erase(from, to);
    m_heights.insert(found.begin(), found.end());
    return true;
}

/// A screenful above and below too: what paging and scrolling by a step bring into sight. The last rows say
/// how far one can scroll, frozen ones are always in sight.
bool FittedRows::fit(const Sheet& sheet, std::uint64_t revision, const CellGeometry& geometry)
{
    const std::vector<PageTrack> shown = geometry.rowTracks();
    if (shown.empty())
        return false;
    const int count = static_cast<int>(shown.size());
    const int last = shown.back().index;
    const int first = std::min(geometry.topLeft().row, last);
    bool changed = false;
    const auto covers = [&](const std::optional<Measured>& measured, int from, int to) {
        return measured && measured->revision == revision && measured->first <= from && measured->last >= to;
    };
    if (!covers(m_around, std::max(first - count / 2, 1), last + count / 2)) {
        m_around = Measured{revision, std::max(first - count, 1), last + count};
        changed |= measure(sheet, m_around->first, m_around->last);
        if (geometry.frozenRows() > 0)
            changed |= measure(sheet, 1, std::min(shown.front().index + count, geometry.frozenRows()));
    }
    const int end = geometry.lastTopLeft().row;
    if (!covers(m_end, end, geometry.rows().count())) {
        m_end = Measured{revision, end, geometry.rows().count()};
        changed |= measure(sheet, m_end->first, m_end->last);
    }
    return changed;
}

} // namespace spreadsheet
