// The tabs of the sheets, by mouse and keys.
#include "tests/spreadsheet/view/ControlTest.h"

#include <QMenu>
#include <QTabBar>
#include <QTimer>
#include <QToolButton>

namespace spreadsheet {

namespace {

class Tabs : public ControlTest {
protected:
    Tabs()
    {
        demand(control.cells().setSheetCount(3));
        control.showChanges();
        control.ask = [this](const QString& asked) {
            question = asked.toStdString();
            return answer;
        };
        logged();
    }
    QTabBar& bar() { return *control.findChild<QTabBar*>("sheetTabBar"); }
    QPoint tab(int index) { return bar().tabRect(index - 1).center(); }
    QLineEdit& nameField() { return *control.findChild<QLineEdit*>("sheetName"); }
    void clickTab(int index) { QTest::mouseClick(&bar(), Qt::LeftButton, {}, tab(index)); }
    void rename(int index, const QString& name, Qt::Key last)
    {
        clickTab(index);
        QTest::mouseDClick(&bar(), Qt::LeftButton, {}, tab(index));
        ASSERT_TRUE(nameField().isVisible());
        ASSERT_TRUE(nameField().hasFocus());
        nameField().insert(name); // as an input method does; all is selected
        QTest::keyClick(&nameField(), last);
    }
    void dragTab(int from, int to)
    {
        QTest::mousePress(&bar(), Qt::LeftButton, {}, tab(from));
        const QPoint goal = tab(to) + QPoint(to > from ? 12 : -12, 0);
        for (int step = 1; step <= 8; ++step)
            QTest::mouseMove(&bar(), tab(from) + (goal - tab(from)) * step / 8);
        QTest::mouseRelease(&bar(), Qt::LeftButton, {}, goal);
        QTest::qWait(300); // the tab slides into its place
    }
    /// Opens the menu of a tab and chooses an entry with the keyboard.
    void chooseInMenu(int index, int entry)
    {
        QTimer::singleShot(0, &control, [entry] {
            QWidget* const menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr);
            EXPECT_EQ(menu->objectName(), "sheetMenu");
            for (int down = 0; down < entry; ++down)
                QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        QContextMenuEvent wanted(QContextMenuEvent::Mouse, tab(index), bar().mapToGlobal(tab(index)));
        QApplication::sendEvent(&bar(), &wanted);
    }
    /// "*Sheet1 Sheet2": the tabs, which must be the workbook's sheets.
    std::string names()
    {
        std::string shownNames, sheets;
        for (int index = 1; index <= bar().count(); ++index)
            shownNames += std::string(index == bar().currentIndex() + 1 ? "*" : "") +
                          bar().tabText(index - 1).toStdString() + " ";
        for (int index = 1; index <= control.cells().sheetCount(); ++index)
            sheets += std::string(index == control.cells().activeSheet() ? "*" : "") +
                      control.cells().workbook().sheet(index).name() + " ";
        EXPECT_EQ(shownNames, sheets);
        sheets.pop_back();
        return sheets;
    }

    std::string question;
    bool answer = true;
};

} // namespace

TEST_F(Tabs, AClickShowsASheetAndIsALeave)
{
    click("C3");
    logged();
    clickTab(2);
    EXPECT_EQ(names(), "Sheet1 *Sheet2 Sheet3");
    EXPECT_EQ(logged(), "leave 3,3>-1,-1 sheet 2");
    click("C3");
    logged();
    clickTab(1);
    EXPECT_EQ(logged(), "leave 3,3>-1,-1 sheet 1") << "the cursor stands at the same place there";
    EXPECT_TRUE(control.hasFocus());
    holdsCursor = true;
    clickTab(3);
    EXPECT_EQ(names(), "*Sheet1 Sheet2 Sheet3") << "held up";
    holdsCursor = false;
    type("12");
    logged();
    clickTab(2);
    EXPECT_EQ(logged(), "changed 3,3 leave 3,3>-1,-1 sheet 2") << "what was typed is entered first";
    clickTab(1);
    type("=1+2)"); // no formula, and no place for a reference
    clickTab(2);
    EXPECT_EQ(names(), "*Sheet1 Sheet2 Sheet3");
    EXPECT_EQ(edited(), "=1+2)");
    QTest::mouseDClick(&bar(), Qt::LeftButton, {}, tab(1));
    EXPECT_FALSE(nameField().isVisible());
    chooseInMenu(1, 3);
    EXPECT_EQ(control.cells().sheetCount(), 3) << "first the formula is to be mended";
    EXPECT_EQ(edited(), "=1+2)");
    key(Qt::Key_Escape);
    EXPECT_EQ(shown("C3"), "12");
}

TEST_F(Tabs, AnEntryGoesOnOverAnotherSheetAndComesBackWhenItEnds)
{
    const std::tuple<const char*, std::function<void()>, const char*> ends[] = {
        {"a heading", [&] { click(columnHeading("B2")); }, "C3 in C3"},
        {"a cell", [&] { click("D4"); }, "C3 in C3"},
        {"Enter", [&] { key(Qt::Key_Return); }, "C4 in C4"},
        {"a key that selects", [&] { key(Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier); },
         "C3 in C3:C100"},
    };
    for (const auto& [what, end, goal] : ends) {
        click("C3");
        type("=1+");
        clickTab(2);
        click("B2");
        type("*5"); // no place for a reference any more
        EXPECT_EQ(edited(), "=1+Sheet2!B2*5") << what;
        end();
        EXPECT_EQ(names(), "*Sheet1 Sheet2 Sheet3") << what;
        EXPECT_EQ(cursor(), goal) << what;
        EXPECT_EQ(formula("C3"), "1+Sheet2!B2*5") << what;
        sheet().setText({3, 3}, "");
    }
}

TEST_F(Tabs, SheetsAreAddedAndRenamedInPlace)
{
    QTest::mouseClick(control.findChild<QToolButton*>("addSheet"), Qt::LeftButton);
    EXPECT_EQ(names(), "Sheet1 Sheet2 Sheet3 *Sheet4");
    rename(2, QStringLiteral("利润表"), Qt::Key_Return);
    EXPECT_EQ(names(), "Sheet1 *利润表 Sheet3 Sheet4");
    EXPECT_TRUE(control.hasFocus());
    rename(2, QStringLiteral("资产"), Qt::Key_Escape);
    EXPECT_EQ(names(), "Sheet1 *利润表 Sheet3 Sheet4");
    EXPECT_FALSE(nameField().isVisible());
    EXPECT_TRUE(control.hasFocus());
    for (const char* bad : {"sheet1", "a/b", "a*b", "[x]"}) {
        refusal.clear();
        rename(2, QString::fromLatin1(bad), Qt::Key_Return);
        EXPECT_EQ(names(), "Sheet1 *利润表 Sheet3 Sheet4") << bad;
        EXPECT_NE(refusal, "") << bad;
    }
    rename(1, QStringLiteral("资产"), Qt::Key_Return);
    QTest::mouseDClick(&bar(), Qt::LeftButton, {}, tab(3));
    nameField().insert("elsewhere");
    line.setFocus();
    EXPECT_EQ(names(), "*资产 利润表 elsewhere Sheet4") << "leaving the field keeps the name";
    EXPECT_TRUE(line.hasFocus());
    control.setFocus();
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "*Sheet1 Sheet2 Sheet3 Sheet4");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(control.cells().sheetCount(), 3);
}

TEST_F(Tabs, KeysOfARenamingDoNothingToTheCells)
{
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    } keys[] = {
        {Qt::Key_Minus, Qt::ControlModifier},
        {Qt::Key_9, Qt::ControlModifier},
        {Qt::Key_Down, {}},
        {Qt::Key_PageDown, {}},
        {Qt::Key_PageDown, Qt::ControlModifier},
        {Qt::Key_F11, Qt::ShiftModifier},
        {Qt::Key_Left, Qt::AltModifier},
        {Qt::Key_Return, {}},
    };
    clickTab(2);
    click("C3");
    logged();
    const int rows = control.cells().rowCount();
    for (const auto& [pressed, modifiers] : keys) {
        QTest::mouseDClick(&bar(), Qt::LeftButton, {}, tab(2));
        ASSERT_TRUE(nameField().hasFocus()) << pressed;
        QTest::keyClick(&nameField(), pressed, modifiers);
        EXPECT_EQ(nameField().isVisible(), pressed != Qt::Key_Return) << pressed;
        if (nameField().isVisible())
            QTest::keyClick(&nameField(), Qt::Key_Escape);
        EXPECT_TRUE(control.hasFocus()) << pressed;
        EXPECT_EQ(names(), "Sheet1 *Sheet2 Sheet3") << pressed;
        EXPECT_EQ(cursor(), "C3 in C3") << pressed;
        EXPECT_EQ(control.cells().rowCount(), rows) << pressed;
        EXPECT_TRUE(sheet().settings().rows.hidden.empty()) << pressed;
        EXPECT_EQ(logged(), "") << pressed;
    }
}

