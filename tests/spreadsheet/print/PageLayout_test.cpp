#include "spreadsheet/print/PageLayout.h"
#include "spreadsheet/print/printed_ranges.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <sstream>

namespace spreadsheet {
namespace {

/// Body of 2,880 × 5,760 twips; columns of 1,000, rows of 500: 2 columns and 11 rows a page.
const PageRequest smallPaper{4320, 7200, {}, {}, {}, {}, {}, {}, {}};

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
    request.ranges = {{2, 2, 2, 3}};
    EXPECT_EQ(pages(request), "2-2 2-3\n");
    request.ranges = {{50, 500, 60, 600}};
    EXPECT_EQ(pages(request), "50-50 500-500\n") << "cut to the sheet";

    print([](PrintSettings& settings) { settings.usedAreaOnly = false; });
    EXPECT_EQ(PageLayout(sheet, smallPaper).pageCount(), 25 * 46) << "50 columns, 500 rows";
}

/// 50 columns, 500 rows; data to C3, a span to C4.
TEST_F(PageLayoutTest, WholeColumnsAndRowsEndWithWhatShows)
{
    fill(3, 3);
    sheet.addSpan({1, 3, 3, 4});
    const struct {
        CellRange range;
        CellAddress last;
    } cases[] = {
        {{2, 1, 3, 500}, {3, 4}}, {{1, 2, 50, 9}, {3, 9}},    {{1, 1, 50, 500}, {3, 4}},
        {{5, 1, 6, 500}, {6, 4}}, {{2, 2, 2, 500}, {2, 500}}, {{2, 1, 2, 499}, {2, 499}},
        {{2, 3, 50, 3}, {50, 3}},
    };
    for (const auto& [range, last] : cases)
        for (const bool isArea : {false, true}) {
            PrintSettings settings;
            if (isArea)
                settings.area = {range};
            const auto printed =
                printedRanges(sheet, settings, isArea ? std::vector<CellRange>() : std::vector{range});
            EXPECT_EQ(printed, (std::vector<CellRange>{{range.left, range.top, last.column, last.row}}))
                << cellName({range.left, range.top});
            settings.usedAreaOnly = false;
            EXPECT_EQ(printedRanges(sheet, settings, {range}), std::vector{range})
                << cellName({range.left, range.top});
        }
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

TEST_F(PageLayoutTest, RowsAndColumnsBreakWhereTheyAreMarked)
{
    fill(3, 6);
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.rowBreaks = {{1, true}, {4, true}, {300, true}};
        settings.print.columnBreaks = {{2, true}};
    });
    EXPECT_EQ(pages(), "1-1 1-3\n2-3 1-3\n1-1 4-6\n2-3 4-6\n");
}

TEST_F(PageLayoutTest, FittedColumnsStandOnOnePageAcross)
{
    fill(4, 50);
    print([](PrintSettings& settings) {
        settings.fitAcross = 1;
        settings.centredAcross = true;
        settings.columnBreaks = {{2, true}};
    });
    const PageLayout fitted(sheet, smallPaper);
    EXPECT_DOUBLE_EQ(fitted.scale(), 0.72) << "4,000 twips in 2,880";
    EXPECT_EQ(pages(), "1-4 1-16\n1-4 17-32\n1-4 33-48\n1-4 49-50\n") << "8,000 twips high";
    EXPECT_EQ(fitted.page(1).cells, (PageBox{720, 720, 4000, 8000}));
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.sizes[4] = 100'000; });
    EXPECT_DOUBLE_EQ(PageLayout(sheet, smallPaper).scale(), 0.1) << "no smaller: the rest goes to a new page";
    EXPECT_EQ(PageLayout(sheet, smallPaper).pageCount(), 5);
    sheet.changeSettings([](SheetSettings& settings) { settings.columns.hidden = {{3, true}, {4, true}}; });
    EXPECT_EQ(PageLayout(sheet, smallPaper).scale(), 1) << "never larger";
}

TEST_F(PageLayoutTest, PagesAreFittedAtTheLargestScaleThatDoes)
{
    fill(4, 50);
    const struct {
        int across, down;
        double scale; ///< by hand: what the body of 2,880 × 5,760 must hold
        int pages;
    } cases[] = {
        {2, 0, 1, 2 * 5},     // two columns of 1,000 a page fit as they are
        {0, 1, 0.230, 1},     // 25,000 twips in 5,760, and the columns beside each other
        {0, 2, 0.460, 2},     // 25 rows, 12,500 twips
        {1, 1, 0.230, 1},     // the lesser of the two
        {2, 2, 0.460, 2},     // … 6,260 twips wide: one page across is enough
        {999, 999, 1, 2 * 5}, // never larger
    };
    for (const auto& [across, down, scale, count] : cases) {
        print([&](PrintSettings& settings) {
            settings.fitAcross = across;
            settings.fitDown = down;
        });
        const PageLayout layout(sheet, smallPaper);
        EXPECT_NEAR(layout.scale(), scale, 0.0011) << across << " x " << down;
        EXPECT_EQ(layout.pageCount(), count) << across << " x " << down;
    }
}

