#include "spreadsheet/values/range_overlap.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <utility>

namespace spreadsheet {

std::vector<CellRange> takeOverlapping(std::vector<CellRange>& ranges)
{
    std::vector<std::size_t> order(ranges.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&](std::size_t at) { return ranges[at].top; });
    std::map<int, int> open;                   // right by left column of the ranges that the row meets
    std::set<std::pair<int, int>> openBottoms; // bottom and left column of the same
    std::vector<bool> isTaken(ranges.size());
    for (const std::size_t at : order) {
        const CellRange& range = ranges[at];
        while (!openBottoms.empty() && openBottoms.begin()->first < range.top) {
            open.erase(openBottoms.begin()->second);
            openBottoms.erase(openBottoms.begin());
        }
        const auto next = open.upper_bound(range.right);
        if (next != open.begin() && std::prev(next)->second >= range.left) {
            isTaken[at] = true;
            continue;
        }
        open.emplace(range.left, range.right);
        openBottoms.emplace(range.bottom, range.left);
    }
    std::vector<CellRange> kept, taken;
    for (std::size_t at = 0; at < ranges.size(); ++at)
        (isTaken[at] ? taken : kept).push_back(ranges[at]);
    ranges = std::move(kept);
    return taken;
}

bool anyOverlap(std::vector<CellRange> ranges)
{
    return !takeOverlapping(ranges).empty();
}

} // namespace spreadsheet
