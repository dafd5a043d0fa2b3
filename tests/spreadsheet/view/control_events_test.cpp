// The order of all that windows see of the control while a user works with keys and mouse.
#include "tests/spreadsheet/view/ControlTest.h"

#include <QKeySequence>
#include <QTabBar>

#include <algorithm>
#include <array>
#include <functional>

namespace spreadsheet {

namespace {

class ControlEvents : public ControlTest {
protected:
    ControlEvents()
    {
        using Control = SpreadsheetControl;
        QObject::connect(&control, &Control::keyDown, [this](const QKeyEvent* event) {
            static constexpr std::array held{Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt};
            if (std::ranges::count(held, event->key()) == 0)
                log << "key " << QKeySequence(event->key()).toString().toStdString() << ' ';
        });
        QObject::connect(&control, &Control::editModeChanged, [this](bool on, bool changed) {
            log << (on ? "edit-on " : changed ? "edit-changed " : "edit-off ");
        });
        QObject::connect(&control, &Control::selectionChanged, [this] { log << "selected "; });
        QObject::connect(&control, &Control::viewChanged, [this] { log << "view "; });
        QObject::connect(&control, &Control::sheetsChanged, [this] { log << "sheets "; });
        QObject::connect(&control, &Control::refused, [this] { log << "refused "; });
        QObject::connect(&control, &Control::undoChanged, [this] { log << "undo "; });
        demand(control.cells().setSheetCount(2));
        control.showChanges();
        logged();
    }
    struct Step {
        const char* what;
        std::function<void()> work;
        const char* events;
    };
    /// Each goes on where the one before it has ended.
    void expectEvents(const std::vector<Step>& steps)
    {
        for (const Step& step : steps) {
            step.work();
            EXPECT_EQ(logged(), step.events) << step.what;
        }
    }
    void keys(const char* text, int last)
    {
        type(text);
        key(last);
    }
    void clickTab(int index)
    {
        QTabBar& bar = *control.findChild<QTabBar*>("sheetTabBar");
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(index - 1).center());
    }
    void list(Qt::Key choice) { QTest::keyClick(control.findChild<QWidget*>("dropDownEntries"), choice); }
};

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier, alt = Qt::AltModifier;

} // namespace

/// The text is in its cell before the cursor asks to leave it; a key within an open editor is no event.
TEST_F(ControlEvents, OfTyping)
{
    expectEvents({
        {"Enter", [&] { keys("12", Qt::Key_Return); },
         "key 1 edit-on edit-changed undo changed 1,1 key Return leave 1,1>1,2 undo selected"},
        {"Tab", [&] { keys("a", Qt::Key_Tab); },
         "key A edit-on edit-changed undo changed 1,2 key Tab leave 1,2>2,2 undo selected"},
        {"an arrow", [&] { keys("b", Qt::Key_Left); },
         "key B edit-on edit-changed undo changed 2,2 key Left leave 2,2>1,2 undo selected"},
        {"F2, arrow, Esc", [&] { key(Qt::Key_F2), key(Qt::Key_Left), key(Qt::Key_Escape); },
         "key F2 edit-on edit-off"},
        {"F2, Enter", [&] { key(Qt::Key_F2), key(Qt::Key_Return); },
         "key F2 edit-on edit-off key Return leave 1,2>1,3 undo selected"},
        {"Backspace, Shift+Enter", [&] { key(Qt::Key_Backspace), key(Qt::Key_Return, shift); },
         "key Backspace edit-on edit-off key Return leave 1,3>1,2 undo selected"},
        {"typed, Esc", [&] { keys("z", Qt::Key_Escape); }, "key Z edit-on edit-off"},
        {"Esc again", [&] { key(Qt::Key_Escape); }, "key Esc"},
        {"a formula that is refused", [&] { keys("=1+", Qt::Key_Return); }, "key = edit-on"},
        {"mended", [&] { keys("2", Qt::Key_Return); },
         "edit-changed undo changed 1,2 key Return leave 1,2>1,3 undo selected"},
        {"a line break, which makes the row taller",
         [&] { type("x"), key(Qt::Key_Return, alt), keys("y", Qt::Key_Return); },
         "key X edit-on edit-changed view undo changed 1,3 key Return leave 1,3>1,4 undo selected"},
    });
    holdsCursor = true;
    expectEvents({{"a listener holds the cursor", [&] { keys("7", Qt::Key_Return); },
                   "key 7 edit-on edit-changed undo changed 1,4 key Return leave 1,4>1,5"},
                  {"again", [&] { key(Qt::Key_Down); }, "key Down leave 1,4>1,5"}});
    EXPECT_EQ(cursor(), "A4 in A4");
    control.setMode(GridMode::run);
    expectEvents({{"run mode", [&] { keys("7", Qt::Key_F2); }, "key 7 refused key F2 refused"}});
}

