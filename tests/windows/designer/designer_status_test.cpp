// Figures, diagnostics, title and the question at closing.
#include "platform/list_grid/ListGrid.h"
#include "platform/services/Preferences.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QLabel>
#include <QMenu>
#include <QToolButton>

namespace selfreport {
namespace {

class DesignerStatus : public test::DesignerTest {
protected:
    QString figures() { return control<QLabel>(*window, "lblStatusFigures").text(); }

    MemoryPreferences kept;
    const PreferencesInUse inUse{kept};
};

TEST_F(DesignerStatus, FiguresHaveTheDigitsOfTheirNumbers)
{
    open();
    const struct {
        std::vector<double> numbers;
        const char *average, *sum;
    } cases[] = {
        {{23470000.11, 493.12}, "11,735,246.615", "23,470,493.23"},
        {{0.1, 0.2}, "0.15", "0.3"},
        {{10, 0, 0}, "3.3333333333", "10"},
        {{-1234567.891, 0}, "-617,283.9455", "-1,234,567.891"},
        {{5, -5}, "0", "0"},
        {{0.004, 0.004}, "0.004", "0.008"},
    };
    for (const auto& c : cases) {
        grid().cells().sheet().clearContents({1, 1, 1, 9});
        for (std::size_t row = 0; row < c.numbers.size(); ++row)
            grid().cells().sheet().setNumber({1, static_cast<int>(row) + 1}, c.numbers[row]);
        grid().cursor().select({2, 1, 2, 2});
        grid().cursor().select({1, 1, 1, 9});
        EXPECT_EQ(figures(),
                  QString("平均值=%1  计数=%2  求和=%3").arg(c.average).arg(c.numbers.size()).arg(c.sum));
    }
}

TEST_F(DesignerStatus, TheUserChoosesTheFiguresForEveryWindow)
{
    const auto fill = [this] {
        open();
        for (const auto& [row, number] : {std::pair(1, -3.5), {2, 8.0}, {4, 1.0}})
            grid().cells().sheet().setNumber({1, row}, number);
        grid().cells().sheet().setText({1, 3}, "合计");
        grid().cursor().select({1, 1, 1, 9});
    };
    fill();
    for (const char* name : {"FigureLargest", "FigureSmallest", "FigureAverage"})
        trigger(name);
    EXPECT_EQ(figures(), "计数=4  最大值=8  最小值=-3.5  求和=5.5");
    fill();
    EXPECT_EQ(figures(), "计数=4  最大值=8  最小值=-3.5  求和=5.5");
    trigger("FigureSum");
    trigger("FigureCount");
    EXPECT_EQ(figures(), "最大值=8  最小值=-3.5");
    grid().cursor().select({1, 3, 1, 3});
    EXPECT_EQ(figures(), "");
}

TEST_F(DesignerStatus, DiagnosticsOpenOnceAndSayHowMany)
{
    open();
    auto& panel = control<QWidget>(*window, "panelDiagnostics");
    auto& button = control<QToolButton>(*window, "cmdStatusDiagnostics");
    const auto doubtful = [this](int row) {
        moveTo(1, row);
        typeInBox(R"(=Acct("9999","2","","2025","1","2"))", Qt::Key_Return);
    };
    EXPECT_FALSE(panel.isVisible() || button.isVisible());
    doubtful(1);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(control<QLabel>(*window, "lblDiagnostics").text(), "取数诊断：1 处");
    control<QToolButton>(*window, "cmdCloseDiagnostics").click();
    EXPECT_FALSE(panel.isVisible());
    doubtful(2);
    EXPECT_FALSE(panel.isVisible()) << "closed it stays closed";
    EXPECT_EQ(button.text(), "取数诊断 2 处");
    button.click();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(control<QLabel>(*window, "lblDiagnostics").text(), "取数诊断：2 处");
    auto* list = panel.findChild<ListGrid*>();
    grid().commands().renameSheet(1, "月报");
    EXPECT_EQ(list->text(2, 0).toStdString(), "月报!A2");
    grid().commands().addSheet();
    grid().commands().moveSheet(1, 2);
    EXPECT_EQ(list->text(2, 0).toStdString(), "月报!A2");
    list->setRow(2);
    Q_EMIT list->dblClick();
    EXPECT_EQ(grid().cells().shownSheet().name(), "月报");
    EXPECT_EQ(grid().cursor().activeCell().row, 2);
    grid().cursor().select({1, 1, 1, 2});
    trigger("MenuClear");
    EXPECT_FALSE(panel.isVisible() || button.isVisible());
}

/// The statement is what is looked at.
TEST_F(DesignerStatus, DiagnosticsTakeLittleOfTheWindow)
{
    open();
    window->resize(1100, 750);
    for (int row = 1; row <= 12; ++row)
        demand(grid().cells().sheet().setFormula({1, row}, R"(Acct("9999","2","","2025","1","2"))"));
    trigger("MenuRecalculate");
    auto& panel = control<QWidget>(*window, "panelDiagnostics");
    const int line = grid().fontMetrics().height();
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return panel.height() > 5 * line && panel.height() < grid().height() / 2;
    })) << panel.height()
        << " beside " << grid().height();
}

TEST_F(DesignerStatus, AChangedDesignHasAMarkInTheTitle)
{
    storeReport();
    open();
    const QString plain = "报表系统", marked = "报表系统 *";
    EXPECT_EQ(window->windowTitle(), plain);
    trigger("MenuShowFormula");
    trigger("MenuShowDate");
    EXPECT_EQ(window->windowTitle(), plain) << "shown otherwise it is the same";
    typeInBox("=1", Qt::Key_Return);
    EXPECT_EQ(window->windowTitle(), marked);
    QTest::keyClick(&grid(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(window->windowTitle(), plain);
    trigger("MenuBold");
    EXPECT_EQ(window->windowTitle(), marked);
    trigger("MenuFileSave");
    EXPECT_EQ(window->windowTitle(), plain);
    edit("txtReportName").setText("另一个");
    EXPECT_EQ(window->windowTitle(), marked);
}

TEST_F(DesignerStatus, ClosingAsksWhoWishesIt)
{
    const struct {
        bool asks, changes;
        const char* answer; ///< "": cancel
        bool closes, stored;
        std::size_t questions;
    } cases[] = {
        {false, true, "", true, false, 0},   {true, false, "", true, false, 0},
        {true, true, "", false, false, 1},   {true, true, "不保存", true, false, 1},
        {true, true, "保存", true, true, 1},
    };
    storeReport();
    const auto stored = [this] { return ledger.query("select fname from tblCWSelfReport").text(0, "fname"); };
    for (const auto& c : cases) {
        ledger.boxes.offered.clear();
        ledger.boxes.chosen = {c.answer};
        open();
        auto& asks = action("MenuAskAtClosing");
        EXPECT_EQ(asks.isChecked(), kept.isOn("AskAtClosing"));
        if (asks.isChecked() != c.asks)
            asks.trigger();
        const std::string before = stored();
        if (c.changes)
            edit("txtReportName").setText(QString::fromStdString(before) + "改");
        window->close();
        EXPECT_EQ(window->isVisible(), !c.closes) << c.answer;
        EXPECT_EQ(ledger.boxes.offered.size(), c.questions) << c.answer;
        EXPECT_EQ(stored() != before, c.stored) << c.answer;
    }
    ledger.boxes.chosen = {"保存"};
    open();
    edit("txtReportName").clear(); // which cannot be saved
    window->close();
    EXPECT_TRUE(window->isVisible());
}

} // namespace
} // namespace selfreport
