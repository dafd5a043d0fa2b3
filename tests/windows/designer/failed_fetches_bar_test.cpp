#include "platform/services/ScriptedDialogs.h"
#include "spreadsheet/files/FileFormats.h"
#include "tests/windows/designer/DesignerTest.h"

#include <QImage>
#include <QPushButton>

namespace selfreport {
namespace {

/// A report in use whose first amount can be fetched and whose others cannot, as the item table is gone.
struct FailedFetchesBar : test::DesignerTest {
    void openBroken(bool isRun = true)
    {
        spreadsheet::Workbook report;
        report.registerFunction("Acct", 6, [](spreadsheet::FunctionCall& call) { call.decline(); });
        spreadsheet::demand(report.sheet(1).setFormula({1, 1}, test::closingBalance));
        spreadsheet::demand(
            report.sheet(1).setFormula({2, 4}, R"(Acct("1122|客户|001" ,"2" , "", "2025","1","2"))"));
        spreadsheet::demand(
            report.sheet(1).setFormula({3, 5}, R"(Acct("1122|客户|002" ,"2" , "", "2025","1","2"))"));
        ledger.addReport(3, "应收表", spreadsheet::saveContent(report));
        gReportId = 3;
        gEditFlag = 1;
        gRunMode = isRun;
        ledger.run("alter table tblItemClass rename to gone");
        open();
        isRun ? window->finishOpening() : trigger("MenuRecalculate");
    }
    /// The cells with a mark in their corner, as the grid is painted: "B4 C5".
    std::string marked()
    {
        const spreadsheet::CellAddress active = grid().cursor().activeCell();
        moveTo(5, 8); // a selection paints over marks
        const QImage shown = grid().grab().toImage();
        std::string cells;
        for (int column = 1; column <= 5; ++column)
            for (int row = 1; row <= 8; ++row) {
                const QRect cell = grid().cellRect({column, row});
                if (shown.pixelColor(cell.right() - 2, cell.top() + 1) == QColor(0xD0, 0x20, 0x20))
                    cells += (cells.empty() ? "" : " ") + spreadsheet::cellName({column, row});
            }
        moveTo(active.column, active.row);
        return cells;
    }
    QPushButton& bar() { return control<QPushButton>(*window, "barFailedFetches"); }
};

TEST_F(FailedFetchesBar, StandsAboveTheGridWhileFiguresAreMissing)
{
    openBroken();
    EXPECT_TRUE(bar().isVisible());
    EXPECT_EQ(bar().text(), "2 处取数失败，数字不可用");
    EXPECT_LE(bar().mapTo(window.get(), QPoint(0, bar().height())).y(),
              grid().mapTo(window.get(), QPoint(0, 0)).y());
    moveTo(1, 1);
    bar().click();
    EXPECT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{2, 4}));

    ledger.run("alter table gone rename to tblItemClass");
    trigger("MenuRecalculate");
    EXPECT_FALSE(bar().isVisible());
    EXPECT_EQ(grid().cells().text(2, 4), "120.00");
}

TEST_F(FailedFetchesBar, PrintingAsksAndGoesToTheCell)
{
    openBroken();
    moveTo(1, 1);
    ledger.boxes.said.clear();
    trigger("MenuPrint");
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].text, "2 处取数失败，数字不可用，是否仍然打印？");
    EXPECT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{1, 1}));
    ledger.boxes.chosen = {"转到"};
    trigger("MenuPrint");
    EXPECT_EQ(grid().cursor().activeCell(), (spreadsheet::CellAddress{2, 4}));
}

TEST_F(FailedFetchesBar, MarksMoveWithTheirCells)
{
    const std::string file = folder.filePath("figures.ss7").toStdString();
    {
        spreadsheet::Workbook figures;
        figures.sheet(1).setNumber({2, 4}, 120);
        spreadsheet::saveWorkbook(figures, file, spreadsheet::fileFormat(".ss7"));
    }
    ScriptedFileDialog files;
    const FileDialogInUse inUse(files);
    files.answers = {file};
    openBroken(false);
    grid().setFocus();
    const auto press = [this](Qt::Key key) { QTest::keyClick(&grid(), key, Qt::ControlModifier); };
    const struct {
        const char* what;
        std::function<void()> act;
        const char* marked;
    } steps[] = {
        {"at first", [] {}, "B4 C5"},
        {"row inserted", [this] { moveTo(1, 1), trigger("MenuInsertRow"); }, "B5 C6"},
        {"column inserted", [this] { moveTo(1, 1), trigger("MenuInsertCol"); }, "C5 D6"},
        {"undone", [&] { press(Qt::Key_Z); }, "B5 C6"},
        {"undone twice", [&] { press(Qt::Key_Z); }, "B4 C5"},
        {"redone", [&] { press(Qt::Key_Y); }, "B5 C6"},
        {"row deleted", [this] { moveTo(1, 1), trigger("MenuDeleteRows"); }, "B4 C5"},
        {"row inserted between", [this] { moveTo(1, 5), trigger("MenuInsertRow"); }, "B4 C6"},
        {"row of a mark deleted", [this] { moveTo(1, 4), trigger("MenuDeleteRows"); }, "C5"},
        {"… and back", [&] { press(Qt::Key_Z); }, "B4 C6"},
        {"a file imported", [this] { trigger("MenuImpoertSpreadFile"); }, ""},
    };
    for (const auto& step : steps) {
        step.act();
        EXPECT_EQ(marked(), step.marked) << step.what;
    }
    EXPECT_EQ(grid().cells().text(2, 4), "120");
}

} // namespace
} // namespace selfreport
