#include "windows/printing/frmPrintOptions.h"

#include "tests/windows/printing/PrintingTest.h"
#include "windows/printing/print_stamp.h"

#include <QCheckBox>
#include <QSpinBox>

namespace selfreport {
namespace {

struct PrintOptions : test::PrintingTest {};

TEST_F(PrintOptions, AreKeptWithTheActiveSheetAndPrinted)
{
    demand(grid.book.addSheet("附表"));
    grid.setPages(2);
    {
        frmPrintOptions window(grid);
        show(window);
        control<QSpinBox>(window, "txtTitleTop").setValue(1);
        click(window, "cmdXPOK");
        EXPECT_EQ(ledger.boxes.said.size(), 1U) << "a first row without a last one";
        EXPECT_TRUE(window.isVisible());
        control<QSpinBox>(window, "txtTitleBottom").setValue(1);
        for (const char* box : {"chkFitWidth", "chkCentredAcross", "chkCentredDown", "chkStamp"})
            control<QCheckBox>(window, box).click();
        click(window, "cmdXPOK");
    }
    const spreadsheet::PrintSettings print = grid.print();
    EXPECT_TRUE(print.titleTop == 1 && print.titleBottom == 1 && print.fitWidth && print.centredAcross &&
                print.centredDown && print.stamp);
    EXPECT_EQ(grid.print(2), spreadsheet::PrintSettings());
    frmPrintOptions again(grid);
    EXPECT_TRUE(control<QCheckBox>(again, "chkStamp").isChecked());

    printSheet(grid);
    const std::string text = textOf(service.printed.at(0).pdf);
    EXPECT_NE(text.find("操作员 wang"), std::string::npos) << text;
    EXPECT_NE(text.rfind("第1行"), text.find("第1行")) << "the repeated row stands on both pages";
}

TEST_F(PrintOptions, PageBreaksComeAndGo)
{
    togglePageBreaks(grid, 3, 5);
    EXPECT_EQ(grid.print().rowBreaks.count(5) + grid.print().columnBreaks.count(3), 2U);
    togglePageBreaks(grid, 3, 5);
    togglePageBreaks(grid, 1, 1);
    EXPECT_TRUE(grid.print().rowBreaks.empty() && grid.print().columnBreaks.empty());
}

TEST(PrintStamp, LeavesOutWhatIsNotKnown)
{
    EXPECT_EQ(stampText({"2026-12-31 08:05:09", "王会计", "演示账套", 3}),
              "打印时间 2026-12-31 08:05:09　操作员 王会计　账套 演示账套　取数诊断 3 条");
    EXPECT_EQ(stampText({"2026-12-31 08:05:09", "", "", 0}), "打印时间 2026-12-31 08:05:09　取数无诊断");
}

} // namespace
} // namespace selfreport
