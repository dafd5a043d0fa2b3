#include "tests/windows/designer/DesignerTest.h"

#include <QPushButton>

namespace selfreport {
namespace {

/// A report in use whose first amount can be fetched and whose others cannot, as the item table is gone.
struct FailedFetchesBar : test::DesignerTest {
    void openBroken()
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
        gRunMode = true;
        ledger.run("alter table tblItemClass rename to gone");
        open();
        window->finishOpening();
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

} // namespace
} // namespace selfreport
