#include "windows/printing/frmPrintOptions.h"

#include "tests/platform/commit_text.h"
#include "tests/windows/printing/PrintingTest.h"
#include "windows/printing/print_stamp.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QRadioButton>
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
        for (const char* box : {"chkCentredAcross", "chkCentredDown", "chkStamp"})
            control<QCheckBox>(window, box).click();
        click(window, "cmdXPOK");
    }
    const spreadsheet::PrintSettings print = grid.print();
    EXPECT_TRUE(print.titleTop == 1 && print.titleBottom == 1 && print.centredAcross && print.centredDown &&
                print.stamp);
    EXPECT_EQ(grid.print(2), spreadsheet::PrintSettings());
    frmPrintOptions again(grid);
    EXPECT_TRUE(control<QCheckBox>(again, "chkStamp").isChecked());

    printSheet(grid);
    const std::string text = textOf(service.printed.at(0).pdf);
    EXPECT_NE(text.find("操作员 wang"), std::string::npos) << text;
    EXPECT_NE(text.rfind("第1行"), text.find("第1行")) << "the repeated row stands on both pages";
}

/// What is chosen comes back in the next opening, and only OK changes anything.
TEST_F(PrintOptions, EverySetUpIsTakenAndShownAgain)
{
    demand(grid.book.addSheet("附表"));
    grid.book.setUndoEnabled(true);
    grid.block = {2, 2, 3, 9};
    const auto open = [&](const char* button, const std::function<void(frmPrintOptions&)>& act) {
        frmPrintOptions window(grid);
        show(window);
        act(window);
        click(window, button);
        return !window.isVisible();
    };
    const auto choose = [&](frmPrintOptions& window) {
        control<QRadioButton>(window, "optFit").click();
        control<QSpinBox>(window, "txtFitAcross").setValue(2);
        control<QSpinBox>(window, "txtFitDown").setValue(3);
        control<QLineEdit>(window, "txtPrintArea").setText(" a1：c20，$E$1:Ｆ９ ");
        control<QLineEdit>(window, "txtTitleColumns").setText("ｂ：a");
        control<QComboBox>(window, "cboOrder").setCurrentText("先列后行");
        control<QSpinBox>(window, "txtFirstPage").setValue(5);
        control<QComboBox>(window, "cboPaper").setCurrentText("16K");
        control<QDoubleSpinBox>(window, "txtTextDistance").setValue(1.5);
    };
    EXPECT_TRUE(open("cmdXPClose", choose));
    EXPECT_EQ(grid.print(), spreadsheet::PrintSettings());
    EXPECT_TRUE(open("cmdXPOK", choose));
    const spreadsheet::PrintSettings print = grid.print();
    EXPECT_EQ(std::tuple(print.fitAcross, print.fitDown, print.downFirst, print.firstPage),
              std::tuple(2, 3, true, 5));
    EXPECT_EQ(print.area, (std::vector<spreadsheet::CellRange>{{1, 1, 3, 20}, {5, 1, 6, 9}}));
    EXPECT_EQ(std::pair(print.titleLeft, print.titleRight), std::pair(1, 2));
    EXPECT_EQ(print.textDistance, 85) << "1.5 mm";
    for (const int sheet : {1, 2})
        EXPECT_EQ(grid.print(sheet).paperWidth, 10431) << "the paper is the report's";
    EXPECT_EQ(grid.print(2).firstPage, 1);
    EXPECT_TRUE(open("cmdXPOK", [](frmPrintOptions& window) {
        EXPECT_EQ(control<QLineEdit>(window, "txtPrintArea").text(), "A1:C20,E1:F9");
        EXPECT_EQ(control<QLineEdit>(window, "txtTitleColumns").text(), "A:B");
        EXPECT_EQ(control<QComboBox>(window, "cboPaper").currentText(), "16K");
        EXPECT_FALSE(control<QSpinBox>(window, "txtScale").isEnabled());
        EXPECT_FALSE(control<QDoubleSpinBox>(window, "txtPaperWidth").isEnabled());
    }));
    EXPECT_EQ(grid.print(), print) << "an OK without a change changes nothing";
    EXPECT_TRUE(open("cmdXPOK", [](frmPrintOptions& window) {
        click(window, "cmdArea");
        control<QRadioButton>(window, "optScale").click();
        control<QSpinBox>(window, "txtScale").setValue(70);
        control<QComboBox>(window, "cboPaper").setCurrentText("自定义");
        control<QDoubleSpinBox>(window, "txtPaperWidth").setValue(200);
    }));
    EXPECT_EQ(grid.print().area, (std::vector<spreadsheet::CellRange>{{2, 2, 3, 9}}));
    EXPECT_FALSE(grid.print().isFitted());
    EXPECT_EQ(grid.print().scale, 70);
    EXPECT_EQ(grid.print().paperWidth, 11339) << "200 mm";
    EXPECT_TRUE(ledger.boxes.said.empty());
    grid.book.undo();
    EXPECT_EQ(grid.print(), print) << "paper and the rest were one step";
    EXPECT_EQ(grid.print(2).paperWidth, 10431) << "… on all sheets";
    grid.book.undo();
    for (const int sheet : {1, 2})
        EXPECT_EQ(grid.print(sheet), spreadsheet::PrintSettings());
}

