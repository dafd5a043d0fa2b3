#pragma once
#include <algorithm>
#include <vector>

namespace spreadsheet {

struct RowInterval {
    int first;
    int last;
};

/// Rows of a run, as disjoint ascending intervals.
class RowSet {
public:
    bool empty() const { return m_intervals.empty(); }
    const std::vector<RowInterval>& intervals() const { return m_intervals; }

    bool contains(int row) const
    {
        const auto found = std::ranges::lower_bound(m_intervals, row, {}, &RowInterval::last);
        return found != m_intervals.end() && found->first <= row;
    }

    /// Adds rows and gives the stretch from the first to the last row that was not in the set yet;
    /// an empty one (first > last) if all were.
    RowInterval add(int first, int last)
    {
        auto begin = std::ranges::lower_bound(m_intervals, first - 1, {}, &RowInterval::last);
        if (begin != m_intervals.end() && begin->first <= first && begin->last >= last)
            return {1, 0};
        auto end = begin;
        RowInterval joined{first, last};
        RowInterval fresh{first, last};
        for (; end != m_intervals.end() && end->first <= last + 1; ++end) {
            joined = {std::min(joined.first, end->first), std::max(joined.last, end->last)};
            if (end->first <= fresh.first)
                fresh.first = std::max(fresh.first, end->last + 1);
            if (end->last >= fresh.last)
                fresh.last = std::min(fresh.last, end->first - 1);
        }
        begin = m_intervals.erase(begin, end);
        m_intervals.insert(begin, joined);
        return fresh;
    }

private:
    std::vector<RowInterval> m_intervals;
};

} // namespace spreadsheet
