#include "spreadsheet/print/PageThumbnails.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

namespace spreadsheet {
namespace {

struct PreviewWidgetTest : testing::Test {
    PreviewWidgetTest()
    {
        setPages(10);
        preview.attach(workbook, 1);
        preview.resize(600, 800);
        preview.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&preview));
    }

    /// Pages of one row each.
    void setPages(int pages)
    {
        sheet.changeSettings([&](SheetSettings& settings) {
            settings.rowCount = 10'000;
            settings.print.rowBreaks.clear();
            for (int row = 2; row <= pages; ++row)
                settings.print.rowBreaks[row] = true;
        });
        sheet.clearContents({1, 1, 1, 10'000});
        sheet.setText({1, 1}, "目");
        sheet.setText({1, pages}, "目");
    }

    QImage shown() { return preview.viewport()->grab().toImage(); }
    /// Most white pixels of a row: the width of the pages that stand side by side.
    int pageWidth()
    {
        const QImage image = shown();
        int most = 0;
        for (int y = 0; y < image.height(); y += 10) {
            int count = 0;
            for (int x = 0; x < image.width(); ++x)
                count += image.pixel(x, y) == qRgb(255, 255, 255);
            most = std::max(most, count);
        }
        return most;
    }
    /// From one whole page to the next: 12 pixels are around each.
    int pitch() const { return preview.viewport()->height() - 12; }
    void wheel(int angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWheelEvent event(QPointF(50, 50), QPointF(50, 50), {}, {0, angle}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(preview.viewport(), &event);
    }

    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
    PreviewWidget preview;
};

TEST_F(PreviewWidgetTest, PagesOutsideTheReportBecomeItsEnds)
{
    QSignalSpy changed(&preview, &PreviewWidget::pageChanged);
    EXPECT_EQ(preview.pageCount(), 10);
    for (const auto& [asked, page] : {std::pair(3, 3), {13, 10}, {-2, 1}, {1, 1}}) {
        preview.setCurrentPage(asked);
        EXPECT_EQ(preview.currentPage(), page) << asked;
    }
    EXPECT_EQ(changed.count(), 3) << "not for the page that is shown already";
    preview.setCurrentPage(10);
    setPages(4);
    EXPECT_EQ(preview.pageCount(), 4);
    shown();
    EXPECT_EQ(preview.currentPage(), 4) << "the report became shorter";
}

TEST_F(PreviewWidgetTest, EachViewShowsItsPages)
{
    const int whole = pageWidth();
    EXPECT_NEAR(whole, (800 - 24) * 11906 / 16838, 12);
    EXPECT_EQ(preview.verticalScrollBar()->maximum(), 9 * pitch()) << "one page for each window";

    preview.setView(PreviewView::pageWidth);
    EXPECT_GT(pageWidth(), 540);
    EXPECT_GT(preview.verticalScrollBar()->maximum(), 9 * pitch()) << "higher than the window";

    preview.setView(PreviewView::percentage);
    preview.setZoomPercentage(200);
    EXPECT_GT(preview.horizontalScrollBar()->maximum(), 500);
    preview.setZoomPercentage(50);
    EXPECT_NEAR(pageWidth(), 11906 * preview.logicalDpiX() / 1440 / 2, 3);

    preview.setView(PreviewView::severalPages);
    preview.setPagesAcross(3);
    preview.setPagesDown(2);
    EXPECT_EQ(preview.pageStep(), 6);
    EXPECT_GT(pageWidth(), 520) << "three pages fill the width";
    preview.setCurrentPage(10);
    EXPECT_LT(pageWidth(), 200) << "nothing stands beside the last page";
    EXPECT_EQ(preview.pageStep(), 6);

    preview.setView(PreviewView::pageHeight);
    EXPECT_EQ(preview.pageStep(), 1);
    EXPECT_NEAR(pageWidth(), whole, 20);
}

TEST_F(PreviewWidgetTest, TheZoomTogglesBetweenTheViewAndACloseLook)
{
    const QImage before = shown();
    preview.toggleZoom();
    EXPECT_EQ(preview.view(), PreviewView::percentage);
    EXPECT_EQ(preview.zoomPercentage(), 100);
    EXPECT_EQ(preview.currentPage(), 1);
    preview.toggleZoom();
    EXPECT_EQ(preview.view(), PreviewView::wholePage);
    EXPECT_EQ(shown(), before);
    preview.setView(PreviewView::percentage);
    preview.setZoomPercentage(150);
    QTest::mouseDClick(preview.viewport(), Qt::LeftButton);
    EXPECT_EQ(preview.zoomPercentage(), 200) << "closer than what is shown";
    preview.setView(PreviewView::pageWidth);
    preview.toggleZoom();
    EXPECT_EQ(preview.view(), PreviewView::percentage) << "a chosen view starts afresh";
}

/// Whatever the view was before, it shows what one opened that way shows.
TEST_F(PreviewWidgetTest, AViewLeavesNothingOfTheOneBefore)
{
    const auto fresh = [&](int page) {
        PreviewWidget other;
        other.attach(workbook, 1);
        other.resize(preview.size());
        other.setCurrentPage(page);
        other.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&other));
        return other.viewport()->grab().toImage();
    };
    preview.setView(PreviewView::percentage);
    preview.setZoomPercentage(200);
    preview.setCurrentPage(3);
    shown();
    preview.verticalScrollBar()->setValue(preview.verticalScrollBar()->value() + 300);
    EXPECT_EQ(preview.currentPage(), 3);
    preview.setView(PreviewView::wholePage);
    EXPECT_EQ(shown(), fresh(3)) << "smaller";
    preview.resize(420, 500);
    EXPECT_EQ(shown(), fresh(3)) << "another window";
}

TEST_F(PreviewWidgetTest, OnlyAmongSeveralTheCurrentPageHasAFrame)
{
    const QColor frame = preview.palette().color(QPalette::Highlight);
    const auto framed = [&] {
        const QImage image = shown();
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y) == frame;
        return count;
    };
    preview.setView(PreviewView::severalPages);
    preview.setPagesAcross(2);
    EXPECT_GT(framed(), 1000);
    setPages(1);
    EXPECT_EQ(framed(), 0);
}

