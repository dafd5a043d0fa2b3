#include "spreadsheet/view/CellEditor.h"
#include "spreadsheet/view/SpreadsheetControl.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>

namespace spreadsheet {

namespace {

/// The control in a window beside a line edit, driven by events alone.
struct ControlEditing : testing::Test {
    ControlEditing()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&line);
        layout->addWidget(&control);
        window.resize(800, 500);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        control.setFocus();
        QObject::connect(&control, &SpreadsheetControl::refused,
                         [this](const QString& why) { refusal = why; });
        QObject::connect(&control, &SpreadsheetControl::editModeChanged, [this](bool on, bool changed) {
            modes += on ? "+" : changed ? "*" : "-";
        });
        control.ask = [this](const QString& asked) {
            question = asked;
            return answer;
        };
    }

    /// To whatever has the focus, as a keyboard does.
    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
    }
    void type(const QString& text)
    {
        for (const QChar c : text)
            QTest::keyClick(QApplication::focusWidget(), c.toLatin1());
    }
    void click(CellAddress cell, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(&control, Qt::LeftButton, modifiers, control.cellRect(cell).center());
    }
    void drag(CellAddress from, CellAddress to)
    {
        QTest::mousePress(&control, Qt::LeftButton, {}, control.cellRect(from).center());
        QTest::mouseMove(&control, control.cellRect(to).center());
        QTest::mouseRelease(&control, Qt::LeftButton, {}, control.cellRect(to).center());
    }
    Sheet& sheet() { return control.cells().workbook().sheet(1); }
    std::string shown(CellAddress cell) { return sheet().displayText(cell); }
    CellEditor* editor() { return control.findChild<CellEditor*>("cellEditor"); }
    std::string edited() { return editor() ? editor()->toPlainText().toStdString() : "closed"; }

    QWidget window;
    QLineEdit line;
    SpreadsheetControl control;
    QString refusal, question, modes;
    bool answer = true;
};

} // namespace

/// Two steps of 270 twips, 15 of which are a pixel.
TEST_F(ControlEditing, TypedTextsBeginBehindTheIndent)
{
    using enum HorizontalAlignment;
    const struct {
        HorizontalAlignment alignment;
        int pixels;
    } cases[]{{left, 36}, {general, 36}, {right, 0}, {centre, 0}};
    sheet().setText({1, 1}, "目");
    for (const auto& c : cases) {
        sheet().restyle({1, 1, 1, 1}, [&](CellStyle& style) {
            style.horizontal = c.alignment;
            style.carried.indent = 2;
        });
        control.cursor().setActiveCell(1, 1);
        control.setZoom(1);
        key(Qt::Key_F2);
        ASSERT_TRUE(editor());
        const int plain = editor()->viewport()->x() - c.pixels;
        EXPECT_LE(std::abs(plain), 2) << int(c.alignment);
        control.setZoom(2);
        EXPECT_EQ(editor()->viewport()->x(), plain + 2 * c.pixels);
        key(Qt::Key_Escape);
    }
}

TEST_F(ControlEditing, TypingEntersAndKeysMoveOn)
{
    type("12.5");
    ASSERT_TRUE(control.entry().isOpen());
    EXPECT_EQ(edited(), "12.5");
    key(Qt::Key_Return);
    EXPECT_EQ(shown({1, 1}), "12.5");
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{1, 2}));
    type("a");
    key(Qt::Key_Tab);
    type("b");
    key(Qt::Key_Left);
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{1, 2}))
        << "arrow keys end an entry begun by typing";
    EXPECT_EQ(shown({1, 2}) + shown({2, 2}), "ab");
    key(Qt::Key_F2);
    key(Qt::Key_Home);
    type("x");
    EXPECT_EQ(edited(), "xa");
    key(Qt::Key_Escape);
    EXPECT_EQ(shown({1, 2}), "a");
    QTest::mouseDClick(&control, Qt::LeftButton, {}, control.cellRect({1, 2}).center());
    key(Qt::Key_Return, Qt::AltModifier);
    type("c");
    key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(shown({1, 2}), "a\nc");
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{1, 1}));
    EXPECT_EQ(modes, "+*+*+*+-+*");
    EXPECT_TRUE(control.hasFocus());
    key(Qt::Key_Delete);
    EXPECT_EQ(shown({1, 1}), "");
    for (int step = 0; step < 5; ++step)
        key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(sheet().lastDataRow(), 0);
    key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(shown({1, 1}), "12.5");
}

