// The designer's controls as the user meets them: keys, mouse, lists, boxes.
#include "platform/list_grid/ListGrid.h"
#include "spreadsheet/workbook/UndoJournal.h"
#include "tests/windows/designer/DesignerTest.h"
#include "windows/designer/frmFind.h"

#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>

namespace selfreport {
namespace {

using spreadsheet::CellAddress;
using test::closingBalance;

class DesignerControls : public test::DesignerTest {
protected:
    QString message() { return control<QStatusBar>(*window, "statusBar").currentMessage(); }
};

TEST_F(DesignerControls, TabLeadsFromTheListsThroughTheBoxesIntoTheGrid)
{
    open();
    control<QComboBox>(*window, "list1").setFocus();
    for (const char* next : {"list2", "txtReportName", "txtFormula", "fps1"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget()->objectName(), next);
    }
    QTest::keyClick(&grid(), Qt::Key_Tab); // within the grid the cursor moves
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{2, 1}));
}

TEST_F(DesignerControls, AccessKeysOpenTheMenus)
{
    open();
    const std::pair<Qt::Key, const char*> keys[] = {{Qt::Key_F, "MenuFile"}, {Qt::Key_E, "MenuEdit"}};
    for (const auto& [key, menu] : keys) {
        QTest::keyClick(window.get(), key, Qt::AltModifier);
        auto& opened = control<QMenu>(*window, menu);
        EXPECT_TRUE(opened.isVisible()) << menu;
        opened.close();
    }
}

/// The entries of a menu and of those below it, in their order.
static QStringList entriesOf(const QMenu& menu)
{
    QStringList entries;
    for (const QAction* const entry : menu.actions()) {
        if (entry->menu())
            entries += entriesOf(*entry->menu());
        else if (!entry->isSeparator())
            entries += entry->objectName();
    }
    return entries;
}

TEST_F(DesignerControls, TheRightButtonOffersAllOfTheEditMenuWhereItIsPressed)
{
    open();
    const auto press = [this](QPoint place) {
        QTest::mouseClick(&grid(), Qt::RightButton, {}, place);
        QContextMenuEvent wanted(QContextMenuEvent::Mouse, place, grid().mapToGlobal(place));
        QApplication::sendEvent(&grid(), &wanted);
        auto* const popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!popup)
            return QStringList();
        QStringList entries = entriesOf(*popup);
        EXPECT_LE(popup->height(), 768);
        for (const QAction* const entry : popup->actions())
            EXPECT_FALSE(entry->menu() && entry->menu()->sizeHint().height() > 768);
        popup->close();
        return entries;
    };
    const auto at = [this](int column, int row) { return grid().cellRect({column, row}).center(); };
    grid().cursor().select({2, 2, 3, 3});
    const QStringList all = entriesOf(control<QMenu>(*window, "MenuEdit"));
    EXPECT_GT(all.size(), 50);
    EXPECT_EQ(press(at(3, 3)), (QStringList{"MenuCut", "MenuCopy", "MenuPaste", "MenuDrill"} + all));
    EXPECT_EQ(grid().cursor().firstRange(), (spreadsheet::CellRange{2, 2, 3, 3}))
        << "within what is selected";
    press(at(4, 5));
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{4, 5}));
    EXPECT_FALSE(grid().cursor().isBlockSelected());
    press({at(3, 1).x(), 5});
    EXPECT_EQ(grid().cursor().firstRange(), (spreadsheet::CellRange{3, 1, 3, 500})) << "a heading";
    const CellAddress before = grid().cursor().activeCell();
    typeInBox("=1+)", Qt::Key_Return);
    EXPECT_EQ(press(at(1, 9)), QStringList()) << "a text that is no formula holds the cursor";
    EXPECT_EQ(grid().cursor().activeCell(), before);
    ledger.boxes.said.clear();
}

TEST_F(DesignerControls, EntriesWithoutAnActionDoNothing)
{
    open();
    const auto revision = grid().cells().workbook().revision();
    for (const char* name : {"MenuFileNew", "MenuFileOpen", "New", "Open", "MenuHInsertCell",
                             "MenuVInsertCell", "MenuHDelCell", "MenuVDelCell"}) {
        EXPECT_TRUE(action(name).isEnabled()) << name;
        trigger(name);
    }
    EXPECT_EQ(grid().cells().workbook().revision(), revision);
    EXPECT_TRUE(ledger.boxes.said.empty());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(DesignerControls, ListsActOnTheUsersChoiceOnly)
{
    open();
    grid().cells().changeStyle({1, 1, 1, 1}, [](spreadsheet::CellStyle& style) { style.font.points = 10.5; });
    moveTo(1, 2);
    moveTo(1, 1);
    auto& sizes = control<QComboBox>(*window, "list2");
    EXPECT_EQ(sizes.currentText(), "11");
    EXPECT_EQ(grid().cells().sheet().style({1, 1}).font.points, 10.5f);
    sizes.showPopup();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); // the current entry again
    EXPECT_EQ(grid().cells().sheet().style({1, 1}).font.points, 11.f);
}

