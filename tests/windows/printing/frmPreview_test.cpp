#include "windows/printing/frmPreview.h"

#include "spreadsheet/print/PreviewWidget.h"
#include "tests/windows/printing/PrintingTest.h"
#include "windows/printing/GetZoom.h"
#include "windows/printing/PrintDlg.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

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
    QTest::keyClick(&window.fpsp1(), Qt::Key_End);
    EXPECT_EQ(state(window), "第 5 页,共 5 页 <") << "by a key";
    QTest::keyClick(&window.fpsp1(), Qt::Key_Home);
    EXPECT_EQ(state(window), "第 1 页,共 5 页 >") << "turned in the pages themselves";
    window.fpsp1().setCurrentPage(2);
    click(window, "cmdPrevious");
    EXPECT_EQ(state(window), "第 1 页,共 5 页 >");
}

TEST_F(Preview, TextsAreFoundAndCopied)
{
    grid.setPages(5);
    grid.book.sheet(1).setText({2, 4}, "Net 合计");
    grid.book.sheet(1).addSpan({2, 4, 3, 4});
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    QTest::keyClick(&window.fpsp1(), Qt::Key_F, Qt::ControlModifier);
    auto& text = control<QLineEdit>(window, "txtFind");
    EXPECT_TRUE(text.hasFocus());
    auto& hits = control<QLabel>(window, "lblHits");
    const struct {
        const char *text, *page, *hits;
        Qt::KeyboardModifiers modifiers = {};
    } cases[] = {{"net 合", "第 4 页", "1/1 处"}, {"net 合", "第 4 页", "1/1 处"},
                 {"行", "第 4 页", "4/5 处"},     {"行", "第 5 页", "5/5 处"},
                 {"行", "第 1 页", "1/5 处"},     {"行", "第 5 页", "5/5 处", Qt::ShiftModifier},
                 {"行", "第 1 页", "1/5 处"}};
    for (const auto& c : cases) {
        text.setText(c.text);
        QTest::keyClick(&text, Qt::Key_F3, c.modifiers);
        EXPECT_TRUE(state(window).starts_with(c.page)) << c.text << ' ' << state(window);
        EXPECT_TRUE(QTest::qWaitFor([&] { return hits.text() == c.hits; })) << hits.text().toStdString();
    }
    text.setText("没有");
    QTest::keyClick(&text, Qt::Key_Return);
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].text, "没有找到“没有”。");
    EXPECT_TRUE(state(window).starts_with("第 1 页"));
    window.fpsp1().setCurrentPage(4);
    window.fpsp1().setFocus();
    QTest::keyClick(&window.fpsp1(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "第4行\tNet 合计\n");
}

/// It is on a button after a click, and in the list of views after a choice.
TEST_F(Preview, ItsKeysWorkWhereverTheFocusIs)
{
    grid.setPages(5);
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    const struct {
        Qt::Key key;
        const char* page;
        Qt::KeyboardModifiers modifiers = {};
    } keys[] = {{Qt::Key_End, "第 5 页"},      {Qt::Key_Home, "第 1 页"},
                {Qt::Key_PageDown, "第 2 页"}, {Qt::Key_PageDown, "第 3 页", Qt::ControlModifier},
                {Qt::Key_PageUp, "第 2 页"},   {Qt::Key_PageUp, "第 1 页", Qt::ControlModifier}};
    for (const char* name : {"cmdNext", "cmdThumbnails", "cmdFind"}) {
        auto& button = control<QPushButton>(window, name);
        for (const auto& [key, page, modifiers] : keys) {
            button.setFocus();
            QTest::keyClick(&button, key, modifiers);
            EXPECT_TRUE(state(window).starts_with(page)) << name << ' ' << state(window);
        }
    }
    auto& text = control<QLineEdit>(window, "txtFind");
    for (const char* name : {"cmdNext", "cboZoom", "thumbnails"}) {
        auto& widget = control<QWidget>(window, name);
        widget.setFocus();
        QTest::keyClick(&widget, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), "第1行\n") << name;
        QTest::keyClick(&widget, Qt::Key_F, Qt::ControlModifier);
        EXPECT_TRUE(text.hasFocus()) << name;
    }
    text.setText("合计");
    text.selectAll();
    QTest::keyClick(&text, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "合计") << "a selected text before the page's";
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

