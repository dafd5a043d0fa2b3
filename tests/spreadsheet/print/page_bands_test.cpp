#include "spreadsheet/print/page_bands.h"

#include <gtest/gtest.h>

#include <sstream>

namespace spreadsheet {
namespace {

/// Bands as "first-last", "+n" for twips skipped, "*" with repeated rows, "=length".
std::string readable(const std::vector<PageBand>& bands)
{
    std::ostringstream out;
    for (const PageBand& band : bands) {
        out << band.first << '-' << band.last;
        if (band.skipped)
            out << '+' << band.skipped;
        out << (band.repeats ? "*" : "") << '=' << band.length << ' ';
    }
    return out.str();
}

TEST(PageBands, MarkedRowsBeginAPage)
{
    const struct {
        const char* what;
        std::vector<int> sizes;
        PageBreaks breaks;
        const char* bands;
    } cases[] = {
        {"at the first row it changes nothing", {300, 300}, {{5, true}}, "5-6=600 "},
        {"two in a row", {300, 300, 300}, {{6, true}, {7, true}}, "5-5=300 6-6=300 7-7=300 "},
        {"at a hidden row", {300, 0, 300}, {{6, true}}, "5-5=300 7-7=300 "},
        {"where the page ends anyway", {1000, 300}, {{6, true}}, "5-5=1000 6-6=300 "},
        {"after a tall row", {1500, 100, 100}, {{6, true}}, "5-5=1000 5-5+1000=500 6-7=200 "},
        {"before and behind the rows", {300}, {{1, true}, {99, true}}, "5-5=300 "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(readable(pageBands(c.sizes, 5, 1000, {}, c.breaks)), c.bands) << c.what;
}

TEST(PageBands, BreakBeforeTheRowThatNoLongerFits)
{
    const struct {
        const char* what;
        std::vector<int> sizes;
        RepeatedRows repeated;
        const char* bands;
    } cases[] = {
        {"nothing", {}, {}, ""},
        {"all hidden", {0, 0}, {}, ""},
        {"exact fit stays on one page", {300, 300, 400}, {}, "5-7=1000 "},
        {"one twip over breaks", {300, 300, 401}, {}, "5-6=600 7-7=401 "},
        {"hidden rows open and fill no page", {0, 600, 0, 400, 0, 1, 0}, {}, "6-8=1000 10-10=1 "},
        {"a tall row begins on its own page and goes on",
         {10, 2500, 10},
         {},
         "5-5=10 6-6=1000 6-6+1000=1000 6-7+2000=510 "},
        {"a row of exactly two pages", {2000, 10}, {}, "5-5=1000 5-5+1000=1000 6-6=10 "},
        {"repeated rows take room from later pages",
         {100, 900, 900, 1},
         {5, 100},
         "5-6=1000 7-7*=900 8-8*=1 "},
        {"a page that begins in the repeated rows shows them once",
         {600, 600, 600},
         {6, 400},
         "5-5=600 6-6=600 7-7*=600 "},
        {"a tall row under repeated rows", {100, 1500}, {5, 100}, "5-5=100 6-6*=900 6-6+900*=600 "},
        {"repeated rows of more than half a page are left out", {501, 900}, {5, 501}, "5-5=501 6-6=900 "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(readable(pageBands(c.sizes, 5, 1000, c.repeated)), c.bands) << c.what;
}

} // namespace
} // namespace spreadsheet
