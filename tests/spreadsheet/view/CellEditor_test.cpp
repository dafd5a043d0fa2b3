#include "spreadsheet/view/CellEditor.h"

#include "spreadsheet/workbook/Workbook.h"

#include <gtest/gtest.h>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

namespace spreadsheet {

namespace {

struct Editor : testing::Test {
    Editor()
    {
        workbook.registerFunction("Acct", 6, [](FunctionCall&) {});
        workbook.registerFunction("Stocks", 2, [](FunctionCall&) {});
        hints.describe("Acct", "科目,取数类型,货币,年度,起始期间,截止期间", "总账取数公式");
        window.resize(600, 300);
        window.show();
        window.activateWindow();
        QObject::connect(&editor, &CellEditor::commitRequested, [this](const QKeyEvent* event) {
            events += "commit " + QKeySequence(event->keyCombination()).toString() + ";";
        });
        QObject::connect(&editor, &CellEditor::pointingKey, [this](int key, Qt::KeyboardModifiers) {
            events += "point " + QKeySequence(key).toString() + ";";
        });
        QObject::connect(&editor, &CellEditor::cancelled, [this] { events += "cancel;"; });
    }
    void open(const QString& text, CellEditor::Mode mode)
    {
        events.clear();
        editor.open({&workbook, 1, {2, 2}}, text, mode, {100, 50, 80, 20}, {0, 0, 600, 300});
        editor.setFocus();
        ASSERT_TRUE(QTest::qWaitFor([this] { return editor.hasFocus(); }));
    }
    void key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&editor, Qt::Key(key), modifiers);
    }
    QListWidget& names() { return *editor.findChild<QListWidget*>("formulaCompletions"); }
    QLabel& hint() { return *editor.findChild<QLabel*>("formulaHint"); }
    QLabel& problem() { return *window.findChild<QLabel*>("editorProblem"); }
    std::string text() { return editor.toPlainText().toStdString(); }

    Workbook workbook;
    FunctionHints hints;
    QWidget window;
    CellEditor editor{&window, hints};
    QString events;
};

} // namespace

TEST_F(Editor, KeysEndTheEntryOrMoveInTheTextByMode)
{
    struct Case {
        CellEditor::Mode mode;
        const char* text;
        int key;
        Qt::KeyboardModifiers modifiers;
        const char* events;
    };
    const auto enter = CellEditor::Mode::enter, edit = CellEditor::Mode::edit;
    const Case cases[] = {
        {enter, "12", Qt::Key_Return, {}, "commit Return;"},
        {edit, "12", Qt::Key_Return, Qt::ShiftModifier, "commit Shift+Return;"},
        {edit, "12", Qt::Key_Tab, {}, "commit Tab;"},
        {edit, "12", Qt::Key_Backtab, Qt::ShiftModifier, "commit Shift+Backtab;"},
        {enter, "12", Qt::Key_Left, {}, "commit Left;"},
        {edit, "12", Qt::Key_Left, {}, ""},
        {enter, "=12+", Qt::Key_Up, {}, "point Up;"},
        {enter, "=12", Qt::Key_PageDown, {}, "commit PgDown;"},
        {edit, "=12+", Qt::Key_Up, {}, ""},
        {edit, "12", Qt::Key_Escape, {}, "cancel;"},
        {edit, "12", Qt::Key_Return, Qt::AltModifier, ""},
        {edit, "12", Qt::Key_Delete, {}, ""},
    };
    for (const Case& c : cases) {
        open(c.text, c.mode);
        key(c.key, c.modifiers);
        EXPECT_EQ(events.toStdString(), c.events) << c.text << " " << c.key;
    }
    open("a", edit);
    key(Qt::Key_Return, Qt::AltModifier);
    QTest::keyClicks(&editor, "b");
    EXPECT_EQ(text(), "a\nb");
    EXPECT_GT(editor.height(), 22);
    open("=1+", edit);
    key(Qt::Key_F2);
    key(Qt::Key_Left);
    EXPECT_EQ(events.toStdString(), "point Left;") << "F2 changes over to pointing";
}

TEST_F(Editor, KeysOfTheWindowGoOnToIt)
{
    struct Receiver : QWidget {
        void keyPressEvent(QKeyEvent* event) override
        {
            if (event->key() != Qt::Key_Control)
                keys += QKeySequence(event->key()).toString();
        }
        QString keys;
    } receiver;
    CellEditor inner(&receiver, hints);
    inner.open({&workbook, 1, {1, 1}}, "12", CellEditor::Mode::edit, {0, 0, 80, 20}, {0, 0, 600, 300});
    for (const Qt::Key each : {Qt::Key_G, Qt::Key_J, Qt::Key_N, Qt::Key_O, Qt::Key_S})
        QTest::keyClick(&inner, each, Qt::ControlModifier);
    EXPECT_EQ(receiver.keys.toStdString(), "GJNOS");
    EXPECT_EQ(inner.toPlainText(), "12");
}

TEST_F(Editor, GrowsWithItsTextToTheLimits)
{
    open("1", CellEditor::Mode::edit);
    EXPECT_EQ(editor.size(), QSize(82, 22)) << "the cell and a frame around it";
    QTest::keyClicks(&editor, QString(30, 'm'));
    EXPECT_GT(editor.width(), 82);
    EXPECT_LE(editor.geometry().right(), 600);
    QTest::keyClicks(&editor, QString(120, 'm'));
    EXPECT_LE(editor.geometry().right(), 600);
    EXPECT_GT(editor.height(), 22) << "wraps beyond the limit";
}

