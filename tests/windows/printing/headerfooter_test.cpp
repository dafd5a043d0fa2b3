#include "windows/printing/headerfooter.h"

#include "spreadsheet/view/SheetView.h"
#include "spreadsheet/view/SpreadsheetControl.h"
#include "tests/windows/printing/PrintingTest.h"

#include <QClipboard>
#include <QMenu>
#include <QRadioButton>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;
using spreadsheet::SpreadsheetControl;

const std::string plain = R"(/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0)";

struct HeaderFooter : test::PrintingTest {
    HeaderFooter()
    {
        gHeaderText = plain + "/c利润表/n";
        gFooterText = plain + "/r/p/n";
    }
    static SpreadsheetControl& spread(headerfooter& window)
    {
        return control<SpreadsheetControl>(window, "fpSpread1");
    }
    static std::string text(headerfooter& window, int column, int row)
    {
        return spread(window).cells().text(column, row).toStdString();
    }
    static void type(headerfooter& window, int column, int row, const char* keys)
    {
        spread(window).cursor().setActiveCell(column, row);
        for (const char* key = keys; *key; ++key) // the first one opens an editor, which has the others
            QTest::keyClick(key == keys ? &spread(window) : QApplication::focusWidget(), *key);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }
    static void rightButton(headerfooter& window, int column, int row)
    {
        spread(window).cursor().setActiveCell(column, row);
        QMouseEvent release(QEvent::MouseButtonRelease, QPointF(5, 5), QPointF(5, 5), Qt::RightButton,
                            Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&spread(window), &release);
    }
    static QPushButton& save(headerfooter& window) { return control<QPushButton>(window, "Command3"); }
};

TEST_F(HeaderFooter, OpensOnTheHeaderAndSwitchesToTheFooter)
{
    headerfooter window(grid);
    show(window);
    EXPECT_EQ(text(window, 3, 1), "利润表");
    EXPECT_EQ(text(window, 2, 9), "...");
    EXPECT_EQ(save(window).text(), "保存页眉");
    EXPECT_FALSE(save(window).isEnabled());
    auto& header = control<QRadioButton>(window, "Option3_0");
    auto& footer = control<QRadioButton>(window, "Option3_1");
    EXPECT_TRUE(header.font().bold() && !footer.font().bold());
    footer.click();
    EXPECT_TRUE(!header.font().bold() && footer.font().bold());
    EXPECT_EQ(text(window, 3, 1), "") << "the header's cells are gone";
    EXPECT_EQ(text(window, 5, 1), "<Page Number>");
    EXPECT_EQ(spread(window).cells().sheet().style({5, 1}).foreground, 0x808080U);
    EXPECT_EQ(save(window).text(), "保存页脚");
}

TEST_F(HeaderFooter, OkStoresTheModeShownAsBuilt)
{
    headerfooter window(grid);
    show(window);
    type(window, 1, 3, "2009/12/31 it's");
    EXPECT_TRUE(save(window).isEnabled()) << "an editor was opened";
    const std::string codes = plain + "/c利润表/n/n" + plain + "/l2009/12/31 it's/n";
    EXPECT_EQ(window.GetCellData(1, 3), plain + "/l2009/12/31 it's");
    click(window, "cmdXPOK");
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(stored().text(0, "fHeader"), codes);
    EXPECT_EQ(gHeaderText, codes);
    EXPECT_EQ(grid.print().header, codes);
    EXPECT_TRUE(stored().isNull(0, "fFooter"));
    EXPECT_FALSE(gCnn);
}

TEST_F(HeaderFooter, UnsavedChangesGoWithTheSwitchAndWithCancel)
{
    headerfooter window(grid);
    show(window);
    type(window, 3, 1, "x");
    control<QRadioButton>(window, "Option3_1").click();
    control<QRadioButton>(window, "Option3_0").click();
    EXPECT_EQ(text(window, 3, 1), "利润表");
    EXPECT_TRUE(save(window).isEnabled()) << "the switch leaves it";
    type(window, 3, 1, "y");
    click(window, "Command3");
    EXPECT_FALSE(save(window).isEnabled());
    EXPECT_EQ(gHeaderText, plain + "/cy/n");
    type(window, 3, 1, "z");
    click(window, "cmdXPClose");
    EXPECT_EQ(stored().text(0, "fHeader"), plain + "/cy/n") << "what was saved stays";
}

