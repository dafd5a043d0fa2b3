// The order of the grid's events while a user works with the formula box beside it.
#include "spreadsheet/view/FormulaAssistant.h"
#include "spreadsheet/view/SheetView.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QTabBar>

#include <functional>
#include <sstream>

namespace selfreport {
namespace {

using spreadsheet::SpreadsheetControl;

class EditorEvents : public test::DesignerTest {
protected:
    EditorEvents()
    {
        open();
        const auto tell = [this](const char* what) { return [this, what] { log << what << ' '; }; };
        QObject::connect(&grid(), &SpreadsheetControl::leaveCell, [this](int, int, int column, int row) {
            log << "leave>" << column << ',' << row << ' ';
        });
        QObject::connect(&grid(), &SpreadsheetControl::editModeChanged, [this](bool on, bool changed) {
            log << (on ? "edit-on " : changed ? "edit-changed " : "edit-off ");
        });
        QObject::connect(&grid(), &SpreadsheetControl::cellChanged,
                         [this](int column, int row) { log << "changed " << column << ',' << row << ' '; });
        QObject::connect(&grid(), &SpreadsheetControl::selectionChanged, tell("selected"));
        QObject::connect(&grid(), &SpreadsheetControl::sheetChanged, tell("sheet"));
        QObject::connect(&grid(), &SpreadsheetControl::keyDown, tell("key"));
    }
    std::string logged() { return std::exchange(log, std::ostringstream()).str(); }
    void typeInBox(const char* text)
    {
        box().setFocus();
        box().end(false);
        for (; *text != '\0'; ++text)
            QTest::keyClick(&box(), *text);
    }
    void key(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }
    void click(int column, int row)
    {
        QTest::mouseClick(&grid(), Qt::LeftButton, {}, grid().cellRect({column, row}).center());
    }
    QLineEdit& box() { return edit("txtFormula"); }
    struct Step {
        const char* what;
        std::function<void()> work;
        const char* events;
    };
    void expectEvents(const std::vector<Step>& steps)
    {
        for (const Step& step : steps) {
            step.work();
            EXPECT_EQ(logged(), step.events) << step.what;
        }
    }

    std::ostringstream log;
};

/// The box is the grid's editor: the grid loses the focus to it, and the cell is told before it closes.
TEST_F(EditorEvents, OfTheFormulaBox)
{
    expectEvents({
        {"Enter", [&] { typeInBox("1+2"), key(Qt::Key_Return); },
         "leave>-1,-1 edit-on changed 1,1 edit-changed "},
        {"then an arrow", [&] { key(Qt::Key_Down); }, "key leave>1,2 selected "},
        {"nothing typed", [&] { typeInBox(""), key(Qt::Key_Return); }, "leave>-1,-1 edit-on edit-changed "},
        {"Esc", [&] { typeInBox("9"), key(Qt::Key_Escape); }, "leave>-1,-1 edit-on edit-off "},
        {"a click elsewhere", [&] { typeInBox("=3*3"), click(3, 3); },
         "leave>-1,-1 edit-on changed 1,2 edit-changed leave>3,3 selected "},
        {"pointing at a cell", [&] { typeInBox("=2*"), click(1, 1), key(Qt::Key_Return); },
         "leave>-1,-1 edit-on changed 3,3 edit-changed "},
        {"another control", [&] { typeInBox("4"), edit("txtReportName").setFocus(); },
         "leave>-1,-1 edit-on "},
        {"and back", [&] { typeInBox(""), key(Qt::Key_Return); }, "changed 3,3 edit-changed "},
    });
    EXPECT_EQ(formula(1, 2) + " " + formula(3, 3), "3*3 2*A14");
}

TEST_F(EditorEvents, OfARefusedText)
{
    expectEvents({
        {"Enter", [&] { typeInBox("=1+)"), key(Qt::Key_Return); }, "leave>-1,-1 edit-on "},
        {"a click on a cell", [&] { click(2, 2); }, ""},
        {"Esc", [&] { typeInBox(""), key(Qt::Key_Escape); }, "edit-off "},
    });
    demand(grid().cells().setSheetCount(2));
    grid().showChanges();
    logged();
    QTabBar& tabs = control<QTabBar>(*window, "sheetTabBar");
    const auto clickTab = [&](int index) {
        QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(index - 1).center());
    };
    expectEvents({
        {"pointing at another sheet", [&] { typeInBox("=2*"), clickTab(2), click(1, 1); },
         "leave>-1,-1 edit-on sheet selected "},
        {"Enter", [&] { key(Qt::Key_Return); }, "changed 1,1 edit-changed sheet selected "},
        {"a tab while typing", [&] { typeInBox("+1"), clickTab(2); },
         "leave>-1,-1 edit-on changed 1,1 edit-changed leave>-1,-1 sheet selected "},
    });
    EXPECT_EQ(grid().cells().workbook().sheet(1).formula({1, 1}), "2*Sheet2!A1+1");
}

/// Each edit, recalculation and change of sheet fills the formula box once.
TEST_F(EditorEvents, EnterTheCellOnce)
{
    demand(grid().cells().setSheetCount(2));
    int entered = 0;
    QObject::connect(box().findChild<spreadsheet::FormulaAssistant*>(),
                     &spreadsheet::FormulaAssistant::colouredCellsChanged,
                     [&] { entered += !grid().entry().isOpen(); }); // then it follows what is typed
    const auto count = [&](const std::function<void()>& work) {
        work();
        return std::exchange(entered, 0);
    };
    EXPECT_EQ(count([&] { typeInCell("5"); }), 2) << "the cell that changes, then the next one";
    EXPECT_EQ(count([&] { trigger("MenuRecalculate"); }), 1);
    EXPECT_EQ(count([&] { trigger("MenuUndo"); }), 2) << "the cell that changes, then where that was";
    EXPECT_EQ(count([&] { grid().cells().setActiveSheet(2); }), 1);
}

TEST_F(EditorEvents, ARecalculationPaintsOnlyTheRowsThatItChanged)
{
    demand(grid().cells().setColumnCount(120));
    demand(grid().cells().setRowCount(200));
    for (int line = 1; line <= 120; ++line) {
        grid().cells().setRowHeight(line, 150);
        grid().cells().setColumnWidth(line, 225);
    }
    demand(grid().cells().sheet().setFormula({2, 50}, "A1*2"));
    window->resize(2800, 2600);
    QApplication::processEvents();
    grid().grab();
    const auto& geometry = grid().view().geometry();
    const std::size_t columns = geometry.columnTracks().size();
    ASSERT_GE(geometry.rowTracks().size() * columns, 10'000U);
    const auto paintedRows = [&](const std::function<void()>& work) {
        const std::uint64_t before = grid().view().paintedCells();
        work();
        QApplication::processEvents();
        grid().grab();
        return (grid().view().paintedCells() - before) / columns;
    };
    const std::uint64_t withNeighbours = 5; // whose borders lie on the row's
    EXPECT_LE(paintedRows([&] { typeInCell("5"); }), 2 * withNeighbours) << "rows 1 and 50";
    EXPECT_EQ(grid().cells().text(2, 50), "10");
    EXPECT_EQ(paintedRows([&] { trigger("MenuRecalculate"); }), 0U);
    grid().cells().sheet().setNumber({1, 1}, 6);
    EXPECT_GE(paintedRows([&] { trigger("MenuRecalculate"); }), 2U);
    EXPECT_GE(paintedRows([&] { grid().setGridLinesShown(true); }), geometry.rowTracks().size());
}

} // namespace
} // namespace selfreport
