#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <vector>

namespace spreadsheet {

enum class PrintRangeKind { all = 0, cells = 1, currentPage = 2, pages = 3 };

/// What of a sheet is printed.
struct PrintRange {
    PrintRangeKind kind = PrintRangeKind::all;
    std::vector<CellRange> cells; ///< of kind `cells`; each range on pages of its own
    int firstPage = 1;            ///< of kind `pages`
    int lastPage = 1;
    int currentPage = 1; ///< of kind `currentPage`
    friend bool operator==(const PrintRange&, const PrintRange&) = default;
};

/// Pages from `first` to `last`.
struct PageSequence {
    int first = 1;
    int last = 1;
    int count() const { return last - first + 1; }
    friend bool operator==(const PageSequence&, const PageSequence&) = default;
};

/// The pages of a range; nothing if it meets no page.
/// @param pageCount  of the sheet, for kind `cells` of these cells; at least 1
std::optional<PageSequence> pagesToPrint(const PrintRange& range, int pageCount);

} // namespace spreadsheet