TEST_F(HeaderFooter, TheRightButtonPutsThePageNumberInAndOut)
{
    headerfooter window(grid);
    show(window);
    rightButton(window, 2, 1);
    EXPECT_EQ(text(window, 2, 1), "...") << "a button column";
    rightButton(window, 1, 1);
    EXPECT_EQ(text(window, 1, 1), "<Page Number>");
    EXPECT_EQ(spread(window).cells().sheet().style({1, 1}).type, spreadsheet::CellType::staticText);
    EXPECT_FALSE(save(window).isEnabled()) << "no editor was opened";
    rightButton(window, 1, 1);
    EXPECT_EQ(text(window, 1, 1), "");
    EXPECT_EQ(spread(window).cells().sheet().style({1, 1}).type, spreadsheet::CellType::edit);
    EXPECT_EQ(spread(window).cells().sheet().style({1, 1}).foreground, 0U);
    EXPECT_TRUE(ledger.boxes.said.empty());

    rightButton(window, 3, 1);
    EXPECT_EQ(text(window, 3, 1), "利润表") << "answered with No";
    EXPECT_EQ(ledger.boxes.said,
              (std::vector<Said>{{Icon::question, "替换现有文本", "插入页数将会替换当前的文本,确定吗?"}}));
    ledger.boxes.answer = true;
    rightButton(window, 3, 1);
    EXPECT_EQ(window.GetCellData(3, 1), plain + "/c/p");
}

TEST_F(HeaderFooter, FieldsAreInsertedAndPassAsTheyAre)
{
    const std::string codes =
        plain + "/l&报表名 &表名" + plain + "/c第&页数页 共&总页数页" + plain + "/r&日期&时间&EndDate/n";
    gHeaderText = codes;
    headerfooter window(grid);
    show(window);
    EXPECT_EQ(text(window, 3, 1), "第&页数页 共&总页数页");
    click(window, "cmdXPOK");
    EXPECT_EQ(gHeaderText, codes) << "byte for byte";

    headerfooter again(grid);
    show(again);
    const QList<QAction*> fields = control<QPushButton>(again, "cmdField").menu()->actions();
    EXPECT_EQ(fields.size(), 6);
    rightButton(again, 3, 2);
    fields.at(1)->trigger();
    EXPECT_EQ(text(again, 3, 2), "&页数&总页数") << "beside the page number";
    EXPECT_TRUE(save(again).isEnabled());
    spread(again).cursor().setActiveCell(1, 3);
    fields.at(2)->trigger();
    EXPECT_EQ(text(again, 1, 3), "&日期");
    spread(again).cursor().setActiveCell(2, 3);
    fields.at(2)->trigger();
    EXPECT_EQ(text(again, 2, 3), "...") << "buttons take none";
    click(again, "cmdXPOK");
    EXPECT_EQ(gHeaderText, codes + plain + "/c&页数&总页数/n" + plain + "/l&日期/n");
}

TEST_F(HeaderFooter, TheFontButtonSetsTheCellToItsLeft)
{
    ScriptedFontDialog fonts;
    const FontDialogInUse inUse(fonts);
    fonts.answers = {FontChoice{"黑体", 10.5, true, true, true, true, 0xFF0000}};
    headerfooter window(grid);
    show(window);
    Q_EMIT spread(window).buttonClicked(4, 1);
    EXPECT_EQ(fonts.asked[0], (FontChoice{"宋体", 9, false, false, false, false, 0}));
    EXPECT_EQ(window.GetCellData(3, 1), R"(/fn"黑体"/fz"10.5"/fb1/fi1/fu1/fk1/c利润表)");
    EXPECT_EQ(spread(window).cells().sheet().style({3, 1}).foreground, 0U) << "the colour is not applied";
    Q_EMIT spread(window).buttonClicked(4, 1);
    EXPECT_EQ(window.GetCellData(3, 1), R"(/fn"黑体"/fz"10.5"/fb1/fi1/fu1/fk1/c利润表)") << "cancelled";
}

TEST_F(HeaderFooter, LinesAreAsHighAsTheirFonts)
{
    gHeaderText = R"(/fn"宋体"/fz"14"/cA/n/fn"宋体"/fz"28"/cB/n)";
    headerfooter window(grid);
    show(window);
    const auto height = [&](int row) { return spread(window).cellRect({3, row}).height(); };
    EXPECT_GT(height(2), height(1));
    for (const auto& [row, points] : {std::pair(1, 14), {2, 28}})
        EXPECT_GE(spread(window).cells().sheet().settings().rows.size(row), points * 20) << points;
    control<QRadioButton>(window, "Option3_1").click();
    EXPECT_EQ(height(2), height(3)) << "the footer's own";
}

TEST_F(HeaderFooter, APageNumberPaintsItsLineAndNeighboursOnly)
{
    headerfooter window(grid);
    show(window);
    spread(window).grab();
    const std::size_t columns = spread(window).view().geometry().columnTracks().size();
    const std::uint64_t before = spread(window).view().paintedCells();
    rightButton(window, 3, 5);
    spread(window).grab();
    const std::uint64_t painted = spread(window).view().paintedCells() - before;
    EXPECT_GE(painted, columns);
    EXPECT_LE(painted, 5 * columns) << "borders reach two lines far";
}

