// What cells and the formula box show after every kind of change, in both displays.
#include "tests/windows/designer/DesignerTest.h"
#include "windows/designer/frmFind.h"

#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>

namespace selfreport {
namespace {

using spreadsheet::CellType;
using test::closingBalance;

/// A1 (currency) and A2 (percent) hold formulas, A3 a number, B1 a formula.
class ShownFormulas : public test::DesignerTest {
protected:
    void begin()
    {
        gEditFlag = 0;
        open();
        auto& sheet = grid().cells().sheet();
        demand(sheet.setFormula({1, 1}, "0.5+1"));
        demand(sheet.setFormula({1, 2}, "A1*2"));
        sheet.setNumber({1, 3}, 7);
        demand(sheet.setFormula({2, 1}, "A1+A3"));
        setType(1, CellType::currency);
        setType(2, CellType::percent);
        setType(3, CellType::number);
        trigger("MenuRecalculate");
        moveTo(1, 1);
        grid().setFocus();
    }
    void setType(int row, CellType type)
    {
        grid().cells().changeStyle({1, row, 1, row},
                                   [type](spreadsheet::CellStyle& style) { style.type = type; });
    }
    void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
    }
    void copyTo(int column, int row)
    {
        moveTo(1, 2);
        key(Qt::Key_C, Qt::ControlModifier);
        moveTo(column, row);
        key(Qt::Key_V, Qt::ControlModifier);
    }
    void replaceAll(const char* what, const char* by)
    {
        key(Qt::Key_H, Qt::ControlModifier);
        auto& dialog = control<frmFind>(*window, "frmFind");
        control<QLineEdit>(dialog, "txt_0").setText(what);
        control<QLineEdit>(dialog, "txt_1").setText(by);
        control<QPushButton>(dialog, "cmdReplaceAll").click();
        dialog.close();
        show(*window);
        grid().setFocus();
    }
    void enterByDialog()
    {
        whenModal("frmFunction", [](QWidget& chooser) {
            whenModal("frmFunctionInput", [](QWidget& dialog) {
                const char* arguments[] = {"1001", "2", "", "2025", "1", "2"};
                for (int box = 0; box < 6; ++box)
                    control<QLineEdit>(dialog, ("txt_" + std::to_string(box)).c_str())
                        .setText(arguments[box]);
                control<QPushButton>(dialog, "cmdXPOK").click();
            });
            control<QPushButton>(chooser, "cmdXPOK").click();
        });
        key(Qt::Key_G, Qt::ControlModifier);
        show(*window); // the dialogs took the focus
    }
    /// All cells: text, formula and type.
    std::vector<std::string> everything()
    {
        std::vector<std::string> cells;
        for (int row = 1; row <= 7; ++row)
            for (int column = 1; column <= 3; ++column)
                cells.push_back(
                    grid().cells().text(column, row).toStdString() + '|' + formula(column, row) + '|' +
                    std::to_string(static_cast<int>(grid().cells().sheet().style({column, row}).type)));
        return cells;
    }
    void expectFormulasOnScreen(const char* what)
    {
        for (int row = 1; row <= 7; ++row)
            for (int column = 1; column <= 3; ++column) {
                if (const std::string held = formula(column, row); !held.empty()) {
                    EXPECT_EQ(grid().cells().text(column, row).toStdString(), held) << what;
                    EXPECT_EQ(grid().cells().sheet().style({column, row}).type, CellType::edit) << what;
                }
            }
    }

