// Esc in the designer, and the roads by which its window closes.
#include "component/windows.h"
#include "tests/windows/designer/DesignerTest.h"
#include "windows/formatting/FormatPainter.h"
#include "windows/printing/PrintedGrid.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QTabBar>

namespace selfreport {
namespace {

class Escape : public test::DesignerTest {
protected:
    void openOnFive()
    {
        open();
        moveTo(1, 1);
        typeInCell("5");
        moveTo(1, 1);
        grid().setFocus();
    }
    static void press(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget* const popup = QApplication::activePopupWidget();
        QWidget* const receiver = popup && popup->focusWidget() ? popup->focusWidget()
                                  : popup                       ? popup
                                                                : QApplication::focusWidget();
        ASSERT_NE(receiver, nullptr);
        QTest::keyClick(receiver, Qt::Key(key), modifiers);
    }
    static void type(const char* text)
    {
        for (; *text != '\0'; ++text)
            QTest::keyClick(QApplication::focusWidget(), *text);
    }
    QWidget& inGrid(const char* name) { return *grid().findChild<QWidget*>(name); }
    QStringList copies() const { return QDir(folder.path()).entryList({"Recovery_*"}); }
};

/// Looking through the menus by their letters, closing each by Esc.
TEST_F(Escape, LeavesMenusForTheCell)
{
    openOnFive();
    const auto openMenu = [](Qt::Key letter) {
        press(letter, Qt::AltModifier);
        ASSERT_NE(QApplication::activePopupWidget(), nullptr);
        press(Qt::Key_Escape);
        ASSERT_EQ(QApplication::activePopupWidget(), nullptr);
    };
    openMenu(Qt::Key_F);
    openMenu(Qt::Key_E);
    openMenu(Qt::Key_F);
    press(Qt::Key_Escape);
    EXPECT_TRUE(grid().hasFocus());
    edit("txtReportName").setFocus();
    openMenu(Qt::Key_E);
    openMenu(Qt::Key_F);
    press(Qt::Key_Escape);
    EXPECT_TRUE(edit("txtReportName").hasFocus()) << "back to where it was";
}

TEST_F(Escape, NeverClosesTheDesigner)
{
    const std::pair<const char*, std::function<void()>> places[] = {
        {"grid", [] {}},
        {"name box", [this] { edit("txtReportName").setFocus(), type("ab"); }},
        {"formula box", [this] { edit("txtFormula").setFocus(); }},
        {"formula box with a text", [this] { edit("txtFormula").setFocus(), type("=SUM(1,av"); }},
        {"an entry", [] { type("=SUM(1,av"); }},
        {"an entry that is refused", [] { type("=1+*"), press(Qt::Key_Return); }},
        {"pointing", [] { type("="), press(Qt::Key_Down); }},
        {"fonts", [this] { control<QComboBox>(*window, "list1").setFocus(); }},
        {"open list of fonts", [this] { control<QComboBox>(*window, "list1").showPopup(); }},
        {"sizes", [this] { control<QComboBox>(*window, "list2").setFocus(); }},
        {"renaming a tab",
         [this] {
             auto& tabs = control<QTabBar>(*window, "sheetTabBar");
             QTest::mouseDClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(0).center());
             ASSERT_EQ(QApplication::focusWidget()->objectName(), "sheetName");
             type("x");
         }},
        {"diagnostics",
         [this] {
             trigger("MenuDiagnostics");
             control<QWidget>(*window, "panelDiagnostics").show();
             control<QWidget>(*window, "listDiagnostics").setFocus();
         }},
        {"a status button", [this] { control<QWidget>(*window, "cmdDiscard").setFocus(); }},
        {"the window itself", [this] { window->setFocus(); }},
    };
    for (const auto& [place, go] : places) {
        openOnFive();
        go();
        for (int times = 0; times < 6; ++times)
            press(Qt::Key_Escape);
        EXPECT_TRUE(window->isVisible()) << place;
        EXPECT_FALSE(grid().entry().isOpen()) << place;
        EXPECT_EQ(grid().cells().text(1, 1), "5") << place;
        EXPECT_EQ(grid().cells().sheetName(), "Sheet1") << place;
    }
}

TEST_F(Escape, EndsOneThingAtATime)
{
    for (const bool inBox : {false, true}) {
        openOnFive();
        press(Qt::Key_C, Qt::ControlModifier);
        if (inBox)
            edit("txtFormula").setFocus(), edit("txtFormula").selectAll();
        type("=SUM(1,av");
        QWidget& owner = inBox ? edit("txtFormula") : inGrid("cellEditor");
        auto& hint = control<QLabel>(owner, "formulaHint");
        auto& names = control<QListWidget>(owner, "formulaCompletions");
        const auto state = [&] {
            return std::string(hint.isVisible() ? "hint " : "") + (names.isVisible() ? "list " : "") +
                   (grid().entry().isOpen() ? "entry" : "");
        };
        std::string seen;
        EXPECT_EQ(state(), "hint list entry") << inBox;
        press(Qt::Key_Escape);
        EXPECT_EQ(state(), "list entry") << inBox;
        press(Qt::Key_Escape);
        EXPECT_EQ(state(), "entry") << inBox;
        press(Qt::Key_Escape);
        EXPECT_FALSE(grid().entry().isOpen()) << inBox;
        edit("txtReportName").setFocus(); // the border ends from everywhere
        press(Qt::Key_Escape);
        EXPECT_FALSE(grid().giveUp()) << "the border around copied cells is gone, " << inBox;
        grid().commands().copy();
        EXPECT_TRUE(grid().giveUp());
        EXPECT_EQ(grid().cells().text(1, 1), "5");
    }
}

TEST_F(Escape, EndsTheFormatPainterFromEverywhere)
{
    for (const char* place : {"fps1", "txtReportName", "list1"}) {
        openOnFive();
        trigger("MenuFormatPainter");
        ASSERT_TRUE(grid().findChild<FormatPainter*>());
        control<QWidget>(*window, place).setFocus();
        press(Qt::Key_Escape);
        EXPECT_FALSE(FormatPainter::stop(grid())) << place;
        EXPECT_TRUE(window->isVisible()) << place;
    }
}

TEST_F(Escape, ClosesTheListAndThePreview)
{
    const auto escape = [](QWidget& dialog) {
        show(dialog);
        press(Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
        dialog.close();
    };
    whenModal("frmSelfReportMain", escape);
    showReportList();
    openOnFive();
    whenModal("frmPreview", escape);
    trigger("MenuPreview");
    trigger("MenuFind");
    escape(control<QWidget>(*window, "frmFind"));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(Escape, EveryRoadOutLeavesTheUnsavedDesign)
{
    const std::pair<const char*, std::function<void()>> roads[] = {
        {"close box", [this] { window->close(); }},
        {"menu: close", [this] { trigger("MenuFileClose"); }},
        {"menu: exit", [this] { trigger("MenuFileExit"); }},
        {"reject", [this] { window->reject(); }},
        {"accept", [this] { window->accept(); }},
        {"done", [this] { window->done(7); }},
        {"all windows", [] { QApplication::closeAllWindows(); }},
        {"the printing dialog", [this] { window->printedGrid().closeDesigner(); }},
        {"its end", [this] { window.reset(); }},
        {"hidden, then its end", [this] { window->hide(), window.reset(); }},
    };
    for (const auto& [road, leave] : roads) {
        for (const bool typing : {false, true}) {
            openOnFive();
            if (typing)
                moveTo(2, 1), grid().setFocus(), type("77");
            leave();
            window.reset();
            ASSERT_EQ(copies().size(), 1) << road;
            open();
            EXPECT_TRUE(ledger.boxes.said.empty()) << road << ": closed on purpose";
            control<QAbstractButton>(*window, "cmdRestore").click();
            EXPECT_EQ(grid().cells().text(1, 1), "5") << road;
            EXPECT_EQ(grid().cells().text(2, 1), typing ? "77" : "") << road;
            window.reset();
            for (const QString& name : copies())
                QFile::remove(folder.filePath(name));
        }
    }
}

TEST_F(Escape, TheEndOfTheHostsLoopLeavesTheUnsavedDesign)
{
    whenModal("frmEditor", [](QWidget& designer) {
        dynamic_cast<frmEditor&>(designer).fps1().cells().setText(1, 1, "5");
        QCoreApplication::exit(); // every loop ends; nothing is closed
    });
    showDesigner();
    EXPECT_EQ(copies().size(), 1);
    QTimer::singleShot(0, qApp, &QCoreApplication::quit); // loops may run again
    QCoreApplication::exec();
}

TEST_F(Escape, AParentThatEndsTakesTheDesignerAlongAndLeavesTheDesign)
{
    auto* const parent = new QDialog;
    parent->setModal(true);
    parent->show();
    whenModal("frmEditor", [parent](QWidget& designer) {
        EXPECT_EQ(designer.parentWidget(), parent);
        dynamic_cast<frmEditor&>(designer).fps1().cells().setText(1, 1, "5");
        delete parent;
    });
    showDesigner();
    EXPECT_FALSE(isWindowOpen());
    EXPECT_EQ(copies().size(), 1);
}

} // namespace
} // namespace selfreport
