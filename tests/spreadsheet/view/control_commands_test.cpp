#include "tests/spreadsheet/view/ControlTest.h"

namespace spreadsheet {

namespace {

struct ControlCommands : testing::Test {
    ControlCommands()
    {
        control.resize(800, 500);
        control.show();
        QObject::connect(&control, &SpreadsheetControl::refused,
                         [this](const QString& why) { refusal = why; });
    }
    Sheet& sheet() { return control.cells().workbook().sheet(1); }
    std::string shown(CellAddress cell) { return sheet().displayText(cell); }
    void key(int key, Qt::KeyboardModifiers modifiers) { QTest::keyClick(&control, Qt::Key(key), modifiers); }

    SpreadsheetControl control;
    QString refusal;
};

} // namespace

TEST_F(ControlCommands, RowsAndColumnsComeAndGoWithUndo)
{
    sheet().setText({2, 2}, "x");
    control.cursor().select({1, 2, control.cells().columnCount(), 3});
    key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(shown({2, 4}), "x");
    control.commands().undo();
    control.cursor().select({1, 1, 1, 1});
    control.commands().deleteRows();
    EXPECT_EQ(shown({2, 1}), "x");
    control.commands().undo();
    control.cursor().select({2, 1, 2, control.cells().rowCount()});
    control.commands().hideColumns();
    EXPECT_EQ(sheet().settings().columns.size(2), 0);
    control.cursor().select({1, 1, 3, control.cells().rowCount()});
    control.commands().showColumns();
    EXPECT_GT(sheet().settings().columns.size(2), 0);
    control.cursor().select({1, 1, control.cells().columnCount(), control.cells().rowCount()});
    control.commands().deleteRows();
    EXPECT_FALSE(refusal.isEmpty());
    EXPECT_EQ(shown({2, 2}), "x");
}

/// Nobody could get at the rest.
TEST_F(ControlCommands, WhatIsLeftAfterDeletingIsNotHiddenWhole)
{
    const int columns = control.cells().columnCount(), rows = control.cells().rowCount();
    sheet().setText({2, 2}, "x");
    control.cursor().select({1, 4, columns, rows});
    control.commands().hideRows();
    control.cursor().select({1, 1, columns, 3});
    control.commands().deleteRows();
    EXPECT_TRUE(refusal.contains("隐藏")) << refusal.toStdString();
    EXPECT_EQ(shown({2, 2}), "x");
    refusal.clear();
    control.cursor().select({1, 2, columns, rows});
    control.commands().deleteRows();
    EXPECT_EQ(refusal, "") << "one row in sight is left";
    EXPECT_EQ(control.cells().rowCount(), 1);
}

/// Columns are meant only if all that is selected are columns.
TEST_F(ControlTest, KeysForLinesMeanNothingThatIsNotSelected)
{
    put("A1", "a");
    put("D1", "d");
    drag(centre("A1"), centre("B2"));
    click(columnHeading("D1"), Qt::ControlModifier);
    key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(refusal, "不能删除所有的行");
    EXPECT_EQ(shown("A1") + shown("D1"), "ad");
    click(columnHeading("B1"));
    click(columnHeading("D1"), Qt::ControlModifier);
    key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(shown("A1", "D1"), "a   ");
}

TEST_F(ControlCommands, AutofitFollowsTheTexts)
{
    sheet().setText({1, 1}, "很长很长很长很长很长很长很长很长的科目名称");
    const int before = sheet().settings().columns.size(1);
    control.cursor().select({1, 1, 1, 1});
    control.commands().autofitColumns();
    const int fitted = sheet().settings().columns.size(1);
    EXPECT_GT(fitted, before);
    sheet().setText({1, 1}, "短");
    control.commands().autofitColumns();
    EXPECT_LT(sheet().settings().columns.size(1), fitted);
    control.commands().undo();
    EXPECT_EQ(sheet().settings().columns.size(1), fitted);
}

/// Upwards a text is as wide as a line is high, 216 twips, with 110 beside it.
TEST_F(ControlCommands, AutofitFollowsTurnedTexts)
{
    const std::pair<std::uint8_t, int> turns[]{
        {90, 326}, {180, 326}, {CarriedAlignment::stackedLetters, 290}};
    for (const auto& [code, width] : turns) {
        sheet().setText({1, 1}, "一二三四五六七八九十");
        sheet().restyle({1, 1, 1, 1}, [&, turn = code](CellStyle& style) {
            style.carried.rotation = turn;
            style.font.family = Text("宋体");
        });
        control.cursor().select({1, 1, 1, 1});
        control.commands().autofitColumns();
        EXPECT_NEAR(sheet().settings().columns.size(1), width, 3) << int(code);
    }
}

TEST_F(ControlCommands, PanesFreezeAndThawAtTheActiveCell)
{
    control.cursor().setActiveCell(2, 4);
    control.commands().freezeHere();
    EXPECT_EQ(sheet().settings().frozenRows, 3);
    EXPECT_EQ(sheet().settings().frozenColumns, 1);
    control.commands().freezeHere();
    EXPECT_EQ(sheet().settings().frozenRows, 0);
    EXPECT_FALSE(control.cellRect({1, 1}).isEmpty()) << "nothing was scrolled";
}

/// The window is 800 x 500 pixels: about 24 rows and 10 columns.
TEST_F(ControlCommands, PanesThatTheWindowDoesNotHoldAreNotFrozen)
{
    for (const CellAddress cell : {CellAddress{3, 60}, CellAddress{15, 3}}) {
        refusal.clear();
        control.cursor().setActiveCell(cell.column, cell.row);
        control.commands().freezeHere();
        EXPECT_TRUE(refusal.contains("窗口")) << refusal.toStdString();
        EXPECT_EQ(sheet().settings().frozenRows + sheet().settings().frozenColumns, 0);
    }
    // Stored so, or frozen in a larger window: what is shown is as if nothing was, and any cell frees it.
    sheet().changeSettings([](SheetSettings& settings) { settings.frozenRows = 59; });
    control.showChanges();
    refusal.clear();
    for (const int row : {1, 30, 70}) {
        control.cursor().setActiveCell(2, row);
        EXPECT_FALSE(control.cellRect({2, row}).isEmpty()) << row;
    }
    control.commands().freezeHere();
    EXPECT_EQ(sheet().settings().frozenRows, 0);
    EXPECT_TRUE(refusal.isEmpty()) << refusal.toStdString();
    // Small windows keep what comes back with their size.
    control.cursor().setActiveCell(1, 6);
    control.commands().freezeHere();
    control.resize(300, 120);
    control.cursor().setActiveCell(1, 50);
    EXPECT_FALSE(control.cellRect({1, 50}).isEmpty());
    EXPECT_TRUE(control.cellRect({1, 1}).isEmpty());
    control.resize(800, 500);
    EXPECT_FALSE(control.cellRect({1, 1}).isEmpty());
    EXPECT_FALSE(control.cellRect({1, 50}).isEmpty());
}

TEST_F(ControlCommands, FindSelectsReplaceCountsAndLocksHold)
{
    sheet().setText({2, 2}, "应收账款");
    sheet().setText({3, 9}, "应收票据");
    sheet().restyle({3, 9, 3, 9}, [](CellStyle& style) { style.locked = true; });
    EXPECT_TRUE(control.commands().findNext({"应收"}));
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{2, 2}));
    EXPECT_TRUE(control.commands().findNext({"应收"}));
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{3, 9}));
    EXPECT_FALSE(control.commands().findNext({"应付"}));
    EXPECT_TRUE(refusal.contains("应付"));
    EXPECT_EQ(control.commands().replaceAll({"应收"}, "应付"), 1);
    EXPECT_EQ(shown({2, 2}) + shown({3, 9}), "应付账款应收票据");
    EXPECT_TRUE(refusal.contains("1"));
}

