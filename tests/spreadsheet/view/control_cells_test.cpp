#include "tests/spreadsheet/view/ControlTest.h"

#include <QCalendarWidget>
#include <QListWidget>
#include <QTableView>
#include <QTimeEdit>
#include <QToolButton>

namespace spreadsheet {

namespace {

/// The list that a drop-down cell has opened; null if none is.
QListWidget* openList(SpreadsheetControl& control)
{
    auto* list = control.findChild<QListWidget*>("dropDownEntries");
    return list && list->isVisible() ? list : nullptr;
}

} // namespace

TEST_F(ControlTest, CheckBoxesToggle)
{
    setType("B2", CellType::checkBox);
    control.showChanges();
    const auto state = [this] { return sheet().displayText({2, 2}); };
    click("B2");
    const std::string checked = state();
    EXPECT_FALSE(checked.empty());
    EXPECT_EQ(logged(), "down1 2,2 leave 1,1>2,2 changed 2,2");
    key(Qt::Key_Space);
    EXPECT_NE(state(), checked);
    click(control.cellRect({2, 2}).topLeft() + QPoint(3, 9));
    EXPECT_NE(state(), checked) << "beside the box";
    control.setMode(GridMode::run);
    key(Qt::Key_Space);
    EXPECT_EQ(state(), checked);
    control.cells().changeStyle({2, 2, 2, 2}, [](CellStyle& style) { style.locked = true; });
    key(Qt::Key_Space);
    EXPECT_EQ(state(), checked);
    control.setMode(GridMode::edit);
    control.commands().undo(); // the lock
    control.commands().undo();
    EXPECT_NE(state(), checked);
}

TEST_F(ControlTest, ButtonsClick)
{
    setType("C3", CellType::button);
    control.showChanges();
    click("C3");
    EXPECT_EQ(logged(), "down1 3,3 leave 1,1>3,3 button 3,3");
    key(Qt::Key_Space);
    EXPECT_EQ(logged(), "button 3,3");
    drag(centre("C3"), centre("E6"));
    EXPECT_EQ(logged(), "down1 3,3") << "let go outside";
    EXPECT_EQ(cursor(), "C3 in C3");
    control.cells().changeStyle({3, 3, 3, 3}, [](CellStyle& style) { style.locked = true; });
    click("C3");
    EXPECT_EQ(logged(), "down1 3,3");
}

TEST_F(ControlTest, DropDownsOfferTheirCellsOrTheirColumnsList)
{
    setType("B2", CellType::dropDown);
    setType("B3", CellType::dropDown);
    control.cells().setCurrent(2, 2);
    control.cells().setDropDown({"a", "b"});
    control.cells().setColumnDropDown(
        2, {QStringLiteral("部门"), QStringLiteral("客户"), QStringLiteral("商品")});
    control.showChanges();
    control.cursor().setActiveCell(2, 2);
    key(Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(openList(control), nullptr);
    EXPECT_EQ(openList(control)->count(), 2);
    QTest::keyClick(openList(control), Qt::Key_Escape);
    EXPECT_EQ(openList(control), nullptr);
    EXPECT_EQ(logged(), "open 2,2 close 2,2 -1");
    EXPECT_EQ(control.cells().text(2, 2), "");

    const QRect cell = control.cellRect({2, 3});
    click(QPoint(cell.right() - 6, cell.center().y()));
    ASSERT_NE(openList(control), nullptr);
    QTest::keyClick(openList(control), Qt::Key_Down);
    QTest::keyClick(openList(control), Qt::Key_Return);
    EXPECT_EQ(logged(), "down1 2,3 leave 2,2>2,3 open 2,3 changed 2,3 close 2,3 1");
    EXPECT_EQ(control.cells().text(2, 3), QStringLiteral("客户"));
    control.cells().setCurrent(2, 3);
    EXPECT_EQ(control.cells().dropDownIndex(), 1);

    key(Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(openList(control), nullptr);
    EXPECT_EQ(openList(control)->currentRow(), 1) << "begins with what the cell holds";
    QTest::mouseClick(openList(control)->viewport(), Qt::LeftButton, {},
                      openList(control)->visualItemRect(openList(control)->item(2)).center());
    EXPECT_EQ(control.cells().text(2, 3), QStringLiteral("商品"));
}

TEST_F(ControlTest, DropDownListsOpenUnderTheirCellThoughItsPlaceHasJustChanged)
{
    setType("B2", CellType::dropDown);
    control.cells().setColumnDropDown(2, {QStringLiteral("部门"), QStringLiteral("客户")});
    control.showChanges();
    click("B2");
    QObject::connect(&control, &SpreadsheetControl::comboDropDown,
                     [this] { control.cells().setColumnWidth(1, 1500); });
    key(Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(openList(control));
    EXPECT_EQ(openList(control)->window()->geometry().topLeft(),
              control.mapToGlobal(control.cellRect({2, 2}).bottomLeft() + QPoint(0, 1)));
    EXPECT_EQ(control.cellRect({2, 2}).left(), control.cellRect({1, 1}).left() + 100);
    QTest::keyClick(openList(control), Qt::Key_Escape);
}

TEST_F(ControlTest, DropDownsMayOpenSomethingElse)
{
    setType("C2", CellType::dropDown);
    control.cells().setCurrent(3, 2);
    control.showChanges();
    control.cursor().setActiveCell(3, 2);
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(logged(), "open 3,2") << "no entries: nothing opens";
    EXPECT_EQ(openList(control), nullptr);
    control.cells().setDropDown({"a"});
    QObject::connect(&control, &SpreadsheetControl::comboDropDown, [this] {
        control.actions().cancelDropDown();
        control.cells().setText(3, 2, "1001");
    });
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(openList(control), nullptr);
    EXPECT_EQ(control.cells().text(3, 2), "1001");
}

TEST_F(ControlTest, DatesAndTimesAreChosen)
{
    setType("B2", CellType::date);
    setType("B3", CellType::time);
    control.showChanges();
    auto& button = *control.findChild<QToolButton*>("openCalendar");
    auto& calendar = *control.findChild<QCalendarWidget*>("calendar");
    auto& clock = *control.findChild<QTimeEdit*>("clock");
    EXPECT_FALSE(button.isVisible());
    control.cursor().setActiveCell(2, 2);
    EXPECT_TRUE(button.isVisible());
    EXPECT_FALSE(button.geometry().intersects(control.cellRect({2, 2})));
    sheet().setNumber({2, 2}, 46'000); // 2025-12-09
    logged();
    QTest::mouseClick(&button, Qt::LeftButton);
    ASSERT_TRUE(calendar.isVisible());
    EXPECT_FALSE(clock.isVisible());
    EXPECT_EQ(calendar.selectedDate(), QDate(2025, 12, 9));
    auto* days = calendar.findChild<QTableView*>("qt_calendar_calendarview");
    QTest::keyClick(days, Qt::Key_Right);
    QTest::keyClick(days, Qt::Key_Return);
    EXPECT_FALSE(calendar.isVisible());
    EXPECT_EQ(control.cells().text(2, 2), "2025-12-10");
    EXPECT_EQ(logged(), "changed 2,2");

    control.cursor().setActiveCell(2, 3);
    key(Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(clock.isVisible());
    EXPECT_FALSE(calendar.isVisible());
    clock.setTime(QTime(8, 30));
    QTest::keyClick(&clock, Qt::Key_Return);
    EXPECT_EQ(control.cells().text(2, 3), "08:30:00");
    control.commands().undo();
    EXPECT_EQ(control.cells().text(2, 3), "");

    control.cursor().setActiveCell(2, 2);
    key(Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(days, Qt::Key_Escape);
    EXPECT_FALSE(calendar.isVisible());
    EXPECT_EQ(control.cells().text(2, 2), "2025-12-10") << "closed without a choice";
    control.cells().changeStyle({2, 2, 2, 2}, [](CellStyle& style) { style.locked = true; });
    control.showChanges();
    EXPECT_FALSE(button.isVisible());
    key(Qt::Key_Down, Qt::AltModifier);
    EXPECT_FALSE(calendar.isVisible()) << "locked";
}

TEST_F(ControlTest, DropDownListsFollowInsertedRowsAndUndo)
{
    control.cells().setCurrent(2, 5);
    control.cells().setDropDown({"a"});
    control.cells().setColumnDropDown(4, {"x"});
    demand(control.cells().insertRowsAt(3, 2));
    demand(control.cells().insertColumnsAt(1, 1));
    const auto has = [this](int column, int row) {
        control.cells().setCurrent(column, row);
        return control.cells().dropDown().join(",").toStdString();
    };
    EXPECT_EQ(has(3, 7), "a");
    EXPECT_EQ(has(2, 5), "");
    EXPECT_EQ(has(5, 80), "x");
    control.commands().undo();
    control.commands().undo();
    EXPECT_EQ(has(2, 5), "a");
    EXPECT_EQ(has(4, 80), "x");
}

TEST_F(ControlTest, OperationsKeepCurrentActiveAndAddressedApart)
{
    demand(control.cells().setSheetCount(2));
    control.cells().setCurrent(3, 4);
    control.cursor().setActiveCell(2, 2);
    EXPECT_EQ(control.cells().current(), (CellAddress{3, 4}));
    control.cells().setCurrent(31, 4);
    control.cells().setCurrent(3, 0);
    EXPECT_EQ(control.cells().current(), (CellAddress{3, 4})) << "outside";
    control.cells().setAddressedSheet(2);
    control.cells().setText("zwei");
    EXPECT_EQ(control.cells().activeSheet(), 1);
    EXPECT_EQ(control.cells().workbook().sheet(2).displayText({3, 4}), "zwei");
    control.cells().setActiveSheet(1);
    EXPECT_EQ(control.cells().addressedSheet(), 1) << "showing a sheet addresses it";
    EXPECT_EQ(control.cells().text(3, 4), "");
    control.cells().setText(1, 1, "12.50");
    EXPECT_FALSE(sheet().value({1, 1}).isNumber()) << "literal";
    setType("A2", CellType::number);
    control.cells().setText(1, 2, "12.50");
    EXPECT_TRUE(sheet().value({1, 2}).isNumber());
    EXPECT_TRUE(control.cells().setFormula("SUM("));
    EXPECT_EQ(control.cells().formula(), "");
    control.cells().setText(30, 100, "end");
    demand(control.cells().setRowCount(50));
    EXPECT_EQ(control.cells().lastDataRow(), 2);
    control.cells().workbook().undo();
    EXPECT_EQ(control.cells().text(30, 100), "end") << "shrinking is undone with what it took";
}

TEST_F(ControlTest, RecalculationGoesThroughTheHook)
{
    int calls = 0;
    control.cells().recalculateChanged = [&] {
        ++calls;
        control.cells().workbook().recalculateChanged();
    };
    setType("B2", CellType::checkBox);
    control.cells().setCurrent(3, 2);
    demand(control.cells().setFormula("IF(B2,7,8)"));
    control.cells().recalculate();
    control.showChanges();
    click("B2");
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(control.cells().text(3, 2), "7");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(control.cells().text(3, 2), "8");
}

TEST_F(ControlTest, ItsOwnWorkbookWithAnotherContentIsShownFromTheBeginning)
{
    control.cursor().setActiveCell(20, 90);
    Sheet& sheet = control.cells().workbook().sheet(1);
    sheet.setText({1, 1}, "标题");
    sheet.addSpan({1, 1, 4, 1});
    control.cells().setWorkbook(&control.cells().workbook());
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{1, 1}));
    EXPECT_EQ(control.cursor().firstRange(), (CellRange{1, 1, 4, 1})); // the merged cell whole
    EXPECT_EQ(control.cursor().topLeftCell(), (CellAddress{1, 1}));
    EXPECT_EQ(control.cells().text(1, 1), "标题");
}

} // namespace spreadsheet
