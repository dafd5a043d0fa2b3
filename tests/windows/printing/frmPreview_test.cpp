#include "windows/printing/frmPreview.h"

#include "spreadsheet/print/PreviewWidget.h"
#include "tests/windows/printing/PrintingTest.h"
#include "windows/printing/GetZoom.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>

namespace selfreport {
namespace {

struct Preview : test::PrintingTest {
    /// "page/pages", "<" and ">" for the buttons that are enabled.
    static std::string state(frmPreview& window)
    {
        return control<QLabel>(window, "lblPage").text().toStdString() +
               (control<QPushButton>(window, "cmdPrevious").isEnabled() ? " <" : "") +
               (control<QPushButton>(window, "cmdNext").isEnabled() ? " >" : "");
    }
};

TEST_F(Preview, PagesAreTurnedOneByOne)
{
    grid.setPages(5);
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    EXPECT_EQ(state(window), "第 1 页,共 5 页 >");
    const char* forward[] = {"第 2 页,共 5 页 < >", "第 3 页,共 5 页 < >", "第 4 页,共 5 页 < >",
                             "第 5 页,共 5 页 <"};
    for (const char* expected : forward) {
        click(window, "cmdNext");
        EXPECT_EQ(state(window), expected);
    }
    QTest::keyClick(&window.fpsp1(), Qt::Key_Home);
    EXPECT_EQ(state(window), "第 1 页,共 5 页 >") << "turned in the pages themselves";
    window.fpsp1().setCurrentPage(2);
    click(window, "cmdPrevious");
    EXPECT_EQ(state(window), "第 1 页,共 5 页 >");
}

TEST_F(Preview, OnePageTurnsNowhere)
{
    grid.setPages(1);
    EXPECT_EQ(state(frmPreview::shared(grid)), "第 1 页,共 1 页");
}

TEST_F(Preview, SeveralPagesAreTurnedTogetherWithinTheReport)
{
    grid.setPages(10);
    GetZoom(grid, 13);
    frmPreview& window = frmPreview::shared(grid);
    click(window, "cmdNext");
    EXPECT_EQ(state(window), "第 7 页,共 10 页 < >");
    click(window, "cmdNext");
    EXPECT_EQ(state(window), "第 10 页,共 10 页 <");
    window.fpsp1().setCurrentPage(2);
    click(window, "cmdPrevious");
    EXPECT_EQ(state(window), "第 1 页,共 10 页 >");
}

TEST_F(Preview, ZoomLeavesPageAndButtons)
{
    grid.setPages(3);
    frmPreview& window = frmPreview::shared(grid);
    window.fpsp1().setCurrentPage(2);
    const std::string before = state(window);
    click(window, "cmdHome");
    EXPECT_EQ(window.fpsp1().view(), spreadsheet::PreviewView::percentage);
    click(window, "cmdHome");
    EXPECT_EQ(window.fpsp1().view(), spreadsheet::PreviewView::wholePage);
    EXPECT_EQ(state(window), before);
}

TEST_F(Preview, PageSetupOverItChangesPagesAndZoom)
{
    grid.setPages(2);
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    whenModal("pagesetup", [](QWidget& setup) {
        control<QComboBox>(setup, "Combo1").setCurrentText("Two Pages");
        control<QPushButton>(setup, "cmdXPOK").click();
    });
    click(window, "cmdSupport");
    EXPECT_EQ(window.fpsp1().pageStep(), 2);
    EXPECT_TRUE(grid.print().landscape);
    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.rowBreaks.clear(); });
    EXPECT_EQ(control<QLabel>(window, "lblPage").text(), "第 1 页,共 2 页") << "until the page changes";
    window.UpdatePageCount();
    EXPECT_EQ(control<QLabel>(window, "lblPage").text(), "第 1 页,共 1 页");
}

TEST_F(Preview, AHiddenInstanceIsTheOneThatIsShownAndGoesWhenItIsClosed)
{
    grid.setPages(3);
    GetZoom(grid, 5);
    EXPECT_TRUE(frmPreview::exists());
    whenModal("frmPreview", [](QWidget& window) {
        EXPECT_EQ(dynamic_cast<frmPreview&>(window).fpsp1().zoomPercentage(), 25);
        click(window, "cmdExit");
    });
    frmPreview::showModally(grid);
    EXPECT_FALSE(frmPreview::exists());
    EXPECT_EQ(frmPreview::shared(grid).fpsp1().view(), spreadsheet::PreviewView::wholePage)
        << "the zoom went with it";
}

TEST_F(Preview, PrintingClosesDesignerAndPreviewFromInsideTheirLoops)
{
    grid.setPages(3);
    whenModal("frmPreview", [&](QWidget& preview) {
        whenModal("PrintDlg", [&](QWidget& dialog) {
            control<QCheckBox>(dialog, "Check1_0").click();
            click(dialog, "Command2");
            EXPECT_FALSE(dialog.isVisible());
        });
        click(preview, "cmdHelp");
        EXPECT_FALSE(preview.isVisible());
        EXPECT_TRUE(frmPreview::exists()) << "its loop is still running";
    });
    frmPreview::showModally(grid);
    EXPECT_FALSE(frmPreview::exists());
    EXPECT_EQ(grid.closed, 1);
    ASSERT_EQ(service.printed.size(), 1U);
    EXPECT_EQ(service.printed[0].title, "资产负债表");
}

TEST_F(Preview, CancellingThePrintDialogComesBackToThePreview)
{
    grid.setPages(3);
    const spreadsheet::PrintSettings before = grid.print();
    whenModal("frmPreview", [&](QWidget& preview) {
        whenModal("PrintDlg", [&](QWidget& dialog) { click(dialog, "Command3"); });
        click(preview, "cmdHelp");
        EXPECT_TRUE(preview.isVisible());
        preview.close();
    });
    frmPreview::showModally(grid);
    EXPECT_EQ(grid.closed, 0);
    EXPECT_EQ(grid.print(), before);
}

} // namespace
} // namespace selfreport