TEST_F(ControlCommands, SortTakesTheBlockAroundAndGoToReadsPlaces)
{
    ASSERT_FALSE(control.cells().workbook().addSheet("二月"));
    for (int row = 1; row <= 3; ++row)
        sheet().setNumber({1, row}, 10 - row);
    control.cursor().setActiveCell(1, 2);
    control.commands().sortBlock({}, false);
    EXPECT_EQ(shown({1, 1}) + shown({1, 3}), "79");
    EXPECT_EQ(control.cursor().firstRange(), (CellRange{1, 1, 1, 3}));
    EXPECT_FALSE(control.cursor().goTo("c5:d6"));
    EXPECT_EQ(control.cursor().firstRange(), (CellRange{3, 5, 4, 6}));
    EXPECT_FALSE(control.cursor().goTo("二月!B400"));
    EXPECT_EQ(control.cells().activeSheet(), 2);
    EXPECT_FALSE(control.cellRect({2, 400}).isEmpty());
    EXPECT_TRUE(control.cursor().goTo("B501"));
}

TEST_F(ControlTest, TwoHundredStepsComeBackOneByOne)
{
    // Each round: an entry, a filled block, a cleared one: three steps, however many cells they change.
    const auto state = [this] { return shown("A1", "C8"); };
    std::vector<std::string> states{state()};
    for (int round = 0; round < 80; ++round) {
        const std::string number = std::to_string(round + 1);
        click("A1");
        type(number.c_str());
        key(Qt::Key_Return);
        states.push_back(state());
        drag(centre("A1"), centre("C8"));
        type(number.c_str());
        key(Qt::Key_Return, Qt::ControlModifier);
        states.push_back(state());
        drag(centre("B2"), centre("C8"));
        key(Qt::Key_Delete);
        states.push_back(state());
    }
    for (std::size_t step = states.size() - 1; step-- > 0;) {
        key(Qt::Key_Z, Qt::ControlModifier);
        ASSERT_EQ(state(), states[step]) << step;
    }
    for (std::size_t step = 1; step < states.size(); ++step) {
        key(Qt::Key_Y, Qt::ControlModifier);
        ASSERT_EQ(state(), states[step]) << step;
    }
}

TEST_F(ControlCommands, UndoOfASheetThatIsShownShowsAnother)
{
    control.commands().addSheet();
    ASSERT_EQ(control.cells().activeSheet(), 2);
    control.commands().undo();
    EXPECT_EQ(control.cells().sheetCount(), 1);
    EXPECT_EQ(control.cells().activeSheet(), 1);
    control.commands().redo();
    EXPECT_EQ(control.cells().sheetCount(), 2);
    EXPECT_EQ(control.cells().activeSheet(), 2) << "a sheet that comes back is shown";
}

} // namespace spreadsheet
