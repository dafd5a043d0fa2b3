// Chinese input methods: what is composed, and what comes of it.
#include "spreadsheet/view/CellEditor.h"
#include "tests/spreadsheet/view/ControlTest.h"

#include <QTextBlock>
#include <QTextLayout>

namespace spreadsheet {

namespace {

class InputMethod : public ControlTest {
protected:
    /// To what has the focus, as an input method does.
    static void compose(const char* preedit)
    {
        QInputMethodEvent event(QString::fromUtf8(preedit), {});
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    static void commit(const char* text)
    {
        QInputMethodEvent event;
        event.setCommitString(QString::fromUtf8(text));
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    std::string composed() const
    {
        const auto* editor = control.findChild<QPlainTextEdit*>("cellEditor");
        return editor ? editor->textCursor().block().layout()->preeditAreaText().toStdString() : "closed";
    }
};

} // namespace

TEST_F(InputMethod, ComposingOpensTheEditorAndItsTextIsEntered)
{
    put("B2", "old");
    click("B2");
    logged();
    for (const char* preedit : {"y", "yi", "ying shou"}) {
        compose(preedit);
        EXPECT_EQ(composed(), preedit);
        EXPECT_EQ(edited(), "") << "the old content goes as with any typing";
        EXPECT_TRUE(control.hasFocus()) << "moving the focus would end the composing";
    }
    commit("应收");
    EXPECT_EQ(edited(), "应收");
    compose("zhang kuan");
    commit("账款");
    EXPECT_EQ(edited(), "应收账款");
    key(Qt::Key_Return);
    EXPECT_EQ(shown("B2"), "应收账款");
    EXPECT_EQ(cursor(), "B3 in B3");
    EXPECT_EQ(logged(), "changed 2,2 leave 2,2>2,3");
    commit("，"); // punctuation comes without composing
    commit("２");
    EXPECT_EQ(edited(), "，２");
    key(Qt::Key_Tab);
    EXPECT_EQ(shown("B3"), "，２");
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown("B2", "B3"), "old;");
}

TEST_F(InputMethod, WhatIsGivenUpLeavesTheCellAsItWas)
{
    put("B2", "old");
    click("B2");
    compose("hao");
    compose(""); // the input method was left with Esc
    key(Qt::Key_Escape);
    EXPECT_EQ(shown("B2"), "old");
    EXPECT_TRUE(control.hasFocus());
    compose("hao");
    commit("好");
    key(Qt::Key_Escape);
    EXPECT_EQ(shown("B2"), "old");
    key(Qt::Key_F2);
    compose("de");
    EXPECT_EQ(edited(), "old");
    EXPECT_EQ(composed(), "de");
    commit("的");
    key(Qt::Key_Home);
    commit("很");
    key(Qt::Key_Return);
    EXPECT_EQ(shown("B2"), "很old的");
}

TEST_F(InputMethod, FormulasTakeChineseNamesAndReferences)
{
    demand(control.cells().setSheetCount(2));
    demand(control.cells().workbook().renameSheet(2, "一月"));
    control.cells().workbook().sheet(2).setNumber({1, 1}, 7);
    control.showChanges();
    click("B2");
    type("=");
    compose("yi yue");
    commit("一月");
    type("!A1&\"");
    commit("元");
    type("\"");
    key(Qt::Key_Return);
    EXPECT_EQ(shown("B2"), "7元");
    type("=sum");
    commit("（"); // typed without leaving the input method
    click("C9");
    EXPECT_EQ(edited(), "=sum（C9");
    commit("，1）");
    key(Qt::Key_Return);
    EXPECT_EQ(shown("B3"), "1");
}

TEST_F(InputMethod, WhereNothingMayBeTypedNothingIsComposed)
{
    control.cells().changeStyle({2, 2, 2, 2}, [](CellStyle& style) { style.locked = true; });
    setType("B3", CellType::checkBox);
    put("B4", "keep");
    control.showChanges();
    const auto before = control.cells().workbook().revision();
    click(centre("B2"));
    compose("hao");
    commit("好");
    EXPECT_NE(refusal, "");
    click(control.cellRect({2, 3}).topLeft() + QPoint(3, 9)); // beside the box
    commit("好");
    control.setMode(GridMode::run);
    EXPECT_FALSE(control.inputMethodQuery(Qt::ImEnabled).toBool());
    click("B4");
    commit("好");
    EXPECT_FALSE(control.entry().isOpen());
    EXPECT_EQ(control.cells().workbook().revision(), before);
}

} // namespace spreadsheet