TEST_F(PageLayoutTest, AScaleMakesRoomOrTakesIt)
{
    fill(4, 24);
    print([](PrintSettings& settings) { settings.scale = 50; }); // 5,760 × 11,520
    EXPECT_EQ(pages(), "1-4 1-23\n1-4 24-24\n");
    print([](PrintSettings& settings) { settings.scale = 200; }); // 1,440 × 2,880
    EXPECT_EQ(PageLayout(sheet, smallPaper).pageCount(), 4 * 5);
    print([](PrintSettings& settings) { settings.fitAcross = 1; });
    EXPECT_DOUBLE_EQ(PageLayout(sheet, smallPaper).scale(), 0.72) << "what is fitted knows no other scale";
}

TEST_F(PageLayoutTest, RepeatedColumnsStandBeforeTheOthers)
{
    fill(4, 2);
    print([](PrintSettings& settings) { settings.titleLeft = settings.titleRight = 1; });
    EXPECT_EQ(pages(), "1-2 1-2\n3-3 1-2\n4-4 1-2\n");
    const PrintedPage last = PageLayout(sheet, smallPaper).page(3);
    EXPECT_EQ(last.columnTracks, (std::vector<PageTrack>{{1, 720, 1000}, {4, 1720, 1000}}));
    EXPECT_EQ(last.cells.width, 2000);
    EXPECT_EQ(last.repeatedColumns, 1);
}

TEST_F(PageLayoutTest, PagesGoDownThenAcrossIfThatIsAskedFor)
{
    fill(3, 12);
    print([](PrintSettings& settings) { settings.downFirst = true; });
    EXPECT_EQ(pages(), "1-2 1-11\n1-2 12-12\n3-3 1-11\n3-3 12-12\n");
}

TEST_F(PageLayoutTest, EachRangeBeginsAPageInTheOrderOfTheSheet)
{
    fill(6, 40);
    const struct {
        const char* what;
        std::vector<CellRange> ranges;
        const char* pages;
    } cases[] = {
        {"order", {{1, 20, 2, 22}, {3, 2, 3, 4}, {1, 2, 1, 3}}, "1-1 2-3\n3-3 2-4\n1-2 20-22\n"},
        {"one in the other", {{1, 1, 2, 5}, {2, 3, 2, 4}}, "1-2 1-5\n"},
        {"twice the same", {{1, 1, 2, 5}, {1, 1, 2, 5}}, "1-2 1-5\n"},
        {"corners", {{1, 1, 2, 2}, {2, 2, 3, 3}}, "1-2 1-2\n3-3 2-2\n2-3 3-3\n"},
        {"a cross", {{2, 1, 2, 3}, {1, 2, 3, 2}}, "2-2 1-3\n1-1 2-2\n3-3 2-2\n"},
    };
    for (const auto& [what, ranges, expected] : cases) {
        PageRequest request = smallPaper;
        request.ranges = ranges;
        EXPECT_EQ(pages(request), expected) << what;
        print([&, area = ranges](PrintSettings& settings) { settings.area = area; });
        EXPECT_EQ(pages(), expected) << what << " as print area";
        print([](PrintSettings& settings) { settings.area.clear(); });
    }
    print([](PrintSettings& settings) { settings.titleTop = settings.titleBottom = 1; });
    PageRequest request = smallPaper;
    request.ranges = {{1, 5, 1, 6}, {2, 8, 2, 9}};
    for (const int number : {1, 2})
        EXPECT_EQ(PageLayout(sheet, request).page(number).rowTracks.front().index, 1) << "the title";
}