    struct Change {
        const char* what;
        std::function<void()> act;
        int column, row;     // where the change shows
        const char* formula; // there, and in the formula box
        const char* data;    // what is displayed as data there
    };
    const Change changes[10] = {
        {"typed", [this] { moveTo(1, 1), typeInCell("=0.5+2"), moveTo(1, 1); }, 1, 1, "0.5+2", "￥2.50"},
        {"pasted", [this] { copyTo(3, 2); }, 3, 2, "C1*2", "0.00%"},
        {"filled down",
         [this] {
             moveTo(1, 3);
             key(Qt::Key_D, Qt::ControlModifier);
         },
         1, 3, "A2*2", "600.00%"},
        {"filled by the handle",
         [this] {
             grid().cursor().select({1, 2, 1, 2});
             grid().commands().fillTo({1, 2, 1, 4}, false);
             moveTo(1, 4);
         },
         1, 4, "A3*2", "1200.00%"},
        {"filled right",
         [this] {
             moveTo(2, 2);
             key(Qt::Key_R, Qt::ControlModifier);
         },
         2, 2, "B1*2", "1700.00%"},
        {"replaced",
         [this] {
             moveTo(1, 2);
             replaceAll("A1*", "A1*1+");
         },
         1, 2, "A1*1+2", "350.00%"},
        {"a row above",
         [this] {
             trigger("MenuInsertRow");
             moveTo(1, 3);
         },
         1, 3, "A2*2", "300.00%"},
        {"by dialog",
         [this] {
             moveTo(1, 5);
             enterByDialog();
         },
         1, 5, closingBalance, "100.25"},
        {"a constant over a formula", [this] { moveTo(1, 2), typeInCell("3"), moveTo(1, 2); }, 1, 2, "",
         "300.00%"},
        {"deleted",
         [this] {
             moveTo(1, 2);
             key(Qt::Key_Delete);
         },
         1, 2, "", ""},
    };
};

TEST_F(ShownFormulas, FollowEveryChangeAndGoWithIt)
{
    for (const auto& [what, act, column, row, formula, data] : changes) {
        begin();
        trigger("MenuShowFormula");
        const auto before = everything();
        act();
        EXPECT_EQ(this->formula(column, row), formula) << what;
        expectFormulasOnScreen(what);
        const auto after = everything();
        grid().setFocus();
        key(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(everything(), before) << what; // one step
        key(Qt::Key_Y, Qt::ControlModifier);
        EXPECT_EQ(everything(), after) << what;
        trigger("MenuShowFormula"); // once more
        EXPECT_EQ(everything(), after) << what;

        edit("txtReportName").setText("表"); // through the store and back in between
        ledger.run("delete from tblCWSelfReport");
        trigger("MenuFileSave");
        const std::string shown = grid().cells().text(column, row).toStdString();
        open();
        EXPECT_EQ(grid().cells().text(column, row).toStdString(), shown) << what;
        trigger("MenuShowFormula");
        EXPECT_EQ(everything(), after) << what;
        trigger("MenuShowDate");
        EXPECT_EQ(grid().cells().text(column, row), data) << what;
        window.reset();

        begin(); // the same in the other order ends in the same
        act();
        trigger("MenuRecalculate");
        const auto asData = everything();
        trigger("MenuShowFormula");
        trigger("MenuShowDate");
        EXPECT_EQ(everything(), asData) << what;
        EXPECT_EQ(grid().cells().text(column, row), data) << what;
    }
}

TEST_F(ShownFormulas, UndoLeavesAndEntersTheDisplay)
{
    begin();
    const auto asData = everything();
    const auto mode = [this] { return control<QLabel>(*window, "lblStatusMode").text(); };
    trigger("MenuShowFormula");
    const auto asFormulas = everything();
    EXPECT_EQ(mode(), "显示公式");
    trigger("MenuUndo");
    EXPECT_EQ(mode(), "设计");
    EXPECT_EQ(everything(), asData);
    moveTo(3, 5);
    typeInCell("=1+1");
    EXPECT_EQ(grid().cells().text(3, 5), "2");
    trigger("MenuUndo");
    trigger("MenuShowFormula");
    trigger("MenuShowDate");
    trigger("MenuUndo");
    EXPECT_EQ(mode(), "显示公式");
    EXPECT_EQ(everything(), asFormulas);
    trigger("MenuRedo");
    EXPECT_EQ(mode(), "设计");
    EXPECT_EQ(everything(), asData);
}

TEST_F(ShownFormulas, CellsCopiedWhileShownArePastedAsData)
{
    begin();
    trigger("MenuShowFormula");
    moveTo(1, 2);
    key(Qt::Key_C, Qt::ControlModifier);
    trigger("MenuShowDate");
    moveTo(1, 4);
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(formula(1, 4), "A3*2");
    EXPECT_EQ(grid().cells().text(1, 4), "1400.00%");
}

TEST_F(ShownFormulas, TheBoxShowsTheCellAndLeavingWritesNothingStale)
{
    const auto box = [this] { return edit("txtFormula").text().toStdString(); };
    for (const bool shown : {false, true}) {
        for (const auto& [what, act, column, row, formula, data] : changes) {
            begin();
            if (shown)
                trigger("MenuShowFormula");
            act();
            ASSERT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{column, row})) << what;
            EXPECT_EQ(box(), formula) << what;
            for (const char* travel : {"MenuUndo", "MenuRedo"}) {
                trigger(travel);
                const auto held = everything();
                const auto active = grid().cursor().activeCell();
                EXPECT_EQ(box(), this->formula(active.column, active.row)) << what << travel;
                moveTo(5, 20);
                edit("txtFormula").setFocus();
                grid().setFocus();
                EXPECT_EQ(everything(), held) << what << travel;
                moveTo(active.column, active.row);
            }
            window.reset();
        }
    }
    begin();
    moveTo(1, 1);
    QApplication::clipboard()->setText("合计");
    trigger("Paste");
    EXPECT_EQ(box(), "");
    moveTo(1, 2);
    moveTo(1, 1);
    EXPECT_EQ(grid().cells().text(1, 1), "合计");
}

} // namespace
} // namespace selfreport