TEST_F(ControlEditing, ACellForTextsGoesOnWithWhatItHolds)
{
    sheet().restyle({1, 1, 1, 1}, [](CellStyle& style) { style.numberFormat = Text("@"); });
    type("01");
    key(Qt::Key_Return);
    click({1, 1});
    key(Qt::Key_F2);
    type("2");
    key(Qt::Key_Return);
    EXPECT_EQ(shown({1, 1}), "012");
}

TEST_F(ControlEditing, OpenedAndLeftAsItWasIsNoEdit)
{
    sheet().setText({1, 1}, "007");
    const auto before = control.cells().workbook().revision();
    key(Qt::Key_F2);
    EXPECT_EQ(edited(), "'007");
    key(Qt::Key_Return);
    EXPECT_EQ(control.cells().workbook().revision(), before);
    EXPECT_EQ(modes, "+-");
}

TEST_F(ControlEditing, ReferencesAreTakenByArrowKeysAndMouse)
{
    sheet().setNumber({1, 1}, 3);
    sheet().setNumber({1, 2}, 4);
    control.cursor().setActiveCell(3, 3);
    type("=");
    key(Qt::Key_Up);
    EXPECT_EQ(edited(), "=C2");
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_EQ(edited(), "=A2");
    key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(edited(), "=A1:A2");
    key(Qt::Key_Escape);
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{3, 3}));
    type("=sum(");
    drag({1, 1}, {1, 2});
    EXPECT_EQ(edited(), "=sum(A1:A2");
    type(")*");
    click({1, 2});
    key(Qt::Key_F4);
    EXPECT_EQ(edited(), "=sum(A1:A2)*$A$2");
    key(Qt::Key_Return);
    EXPECT_EQ(shown({3, 3}), "28");
    type("5");
    click({1, 1});
    EXPECT_EQ(shown({3, 4}), "5") << "no reference can stand there: the click ends the entry";
    EXPECT_EQ(control.cursor().activeCell(), (CellAddress{1, 1}));
}

TEST_F(ControlEditing, HeadingsGiveWholeRowsAndColumns)
{
    const auto columnHeading = [this](int column) {
        return QPoint(control.cellRect({column, 1}).center().x(), 5);
    };
    const auto rowHeading = [this](int row) { return QPoint(5, control.cellRect({1, row}).center().y()); };
    const struct {
        const char* typed;
        QPoint from, to;
        const char* edited;
    } cases[] = {
        {"=sum(", columnHeading(1), columnHeading(1), "=sum(A:A"},
        {"=sum(", columnHeading(3), columnHeading(1), "=sum(A:C"},
        {"=sum(", rowHeading(4), rowHeading(4), "=sum(4:4"},
        {"=2*sum(", rowHeading(4), rowHeading(6), "=2*sum(4:6"},
        {"=",
         {control.cellRect({2, 1}).right(), 5},
         {control.cellRect({2, 1}).right(), 5},
         "=B:B"}, // its edge
    };
    control.cursor().setActiveCell(5, 10);
    for (const auto& [typed, from, to, expected] : cases) {
        type(typed);
        QTest::mousePress(&control, Qt::LeftButton, {}, from);
        QTest::mouseMove(&control, to);
        QTest::mouseRelease(&control, Qt::LeftButton, {}, to);
        EXPECT_EQ(edited(), expected);
        control.entry().cancel();
        EXPECT_EQ(control.cursor().activeCell(), (CellAddress{5, 10}));
    }
    sheet().setNumber({1, 1}, 2);
    sheet().setNumber({1, 500}, 5);
    type("=sum(");
    QTest::mouseClick(&control, Qt::LeftButton, {}, columnHeading(1));
    type(")");
    key(Qt::Key_Return);
    EXPECT_EQ(shown({5, 10}), "7");
    type("5");
    QTest::mouseClick(&control, Qt::LeftButton, {}, columnHeading(2));
    EXPECT_EQ(shown({5, 11}), "5") << "where no reference can stand, a heading selects";
    EXPECT_EQ(control.cursor().firstRange(), (CellRange{2, 1, 2, 500}));
}