TEST_F(PreviewWidgetTest, PartsOfNotchesOfTheWheelAddUp)
{
    preview.setView(PreviewView::percentage);
    wheel(180, Qt::ControlModifier);
    wheel(180, Qt::ControlModifier);
    EXPECT_NEAR(preview.zoomPercentage(), 133, 1) << "three times a tenth more";
}

TEST_F(PreviewWidgetTest, TheWheelScrollsOverTheEndsOfPages)
{
    QScrollBar& bar = *preview.verticalScrollBar();
    for (int notch = 1; notch <= 3; ++notch)
        wheel(-120);
    EXPECT_EQ(preview.currentPage(), 1) << "most of it is in sight";
    EXPECT_NEAR(bar.value(), 300, 2);
    wheel(-180);
    EXPECT_EQ(preview.currentPage(), 2);
    const int between = bar.value();
    EXPECT_NEAR(between, 450, 2) << "it stays where it was scrolled to";
    sheet.setText({2, 2}, "改");
    shown();
    EXPECT_NEAR(bar.value(), between, 1) << "also with other contents";
    QTest::keyClick(&preview, Qt::Key_Down);
    EXPECT_EQ(bar.value(), between + bar.singleStep());
    preview.setCurrentPage(3);
    EXPECT_EQ(bar.value(), 2 * pitch()) << "a chosen page stands at the top";
    wheel(120, Qt::ControlModifier);
    EXPECT_EQ(preview.view(), PreviewView::percentage);
    EXPECT_EQ(preview.currentPage(), 3);
}

