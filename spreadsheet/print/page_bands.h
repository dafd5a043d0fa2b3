#pragma once
#include <map>
#include <span>
#include <vector>

namespace spreadsheet {

/// The rows (or columns) that one page shows.
struct PageBand {
    int first = 1;
    int last = 0;         ///< below `first`: the band shows none
    int skipped = 0;      ///< twips of `first` that earlier pages have shown
    int length = 0;       ///< twips of the page that the band takes
    bool repeats = false; ///< the repeated rows stand above it

    friend bool operator==(const PageBand&, const PageBand&) = default;
};

/// Rows shown again at the top of every page that begins below them.
struct RepeatedRows {
    int last = 0;   ///< pages that begin with a later row repeat them
    int length = 0; ///< twips; 0: nothing is repeated
};

/// Whether they would take more than half a page.
bool isLeftOut(const RepeatedRows& repeated, int capacity);

/// Rows (or columns) that begin a page wherever they stand; only entries that are true.
using PageBreaks = std::map<int, bool>;

/// Deals rows (or columns) out to pages.
///
/// @param sizes     one per row in twips, 0 = hidden
/// @param first     number of the row that sizes[0] belongs to
/// @param capacity  twips that a page holds; greater than 0
/// @param repeated  its length takes room from each page that repeats; nothing if isLeftOut
/// @param breaks    a break at a hidden row counts for the next one that shows
/// @return  bands in ascending order; empty if no row shows. Hidden rows neither fill nor open a page.
///          A row that is larger than a page begins on a new one and goes on over the next ones.
std::vector<PageBand> pageBands(std::span<const int> sizes, int first, int capacity,
                                RepeatedRows repeated = {}, const PageBreaks& breaks = {});

} // namespace spreadsheet
