#pragma once
#include "spreadsheet/cells/SheetSettings.h"

#include <cstdint>
#include <vector>

namespace spreadsheet {

/// Where the rows (or columns) of a sheet lie at a zoom, in pixels from the sheet's edge. Making it costs as
/// much as there are sizes of their own, asking it the logarithm of that, however many rows there are.
class AxisPositions {
public:
    AxisPositions() = default;
    /// @param count  rows, from 1
    /// @param grown  heights in twips of rows without a size of their own that need more than the usual one
    AxisPositions(const AxisSizes& sizes, int count, double pixelsPerTwip,
                  const std::map<int, int>& grown = {});

    int count() const { return m_count; }
    /// Pixels; 0 for a hidden row, at least 1 for every other.
    int size(int index) const;
    /// @param index  1 to count() + 1: the end of the last one
    std::int64_t start(int index) const;
    std::int64_t end(int index) const { return start(index + 1); }
    /// Of first..last, both included; 0 if last < first.
    std::int64_t length(int first, int last) const { return last < first ? 0 : end(last) - start(first); }
    /// The shown row at a place: 1 to count(), the nearest one if the place lies outside.
    int indexAt(std::int64_t position) const;
    /// The first shown row from `index` on, going down (step 1) or up (step -1); 0 if there is none.
    int shown(int index, int step) const;
    /// The row that lies `steps` shown rows away; the last one on the way if there are less. 0 if none shows.
    int moved(int index, int steps) const;

private:
    struct OwnSize {
        int index;
        int size;
        std::int64_t start;
        std::int64_t end() const { return start + size; }
    };
    /// The last one before `index`; null if there is none.
    const OwnSize* lastBefore(int index) const;

    int m_count = 0;
    int m_size = 1; ///< of all others
    std::vector<OwnSize> m_own;
};

} // namespace spreadsheet