TEST_F(ControlEditing, CellsOfOtherSheetsAreTakenThroughTheirTabs)
{
    ASSERT_FALSE(control.cells().workbook().addSheet("二月"));
    control.cells().workbook().sheet(2).setNumber({2, 2}, 9);
    control.showChanges();
    type("=");
    key(Qt::Key_PageDown, Qt::ControlModifier);
    if (control.cells().activeSheet() == 1) { // the tab itself
        auto* tabs = control.findChild<QTabBar*>();
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    }
    ASSERT_EQ(control.cells().activeSheet(), 2);
    ASSERT_TRUE(control.entry().isOpen());
    click({2, 2});
    EXPECT_EQ(edited(), "=二月!B2");
    key(Qt::Key_Return);
    EXPECT_EQ(control.cells().activeSheet(), 1);
    EXPECT_EQ(shown({1, 1}), "9");
}

TEST_F(ControlEditing, AFormulaThatDoesNotParseStaysOpenWithItsReason)
{
    sheet().setNumber({1, 1}, 5);
    type("=sum(1,2+");
    key(Qt::Key_Return);
    ASSERT_TRUE(control.entry().isOpen());
    auto& problem = *control.findChild<QLabel*>("editorProblem");
    EXPECT_TRUE(problem.isVisible());
    EXPECT_FALSE(problem.text().isEmpty());
    EXPECT_EQ(shown({1, 1}), "5");
    click({4, 4});
    EXPECT_TRUE(control.entry().isOpen()) << "nothing is lost by clicking elsewhere";
    EXPECT_EQ(edited(), "=sum(1,2+");
    key(Qt::Key_End); // the cursor stood at the mistake, and keys move in the text now
    type("3)");
    key(Qt::Key_Return);
    EXPECT_EQ(sheet().formula({1, 1}), "sum(1,2+3)");
}

TEST_F(ControlEditing, AnInputMethodBeginsWithItsFirstCharacter)
{
    QInputMethodEvent first("y", {});
    QCoreApplication::sendEvent(&control, &first);
    ASSERT_TRUE(control.entry().isOpen());
    EXPECT_TRUE(control.hasFocus()) << "moving the focus would end the composing";
    EXPECT_TRUE(
        control.cellRect({1, 1}).intersects(control.inputMethodQuery(Qt::ImCursorRectangle).toRect()));
    QInputMethodEvent more("yingshou", {});
    QCoreApplication::sendEvent(&control, &more);
    QInputMethodEvent done;
    done.setCommitString("应收");
    QCoreApplication::sendEvent(&control, &done);
    EXPECT_TRUE(editor()->hasFocus());
    key(Qt::Key_Return);
    EXPECT_EQ(shown({1, 1}), "应收");
}

TEST_F(ControlEditing, AnotherControlTakesTheFocusAndTheTextIsEntered)
{
    int left = 0;
    QObject::connect(&control, &SpreadsheetControl::leaveCell,
                     [&](int, int, int column, int) { left += column < 0; });
    type("7");
    line.setFocus();
    EXPECT_EQ(shown({1, 1}), "7");
    EXPECT_TRUE(line.hasFocus());
    EXPECT_EQ(left, 1);
}

