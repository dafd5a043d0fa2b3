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
    EXPECT_EQ(preview.verticalScrollBar()->maximum(), 0);

    preview.setView(PreviewView::pageWidth);
    EXPECT_GT(pageWidth(), 540);
    EXPECT_GT(preview.verticalScrollBar()->maximum(), 0) << "higher than the window";

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
    EXPECT_EQ(preview.verticalScrollBar()->maximum(), 0);
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

TEST_F(PreviewWidgetTest, KeysAndWheelScrollAndThenTurnThePage)
{
    QTest::keyClick(&preview, Qt::Key_PageDown);
    EXPECT_EQ(preview.currentPage(), 2);
    wheel(-60);
    EXPECT_EQ(preview.currentPage(), 2) << "half a notch";
    wheel(-60);
    EXPECT_EQ(preview.currentPage(), 3);
    QTest::keyClick(&preview, Qt::Key_End);
    EXPECT_EQ(preview.currentPage(), 10);
    QTest::keyClick(&preview, Qt::Key_Home);
    EXPECT_EQ(preview.currentPage(), 1);

    preview.setView(PreviewView::pageWidth);
    QTest::keyClick(&preview, Qt::Key_PageDown);
    EXPECT_EQ(preview.currentPage(), 1);
    EXPECT_EQ(preview.verticalScrollBar()->value(), preview.verticalScrollBar()->maximum())
        << "its lower end";
    QTest::keyClick(&preview, Qt::Key_PageDown);
    EXPECT_EQ(preview.currentPage(), 2);
    EXPECT_EQ(preview.verticalScrollBar()->value(), 0);
    wheel(120);
    EXPECT_EQ(preview.currentPage(), 1);
    EXPECT_EQ(preview.verticalScrollBar()->value(), preview.verticalScrollBar()->maximum())
        << "back to its end";
    wheel(120, Qt::ControlModifier);
    EXPECT_EQ(preview.view(), PreviewView::percentage);
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