TEST_F(Preview, TheListOfViewsFollowsWhateverChangesTheView)
{
    grid.setPages(9);
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    auto& views = control<QComboBox>(window, "cboZoom");
    EXPECT_EQ(views.currentText(), "整页");
    views.setFocus();
    QTest::keyClick(&views, Qt::Key_Down); // the entry after that
    EXPECT_EQ(window.fpsp1().pageStep(), 2);
    EXPECT_EQ(views.currentText(), "两页");
    window.fpsp1().setCurrentPage(5);
    click(window, "cmdHome");
    EXPECT_EQ(views.currentText(), "100%");
    window.fpsp1().setZoomPercentage(90);
    EXPECT_EQ(views.currentIndex(), -1);
    EXPECT_EQ(views.placeholderText(), "90%");
    whenModal("pagesetup", [](QWidget& setup) {
        EXPECT_EQ(control<QComboBox>(setup, "Combo1").currentText(), "Two Pages") << "chosen in the preview";
        control<QPushButton>(setup, "cmdXPOK").click();
    });
    click(window, "cmdSupport");
    EXPECT_EQ(views.currentText(), "两页");
    EXPECT_TRUE(state(window).starts_with("第 5 页")) << state(window);
}

TEST_F(Preview, ThumbnailsLeaveTheWindowToThePages)
{
    grid.setPages(5);
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    auto& thumbnails = control<QWidget>(window, "thumbnails");
    EXPECT_TRUE(thumbnails.isVisible());
    const int before = window.fpsp1().width();
    QTest::keyClick(&thumbnails, Qt::Key_End);
    EXPECT_EQ(state(window), "第 5 页,共 5 页 <");
    click(window, "cmdThumbnails");
    EXPECT_FALSE(thumbnails.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return window.fpsp1().width() > before + 50; }));
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
    frmPreview::refresh();
    EXPECT_EQ(control<QLabel>(window, "lblPage").text(), "第 1 页,共 1 页");
}

TEST_F(Preview, LabelAndButtonsFollowThePageSetup)
{
    for (int row = 1; row <= 30; ++row)
        grid.book.sheet(1).setText({1, row}, "行");
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    EXPECT_EQ(state(window), "第 1 页,共 1 页");
    whenModal("pagesetup", [](QWidget& setup) {
        for (const char* margin : {"pagemargin_2", "pagemargin_3"}) {
            auto& field = control<QLineEdit>(setup, margin);
            field.setFocus();
            field.selectAll();
            QTest::keyClicks(&field, "3.50");
        }
        control<QPushButton>(setup, "cmdXPOK").click();
    });
    click(window, "cmdSupport");
    EXPECT_TRUE(state(window).ends_with(" >")) << state(window);
    EXPECT_FALSE(state(window).ends_with("共 1 页 >")) << state(window);
    EXPECT_EQ(window.fpsp1().view(), spreadsheet::PreviewView::wholePage) << "no zoom was chosen";
}

/// What the dialog would print is what stands behind it; cancelled, it is as it was.
TEST_F(Preview, ShowsWhatTheOpenPrintDialogWouldPrint)
{
    grid.setPages(5);
    grid.block = {1, 2, 1, 2};
    grid.others = {{1, 4, 1, 5}};
    frmPreview& window = frmPreview::shared(grid);
    show(window);
    window.fpsp1().setCurrentPage(3);
    const spreadsheet::PrintSettings before = grid.print();
    {
        PrintDlg dialog(grid);
        show(dialog);
        EXPECT_EQ(state(window), "第 3 页,共 5 页 < >");
        control<QRadioButton>(dialog, "Option1_1").click();
        EXPECT_EQ(state(window), "第 3 页,共 3 页 <") << "row 2, then rows 4 and 5 by their breaks";
        control<QCheckBox>(dialog, "Check1_4").click();
        control<QRadioButton>(dialog, "Option1_3").click();
        auto& first = control<QLineEdit>(dialog, "Text1_0");
        first.selectAll();
        QTest::keyClicks(&first, "2");
        EXPECT_TRUE(state(window).starts_with("第 2 页,共 ")) << state(window);
        EXPECT_FALSE(state(window).starts_with("第 2 页,共 5 页")) << "the whole sheet: " << state(window);
        EXPECT_EQ(grid.print(), before) << "the sheet is left alone";
        click(dialog, "Command3");
    }
    EXPECT_EQ(state(window), "第 3 页,共 5 页 < >");
    EXPECT_EQ(grid.print(), before);
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
