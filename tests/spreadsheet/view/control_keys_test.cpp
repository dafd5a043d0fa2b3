// Keys beyond moving and typing, in the cells and in the editor; keys that are the window's.
#include "tests/spreadsheet/view/ControlTest.h"

#include <QDateTime>
#include <QImage>
#include <QLabel>
#include <QShortcut>

namespace spreadsheet {

namespace {

constexpr Qt::KeyboardModifiers ctrl = Qt::ControlModifier, shift = Qt::ShiftModifier, alt = Qt::AltModifier;

} // namespace

TEST_F(ControlTest, KeysOfTheWindowReachItFromCellsAndEditor)
{
    std::string reached;
    for (const char* keys : {"Ctrl+G", "Ctrl+J", "Ctrl+N", "Ctrl+O", "Ctrl+S", "Ctrl+1", "Ctrl+B", "Ctrl+F",
                             "Ctrl+H", "Ctrl+I", "Ctrl+P", "Ctrl+U", "F5", "F7"}) {
        auto* shortcut = new QShortcut(QKeySequence(QString::fromLatin1(keys)), &window);
        QObject::connect(shortcut, &QShortcut::activated,
                         [&reached, keys] { reached += std::string(keys) + " "; });
    }
    const std::pair<int, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_G, ctrl}, {Qt::Key_J, ctrl}, {Qt::Key_N, ctrl}, {Qt::Key_O, ctrl}, {Qt::Key_S, ctrl},
        {Qt::Key_1, ctrl}, {Qt::Key_B, ctrl}, {Qt::Key_F, ctrl}, {Qt::Key_H, ctrl}, {Qt::Key_I, ctrl},
        {Qt::Key_P, ctrl}, {Qt::Key_U, ctrl}, {Qt::Key_F5, {}},  {Qt::Key_F7, {}}};
    const std::string all =
        "Ctrl+G Ctrl+J Ctrl+N Ctrl+O Ctrl+S Ctrl+1 Ctrl+B Ctrl+F Ctrl+H Ctrl+I Ctrl+P Ctrl+U F5 F7 ";
    for (const auto& [pressed, modifiers] : keys)
        key(pressed, modifiers);
    EXPECT_EQ(reached, all);
    EXPECT_FALSE(control.entry().isOpen());
    reached.clear();
    type("=1+2");
    for (const auto& [pressed, modifiers] : keys)
        key(pressed, modifiers);
    EXPECT_EQ(reached, all) << "from the editor";
    EXPECT_EQ(edited(), "=1+2");
    // Without a shortcut of the window they still do nothing.
    for (auto* shortcut : window.findChildren<QShortcut*>())
        delete shortcut;
    for (const int pressed :
         {Qt::Key_B, Qt::Key_G, Qt::Key_I, Qt::Key_J, Qt::Key_N, Qt::Key_O, Qt::Key_P, Qt::Key_S, Qt::Key_U})
        key(pressed, ctrl);
    EXPECT_EQ(edited(), "=1+2");
}

TEST_F(ControlTest, TheDateAndTheTimeAreTypedByAKey)
{
    const QDateTime before = QDateTime::currentDateTime();
    key(Qt::Key_Semicolon, ctrl);
    EXPECT_TRUE(control.entry().isOpen()) << "it may still be changed";
    key(Qt::Key_Tab);
    key(Qt::Key_Colon, ctrl | shift);
    key(Qt::Key_Tab);
    type("'at ");
    key(Qt::Key_Semicolon, ctrl);
    key(Qt::Key_Return);
    const QDateTime after = QDateTime::currentDateTime();
    const auto isNow = [&](const std::string& text, const char* format) {
        return text == before.toString(format).toStdString() || text == after.toString(format).toStdString();
    };
    EXPECT_PRED2(isNow, shown("A1"), "yyyy-MM-dd");
    EXPECT_EQ(sheet().style({1, 1}).type, CellType::date);
    EXPECT_PRED2(isNow, shown("B1"), "HH:mm:00");
    EXPECT_EQ(sheet().style({2, 1}).type, CellType::time);
    EXPECT_PRED2(isNow, shown("C1"), "'at 'yyyy-MM-dd");
    control.setMode(GridMode::run);
    click("D1");
    refusal.clear();
    key(Qt::Key_Semicolon, ctrl);
    EXPECT_FALSE(control.entry().isOpen());
    EXPECT_NE(refusal, "");
}

