#include "windows/printing/pagesetup.h"

#include "spreadsheet/print/PreviewWidget.h"
#include "tests/windows/printing/PrintingTest.h"
#include "windows/printing/GetZoom.h"
#include "windows/printing/MarginField.h"
#include "windows/printing/zoom_entries.h"

#include <QClipboard>
#include <QComboBox>
#include <QRadioButton>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

struct PageSetup : test::PrintingTest {
    /// What the fields and buttons show: "left right top bottom 纵向".
    static std::string shown(pagesetup& window)
    {
        std::string all;
        for (const char* name : {"pagemargin_0", "pagemargin_1", "pagemargin_2", "pagemargin_3"})
            all += control<MarginField>(window, name).text().toStdString() + ' ';
        return all + (control<QRadioButton>(window, "porientation_0").isChecked() ? "纵向" : "横向");
    }
    static void type(pagesetup& window, const char* field, const char* keys)
    {
        auto& edit = control<MarginField>(window, field);
        edit.setCursorPosition(0);
        QTest::keyClicks(&edit, keys);
    }
};

TEST_F(PageSetup, OpensOnTheStoredRow)
{
    const struct {
        const char *set, *shown;
    } cases[] = {
        {"fTop=null,fBottom=null,fLeft=null,fRight=null,fDirection=null", "0.60 0.60 0.60 0.60 横向"},
        {"fTop=1,fBottom=0.5,fLeft=0.75,fRight=0.8,fDirection=1", "0.75 0.80 1.00 0.50 纵向"},
        {"fDirection=0", "0.75 0.80 1.00 0.50 横向"},
        {"fDirection=2", "0.75 0.80 1.00 0.50 横向"},
    };
    for (const auto& [set, expected] : cases) {
        ledger.run(std::string("update tblCWSelfReport set ") + set);
        pagesetup window(grid);
        EXPECT_EQ(shown(window), expected) << set;
    }
    EXPECT_EQ(ledger.boxes.said.size(), 0U);
}

TEST_F(PageSetup, AMarginThatDoesNotFitIsToldAndTheFieldsAfterItStay)
{
    ledger.run("update tblCWSelfReport set fLeft=0.5,fRight=12,fTop=1,fBottom=1,fDirection=0");
    pagesetup window(grid);
    EXPECT_EQ(shown(window), "0.50 _.__ _.__ _.__ 纵向");
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
    EXPECT_EQ(ledger.boxes.said[0].title, gTitle);
    EXPECT_NE(ledger.boxes.said[0].text.find("12"), std::string::npos);
    EXPECT_FALSE(gCnn);
}

TEST_F(PageSetup, EmptyMarginsStopOkAndOpenPlacesBecomeZero)
{
    demand(grid.book.addSheet("附表"));
    ledger.run("update tblCWSelfReport set fTop=1,fBottom=1,fLeft=1,fRight=1");
    pagesetup window(grid);
    show(window);
    const spreadsheet::PrintSettings before = grid.print();
    auto& right = control<MarginField>(window, "pagemargin_1");
    right.selectAll();
    QTest::keyClick(&right, Qt::Key_Delete);
    control<MarginField>(window, "pagemargin_3").setText("");
    click(window, "cmdXPOK");
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::exclamation, gTitle, "请输入数定类型!"}}));
    EXPECT_TRUE(right.hasFocus()) << "the first that is empty";
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(grid.print(), before);
    EXPECT_EQ(stored().number(0, "fRight"), 1);

    type(window, "pagemargin_1", ".5");
    type(window, "pagemargin_3", "2");
    type(window, "pagemargin_0", "060");
    click(window, "cmdXPOK");
    EXPECT_FALSE(window.isVisible());
    for (const int sheet : {1, 2}) {
        EXPECT_EQ(grid.print(sheet).marginLeft, 864) << sheet;
        EXPECT_EQ(grid.print(sheet).marginRight, 720);
        EXPECT_EQ(grid.print(sheet).marginTop, 1440);
        EXPECT_EQ(grid.print(sheet).marginBottom, 2880);
        EXPECT_TRUE(grid.print(sheet).landscape);
    }
    EXPECT_EQ(stored().text(0, "fLeft"), "0.6");
    EXPECT_EQ(stored().number(0, "fRight"), 0.5);
    EXPECT_EQ(stored().number(0, "fBottom"), 2);
    EXPECT_EQ(stored().integer(0, "fDirection"), 0);
}

TEST_F(PageSetup, MarginsMustLeaveRoomForCells)
{
    ledger.run("update tblCWSelfReport set fTop=1,fBottom=1,fLeft=1,fRight=1,fDirection=1");
    pagesetup window(grid);
    show(window);
    const spreadsheet::PrintSettings before = grid.print();
    const struct {
        const char *left, *right; // of a sheet that is 8.27 inches wide
        bool fits;
    } cases[] = {{"420", "420", false}, {"999", "000", false}, {"380", "390", true}};
    for (const auto& [left, right, fits] : cases) {
        ledger.boxes.said.clear();
        type(window, "pagemargin_0", left);
        type(window, "pagemargin_1", right);
        click(window, "cmdXPOK");
        EXPECT_EQ(window.isVisible(), !fits) << left;
        EXPECT_EQ(ledger.boxes.said.size(), fits ? 0U : 1U) << left;
        EXPECT_EQ(grid.print() == before, !fits) << left;
        EXPECT_EQ(stored().number(0, "fLeft"), fits ? 3.8 : 1) << left;
    }
}

