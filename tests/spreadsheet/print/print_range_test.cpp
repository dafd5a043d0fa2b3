#include "spreadsheet/print/print_range.h"

#include <gtest/gtest.h>

namespace spreadsheet {
namespace {

TEST(PrintRange, GivesTheReportsPagesThatItMeets)
{
    using enum PrintRangeKind;
    const struct {
        const char* what;
        PrintRangeKind kind;
        int first, last, current;
        std::optional<PageSequence> pages;
    } cases[] = {
        {"all", all, 3, 1, 99, PageSequence{1, 5}},
        {"cells: all of their pages", cells, 3, 1, 99, PageSequence{1, 5}},
        {"current", currentPage, 1, 1, 5, PageSequence{5, 5}},
        {"a current page that is gone", currentPage, 1, 1, 6, std::nullopt},
        {"pages", pages, 2, 3, 1, PageSequence{2, 3}},
        {"beyond the end", pages, 4, 32767, 1, PageSequence{4, 5}},
        {"before the first", pages, -3, 1, 1, PageSequence{1, 1}},
        {"turned round", pages, 3, 2, 1, std::nullopt},
        {"outside", pages, 6, 9, 1, std::nullopt},
        {"zero", pages, 0, 0, 1, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(pagesToPrint({c.kind, {}, c.first, c.last, c.current}, 5), c.pages) << c.what;
}

} // namespace
} // namespace spreadsheet