TEST_F(Tabs, TheRightButtonMeansNoCellsHereNorBetweenTheBars)
{
    control.setMovesByRightButton(true);
    click("C3");
    logged();
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        QTest::mouseClick(&bar(), button, {}, tab(2));
        QTest::mouseClick(control.findChild<QToolButton*>("addSheet"), button);
    }
    EXPECT_EQ(logged(), "");
    click(control.rect().bottomRight() - QPoint(3, 3), {}, Qt::RightButton);
    EXPECT_EQ(logged(), "down2 -1,-1");
    EXPECT_EQ(cursor(), "C3 in C3");
}

TEST_F(Tabs, DraggingMovesASheet)
{
    control.cells().workbook().sheet(1).setText({1, 1}, "first");
    ASSERT_FALSE(control.cells().workbook().sheet(2).setFormula({1, 1}, "Sheet1!A1"));
    clickTab(1);
    dragTab(1, 3);
    EXPECT_EQ(names(), "Sheet2 Sheet3 *Sheet1");
    EXPECT_EQ(shown("A1"), "first");
    EXPECT_EQ(control.cells().workbook().sheet(1).formula({1, 1}), "Sheet1!A1");
    dragTab(2, 1);
    EXPECT_EQ(names(), "*Sheet3 Sheet2 Sheet1");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "Sheet2 *Sheet3 Sheet1");
    control.setMode(GridMode::run);
    dragTab(1, 3);
    EXPECT_EQ(names(), "*Sheet2 Sheet3 Sheet1") << "in run mode they only show sheets";
}

