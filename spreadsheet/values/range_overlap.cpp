#include "spreadsheet/values/range_overlap.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace spreadsheet {

bool anyOverlap(std::vector<CellRange> ranges)
{
    std::ranges::sort(ranges, {}, &CellRange::top);
    std::map<int, int> open;                   // right by left column of the ranges that the row meets
    std::set<std::pair<int, int>> openBottoms; // bottom and left column of the same
    for (const CellRange& range : ranges) {
        while (!openBottoms.empty() && openBottoms.begin()->first < range.top) {
            open.erase(openBottoms.begin()->second);
            openBottoms.erase(openBottoms.begin());
        }
        const auto next = open.upper_bound(range.right);
        if (next != open.begin() && std::prev(next)->second >= range.left)
            return true;
        open.emplace(range.left, range.right);
        openBottoms.emplace(range.bottom, range.left);
    }
    return false;
}

} // namespace spreadsheet