TEST_F(ControlTest, ASumIsProposedOfWhatStandsBefore)
{
    for (const auto& [cell, number] : {std::pair{"B2", 1.0}, {"B3", 2.0}, {"B4", 3.0}, {"C3", 4.0}})
        sheet().setNumber(*parseCellName(cell), number);
    put("B1", "金额");
    const std::pair<const char*, const char*> cases[] = {
        {"B5", "=SUM(B2:B4)"}, {"D3", "=SUM(B3:C3)"}, {"C4", "=SUM(C3)"}, {"F9", "=SUM("}, {"A1", "=SUM("}};
    for (const auto& [cell, proposed] : cases) {
        click(cell);
        key(Qt::Key_Equal, alt);
        EXPECT_EQ(edited(), proposed) << cell;
        control.entry().cancel();
    }
    click("F9");
    key(Qt::Key_Equal, alt);
    drag(centre("B2"), centre("B3"));
    EXPECT_EQ(edited(), "=SUM(B2:B3") << "the mouse points where nothing was proposed";
    type(")");
    key(Qt::Key_Return);
    EXPECT_EQ(shown("F9"), "3");
}

TEST_F(ControlTest, SelectionsGrowToTheBlockAndShrinkToTheCell)
{
    for (const char* cell : {"B2", "C3", "D2", "H9"})
        put(cell, "x");
    click("C3");
    key(Qt::Key_Asterisk, ctrl | shift);
    EXPECT_EQ(cursor(), "C3 in B2:D3");
    key(Qt::Key_Backspace, shift);
    EXPECT_EQ(cursor(), "C3 in C3");
    click(columnHeading("C1"));
    click(columnHeading("E1"), ctrl);
    key(Qt::Key_Backspace, shift);
    EXPECT_EQ(cursor(), "E1 in E1");
    control.cursor().setTopLeftCell({1, 50});
    key(Qt::Key_Backspace, ctrl);
    EXPECT_FALSE(control.cellRect({5, 1}).isEmpty()) << "back in sight";
    EXPECT_FALSE(control.entry().isOpen());
    key(Qt::Key_F11, shift);
    EXPECT_EQ(control.cells().sheetCount(), 2);
}

TEST_F(ControlTest, KeysInTheEditor)
{
    struct Press {
        int key;
        Qt::KeyboardModifiers modifiers = {};
    };
    const struct {
        const char* begins; ///< with F2
        std::vector<Press> presses;
        const char *edited, *last;
        Qt::KeyboardModifiers modifiers;
        const char *shown, *cursor;
    } cases[] = {
        {"abc def", {{Qt::Key_Home}, {Qt::Key_Delete}}, "bc def", "Return", {}, "bc def", "B3 in B3"},
        {"abc def",
         {{Qt::Key_Home}, {Qt::Key_Right, ctrl}, {Qt::Key_Delete, ctrl}},
         "abc ",
         "Return",
         {},
         "abc ",
         "B3 in B3"},
        {"abc def", {{Qt::Key_Backspace, ctrl}}, "abc ", "Tab", {}, "abc ", "C2 in C2"},
        {"a", {{Qt::Key_Return, alt}, {Qt::Key_Z}}, "a\nz", "Return", shift, "a\nz", "B1 in B1"},
        {"abc", {{Qt::Key_A, ctrl}, {Qt::Key_Z}}, "z", "Backtab", shift, "z", "A2 in A2"},
        {"abc", {{Qt::Key_Z, shift}, {Qt::Key_Z, ctrl}}, "abc", "Esc", {}, "abc", "B2 in B2"},
        {"abc",
         {{Qt::Key_Home, shift}, {Qt::Key_X, ctrl}, {Qt::Key_V, ctrl}, {Qt::Key_V, ctrl}},
         "abcabc",
         "Return",
         {},
         "abcabc",
         "B3 in B3"},
        {"5", {{Qt::Key_F2}}, "5", "Right", {}, "5", "C2 in C2"},
    };
    for (const auto& c : cases) {
        click("B2");
        type(c.begins);
        key(Qt::Key_Return);
        click("B2");
        key(Qt::Key_F2);
        for (const Press& press : c.presses)
            key(press.key, press.modifiers);
        EXPECT_EQ(edited(), c.edited) << c.begins;
        key(QKeySequence::fromString(QString::fromLatin1(c.last))[0].key(), c.modifiers);
        EXPECT_EQ(edited(), "closed") << c.edited;
        EXPECT_EQ(shown("B2"), c.shown);
        EXPECT_EQ(cursor(), c.cursor) << c.edited;
    }
}