/// Whatever is selected, and whatever a window full of texts would do with the key elsewhere.
TEST_F(HeaderFooter, CommandKeysDestroyNothing)
{
    headerfooter window(grid);
    show(window);
    QApplication::clipboard()->setText("弄坏");
    const Qt::KeyboardModifiers none = Qt::NoModifier, ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier,
                                alt = Qt::AltModifier;
    const std::pair<Qt::Key, Qt::KeyboardModifiers> keys[]{
        {Qt::Key_F11, shift},   {Qt::Key_Minus, ctrl},     {Qt::Key_Plus, ctrl},
        {Qt::Key_Delete, none}, {Qt::Key_Delete, shift},   {Qt::Key_X, ctrl},
        {Qt::Key_V, ctrl},      {Qt::Key_V, ctrl | shift}, {Qt::Key_Insert, shift},
        {Qt::Key_Z, ctrl},      {Qt::Key_Y, ctrl},         {Qt::Key_Z, ctrl | shift},
        {Qt::Key_D, ctrl},      {Qt::Key_R, ctrl},         {Qt::Key_9, ctrl},
        {Qt::Key_0, ctrl},      {Qt::Key_Equal, alt},      {Qt::Key_ParenLeft, ctrl | shift}};
    const auto state = [&] {
        spreadsheet::Workbook& book = spread(window).cells().workbook();
        return std::to_string(book.sheetCount()) + " " + text(window, 3, 1) + " " + text(window, 2, 9) + " " +
               std::to_string(book.revision());
    };
    const std::string before = state();
    for (const spreadsheet::CellRange& selected :
         {spreadsheet::CellRange{3, 1, 3, 1}, {1, 1, 6, 2}, {1, 1, 6, 9}, {3, 1, 3, 9}})
        for (const auto& [key, modifiers] : keys) {
            spread(window).cursor().select(selected);
            spread(window).setFocus();
            QTest::keyClick(&spread(window), key, modifiers);
            EXPECT_EQ(state(), before) << QKeySequence(key | modifiers).toString().toStdString();
            EXPECT_FALSE(spread(window).entry().isOpen());
        }
    spread(window).cursor().select({1, 2, 6, 3});
    QTest::keyClick(&spread(window), 'x');
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(text(window, 1, 2) + text(window, 2, 3) + text(window, 3, 3), "x...") << "its own cell only";
    click(window, "cmdXPOK");
    EXPECT_EQ(gHeaderText, plain + "/c利润表/n" + plain + "/lx/n");
}

TEST_F(HeaderFooter, ClearEmptiesTheGridsHeaderOnly)
{
    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.header = "/c旧/n"; });
    headerfooter window(grid);
    show(window);
    click(window, "Command4");
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::none, "清除文本", "确定要清除吗?"}}));
    EXPECT_EQ(grid.print().header, "/c旧/n");
    ledger.boxes.answer = true;
    click(window, "Command4");
    EXPECT_EQ(text(window, 3, 1), "");
    EXPECT_EQ(grid.print().header, "");
    EXPECT_EQ(gHeaderText, plain + "/c利润表/n");
    click(window, "cmdXPOK");
    EXPECT_EQ(gHeaderText, "");
    EXPECT_EQ(stored().text(0, "fHeader"), "");
    EXPECT_FALSE(stored().isNull(0, "fHeader"));
}

TEST_F(HeaderFooter, WhatCannotBeReadIsToldAndTheRestStays)
{
    gHeaderText = plain + "/l甲/n/cXY";
    headerfooter window(grid);
    EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::none, "GetHeaderDetail", "Error parsing TEXT"}}));
    EXPECT_EQ(text(window, 1, 1), "甲");
    EXPECT_EQ(text(window, 3, 2), "");
}

TEST_F(HeaderFooter, FailuresOfTheDatabase)
{
    ledger.run(
        "create trigger refuse before update on tblCWSelfReport begin select raise(abort,'满了'); end");
    headerfooter window(grid);
    show(window);
    type(window, 3, 1, "new");
    click(window, "Command3");
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::critical);
    EXPECT_EQ(grid.print().header, plain + "/cnew/n") << "set before the row refused it";
    EXPECT_EQ(gHeaderText, plain + "/cnew/n");

    gConnString = "Provider=SQLite;Data Source=/nowhere/none.db";
    type(window, 3, 1, "again");
    click(window, "Command3");
    EXPECT_EQ(gHeaderText, plain + "/cnew/n") << "nothing is done without a connection";
    EXPECT_EQ(grid.print().header, plain + "/cnew/n");
}

TEST_F(HeaderFooter, AReportThatWasNeverSavedShowsItsGridsOwnHeader)
{
    gEditFlag = 0;
    headerfooter window(grid);
    show(window);
    EXPECT_EQ(text(window, 3, 1), "") << "not the last report's";
    type(window, 1, 1, "new");
    click(window, "cmdXPOK");
    EXPECT_EQ(grid.print().header, plain + "/lnew/n");
    EXPECT_TRUE(stored().isNull(0, "fHeader"));
    EXPECT_NE(grid.status, "");
    EXPECT_EQ(text(*std::make_unique<headerfooter>(grid), 1, 1), "new");
}

} // namespace
} // namespace selfreport