/// The list must not say that a cell has another font than it has.
TEST_F(DesignerControls, AFontThatIsNotInstalledSelectsNothing)
{
    open();
    grid().cells().changeStyle({1, 1, 1, 1}, [](spreadsheet::CellStyle& style) {
        style.font.family = spreadsheet::Text("不存在的字体");
    });
    auto& fonts = control<QComboBox>(*window, "list1");
    moveTo(1, 2);
    const QString usual = fonts.currentText();
    EXPECT_NE(usual, "");
    moveTo(1, 1);
    EXPECT_EQ(fonts.currentText(), "");
    moveTo(1, 2);
    EXPECT_EQ(fonts.currentText(), usual);
    EXPECT_EQ(grid().cells().sheet().style({1, 1}).font.family.view(), "不存在的字体");
}

TEST_F(DesignerControls, AnEqualTextAsksTheLedgerNothing)
{
    open();
    typeInBox(QString("=") + closingBalance, Qt::Key_Return);
    EXPECT_EQ(grid().cells().text(1, 1), "100.25");
    const std::size_t steps = grid().cells().workbook().journal().steps();
    const auto calls = databaseCounters().procedureCalls;
    moveTo(1, 1);
    for (const QString& same : {QString(closingBalance), QString("  ") + closingBalance + " "}) {
        typeInBox(same, Qt::Key_Return);
        moveTo(1, 2);
        moveTo(1, 1);
    }
    EXPECT_EQ(grid().cells().workbook().journal().steps(), steps);
    EXPECT_EQ(databaseCounters().procedureCalls, calls);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(DesignerControls, PointingPutsAReferenceIntoTheBox)
{
    open();
    moveTo(1, 1);
    QLineEdit& box = edit("txtFormula");
    box.setFocus();
    box.insert("=");
    QTest::mouseClick(&grid(), Qt::LeftButton, {}, grid().cellRect({3, 4}).center());
    EXPECT_EQ(box.text(), "=C4");
    box.insert("+1");
    QTest::keyClick(&box, Qt::Key_Return);
    EXPECT_EQ(formula(1, 1), "C4+1");
    EXPECT_EQ(grid().cells().text(1, 1), "1");
}

TEST_F(DesignerControls, UndoFetchesTogetherAndTellsWhatFailed)
{
    open();
    for (int row = 1; row <= 5; ++row) {
        moveTo(1, row);
        typeInBox(QString(R"(=Acct("1001","2","","2025","1","%1"))").arg(row), Qt::Key_Return);
    }
    grid().cursor().select({1, 1, 1, 5});
    trigger("MenuClear");
    auto& list = control<ListGrid>(*window, "listDiagnostics");
    EXPECT_EQ(list.rowCount(), 1); // cells that are gone have no reasons
    const auto batches = databaseCounters().batches;
    trigger("MenuUndo");
    EXPECT_EQ(databaseCounters().batches, batches + 1);
    EXPECT_EQ(grid().cells().text(1, 2), "100.25");
    EXPECT_GT(list.rowCount(), 1); // periods without balances
}

TEST_F(DesignerControls, FormulasShownKeepEveryType)
{
    using spreadsheet::CellType;
    open();
    const CellType types[] = {CellType::date, CellType::currency, CellType::number, CellType::percent,
                              CellType::edit};
    QStringList shown;
    for (int row = 1; row <= 5; ++row) {
        demand(grid().cells().sheet().setFormula({1, row}, "0.5+" + std::to_string(row)));
        grid().cells().sheet().setNumber({2, row}, row);
        grid().cells().changeStyle({1, row, 2, row},
                                   [&](spreadsheet::CellStyle& style) { style.type = types[row - 1]; });
    }
    trigger("MenuRecalculate");
    for (int row = 1; row <= 5; ++row)
        shown += grid().cells().text(1, row) + '|' + grid().cells().text(2, row);
    trigger("MenuShowFormula");
    for (int row = 1; row <= 5; ++row) {
        EXPECT_EQ(grid().cells().text(1, row), QString("0.5+%1").arg(row));
        EXPECT_EQ(grid().cells().sheet().style({1, row}).type, CellType::edit);
    }
    moveTo(1, 3);
    typeInBox("=2*3", Qt::Key_Return); // entered while formulas are shown
    EXPECT_EQ(grid().cells().text(1, 3), "2*3");
    moveTo(1, 4);
    typeInCell("=5+5");
    EXPECT_EQ(grid().cells().text(1, 4), "5+5");
    trigger("MenuUndo"); // one step
    EXPECT_EQ(formula(1, 4), "0.5+4");
    EXPECT_EQ(grid().cells().text(1, 4), "0.5+4");
    trigger("MenuShowDate");
    shown[2] = "6.00|" + shown[2].section('|', 1);
    for (int row = 1; row <= 5; ++row) {
        EXPECT_EQ(grid().cells().text(1, row) + '|' + grid().cells().text(2, row), shown[row - 1]) << row;
        EXPECT_EQ(grid().cells().sheet().style({1, row}).type, types[row - 1]) << row;
    }
}

TEST_F(DesignerControls, FindsAndReplaces)
{
    open();
    const char* texts[] = {"资产", "负债", "资产合计"};
    for (int row = 1; row <= 3; ++row)
        grid().cells().sheet().setText({1, row}, texts[row - 1]);
    QTest::keyClick(&grid(), Qt::Key_F, Qt::ControlModifier);
    auto& dialog = control<frmFind>(*window, "frmFind");
    ASSERT_TRUE(dialog.isVisible());
    control<QLineEdit>(dialog, "txt_0").setText("资产");
    const auto click = [&](const char* button) { control<QPushButton>(dialog, button).click(); };
    click("cmdFindNext");
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 3}));
    click("cmdFindPrevious");
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 1}));
    control<QLineEdit>(dialog, "txt_1").setText("财产");
    click("cmdReplace"); // here, then on to the next one
    EXPECT_EQ(grid().cells().text(1, 1), "财产");
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 3}));
    click("cmdReplaceAll");
    EXPECT_EQ(grid().cells().text(1, 3), "财产合计");
    EXPECT_TRUE(control<QLabel>(dialog, "lblResult").text().startsWith("已替换 1 个单元格"));
    EXPECT_EQ(edit("txtFormula").text(), ""); // a text stands in its cell
    click("cmdFindNext");
    EXPECT_EQ(control<QLabel>(dialog, "lblResult").text(), "找不到“资产”");
    trigger("MenuUndo");
    EXPECT_EQ(grid().cells().text(1, 3), "资产合计");
}