TEST_F(ControlTest, FunctionsAreOfferedAndExplainedWhileAFormulaIsTyped)
{
    click("B2");
    type("=sumi");
    auto* const names = control.findChild<QWidget*>("formulaCompletions");
    ASSERT_NE(names, nullptr);
    EXPECT_TRUE(names->isVisible());
    key(Qt::Key_Down);
    key(Qt::Key_Up);
    key(Qt::Key_Tab);
    EXPECT_EQ(edited(), "=SUMIF(");
    auto* const hint = control.findChild<QLabel*>("formulaHint");
    ASSERT_NE(hint, nullptr);
    EXPECT_TRUE(hint->isVisible());
    const QString first = hint->text();
    drag(centre("D1"), centre("D3"));
    EXPECT_EQ(edited(), "=SUMIF(D1:D3");
    type(",");
    EXPECT_NE(hint->text(), first) << "the next argument is told";
    type("\">0\")");
    EXPECT_FALSE(hint->isVisible()) << "behind the call";
    key(Qt::Key_Return);
    EXPECT_EQ(formula("B2"), "SUMIF(D1:D3,\">0\")");
    EXPECT_FALSE(names->isVisible());
}

TEST_F(ControlTest, WhatAFormulaPointsAtIsFramedInItsColour)
{
    const auto colourAt = [this](const char* cell) {
        const QRect rect = control.cellRect(*parseCellName(cell));
        const QImage picture = control.grab().toImage();
        return picture.pixelColor(rect.left() - 1, rect.center().y());
    };
    control.showChanges();
    const QColor plain = colourAt("E5");
    click("B2");
    type("=");
    key(Qt::Key_Right);
    key(Qt::Key_Right);
    for (int step = 0; step < 3; ++step)
        key(Qt::Key_Down);
    key(Qt::Key_Right);
    EXPECT_EQ(edited(), "=E5");
    const QColor first = colourAt("E5");
    EXPECT_NE(first, plain);
    key(Qt::Key_Down, shift);
    EXPECT_EQ(edited(), "=E5:E6");
    for (const char* text : {"=$E$5:$E$6", "=E$5:E$6", "=$E5:$E6", "=E5:E6"}) {
        key(Qt::Key_F4);
        EXPECT_EQ(edited(), text);
    }
    type("+");
    click("G8");
    EXPECT_EQ(edited(), "=E5:E6+G8");
    EXPECT_NE(colourAt("G8"), plain);
    EXPECT_NE(colourAt("G8"), first) << "each reference has a colour of its own";
    type("+");
    key(Qt::Key_F2); // arrows move in the text
    key(Qt::Key_Left);
    EXPECT_EQ(edited(), "=E5:E6+G8+");
    key(Qt::Key_End);
    key(Qt::Key_F2); // and point again
    key(Qt::Key_Down);
    EXPECT_EQ(edited(), "=E5:E6+G8+B3");
    key(Qt::Key_Escape);
    EXPECT_EQ(colourAt("E5"), plain);
    EXPECT_EQ(cursor(), "B2 in B2");
}

TEST_F(ControlTest, CellsOfOtherSheetsArePointedAtByKeys)
{
    demand(control.cells().setSheetCount(2));
    control.cells().workbook().sheet(2).setNumber({1, 2}, 9);
    control.showChanges();
    click("C3");
    type("=2*");
    key(Qt::Key_PageDown, ctrl);
    ASSERT_EQ(control.cells().activeSheet(), 2);
    EXPECT_TRUE(control.entry().isOpen());
    key(Qt::Key_Down);
    EXPECT_EQ(edited(), "=2*Sheet2!A2");
    key(Qt::Key_Return);
    EXPECT_EQ(control.cells().activeSheet(), 1);
    EXPECT_EQ(shown("C3"), "18");
    EXPECT_EQ(cursor(), "C4 in C4");
    type("5");
    key(Qt::Key_PageDown, ctrl);
    EXPECT_EQ(control.cells().activeSheet(), 2) << "an entry that takes no reference ends";
    EXPECT_EQ(control.cells().workbook().sheet(1).displayText({3, 4}), "5");
}

} // namespace spreadsheet