TEST_F(ControlEditing, RunModeAndLocksRefuse)
{
    sheet().setText({1, 1}, "keep");
    sheet().restyle({1, 1, 1, 1}, [](CellStyle& style) { style.locked = true; });
    QApplication::clipboard()->setText("new");
    struct Case {
        int key;
        Qt::KeyboardModifiers modifiers;
    };
    const Case cases[] = {{Qt::Key_X, {}},
                          {Qt::Key_F2, {}},
                          {Qt::Key_Delete, {}},
                          {Qt::Key_V, Qt::ControlModifier},
                          {Qt::Key_X, Qt::ControlModifier}};
    for (const GridMode mode : {GridMode::edit, GridMode::run}) {
        control.setMode(mode);
        for (const Case& c : cases) {
            refusal.clear();
            key(c.key, c.modifiers);
            EXPECT_FALSE(control.entry().isOpen()) << c.key;
            EXPECT_FALSE(refusal.isEmpty()) << c.key;
            EXPECT_EQ(shown({1, 1}), "keep") << c.key;
        }
    }
}

TEST_F(ControlEditing, ControlEnterFillsTheSelection)
{
    control.cursor().select({2, 1, 2, 3});
    type("=A1*2");
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(sheet().formula({2, 3}), "A3*2");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(sheet().lastDataRow(), 0) << "one step";
    control.cursor().select({2, 1, 2, 2});
    type("=A1:A2*2");
    key(Qt::Key_Return, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(sheet().arrayRange({2, 2}), (CellRange{2, 1, 2, 2}));
    // Locked cells keep what they have.
    sheet().restyle({6, 2, 6, 2}, [](CellStyle& style) { style.locked = true; });
    for (const Qt::KeyboardModifiers modifiers :
         {Qt::KeyboardModifiers(Qt::ControlModifier), Qt::ControlModifier | Qt::ShiftModifier}) {
        control.cursor().select({6, 1, 6, 2});
        refusal.clear();
        type("=1+1");
        key(Qt::Key_Return, modifiers);
        EXPECT_FALSE(refusal.isEmpty());
        EXPECT_EQ(shown({6, 2}), "");
        key(Qt::Key_Escape);
    }
    // Neither spans nor lists of the goal change.
    control.cells().setCurrent(4, 2);
    control.cells().setDropDown({"甲"});
    control.cursor().select({4, 1, 4, 3});
    type("8");
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(shown({4, 2}), "8");
    EXPECT_EQ(control.cells().dropDown(), QStringList{"甲"});
    EXPECT_TRUE(sheet().settings().spans.empty());
}

TEST_F(ControlEditing, WhatControlEnterFillsIsAsIfTypedIntoEachCell)
{
    int column = 1;
    for (const char* text : {"2026-11-27", "5%", "￥5", "8:05", "25:30", "12", "５％", "TRUE", "应收"}) {
        const int filled = column++, single = column++;
        sheet().restyle({filled, 3, single, 3}, [](CellStyle& style) { style.type = CellType::number; });
        sheet().restyle({filled, 4, single, 4}, [](CellStyle& style) { style.numberFormat = Text("@"); });
        const auto enter = [&](const CellRange& range, Qt::KeyboardModifiers modifiers) {
            control.cursor().select(range);
            ASSERT_TRUE(control.entry().begin(EditStart::replace, QString::fromUtf8(text)));
            key(Qt::Key_Return, modifiers);
        };
        enter({filled, 1, filled, 4}, Qt::ControlModifier);
        for (int row = 1; row <= 4; ++row) {
            enter({single, row, single, row}, {});
            EXPECT_EQ(shown({filled, row}), shown({single, row})) << text << " in row " << row;
            EXPECT_EQ(sheet().style({filled, row}), sheet().style({single, row})) << text << ' ' << row;
            EXPECT_EQ(sheet().value({filled, row}), sheet().value({single, row})) << text << ' ' << row;
        }
    }
}

TEST_F(ControlEditing, ACutThatWasEditedSinceIsACopy)
{
    sheet().setText({1, 1}, "a");
    key(Qt::Key_X, Qt::ControlModifier);
    sheet().setText({5, 5}, "b");
    click({2, 2});
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(shown({1, 1}) + shown({2, 2}), "aa");
}

} // namespace spreadsheet