/// As the format painter does, which takes Enter.
TEST_F(ControlEvents, AWatcherOfTheControlSeesTheKeyThatEndsAnEntry)
{
    struct Watcher : QObject {
        bool eventFilter(QObject*, QEvent* event) override
        {
            return event->type() == QEvent::KeyPress &&
                   static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return;
        }
    } watcher;
    control.installEventFilter(&watcher);
    expectEvents(
        {{"Enter", [&] { keys("12", Qt::Key_Return); }, "key 1 edit-on edit-changed undo changed 1,1"},
         {"Tab", [&] { keys("3", Qt::Key_Tab); },
          "key 3 edit-on edit-changed undo changed 1,1 key Tab leave 1,1>2,1 undo selected"}});
}

TEST_F(ControlEvents, OfSelectingAndCommands)
{
    expectEvents({
        {"Right", [&] { key(Qt::Key_Right); }, "key Right leave 1,1>2,1 undo selected"},
        {"Shift+Down", [&] { key(Qt::Key_Down, shift); }, "key Down selected"},
        {"Enter within a block", [&] { key(Qt::Key_Return); }, "key Return leave 2,1>2,2 undo selected"},
        {"Ctrl+Enter fills it", [&] { type("5"), key(Qt::Key_Return, ctrl); },
         "key 5 edit-on edit-changed undo changed 2,2 view undo changed -1,-1"},
        {"Ctrl+Z", [&] { key(Qt::Key_Z, ctrl); },
         "key Z view undo changed -1,-1 leave 2,2>2,1 undo selected"},
        {"Ctrl+Y", [&] { key(Qt::Key_Y, ctrl); }, "key Y view undo changed -1,-1 undo selected"},
        {"Delete", [&] { key(Qt::Key_Delete); }, "key Del undo changed -1,-1"},
        {"the whole sheet", [&] { key(Qt::Key_A, ctrl); }, "key A selected"},
        {"one cell", [&] { key(Qt::Key_Backspace, shift); }, "key Backspace selected"},
        {"Delete in one cell", [&] { key(Qt::Key_Delete); }, "key Del undo changed 2,1"},
        {"rows come", [&] { key(Qt::Key_Space, shift), key(Qt::Key_Plus, ctrl); },
         "key Space selected key + view undo changed -1,-1 view"},
        {"scrolling", [&] { key(Qt::Key_End, ctrl), key(Qt::Key_PageDown); },
         "key End leave 2,1>1,1 undo selected key PgDown leave 1,1>1,23 undo selected view view"},
    });
}

TEST_F(ControlEvents, OfTheMouse)
{
    expectEvents({
        {"a click", [&] { click("C3"); }, "down1 3,3 leave 1,1>3,3 undo selected"},
        {"again", [&] { click("C3"); }, "down1 3,3 undo selected"},
        {"a double click, Esc",
         [&] { QTest::mouseDClick(&control, Qt::LeftButton, {}, centre("C3")), key(Qt::Key_Escape); },
         "edit-on edit-off"},
        {"another cell while typing", [&] { type("5"), click("D4"); },
         "key 5 edit-on down1 4,4 edit-changed undo changed 3,3 leave 3,3>4,4 undo selected"},
        {"while a text is refused", [&] { type("=1)"), click("E5"), key(Qt::Key_Escape); },
         "key = edit-on down1 5,5 edit-off"},
        {"pointing at cells", [&] { type("="), click("C3"), type("+"), click("C4"), key(Qt::Key_Return); },
         "key = edit-on down1 3,3 down1 3,4 edit-changed undo changed 4,4 key Return leave 4,4>4,5 undo "
         "selected"},
        {"dragging", [&] { drag(centre("B2"), centre("B4")); },
         "down1 2,2 leave 4,5>2,2 undo selected selected selected"},
        {"a heading", [&] { click(columnHeading("C1")); }, "down1 3,0 leave 2,2>3,1 undo selected"},
        {"the right button", [&] { click(centre("E5"), {}, Qt::RightButton); }, "down2 5,5 menu 5,5"},
        {"another control", [&] { line.setFocus(); }, "leave 3,1>-1,-1"},
        {"another control while typing", [&] { control.setFocus(), type("6"), line.setFocus(); },
         "key 6 edit-on edit-changed undo changed 3,1 leave 3,1>-1,-1"},
    });
    EXPECT_EQ(formula("D4"), "C3+C4");
    EXPECT_TRUE(line.hasFocus());
}

