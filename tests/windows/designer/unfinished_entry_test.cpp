// Commands and closing while a text is being typed.
#include "tests/windows/designer/DesignerTest.h"

#include <QDir>
#include <QScrollBar>
#include <QStatusBar>
#include <QTabBar>
#include <QToolButton>

namespace selfreport {
namespace {

class UnfinishedEntry : public test::DesignerTest {
protected:
    void type(const char* text)
    {
        for (; *text != '\0'; ++text)
            QTest::keyClick(QApplication::focusWidget(), *text);
    }
    void inCell(int column, int row, const char* text)
    {
        moveTo(column, row);
        grid().setFocus();
        type(text);
        ASSERT_TRUE(grid().entry().isOpen());
    }
    /// The next design begins without the one that was left.
    void forget()
    {
        window.reset();
        for (const QString& name : QDir(folder.path()).entryList({"Recovery_*"}))
            QFile::remove(folder.filePath(name));
    }
    QString message() { return control<QStatusBar>(*window, "statusBar").currentMessage(); }
};

TEST_F(UnfinishedEntry, ClosingKeepsWhatWasTyped)
{
    for (const bool inBox : {false, true}) {
        open();
        if (inBox) {
            edit("txtFormula").setFocus();
            type("6*7");
        } else {
            inCell(1, 1, "=6*7");
        }
        window->close();
        EXPECT_FALSE(window->isVisible());
        EXPECT_EQ(inBox ? grid().cells().text(1, 1).toStdString() : formula(1, 1), "6*7");
        open(); // offers the design again
        control<QToolButton>(*window, "cmdRestore").click();
        EXPECT_EQ(inBox ? grid().cells().text(1, 1).toStdString() : formula(1, 1), "6*7");
        trigger("MenuFileClose");
        EXPECT_FALSE(window->isVisible());
        forget();
    }
}

TEST_F(UnfinishedEntry, GoesOnWhereItIsAfterClicksBesideTheCells)
{
    const auto begin = [this](bool inBox) {
        if (!inBox)
            return inCell(1, 1, "=1+");
        edit("txtFormula").setFocus();
        type("=1+");
    };
    for (const bool inBox : {false, true}) {
        open();
        demand(grid().cells().setSheetCount(2));
        grid().showChanges();
        begin(inBox);
        QTabBar& tabs = control<QTabBar>(*window, "sheetTabBar");
        QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(1).center());
        EXPECT_EQ(grid().cells().activeSheet(), 2);
        type("2");
        for (QScrollBar* bar : grid().findChildren<QScrollBar*>())
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->rect().center());
        type("*3");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        EXPECT_EQ(grid().cells().activeSheet(), 1) << inBox;
        EXPECT_EQ(formula(1, 1), "1+2*3") << inBox;
        begin(inBox);
        grid().cells().setActiveSheet(2);
        EXPECT_FALSE(grid().entry().isOpen()) << inBox;
        EXPECT_EQ(grid().cells().activeSheet(), 2) << "what the program shows stays, " << inBox;
        trigger("MenuFileClose");
        forget();
    }
}

TEST_F(UnfinishedEntry, AFormulaThatDoesNotParseHoldsUpClosingOnce)
{
    for (const char* way : {"window", "MenuFileClose", "box"}) {
        const bool inBox = std::string(way) == "box";
        const auto close = [&] {
            std::string(way) == "MenuFileClose" ? trigger(way) : void(window->close());
        };
        open();
        inCell(1, 1, "=5+5");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        inCell(1, 1, "=sum(1,2+");
        if (inBox) {
            grid().entry().cancel();
            edit("txtFormula").setFocus();
            edit("txtFormula").selectAll();
            type("=sum(1,2+");
        }
        close();
        ASSERT_TRUE(window->isVisible()) << way;
        EXPECT_TRUE(grid().entry().isOpen()) << way;
        EXPECT_EQ(grid().entry().text(), "=sum(1,2+") << way;
        EXPECT_TRUE(message().contains("再关闭一次")) << message().toStdString();
        EXPECT_EQ(formula(1, 1), "5+5") << way;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
        type("*");
        close();
        ASSERT_TRUE(window->isVisible()) << "another text was refused: " << way;
        close();
        EXPECT_FALSE(window->isVisible()) << way;
        EXPECT_EQ(formula(1, 1), "5+5") << "the cell keeps what it had";
        EXPECT_EQ(grid().cells().sheet().lastDataRow(), 1) << "nothing went into another cell";
        forget();
    }
}

TEST_F(UnfinishedEntry, AMendedFormulaClosesTheWindow)
{
    open();
    inCell(2, 3, "=sum(1,2");
    QTest::keyClick(QApplication::focusWidget(), '+');
    window->close();
    ASSERT_TRUE(window->isVisible());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    type("3)");
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(formula(2, 3), "sum(1,2+3)");
}

TEST_F(UnfinishedEntry, CommandsFindTheTextInItsOwnCell)
{
    const struct {
        const char* command;
        spreadsheet::CellAddress place; ///< where the text is afterwards
    } cases[] = {{"MenuInsertRow", {2, 4}},
                 {"MenuInsertCol", {3, 3}},
                 {"MenuBold", {2, 3}},
                 {"MenuLock", {2, 3}},
                 {"Left", {2, 3}}};
    for (const auto& [command, place] : cases) {
        open();
        inCell(2, 3, "12");
        trigger(command);
        EXPECT_FALSE(grid().entry().isOpen()) << command;
        EXPECT_EQ(grid().cells().text(place.column, place.row), "12") << command;
        EXPECT_EQ(grid().cells().sheet().lastDataRow(), place.row) << command;
        EXPECT_EQ(grid().cells().sheet().lastDataColumn(), place.column) << command;
        window->close();
        forget();
    }
    open();
    inCell(2, 3, "=1+");
    for (const char* command : {"MenuInsertRow", "MenuClear", "MenuUndo", "Paste", "MenuSetTableInfo"}) {
        trigger(command);
        EXPECT_TRUE(grid().entry().isOpen()) << command << ": the formula is to be mended first";
    }
    EXPECT_EQ(grid().cells().sheet().lastDataRow(), 0);
}

} // namespace
} // namespace selfreport
