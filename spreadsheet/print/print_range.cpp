#include "spreadsheet/print/print_range.h"

#include <algorithm>

namespace spreadsheet {

std::optional<PageSequence> pagesToPrint(const PrintRange& range, int pageCount)
{
    PageSequence pages{1, pageCount};
    if (range.kind == PrintRangeKind::currentPage)
        pages = {range.currentPage, range.currentPage};
    else if (range.kind == PrintRangeKind::pages)
        pages = {std::max(range.firstPage, 1), std::min(range.lastPage, pageCount)};
    if (pages.first > pages.last || pages.first < 1 || pages.last > pageCount)
        return std::nullopt;
    return pages;
}

} // namespace spreadsheet