TEST_F(Tabs, TheMenuDeletesAfterAQuestion)
{
    ASSERT_FALSE(control.cells().workbook().sheet(1).setFormula({1, 1}, "Sheet2!A1+1"));
    control.cells().workbook().sheet(2).setNumber({1, 1}, 4);
    control.cells().workbook().recalculateChanged();
    answer = false;
    chooseInMenu(2, 3);
    EXPECT_NE(question.find("Sheet2"), std::string::npos) << question;
    EXPECT_EQ(names(), "*Sheet1 Sheet2 Sheet3");
    answer = true;
    chooseInMenu(2, 3);
    EXPECT_EQ(names(), "*Sheet1 Sheet3");
    EXPECT_EQ(shown("A1"), "#REF!");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), "Sheet1 *Sheet2 Sheet3") << "what came back is shown";
    clickTab(1);
    EXPECT_EQ(shown("A1"), "5") << "its readers are back too";
    chooseInMenu(3, 2);
    ASSERT_TRUE(nameField().isVisible());
    nameField().insert("x");
    QTest::keyClick(&nameField(), Qt::Key_Return);
    EXPECT_EQ(names(), "*Sheet1 Sheet2 x");
    chooseInMenu(1, 3);
    EXPECT_EQ(names(), "*Sheet2 x") << "the one that was shown";
    chooseInMenu(1, 3);
    question.clear();
    refusal.clear();
    chooseInMenu(1, 3);
    EXPECT_EQ(names(), "*x") << "the last one stays";
    EXPECT_EQ(question, "");
    EXPECT_NE(refusal, "");
}

} // namespace spreadsheet