TEST_F(PreviewWidgetTest, KeysGoOnByWhatFitsIntoTheWindow)
{
    const auto keys = [&](std::initializer_list<Qt::Key> pressed, Qt::KeyboardModifiers modifiers = {}) {
        for (const Qt::Key key : pressed)
            QTest::keyClick(&preview, key, modifiers);
        return preview.currentPage();
    };
    QScrollBar& bar = *preview.verticalScrollBar();
    EXPECT_EQ(keys({Qt::Key_PageDown, Qt::Key_Space}), 3);
    EXPECT_EQ(keys({Qt::Key_PageUp}), 2);
    EXPECT_EQ(keys({Qt::Key_End}), 10);
    EXPECT_EQ(bar.value(), bar.maximum());
    EXPECT_EQ(keys({Qt::Key_PageDown}), 10);
    EXPECT_EQ(keys({Qt::Key_Home}), 1);
    wheel(-120);
    EXPECT_EQ(keys({Qt::Key_Home}), 1);
    EXPECT_EQ(bar.value(), 0) << "its head was out of sight";

    preview.setView(PreviewView::pageWidth); // 562 pixels: 795 high, more than the window shows
    preview.resize(600, 400);
    EXPECT_EQ(keys({Qt::Key_PageDown}), 1);
    EXPECT_GT(bar.value(), 300) << "a part of the page";
    EXPECT_EQ(keys({Qt::Key_PageDown, Qt::Key_PageDown}), 2) << "over its end";
    const double part = bar.value() / static_cast<double>(bar.maximum() + bar.pageStep());
    preview.resize(900, 600);
    EXPECT_EQ(preview.currentPage(), 2);
    EXPECT_NEAR(bar.value() / static_cast<double>(bar.maximum() + bar.pageStep()), part, 0.01)
        << "the same part, larger";
    EXPECT_EQ(keys({Qt::Key_PageDown}, Qt::ControlModifier), 3) << "a whole page";

    preview.setView(PreviewView::severalPages);
    preview.setPagesAcross(2);
    preview.setPagesDown(1);
    EXPECT_EQ(keys({Qt::Key_PageDown}), 5) << "the row of pages below that of 3 and 4";
    EXPECT_EQ(keys({Qt::Key_PageUp, Qt::Key_PageUp}), 1);
}

struct Thumbnails : PreviewWidgetTest {
    Thumbnails()
    {
        strip.resize(140, 400);
        strip.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&strip));
    }
    /// Where a page's picture begins.
    int topOf(int page) const
    {
        const int width = strip.viewport()->width() - 16;
        const int pitch = width * 16838 / 11906 + strip.fontMetrics().height() + 8;
        return 8 + (page - 1) * pitch - strip.verticalScrollBar()->value();
    }
    bool isFramed(int page)
    {
        const QImage image = strip.viewport()->grab().toImage();
        return image.pixelColor(20, topOf(page) - 1) == strip.palette().color(QPalette::Highlight);
    }
    PageThumbnails strip{preview};
};

TEST_F(Thumbnails, ChooseThePageAndFollowIt)
{
    EXPECT_TRUE(isFramed(1));
    QTest::mouseClick(strip.viewport(), Qt::LeftButton, {}, {40, topOf(2) + 20});
    EXPECT_EQ(preview.currentPage(), 2);
    EXPECT_TRUE(isFramed(2));
    EXPECT_FALSE(isFramed(1));
    for (const auto& [key, page] : {std::pair(Qt::Key_Down, 3), {Qt::Key_Up, 2}, {Qt::Key_End, 10}}) {
        QTest::keyClick(&strip, key);
        EXPECT_EQ(preview.currentPage(), page);
    }
    EXPECT_TRUE(isFramed(10)) << "scrolled into sight";
    QTest::keyClick(&preview, Qt::Key_Home);
    EXPECT_TRUE(isFramed(1));
    strip.resize(strip.width(), 2 * (topOf(2) - topOf(1)) + 40);
    QTest::keyClick(&strip, Qt::Key_PageDown);
    EXPECT_EQ(preview.currentPage(), 3) << "by two, as many as fit";
    setPages(3);
    preview.refresh();
    QTest::mouseClick(strip.viewport(), Qt::LeftButton, {}, {40, topOf(3) + 20});
    EXPECT_EQ(preview.currentPage(), 3);
    setPages(1);
    preview.refresh();
    setPages(2);
    preview.refresh();
    strip.resize(strip.width(), 900);
    QTest::mouseClick(strip.viewport(), Qt::LeftButton, {}, {40, topOf(3) + 20});
    EXPECT_EQ(preview.currentPage(), 1) << "below the last page";
}

