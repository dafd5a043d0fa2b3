#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/print/PageLayout.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>

namespace spreadsheet {
namespace {

/// Body of 2,880 × 5,760 twips; columns of 1,000, rows of 500: 2 columns and 11 rows a page.
constexpr PageRequest smallPaper{4320, 7200, std::nullopt, true};

struct PageLayoutTest : testing::Test {
    PageLayoutTest()
    {
        sheet.changeSettings([](SheetSettings& settings) {
            settings.rows.defaultSize = 500;
            settings.columns.defaultSize = 1000;
            settings.print.marginLeft = settings.print.marginRight = 720;
            settings.print.marginTop = settings.print.marginBottom = 720;
        });
    }
    void fill(int columns, int rows) { sheet.setNumber({columns, rows}, 1); }
    void print(const std::function<void(PrintSettings&)>& change)
    {
        sheet.changeSettings([&](SheetSettings& settings) { change(settings.print); });
    }
    /// Pages as "columns rows", both "first-last".
    std::string pages(const PageRequest& request = smallPaper)
    {
        const PageLayout layout(sheet, request);
        std::ostringstream out;
        for (int number = 1; number <= layout.pageCount(); ++number) {
            const PrintedPage page = layout.page(number);
            out << page.columns.first << '-' << page.columns.last << ' ' << page.rows.first << '-'
                << page.rows.last << '\n';
        }
        return out.str();
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

TEST_F(PageLayoutTest, PagesGoAcrossThenDown)
{
    fill(3, 12);
    EXPECT_EQ(pages(), "1-2 1-11\n3-3 1-11\n1-2 12-12\n3-3 12-12\n");
    print([](PrintSettings& settings) { settings.landscape = true; });
    EXPECT_EQ(pages(), "1-3 1-5\n1-3 6-10\n1-3 11-12\n");
}

TEST_F(PageLayoutTest, TheRangeIsWhatWasAskedFor)
{
    fill(2, 3);
    sheet.addSpan({1, 3, 3, 4});
    EXPECT_EQ(pages(), "1-2 1-4\n3-3 1-4\n") << "a span that begins in the used area belongs to it";

    PageRequest request = smallPaper;
    request.range = CellRange{2, 2, 2, 3};
    EXPECT_EQ(pages(request), "2-2 2-3\n");
    request.range = CellRange{50, 500, 60, 600};
    EXPECT_EQ(pages(request), "50-50 500-500\n") << "cut to the sheet";

    request = smallPaper;
    request.usedAreaOnly = false;
    EXPECT_EQ(PageLayout(sheet, request).pageCount(), 25 * 46) << "50 columns, 500 rows";
}

TEST_F(PageLayoutTest, ASheetWithoutDataHasOneEmptyPage)
{
    const PageLayout layout(sheet, smallPaper);
    EXPECT_EQ(layout.pageCount(), 1);
    EXPECT_TRUE(layout.page(1).rowTracks.empty());
    EXPECT_THROW(layout.page(2), std::out_of_range);
}

TEST_F(PageLayoutTest, HeadingsHeaderAndFooterTakeRoomFromTheCells)
{
    fill(1, 12);
    print([](PrintSettings& settings) {
        settings.rowHeadings = settings.columnHeadings = true;
        settings.header = "/fz\"20\"/cA/n";      // 540 twips and a gap of 120
        settings.footer = "/fz\"10\"/cB/n/cC/n"; // 2 × 270 and the gap
    });
    const PageLayout layout(sheet, smallPaper);
    const PageBox cells = layout.page(1).cells;
    EXPECT_EQ(cells.top, 720 + 540 + 120 + 285);
    EXPECT_EQ(cells.left, 720 + layout.rowHeadingWidth());
    EXPECT_EQ(cells.height, 8 * 500) << "5760 - 660 - 660 - 285 = 4155";
    EXPECT_EQ(layout.pageCount(), 2);
}

TEST_F(PageLayoutTest, TracksStandWhereTheyAreDrawn)
{
    fill(2, 13);
    sheet.changeSettings([](SheetSettings& settings) {
        settings.rows.hidden[13] = true;
        settings.rows.sizes[12] = 6000;
        settings.print.titleTop = 2;
        settings.print.titleBottom = 3;
        settings.rows.hidden[2] = true;
    });
    const PageLayout layout(sheet, smallPaper);
    ASSERT_EQ(layout.pageCount(), 3);
    const PrintedPage last = layout.page(3);
    const std::vector<PageTrack> tracks{{3, 720, 500}, {12, 1220 - 5260, 6000}};
    EXPECT_EQ(last.rowTracks, tracks) << "one title row is hidden; of row 12 the page before showed 5,260";
    EXPECT_EQ(last.cells, (PageBox{720, 720, 2000, 500 + 740}));
}

TEST_F(PageLayoutTest, MarginsThatFillThePaperAreRefused)
{
    fill(1, 1);
    print([](PrintSettings& settings) { settings.marginLeft = 3000; });
    EXPECT_THROW(PageLayout(sheet, smallPaper), PageLayoutError);
    print([](PrintSettings& settings) {
        settings.marginLeft = 720;
        settings.header = "/fz\"400\"/cA/n";
    });
    EXPECT_THROW(PageLayout(sheet, smallPaper), PageLayoutError);
}

TEST_F(PageLayoutTest, CountingPagesOfALongSheetIsCheap)
{
    sheet.changeSettings([](SheetSettings& settings) { settings.rowCount = 100'000; });
    fill(8, 100'000);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(PageLayout(sheet, smallPaper).pageCount(), 4 * 9091);
    const auto took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(took).count(), 50);
}

} // namespace
} // namespace spreadsheet
