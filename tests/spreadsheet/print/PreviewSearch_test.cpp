#include "spreadsheet/print/PreviewSearch.h"

#include "spreadsheet/print/PreviewPages.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <QImage>
#include <QScrollBar>
#include <QTest>

namespace spreadsheet {
namespace {

struct Search : testing::Test {
    Search()
    {
        sheet.changeSettings([](SheetSettings& settings) {
            settings.rowCount = 20;
            for (int row = 3; row <= 9; row += 2)
                settings.print.rowBreaks[row] = true; // two rows a page
        });
        sheet.setText({1, 1}, "现金");
        sheet.setText({2, 1}, "库存现金");
        sheet.setText({1, 4}, "银行存款");
        sheet.setText({1, 6}, "现金流量");
        sheet.setText({1, 10}, "Cash 现金");
    }
    /// "page.index" of the current hit, its number and how many there are.
    static std::string state(PreviewSearch& search)
    {
        const auto number = [](std::optional<int> value) { return value ? std::to_string(*value) : "?"; };
        return std::to_string(search.current().page) + '.' + std::to_string(search.current().index) + ' ' +
               number(search.ordinal()) + '/' + number(search.total());
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

TEST_F(Search, GoesRoundTheReportEitherWay)
{
    PreviewPages pages;
    pages.attach(workbook, 1, {});
    ASSERT_EQ(pages.count(), 5);
    PreviewSearch search(pages);
    search.setText("现金");
    while (search.countOn()) {
    }
    EXPECT_EQ(state(search), "0.0 ?/4");
    const struct {
        bool isForward;
        const char* state;
    } steps[] = {{true, "3.0 3/4"},  {true, "5.0 4/4"},  {true, "1.0 1/4"}, {true, "1.1 2/4"},
                 {false, "1.0 1/4"}, {false, "5.0 4/4"}, {false, "3.0 3/4"}};
    for (const auto& [isForward, expected] : steps) {
        EXPECT_TRUE(search.go(isForward, 2));
        EXPECT_EQ(state(search), expected);
    }
    search.setText("cash");
    EXPECT_TRUE(search.go(false, 5)) << "the page itself";
    EXPECT_TRUE(search.go(true, 1)) << "the only one again";
    EXPECT_EQ(search.current(), (PreviewSearch::Hit{5, 0}));
    search.setText("没有");
    EXPECT_FALSE(search.go(true, 1));
    EXPECT_EQ(search.current().page, 0);
    search.setText("");
    EXPECT_TRUE(search.on(1).empty());
}

TEST_F(Search, FollowsTheWorkbook)
{
    PreviewPages pages;
    pages.attach(workbook, 1, {});
    PreviewSearch search(pages);
    search.setText("现金");
    search.go(true, 5);
    sheet.setText({1, 2}, "现金等价物");
    EXPECT_EQ(state(search), "5.0 ?/?");
    while (search.countOn()) {
    }
    EXPECT_EQ(state(search), "5.0 5/5");
    sheet.setText({1, 10}, "");
    EXPECT_EQ(search.current().page, 0);
}

/// Columns and rows of the hits' colours on the picture of the window.
QRect marked(PreviewWidget& preview)
{
    const QImage image = preview.viewport()->grab().toImage();
    QRect all;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (const QColor pixel = image.pixelColor(x, y); pixel.red() > 180 && pixel.blue() < 180)
                all |= QRect(x, y, 1, 1);
    return all;
}

/// A hit lies where its cell is drawn, whose background tells.
TEST_F(Search, MarksStandOnTheirCellsAndComeIntoSight)
{
    const CellRange place{2, 9, 3, 10};
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.scale = 150;
        settings.rows.sizes[9] = 6000;
    });
    sheet.addSpan(place);
    sheet.setText({2, 9}, "库存");
    PreviewWidget preview;
    preview.attach(workbook, 1);
    preview.resize(500, 300);
    preview.setView(PreviewView::percentage);
    preview.setZoomPercentage(70);
    preview.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&preview));
    EXPECT_TRUE(marked(preview).isEmpty());
    EXPECT_TRUE(preview.find("库存现金"));
    EXPECT_FALSE(marked(preview).isEmpty());
    const int pages = preview.pageCount();
    ASSERT_TRUE(preview.find("库存"));
    ASSERT_TRUE(preview.find("库存"));
    EXPECT_EQ(preview.currentPage(), pages);
    const QRect hit = marked(preview);
    preview.mark("");
    EXPECT_TRUE(marked(preview).isEmpty());
    sheet.restyle({2, 9, 2, 9}, [](CellStyle& style) { style.background = 0xFFD030; });
    const QRect cell = marked(preview);
    EXPECT_LE(std::abs(cell.left() - hit.left()) + std::abs(cell.top() - hit.top()), 4);
    EXPECT_LE(std::abs(cell.right() - hit.right()) + std::abs(cell.bottom() - hit.bottom()), 4);
    sheet.restyle({2, 9, 2, 9}, [](CellStyle& style) { style.background = automaticColour; });
    ASSERT_TRUE(preview.find("cash")) << "below a row that is higher than the window";
    EXPECT_FALSE(marked(preview).isEmpty());
    EXPECT_EQ(preview.currentPage(), pages);
}

/// A part of a line is found where it is printed: its end of the margins' width, above or below the cells.
TEST_F(Search, FindsHeadersAndFooters)
{
    sheet.changeSettings([](SheetSettings& settings) {
        settings.print.header = "/l现金/r单位：元/n";
        settings.print.footer = "/c第/p页/r共&总页数";
    });
    PreviewPages pages;
    pages.attach(workbook, 1, {});
    PreviewSearch search(pages);
    const struct {
        const char* text;
        std::vector<std::size_t> hits; // by page
    } cases[] = {{"现金", {3, 1, 2, 1, 2}},
                 {"单位", {1, 1, 1, 1, 1}},
                 {"第4页", {0, 0, 0, 1, 0}},
                 {"共5", {1, 1, 1, 1, 1}},
                 {"总页数", {0, 0, 0, 0, 0}}};
    for (const auto& [text, hits] : cases) {
        search.setText(QString::fromUtf8(text));
        for (int page = 1; page <= 5; ++page)
            EXPECT_EQ(search.on(page).size(), hits[static_cast<std::size_t>(page - 1)]) << text << page;
    }
    constexpr int margin = 864, paperWidth = 11906, paperHeight = 16838;
    search.setText("单位");
    const QRect above = search.on(1).at(0);
    EXPECT_EQ(above.top(), margin);
    EXPECT_NEAR(above.right(), paperWidth - margin, 30);
    EXPECT_LT(above.width(), paperWidth / 8);
    search.setText("第4");
    const QRect below = search.on(4).at(0);
    EXPECT_NEAR(below.bottom(), paperHeight - margin, 30);
    EXPECT_NEAR(below.center().x(), paperWidth / 2, 30);
    search.setText("现金");
    EXPECT_EQ(search.on(1).at(0).left(), margin) << "the header is read first";
    EXPECT_LT(search.on(1).at(0).bottom(), search.on(1).at(1).top());
}

} // namespace
} // namespace spreadsheet