TEST_F(Thumbnails, ShowThePagesAsTheyAreNow)
{
    const auto dark = [&] {
        QTest::qWait(50); // they are drawn when there is time
        const QImage image = strip.viewport()->grab().toImage();
        int count = 0;
        for (int y = topOf(1); y < topOf(1) + 100; ++y)
            for (int x = 8; x < image.width() - 8; ++x)
                count += image.pixelColor(x, y).lightness() < 100;
        return count;
    };
    EXPECT_LT(dark(), 20) << "two characters";
    sheet.restyle({1, 1, 5, 1}, [](CellStyle& style) { style.background = 0x000000; });
    preview.refresh();
    EXPECT_GT(dark(), 60);
}

/// On a finer screen a page has as many more dots as the screen.
TEST_F(PreviewWidgetTest, PicturesHaveTheDotsOfTheScreen)
{
    sheet.restyle({1, 1, 1, 1}, [](CellStyle& style) { style.background = 0; });
    const QSize size(300, 424);
    const QImage one = preview.pages().picture(1, size, 1).toImage();
    const QPixmap two = preview.pages().picture(1, size, 2);
    EXPECT_EQ(two.deviceIndependentSize().toSize(), size);
    ASSERT_EQ(two.size(), size * 2);
    int dark = 0, other = 0;
    const QImage fine = two.toImage();
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            dark += qGray(one.pixel(x, y)) < 50;
            other += std::abs(qGray(one.pixel(x, y)) - qGray(fine.pixel(2 * x, 2 * y))) > 150;
        }
    EXPECT_GT(dark, 50);
    EXPECT_LT(other, dark / 4);
}

TEST_F(PreviewWidgetTest, ASheetThatIsGoneIsTold)
{
    demand(workbook.addSheet("利润表"));
    preview.attach(workbook, 2);
    EXPECT_EQ(preview.problem().toStdString(), "");
    demand(workbook.removeSheet(2));
    shown();
    EXPECT_EQ(preview.problem().toStdString(), "工作表已不存在。");
}

TEST_F(PreviewWidgetTest, ChangesOfTheWorkbookShow)
{
    const QImage before = shown();
    sheet.setText({1, 1}, "资产负债表");
    EXPECT_NE(shown(), before);
    sheet.changeSettings([](SheetSettings& settings) { settings.print.landscape = true; });
    EXPECT_GT(pageWidth(), 550);
    sheet.changeSettings([](SheetSettings& settings) { settings.print.marginLeft = 20'000; });
    shown();
    EXPECT_FALSE(preview.problem().isEmpty());
    EXPECT_EQ(preview.pageCount(), 1);
}

TEST_F(PreviewWidgetTest, TwoThousandPagesOpenAtOnce)
{
    setPages(2000);
    PreviewWidget another;
    another.resize(800, 600);
    QElapsedTimer timer;
    timer.start();
    another.attach(workbook, 1);
    another.grab();
    EXPECT_EQ(another.pageCount(), 2000);
    another.setCurrentPage(1999);
    another.grab();
    EXPECT_LT(timer.elapsed(), 200);
}

} // namespace
} // namespace spreadsheet
