#include "tests/spreadsheet/view/ControlTest.h"

#include <functional>
#include <random>

namespace spreadsheet {

namespace {

struct Press {
    int key;
    Qt::KeyboardModifiers modifiers = {};
};

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier, alt = Qt::AltModifier;

} // namespace

TEST_F(ControlTest, KeysMoveAndSelect)
{
    for (const char* cell : {"B2", "B3", "B4", "B8", "C2", "D2", "H2", "F20"})
        put(cell, "x");
    control.cells().addSpan({4, 5, 5, 6}); // D5:E6
    control.showChanges();
    const struct {
        const char* from;
        std::vector<Press> presses;
        const char* cursor;
    } cases[] = {
        {"B2", {{Qt::Key_Right}, {Qt::Key_Down}, {Qt::Key_Left}, {Qt::Key_Up}}, "B2 in B2"},
        {"A1", {{Qt::Key_Left}, {Qt::Key_Up}}, "A1 in A1"},
        {"C5", {{Qt::Key_Right}}, "D5 in D5:E6"},
        {"C6", {{Qt::Key_Right}}, "D5 in D5:E6"},
        {"C5", {{Qt::Key_Right}, {Qt::Key_Right}}, "F5 in F5"},
        {"D4", {{Qt::Key_Down}, {Qt::Key_Down}}, "D7 in D7"},
        {"B2", {{Qt::Key_Down, ctrl}}, "B4 in B4"},
        {"B4", {{Qt::Key_Down, ctrl}}, "B8 in B8"},
        {"B8", {{Qt::Key_Down, ctrl}}, "B100 in B100"},
        {"B100", {{Qt::Key_Up, ctrl}}, "B8 in B8"},
        {"B8", {{Qt::Key_Up, ctrl}}, "B4 in B4"},
        {"B4", {{Qt::Key_Up, ctrl}}, "B2 in B2"},
        {"B2", {{Qt::Key_Right, ctrl}}, "D2 in D2"},
        {"D2", {{Qt::Key_Right, ctrl}}, "H2 in H2"},
        {"H2", {{Qt::Key_Right, ctrl}}, "AD2 in AD2"},
        {"H2", {{Qt::Key_Left, ctrl}, {Qt::Key_Left, ctrl}, {Qt::Key_Left, ctrl}}, "A2 in A2"},
        {"F9", {{Qt::Key_Home}}, "A9 in A9"},
        {"F9", {{Qt::Key_End}}, "H9 in H9"},
        {"F9", {{Qt::Key_Home, ctrl}}, "A1 in A1"},
        {"F9", {{Qt::Key_End, ctrl}}, "H20 in H20"},
        {"B2", {{Qt::Key_Right, shift}, {Qt::Key_Down, shift}, {Qt::Key_Down, shift}}, "B2 in B2:C4"},
        {"B2", {{Qt::Key_Right, shift}, {Qt::Key_Left, shift}, {Qt::Key_Left, shift}}, "B2 in A2:B2"},
        {"B2", {{Qt::Key_Down, shift | ctrl}, {Qt::Key_Right, shift | ctrl}}, "B2 in B2:D4"},
        {"C4", {{Qt::Key_Down, shift}, {Qt::Key_Right, shift}}, "C4 in C4:E6"},
        {"C4", {{Qt::Key_End, shift | ctrl}}, "C4 in C4:H20"},
        {"C4", {{Qt::Key_A, ctrl}}, "C4 in A1:AD100"},
        {"C4", {{Qt::Key_Space, ctrl}}, "C4 in C1:C100"},
        {"C4", {{Qt::Key_Space, shift}}, "C4 in A4:AD4"},
        {"C4", {{Qt::Key_Down, shift}, {Qt::Key_Space, shift}}, "C4 in A4:AD5"},
        {"B2", {{Qt::Key_Return}}, "B3 in B3"},
        {"B2", {{Qt::Key_Return, shift}}, "B1 in B1"},
        {"B2", {{Qt::Key_Tab}}, "C2 in C2"},
        {"B2", {{Qt::Key_Backtab, shift}}, "A2 in A2"},
        {"B2", {{Qt::Key_Tab}, {Qt::Key_Tab}, {Qt::Key_Enter}}, "B3 in B3"},
        {"B2", {{Qt::Key_Tab}, {Qt::Key_Down}, {Qt::Key_Enter}}, "C4 in C4"},
    };
    for (const auto& c : cases) {
        const CellAddress from = *parseCellName(c.from);
        control.cursor().setActiveCell(from.column, from.row);
        for (const Press& press : c.presses)
            key(press.key, press.modifiers);
        EXPECT_EQ(cursor(), c.cursor) << c.from << " key " << std::hex << c.presses.front().key;
    }
}

TEST_F(ControlTest, ArrowsPassHiddenRowsAndColumns)
{
    control.cells().sheet().changeSettings([](SheetSettings& settings) {
        settings.rows.hidden = {{2, true}, {3, true}};
        settings.columns.hidden = {{1, true}, {3, true}};
    });
    control.showChanges();
    control.cursor().setActiveCell(2, 1);
    const std::pair<int, const char*> steps[] = {
        {Qt::Key_Down, "B4 in B4"}, {Qt::Key_Right, "D4 in D4"}, {Qt::Key_Left, "B4 in B4"},
        {Qt::Key_Left, "B4 in B4"}, {Qt::Key_Up, "B1 in B1"},    {Qt::Key_Home, "B1 in B1"},
    };
    for (const auto& [pressed, expected] : steps) {
        key(pressed);
        EXPECT_EQ(cursor(), expected);
    }
}

TEST_F(ControlTest, EnterAndTabGoRoundWithinTheSelection)
{
    control.cells().addSpan({2, 2, 3, 2}); // B2:C2
    control.showChanges();
    const auto round = [this](int pressed, int times) {
        std::string places;
        for (int i = 0; i < times; ++i) {
            key(pressed);
            places += cellName(control.cursor().activeCell()) + " ";
        }
        return places;
    };
    control.cursor().select({1, 1, 3, 2}); // A1:C2
    EXPECT_EQ(round(Qt::Key_Tab, 6), "B1 C1 A2 B2 A1 B1 ");
    EXPECT_EQ(cursor(), "B1 in A1:C2");
    EXPECT_EQ(round(Qt::Key_Return, 4), "B2 C1 A1 A2 ");
    click("E5");
    click("G7", ctrl);
    EXPECT_EQ(cursor(), "G7 in E5 G7");
    EXPECT_EQ(round(Qt::Key_Tab, 3), "E5 G7 E5 ");
    EXPECT_EQ(cursor(), "E5 in E5 G7");
}

TEST_F(ControlTest, PagesTurnWithTheCursor)
{
    const int rows = [this] {
        key(Qt::Key_PageDown);
        return control.cursor().activeCell().row - 1;
    }();
    EXPECT_GT(rows, 15);
    EXPECT_EQ(control.cursor().topLeftCell().row, 1 + rows);
    key(Qt::Key_PageDown, shift);
    EXPECT_EQ(control.cursor().selectedBlock().rows(), rows + 1);
    key(Qt::Key_PageUp);
    key(Qt::Key_PageUp);
    EXPECT_EQ(control.cursor().topLeftCell().row, 1);
    key(Qt::Key_PageDown, alt);
    EXPECT_EQ(control.cursor().topLeftCell().column, control.cursor().activeCell().column);
    EXPECT_GT(control.cursor().activeCell().column, 8);
}

TEST_F(ControlTest, TheCursorStaysInSightBesideFrozenCells)
{
    control.cells().sheet().changeSettings([](SheetSettings& settings) {
        settings.frozenRows = 3;
        settings.frozenColumns = 2;
    });
    control.showChanges();
    std::mt19937 random(3);
    const int keys[] = {Qt::Key_Down, Qt::Key_Right,    Qt::Key_Up,
                        Qt::Key_Left, Qt::Key_PageDown, Qt::Key_PageUp};
    for (int step = 0; step < 300; ++step) {
        key(keys[random() % 6], random() % 5 == 0 ? ctrl : Qt::KeyboardModifiers());
        if (control.cells().activeSheet() != 1)
            break;
        const CellAddress cell = control.cursor().activeCell();
        const QRect rect = control.cellRect(cell);
        ASSERT_EQ(rect.size(), QSize(72, 19)) << cellName(cell) << " at step " << step;
        ASSERT_EQ(control.cellAt(rect.center()), cell);
    }
}

/// The first cell is frozen and so in sight anyway: what is asked for is the beginning of the table.
TEST_F(ControlTest, ControlHomeScrollsToTheBeginningBesideFrozenCells)
{
    control.cells().sheet().changeSettings([](SheetSettings& settings) {
        settings.frozenRows = 3;
        settings.frozenColumns = 2;
    });
    control.showChanges();
    for (const Qt::KeyboardModifiers held : {ctrl, ctrl | shift}) {
        for (int page = 0; page < 3; ++page)
            key(Qt::Key_PageDown);
        key(Qt::Key_PageDown, alt);
        ASSERT_GT(control.cursor().topLeftCell().row, 20);
        key(Qt::Key_Home, held);
        EXPECT_EQ(control.cursor().topLeftCell(), (CellAddress{3, 4}));
        EXPECT_TRUE(control.cursor().selectedBlock().contains(CellAddress{1, 1}));
    }
}

TEST_F(ControlTest, KeysOfTheWindowPassAndListenersMaySwallowOthers)
{
    for (const Qt::Key pressed : {Qt::Key_G, Qt::Key_J, Qt::Key_N, Qt::Key_O, Qt::Key_S}) {
        QKeyEvent event(QEvent::KeyPress, pressed, ctrl, QString(QChar(pressed - Qt::Key_A + 1)));
        QApplication::sendEvent(&control, &event);
        EXPECT_FALSE(event.isAccepted()) << pressed;
    }
    QObject::connect(&control, &SpreadsheetControl::keyDown, [](QKeyEvent* event) {
        EXPECT_FALSE(event->isAccepted());
        event->setAccepted(event->key() == Qt::Key_Down);
    });
    key(Qt::Key_Down);
    key(Qt::Key_Right);
    EXPECT_EQ(cursor(), "B1 in B1");
    EXPECT_FALSE(control.entry().isOpen());
}

TEST_F(ControlTest, OnlyMovesOfTheUserTellThatACellIsLeft)
{
    control.cursor().setActiveCell(2, 2);
    control.cursor().select({3, 3, 4, 4});
    control.cells().setCurrent(5, 5);
    EXPECT_EQ(logged(), "");
    key(Qt::Key_Right);
    EXPECT_EQ(logged(), "leave 3,3>4,3");
    key(Qt::Key_Right, shift);
    EXPECT_EQ(logged(), "") << "the cursor has not moved";
    click("B2");
    EXPECT_EQ(logged(), "down1 2,2 leave 4,3>2,2");
    click("B2");
    EXPECT_EQ(logged(), "down1 2,2");
    QTest::mouseClick(&control, Qt::RightButton, {}, centre("E5"));
    EXPECT_EQ(logged(), "down2 5,5 menu 5,5") << "the right button moves nothing";
    EXPECT_EQ(cursor(), "B2 in B2");
    line.setFocus(Qt::MouseFocusReason);
    EXPECT_EQ(logged(), "leave 2,2>-1,-1");
    control.setFocus();
    holdsCursor = true;
    key(Qt::Key_Down);
    click("F6");
    EXPECT_EQ(logged(), "leave 2,2>2,3 down1 6,6 leave 2,2>6,6");
    EXPECT_EQ(cursor(), "B2 in B2");
}

TEST_F(ControlTest, EachMoveOfTheUserIsOneLeave)
{
    control.showChanges();
    control.cells().addSpan({6, 6, 7, 7}); // F6:G7
    control.showChanges();
    const struct {
        const char* what;
        std::function<void()> act;
        const char* told;
    } cases[] = {
        {"drag", [&] { drag(centre("B2"), centre("D5")); }, "down1 2,2 leave 3,3>2,2"},
        {"one more range", [&] { click("D6", ctrl); }, "down1 4,6 leave 3,3>4,6"},
        {"into a merged cell", [&] { click("G7"); }, "down1 6,6 leave 3,3>6,6"},
        {"row heading", [&] { click(rowHeading("A9")); }, "down1 0,9 leave 3,3>1,9"},
        {"column heading", [&] { click(columnHeading("E1")); }, "down1 5,0 leave 3,3>5,1"},
        {"everything", [&] { click(QPoint(3, 3)); }, "down1 0,0"},
        {"typed, Enter",
         [&] {
             type("1");
             key(Qt::Key_Return);
         },
         "changed 3,3 leave 3,3>3,4"},
        {"typed, arrow",
         [&] {
             type("2");
             key(Qt::Key_Left);
         },
         "changed 3,3 leave 3,3>2,3"},
        {"typed, click",
         [&] {
             type("3");
             click("E5");
         },
         "down1 5,5 changed 3,3 leave 3,3>5,5"},
        {"typed, Esc",
         [&] {
             type("4");
             key(Qt::Key_Escape);
         },
         ""},
        {"pointing",
         [&] {
             type("=");
             click("E5");
             key(Qt::Key_Escape);
         },
         "down1 5,5"},
        {"sheet edge",
         [&] {
             key(Qt::Key_Home);
             key(Qt::Key_Home);
         },
         "leave 3,3>1,3"},
        {"scrolling",
         [&] {
             control.cursor().setTopLeftCell({1, 30});
             control.cursor().setTopLeftCell({1, 1});
         },
         ""},
        {"selecting by keys",
         [&] {
             key(Qt::Key_Down, shift);
             key(Qt::Key_Space, ctrl);
         },
         ""},
        {"delete", [&] { key(Qt::Key_Delete); }, "changed 3,3"},
        {"undo", [&] { key(Qt::Key_Z, ctrl); }, "changed -1,-1"},
        {"the window is left",
         [&] {
             QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
             QApplication::sendEvent(&control, &out);
         },
         ""},
        {"another control", [&] { line.setFocus(); }, "leave 3,3>-1,-1"},
        {"typed, another control",
         [&] {
             type("5");
             line.setFocus();
         },
         "changed 3,3 leave 3,3>-1,-1"},
    };
    for (const auto& [what, act, told] : cases) {
        control.setFocus();
        control.entry().cancel();
        control.cursor().setActiveCell(3, 3);
        logged();
        act();
        EXPECT_EQ(logged(), told) << what;
    }
}

TEST_F(ControlTest, AListenerThatHoldsTheCursorHoldsIt)
{
    holdsCursor = true;
    control.cursor().setActiveCell(3, 3);
    const std::function<void()> moves[] = {
        [&] { key(Qt::Key_Down); },
        [&] { key(Qt::Key_End, ctrl); },
        [&] { key(Qt::Key_Tab); },
        [&] { key(Qt::Key_Return); },
        [&] { click("F6"); },
        [&] { drag(centre("F6"), centre("G8")); },
        [&] { click("F6", ctrl); },
        [&] { click(rowHeading("A7")); },
        [&] { click(columnHeading("E1")); },
        [&] { QTest::mouseDClick(&control, Qt::LeftButton, {}, centre("F6")); }};
    for (const auto& move : moves) {
        move();
        EXPECT_EQ(cursor(), "C3 in C3");
        EXPECT_FALSE(control.entry().isOpen());
    }
}

TEST_F(ControlTest, AnotherSheetIsALeaveAndKeepsCursorAndPlace)
{
    demand(control.cells().setSheetCount(3));
    control.showChanges();
    control.cursor().setActiveCell(2, 60);
    const CellAddress topLeft = control.cursor().topLeftCell();
    key(Qt::Key_PageDown, ctrl);
    EXPECT_EQ(logged(), "leave 2,60>-1,-1 sheet 2");
    EXPECT_EQ(cursor(), "A1 in A1");
    key(Qt::Key_PageDown, ctrl);
    EXPECT_EQ(logged(), "leave 1,1>-1,-1 sheet 3") << "although column and row are the same";
    key(Qt::Key_PageDown, ctrl);
    EXPECT_EQ(logged(), "");
    control.cells().setActiveSheet(1);
    EXPECT_EQ(logged(), "sheet 1") << "by program";
    EXPECT_EQ(cursor(), "B60 in B60");
    EXPECT_EQ(control.cursor().topLeftCell(), topLeft);
    holdsCursor = true;
    key(Qt::Key_PageDown, ctrl);
    EXPECT_EQ(control.cells().activeSheet(), 1);
}

TEST_F(ControlTest, UndoAndRedoGoToWhatTheyChange)
{
    const auto travelled = [&](Qt::Key there) {
        control.cursor().setActiveCell(25, 90);
        key(there, Qt::ControlModifier);
        return cursor();
    };
    type("7");
    key(Qt::Key_Return);
    EXPECT_EQ(travelled(Qt::Key_Z), "A1 in A1");
    EXPECT_TRUE(control.cellArea().contains(control.cellRect({1, 1}))) << "it is scrolled to";
    EXPECT_EQ(travelled(Qt::Key_Y), "A1 in A1");

    control.cells().changeStyle({2, 3, 3, 5}, [](CellStyle& style) { style.font.bold = true; });
    EXPECT_EQ(travelled(Qt::Key_Z), "B3 in B3:C5") << "looks are changes too";

    control.cells().setText(4, 50, "end");
    control.cursor().select({1, 10, control.cells().columnCount(), 10});
    control.commands().insertRows();
    EXPECT_EQ(travelled(Qt::Key_Z), "A10 in A10:AD10");

    control.commands().addSheet();
    control.cells().setText(3, 4, "on the second");
    control.cells().setActiveSheet(1);
    logged();
    EXPECT_EQ(travelled(Qt::Key_Z), "C4 in C4");
    EXPECT_EQ(control.cells().activeSheet(), 2) << "it is shown where it is";
    EXPECT_EQ(logged(), "changed -1,-1 leave 25,90>-1,-1 sheet 2 leave 1,1>3,4");

    control.cells().setActiveSheet(1);
    holdsCursor = true;
    EXPECT_EQ(travelled(Qt::Key_Y), "Y90 in Y90") << "who holds the cursor keeps it";
    EXPECT_EQ(control.cells().workbook().sheet(2).displayText({3, 4}), "on the second");
}

} // namespace spreadsheet