TEST_F(ControlEvents, OfCellsThatAct)
{
    setType("B1", CellType::button);
    setType("C1", CellType::checkBox);
    setType("D1", CellType::dropDown);
    setType("E1", CellType::date);
    control.cells().setCurrent(4, 1);
    control.cells().setDropDown({"甲", "乙"});
    control.showChanges();
    logged();
    const QRect dropDown = control.cellRect({4, 1});
    const QPoint arrow(dropDown.right() - 5, dropDown.center().y());
    expectEvents({
        {"a button", [&] { click("B1"); }, "down1 2,1 leave 1,1>2,1 undo selected button 2,1"},
        {"by key", [&] { key(Qt::Key_Space); }, "key Space button 2,1"},
        {"let go elsewhere", [&] { drag(centre("B1"), centre("B3")); }, "down1 2,1 undo selected"},
        {"a check box", [&] { click("C1"); }, "down1 3,1 leave 2,1>3,1 undo selected undo changed 3,1"},
        {"by key", [&] { key(Qt::Key_Space); }, "key Space undo changed 3,1"},
        {"a drop-down", [&] { click(arrow), list(Qt::Key_Return); },
         "down1 4,1 leave 3,1>4,1 undo selected open 4,1 undo undo changed 4,1 close 4,1 0"},
        {"by key, Esc", [&] { key(Qt::Key_Down, alt), list(Qt::Key_Escape); },
         "key Down open 4,1 undo close 4,1 -1"},
        {"typed first", [&] { type("x"), click(arrow), list(Qt::Key_Escape); },
         "key X edit-on down1 4,1 edit-changed undo changed 4,1 undo selected open 4,1 undo close 4,1 -1"},
    });
    QObject::connect(&control, &SpreadsheetControl::comboDropDown,
                     [this] { control.actions().cancelDropDown(); });
    expectEvents(
        {{"a window opens something else", [&] { key(Qt::Key_Down, alt); }, "key Down open 4,1 undo"},
         {"a date", [&] { key(Qt::Key_Right), key(Qt::Key_Down, alt); },
          "key Right leave 4,1>5,1 undo selected key Down undo"}});
    QTest::keyClick(control.findChild<QWidget*>("dateEntry"), Qt::Key_Escape);
    control.cells().changeStyle({2, 1, 4, 1}, [](CellStyle& style) { style.locked = true; });
    control.showChanges();
    logged();
    expectEvents(
        {{"a locked button", [&] { click("B1"); }, "down1 2,1 leave 5,1>2,1 undo selected"},
         {"a locked check box", [&] { click("C1"); }, "down1 3,1 leave 2,1>3,1 undo selected refused"},
         {"a locked drop-down", [&] { key(Qt::Key_Right), key(Qt::Key_Down, alt); },
          "key Right leave 3,1>4,1 undo selected key Down refused"}});
}

/// A text is entered before its sheet is left; a formula that is pointed for keeps its editor, and its sheet
/// comes back before the cell is told.
TEST_F(ControlEvents, OfSheets)
{
    expectEvents({
        {"Ctrl+PgDown", [&] { key(Qt::Key_PageDown, ctrl); },
         "key PgDown leave 1,1>-1,-1 view view sheet 2 selected view"},
        {"a tab while typing", [&] { type("5"), clickTab(1); },
         "key 5 edit-on edit-changed undo changed 1,1 leave 1,1>-1,-1 view view sheet 1 selected view"},
        {"pointing at another sheet", [&] { type("=2*"), clickTab(2), click("A1"), key(Qt::Key_Return); },
         "key = edit-on view view sheet 2 selected view down1 1,1 edit-changed view view sheet 1 selected "
         "undo changed 1,1 key Return leave 1,1>1,2 undo selected"},
        {"a refused text", [&] { type("=1)"), clickTab(2), key(Qt::Key_Escape); },
         "key = edit-on view edit-off"},
        {"a sheet comes", [&] { key(Qt::Key_F11, shift); },
         "key F11 leave 1,2>-1,-1 view view sheet 3 selected sheets undo"},
    });
    EXPECT_EQ(control.cells().workbook().sheet(1).formula({1, 1}), "2*Sheet2!A1");
    holdsCursor = true;
    expectEvents({{"a listener holds the cursor", [&] { clickTab(1); }, "leave 1,1>-1,-1 view"}});
    EXPECT_EQ(control.cells().activeSheet(), 3);
    control.entry().begin(EditStart::replace, "5");
    expectEvents({{"the program shows another", [&] { control.cells().setActiveSheet(1); },
                   "edit-on edit-off view view sheet 1 selected"}});
}

} // namespace spreadsheet