TEST_F(PageSetup, FieldsRefuseWhatDoesNotFit)
{
    pagesetup window(grid);
    show(window);
    auto& field = control<MarginField>(window, "pagemargin_0");
    const auto after = [&](const char* keys) {
        field.setText("_.__");
        type(window, "pagemargin_0", keys);
        return field.text().toStdString();
    };
    EXPECT_EQ(after("125"), "1.25");
    EXPECT_EQ(after("10.5"), "_.__") << "not 1.05";
    EXPECT_EQ(after("x-1e"), "1.__");
    QInputMethodEvent committed;
    committed.setCommitString("２．５");
    field.setText("_.__");
    field.setCursorPosition(0);
    QApplication::sendEvent(&field, &committed);
    EXPECT_EQ(field.text(), "2.5_") << "full-width digits of an input method";
    QApplication::clipboard()->setText("0.75");
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field.text(), "0.75");
    QApplication::clipboard()->setText("12");
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(field.text(), "0.75");
    QTest::keyClick(&field, Qt::Key_Backspace);
    EXPECT_EQ(field.text(), "0.7_");
    field.paste(); // as a middle button does, and other keys of the system
    EXPECT_EQ(field.text(), "0.7_");
    field.setCursorPosition(2);
    field.cursorForward(true, 2);
    field.cut();
    EXPECT_EQ(field.text(), "0.7_") << "a rest that is no number would be taken for 0";
}

TEST_F(PageSetup, AReportThatWasNeverSavedTouchesNoRow)
{
    gEditFlag = 0; // gReportId still names the last one
    pagesetup window(grid);
    EXPECT_EQ(shown(window), "_.__ _.__ _.__ _.__ 纵向");
    for (const char* field : {"pagemargin_0", "pagemargin_1", "pagemargin_2", "pagemargin_3"})
        type(window, field, "1");
    click(window, "cmdXPOK");
    EXPECT_EQ(grid.print().marginTop, 1440);
    EXPECT_TRUE(stored().isNull(0, "fTop"));
    EXPECT_NE(grid.status, "");
}

TEST_F(PageSetup, AFailedSavingIsToldAndClosesAllTheSame)
{
    ledger.run(
        "create trigger refuse before update on tblCWSelfReport begin select raise(abort,'满了'); end");
    pagesetup window(grid);
    show(window);
    click(window, "cmdXPOK");
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
    EXPECT_NE(ledger.boxes.said[0].text.find("满了"), std::string::npos);
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(gCnn);
    EXPECT_EQ(grid.print().marginTop, 864);
}

TEST_F(PageSetup, UndoSkipsAnOkThatChangedNothing)
{
    grid.book.setUndoEnabled(true);
    const spreadsheet::PrintSettings before = grid.print();
    ledger.run("update tblCWSelfReport set fLeft=2");
    for (int time = 0; time < 2; ++time) {
        pagesetup window(grid);
        show(window);
        click(window, "cmdXPOK");
    }
    EXPECT_EQ(grid.print().marginLeft, 2 * spreadsheet::twipsPerInch);
    grid.book.undo();
    EXPECT_EQ(grid.print(), before);
}

TEST_F(PageSetup, EveryWayOfClosingKeepsTheZoomEntry)
{
    const auto closings = std::to_array<std::function<void(pagesetup&)>>(
        {[](pagesetup& window) { click(window, "cmdXPClose"); },
         [](pagesetup& window) { QTest::keyClick(&window, Qt::Key_Escape); },
         [](pagesetup& window) { window.close(); }, [](pagesetup& window) { click(window, "cmdXPOK"); }});
    int entry = 3;
    for (const auto& closeIt : closings) {
        pagesetup window(grid);
        show(window);
        auto& list = control<QComboBox>(window, "Combo1");
        if (entry == 3) {
            EXPECT_EQ(list.currentText(), "100%") << "none was chosen before";
            EXPECT_EQ(list.count(), 14);
        } else {
            EXPECT_EQ(list.currentIndex(), entry - 1) << "the one chosen last";
        }
        list.setCurrentIndex(entry);
        closeIt(window);
        EXPECT_EQ(gPreviewZoomIndex, entry++);
        EXPECT_EQ(frmPreview::exists(), entry == 7) << "only OK makes the preview";
    }
    EXPECT_EQ(frmPreview::shared(grid).fpsp1().zoomPercentage(), 10);
    EXPECT_FALSE(frmPreview::shared(grid).isVisible());
}

TEST_F(PageSetup, ZoomEntriesGiveTheirSettings)
{
    GetZoom(grid, -1);
    GetZoom(grid, 14);
    EXPECT_FALSE(frmPreview::exists());
    using enum spreadsheet::PreviewView;
    const struct {
        std::int16_t index;
        spreadsheet::PreviewView view;
        int percentage, across, down; // settings that an entry has not keep what they were
    } cases[] = {{0, percentage, 200, 1, 1},   {6, percentage, 10, 1, 1},    {13, severalPages, 10, 3, 2},
                 {7, pageWidth, 10, 3, 2},     {8, pageHeight, 10, 3, 2},    {9, wholePage, 10, 3, 2},
                 {10, severalPages, 10, 2, 1}, {12, severalPages, 10, 2, 2}, {2, percentage, 100, 2, 2}};
    for (const auto& [index, view, percent, across, down] : cases) {
        GetZoom(grid, index);
        const spreadsheet::PreviewWidget& pages = frmPreview::shared(grid).fpsp1();
        EXPECT_EQ(pages.view(), view) << index;
        EXPECT_EQ(pages.zoomPercentage(), percent) << index;
        EXPECT_EQ(pages.pagesAcross(), across) << index;
        EXPECT_EQ(pages.pagesDown(), down) << index;
    }
}

} // namespace
} // namespace selfreport