/// Rule: what shows is printed. Cells are placed by hand, one look a case.
TEST_F(PageLayoutTest, TheUsedAreaReachesToWhatShows)
{
    const BorderLine line{LineStyle::solid, 0};
    const struct {
        const char* what;
        CellRange cells;
        std::function<void(CellStyle&)> look;
        CellAddress last;
    } cases[] = {
        {"a background", {3, 4, 3, 4}, [](CellStyle& s) { s.background = 0xC0C0C0; }, {3, 4}},
        {"white", {3, 4, 3, 4}, [](CellStyle& s) { s.background = 0xFFFFFF; }, {1, 1}},
        {"below", {3, 4, 3, 4}, [&](CellStyle& s) { s.bottom = line; }, {3, 4}},
        {"right", {3, 4, 3, 4}, [&](CellStyle& s) { s.right = line; }, {3, 4}},
        {"above: the edge of the row before", {3, 4, 3, 4}, [&](CellStyle& s) { s.top = line; }, {3, 3}},
        {"left: the edge of the column before", {3, 4, 3, 4}, [&](CellStyle& s) { s.left = line; }, {2, 4}},
        {"an erased line",
         {3, 4, 3, 4},
         [](CellStyle& s) {
             s.right = {LineStyle::erase, 0};
         },
         {1, 1}},
        {"a font", {3, 4, 3, 4}, [](CellStyle& s) { s.font.bold = true; }, {1, 1}},
        {"a whole row", {1, 4, 50, 4}, [](CellStyle& s) { s.background = 0xC0C0C0; }, {1, 1}},
        {"a whole column", {3, 1, 3, 500}, [](CellStyle& s) { s.background = 0xC0C0C0; }, {1, 1}},
    };
    for (const auto& [what, cells, look, last] : cases) {
        Workbook other;
        Sheet& page = other.sheet(1);
        page.setNumber({1, 1}, 1);
        page.restyle(cells, look);
        EXPECT_EQ(lastShownCell(page), last) << what;
    }
}

TEST_F(PageLayoutTest, ASheetHasItsOwnPaper)
{
    fill(3, 12);
    print([](PrintSettings& settings) {
        settings.paperWidth = 4320 + 1000;
        settings.paperHeight = 7200;
    });
    EXPECT_EQ(pages(), "1-3 1-11\n1-3 12-12\n");
    EXPECT_EQ(PageLayout(sheet, smallPaper).paperWidth(), 5320);
    print([](PrintSettings& settings) { settings.landscape = true; });
    EXPECT_EQ(pages(), "1-3 1-7\n1-3 8-12\n") << "turned: 3,880 twips for rows";
    EXPECT_EQ(PageLayout(sheet, smallPaper).paperWidth(), 7200);
}

TEST_F(PageLayoutTest, FieldsAreThoseOfThePage)
{
    fill(1, 12);
    print([](PrintSettings& settings) { settings.firstPage = 5; });
    PageRequest request = smallPaper;
    request.report = "利润表";
    request.date = "2026-12-31";
    request.time = "08:05";
    const HeaderFieldValues values = PageLayout(sheet, request).fieldValues(2);
    EXPECT_EQ(withFields("第&页数/&总页数页 &日期 &时间 &表名 &报表名 &页 &", values),
              "第6/2页 2026-12-31 08:05 " + sheet.name() + " 利润表 &页 &");
}

TEST_F(PageLayoutTest, CellsStandInTheMiddleOfThePage)
{
    fill(1, 13);
    print([](PrintSettings& settings) {
        settings.centredAcross = settings.centredDown = true;
        settings.titleTop = settings.titleBottom = 1;
    });
    const PrintedPage last = PageLayout(sheet, smallPaper).page(2);
    EXPECT_EQ(last.cells, (PageBox{720 + 940, 720 + 2130, 1000, 1500})) << "a title and two rows";
    EXPECT_EQ(last.rowTracks.front().start, last.cells.top);
    EXPECT_EQ(last.columnTracks.front().start, last.cells.left);
    fill(3, 13);
    print([](PrintSettings& settings) { settings.titleLeft = settings.titleRight = 1; });
    const PrintedPage beside = PageLayout(sheet, smallPaper).page(2);
    EXPECT_EQ(beside.cells.left, 720 + 440) << "a repeated column and one more";
    EXPECT_EQ(beside.columnTracks.front().start, beside.cells.left);
}

TEST_F(PageLayoutTest, AStampIsALineBelowTheFooterWhereItIsAskedFor)
{
    fill(1, 12);
    PageRequest request = smallPaper;
    request.stamp = "2026-12-31 王会计";
    EXPECT_TRUE(PageLayout(sheet, request).footer().empty());
    print([](PrintSettings& settings) { settings.stamp = true; });
    const PageLayout layout(sheet, request);
    ASSERT_EQ(layout.footer().size(), 1u);
    EXPECT_EQ(layout.footer()[0].parts[0][0].text, request.stamp);
    EXPECT_EQ(layout.pageCount(), 2) << "it takes room from the cells";
}

TEST_F(PageLayoutTest, MarginsThatFillThePaperAreRefused)
{
    fill(1, 1);
    print([](PrintSettings& settings) { settings.marginLeft = 3000; });
    EXPECT_THROW(PageLayout(sheet, smallPaper), PageLayoutError);
    print([](PrintSettings& settings) { settings.marginLeft = std::numeric_limits<int>::max(); });
    EXPECT_THROW(PageLayout(sheet, smallPaper), PageLayoutError);
    print([](PrintSettings& settings) { settings.marginLeft = -500; });
    EXPECT_EQ(PageLayout(sheet, smallPaper).printable().left, 0);
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