TEST_F(PrintOptions, AnOwnPaperBeginsAsLargeAsTheUsualOne)
{
    frmPrintOptions window(grid);
    show(window);
    control<QComboBox>(window, "cboPaper").setCurrentText("自定义");
    click(window, "cmdXPOK");
    const spreadsheet::PageRequest usual;
    EXPECT_NEAR(grid.print().paperWidth, usual.paperWidth, 3); // the field has tenths of a millimetre
    EXPECT_NEAR(grid.print().paperHeight, usual.paperHeight, 3);
}

TEST_F(PrintOptions, WhatCannotBeIsRefused)
{
    const struct {
        const char *field, *text, *said;
    } cases[] = {{"txtPrintArea", "A1:", "打印区域写作 A1:F20,几块之间用逗号分开!"},
                 {"txtPrintArea", "A1,,B2", "打印区域写作 A1:F20,几块之间用逗号分开!"},
                 {"txtTitleColumns", "1:2", "重复的列写作 A 或 A:B!"}};
    for (const auto& [field, text, said] : cases) {
        frmPrintOptions window(grid);
        show(window);
        control<QLineEdit>(window, field).setText(text);
        ledger.boxes.said.clear();
        click(window, "cmdXPOK");
        EXPECT_EQ(ledger.boxes.said.size(), 1U) << text;
        EXPECT_EQ(ledger.boxes.said.front().text, said);
        EXPECT_TRUE(window.isVisible());
    }
    frmPrintOptions window(grid);
    show(window);
    control<QComboBox>(window, "cboPaper").setCurrentText("自定义");
    control<QDoubleSpinBox>(window, "txtPaperWidth").setValue(30);
    control<QDoubleSpinBox>(window, "txtPaperHeight").setValue(30);
    click(window, "cmdXPOK");
    EXPECT_TRUE(window.isVisible()) << "the margins leave nothing of it";
    EXPECT_EQ(grid.print(), spreadsheet::PrintSettings());
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

TEST_F(PrintOptions, TitlesTooHighToBeRepeatedAreTold)
{
    constexpr int rowHeight = 1440; // ten of them fill A4
    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& settings) {
        for (int row = 1; row <= 12; ++row)
            settings.rows.sizes[row] = rowHeight;
    });
    grid.book.sheet(1).setText({1, 30}, "末行");
    const struct {
        int last;
        std::size_t told;
    } cases[] = {{2, 0}, {8, 1}, {7, 0}, {2, 0}};
    for (const auto& [last, told] : cases) {
        frmPrintOptions window(grid);
        show(window);
        ledger.boxes.said.clear();
        control<QSpinBox>(window, "txtTitleTop").setValue(1);
        control<QSpinBox>(window, "txtTitleBottom").setValue(last);
        click(window, "cmdXPOK");
        EXPECT_FALSE(window.isVisible()) << last;
        ASSERT_EQ(ledger.boxes.said.size(), told) << last;
        frmPreview& preview = frmPreview::shared(grid);
        const bool isLeftOut = last > 5; // of ten rows that a page holds
        EXPECT_EQ(preview.windowTitle().contains("重复"), isLeftOut) << last;
        if (told > 0) {
            EXPECT_NE(ledger.boxes.said[0].text.find("重复的行高于半页"), std::string::npos);
        }
    }
}

/// As a Chinese input method writes them.
TEST_F(PrintOptions, NumbersOfFullWidthAreTaken)
{
    frmPrintOptions window(grid);
    show(window);
    test::commitText(control<QSpinBox>(window, "txtFirstPage"), "１２");
    EXPECT_EQ(control<QSpinBox>(window, "txtFirstPage").value(), 12);
    test::commitText(control<QDoubleSpinBox>(window, "txtTextDistance"), "２．５");
    EXPECT_EQ(control<QDoubleSpinBox>(window, "txtTextDistance").value(), 2.5);
}

/// Paper, margins and orientation go to all sheets, so there must be room on all of them.
TEST_F(PrintOptions, EverySheetIsAskedForRoom)
{
    demand(grid.book.addSheet("附表"));
    grid.book.sheet(2).changeSettings([](spreadsheet::SheetSettings& settings) {
        settings.print.scale = 400; // a quarter of the cells find room
    });
    const spreadsheet::PrintSettings before = grid.print(2);
    frmPrintOptions options(grid);
    show(options);
    auto& paper = control<QComboBox>(options, "cboPaper");
    paper.setCurrentIndex(paper.count() - 1); // of an own size
    control<QDoubleSpinBox>(options, "txtPaperWidth").setValue(75);
    control<QDoubleSpinBox>(options, "txtPaperHeight").setValue(200);
    click(options, "cmdXPOK");
    EXPECT_TRUE(options.isVisible());
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_NE(ledger.boxes.said[0].text.find("附表"), std::string::npos) << ledger.boxes.said[0].text;
    EXPECT_EQ(grid.print(2), before);
    demand(grid.book.addSheet("坏表")); // which nothing here made worse
    grid.book.sheet(3).changeSettings(
        [](spreadsheet::SheetSettings& settings) { settings.print.marginLeft = 20 * 1440; });
    control<QDoubleSpinBox>(options, "txtPaperWidth").setValue(100);
    click(options, "cmdXPOK");
    EXPECT_FALSE(options.isVisible());
    EXPECT_EQ(ledger.boxes.said.size(), 1U);
}

} // namespace
} // namespace selfreport