TEST_F(DesignerControls, GoesToAPlaceAndSorts)
{
    open();
    const auto go = [this](const QString& place) {
        show(*window); // the dialog before took the focus
        whenModal("frmGoTo", [&place](QWidget& dialog) {
            control<QLineEdit>(dialog, "txtPlace").setText(place);
            control<QPushButton>(dialog, "cmdXPOK").click();
            EXPECT_EQ(dialog.isVisible(), place == "哪里");
            dialog.close();
        });
        QTest::keyClick(&grid(), Qt::Key_F5);
    };
    go("哪里");
    EXPECT_EQ(grid().cursor().activeCell(), (CellAddress{1, 1}));
    go("B3:B5");
    EXPECT_EQ(grid().cursor().firstRange(), (spreadsheet::CellRange{2, 3, 2, 5}));
    for (int row = 3; row <= 5; ++row)
        grid().cells().sheet().setNumber({2, row}, row * 7 % 5);
    trigger("MenuSortDown");
    EXPECT_EQ(grid().cells().text(2, 3) + grid().cells().text(2, 4) + grid().cells().text(2, 5), "310");
    moveTo(2, 3);
    trigger("MenuSortUp");
    EXPECT_TRUE(message().startsWith("请先选定要排序的区域"));
    EXPECT_EQ(grid().cells().text(2, 3), "3");
}

TEST_F(DesignerControls, RunModeChangesNothing)
{
    storeReport();
    gRunMode = true;
    open();
    ASSERT_TRUE(QTest::qWaitFor([this] { return grid().cells().text(1, 1) == "100.25"; }));
    const auto revision = grid().cells().workbook().revision();
    for (const char* name : {"MenuClear", "MenuInsertRow", "MenuFillDown", "MenuPaste", "Paste", "Bold",
                             "MenuDeleteRows", "MenuSortUp", "MenuUndo", "MenuCut"}) {
        grid().cursor().select({1, 1, 2, 2});
        trigger(name);
        EXPECT_EQ(grid().cells().workbook().revision(), revision) << name;
    }
    moveTo(1, 2);
    QTest::keyClick(&edit("txtFormula"), Qt::Key_Return);
    moveTo(1, 1);
    EXPECT_EQ(grid().cells().workbook().revision(), revision);
    EXPECT_EQ(formula(1, 1), closingBalance);
    trigger("MenuFind");
    EXPECT_FALSE(control<QPushButton>(*window, "cmdReplaceAll").isEnabled());
}

} // namespace
} // namespace selfreport