TEST_F(Editor, NamesAreOfferedWhileTypingAndTakenByTab)
{
    open("", CellEditor::Mode::enter);
    QTest::keyClicks(&editor, "=s");
    ASSERT_TRUE(names().isVisible());
    EXPECT_EQ(names().item(0)->text(), "Stocks") << "registered ones come first";
    QTest::keyClicks(&editor, "um");
    EXPECT_EQ(names().item(0)->text(), "SUM");
    key(Qt::Key_Down);
    EXPECT_EQ(names().currentItem()->text(), "SUMIF");
    key(Qt::Key_Up);
    key(Qt::Key_Tab);
    EXPECT_EQ(text(), "=SUM(");
    EXPECT_FALSE(names().isVisible());
    EXPECT_TRUE(hint().isVisible());
    EXPECT_TRUE(hint().text().contains("<b>数值1</b>")) << hint().text().toStdString();
    QTest::keyClicks(&editor, "1,2,");
    EXPECT_TRUE(hint().text().contains("<b>[数值2,…]</b>")) << hint().text().toStdString();
    QTest::keyClicks(&editor, "ac");
    key(Qt::Key_Escape);
    EXPECT_FALSE(hint().isVisible());
    EXPECT_TRUE(names().isVisible()) << "Esc closes one at a time";
    key(Qt::Key_Escape);
    EXPECT_FALSE(names().isVisible());
    EXPECT_EQ(events, "");
    QTest::keyClicks(&editor, "1,");
    EXPECT_FALSE(hint().isVisible()) << "not wanted in this call";
    QTest::keyClicks(&editor, "acct(\"1\",");
    EXPECT_TRUE(hint().isVisible());
    EXPECT_TRUE(hint().text().contains("<b>取数类型</b>"));
    open("", CellEditor::Mode::enter);
    QTest::keyClicks(&editor, "su");
    EXPECT_FALSE(names().isVisible()) << "no formula";
    open("", CellEditor::Mode::enter);
    QTest::keyClicks(&editor, "=su");
    key(Qt::Key_Return);
    EXPECT_EQ(events.toStdString(), "commit Return;") << "nothing chosen: the entry ends";
}

TEST_F(Editor, ReferencesHaveColoursInTextAndSheet)
{
    open("=A1+B2*a1", CellEditor::Mode::edit);
    const auto& cells = editor.assistant().colouredCells();
    ASSERT_EQ(cells.size(), 3U);
    EXPECT_EQ(cells[0].colour, cells[2].colour);
    EXPECT_NE(cells[0].colour, cells[1].colour);
    EXPECT_EQ(editor.extraSelections()[1].cursor.selectedText(), "B2");
    EXPECT_EQ(editor.extraSelections()[1].format.foreground().color(), cells[1].colour);
    key(Qt::Key_F4);
    EXPECT_EQ(text(), "=A1+B2*$a$1");
}

TEST_F(Editor, AProblemMarksItsPlaceUntilTheTextChanges)
{
    open("=SUM(1,,)+", CellEditor::Mode::edit);
    editor.showProblem("公式不完整", 10);
    EXPECT_TRUE(problem().isVisible());
    EXPECT_EQ(problem().text(), "公式不完整");
    ASSERT_FALSE(editor.extraSelections().isEmpty());
    EXPECT_EQ(editor.extraSelections().back().format.underlineStyle(), QTextCharFormat::WaveUnderline);
    EXPECT_EQ(editor.extraSelections().back().cursor.selectedText(), "+");
    EXPECT_EQ(editor.textCursor().position(), 10);
    QTest::keyClicks(&editor, "1");
    EXPECT_FALSE(problem().isVisible());
    EXPECT_TRUE(editor.extraSelections().isEmpty());
}

TEST_F(Editor, ComposingShowsInTheEditorWithoutItsHavingTheFocus)
{
    window.setFocusPolicy(Qt::StrongFocus);
    editor.open({&workbook, 1, {2, 2}}, "", CellEditor::Mode::enter, {100, 50, 80, 20}, {0, 0, 600, 300});
    window.setFocus();
    QInputMethodEvent composing("yingshou", {});
    editor.compose(&composing);
    EXPECT_TRUE(editor.isComposing());
    EXPECT_EQ(editor.textCursor().block().layout()->preeditAreaText(), "yingshou");
    EXPECT_EQ(text(), "");
    QInputMethodEvent done;
    done.setCommitString("应收");
    editor.compose(&done);
    EXPECT_FALSE(editor.isComposing());
    EXPECT_EQ(text(), "应收");
}

TEST_F(Editor, TheAssistantHelpsALineEditAsWell)
{
    QLineEdit line(&window);
    FormulaAssistant assistant(line, hints);
    line.show();
    line.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return line.hasFocus(); }));
    assistant.setContext({&workbook, 1, {2, 2}, true});
    QTest::keyClicks(&line, "sum");
    auto& offered = *line.findChild<QListWidget*>("formulaCompletions");
    ASSERT_TRUE(offered.isVisible());
    QTest::keyClick(&line, Qt::Key_Tab);
    EXPECT_EQ(line.text(), "SUM(");
    ASSERT_TRUE(assistant.canPoint());
    assistant.point({1, {1, 1}, {1, 1}});
    assistant.point({1, {1, 1}, {2, 3}});
    QTest::keyClick(&line, Qt::Key_F4);
    EXPECT_EQ(line.text(), "SUM($A$1:$B$3");
    EXPECT_EQ(assistant.colouredCells().size(), 1U);
    line.undo();
    EXPECT_NE(line.text(), "SUM($A$1:$B$3") << "the line's own undo lives on";
}

} // namespace spreadsheet
