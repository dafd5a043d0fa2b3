#include "spreadsheet/view/commands/disjoint_ranges.h"

#include <algorithm>

namespace spreadsheet {

std::vector<CellRange> disjoint(const std::vector<CellRange>& ranges)
{
    std::vector<CellRange> parts;
    for (const CellRange& range : ranges) {
        std::vector<CellRange> fresh{range};
        for (std::size_t known = 0, end = parts.size(); known < end; ++known) {
            const CellRange hole = parts[known];
            std::vector<CellRange> rest;
            for (const CellRange& piece : fresh) {
                if (!piece.intersects(hole)) {
                    rest.push_back(piece);
                    continue;
                }
                const int top = std::max(piece.top, hole.top), bottom = std::min(piece.bottom, hole.bottom);
                if (piece.top < hole.top)
                    rest.push_back({piece.left, piece.top, piece.right, hole.top - 1});
                if (piece.bottom > hole.bottom)
                    rest.push_back({piece.left, hole.bottom + 1, piece.right, piece.bottom});
                if (piece.left < hole.left)
                    rest.push_back({piece.left, top, hole.left - 1, bottom});
                if (piece.right > hole.right)
                    rest.push_back({hole.right + 1, top, piece.right, bottom});
            }
            fresh = std::move(rest);
        }
        parts.insert(parts.end(), fresh.begin(), fresh.end());
    }
    return parts;
}

CellRange common(const CellRange& a, const CellRange& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

} // namespace spreadsheet
