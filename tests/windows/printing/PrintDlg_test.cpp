#include "windows/printing/PrintDlg.h"

#include "spreadsheet/print/PreviewWidget.h"
#include "tests/windows/printing/PrintingTest.h"
#include "windows/printing/page_number.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QRadioButton>

#include <fstream>
#include <iterator>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

std::string contentOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

struct PrintDialog : test::PrintingTest {
    PrintDialog() { grid.setPages(5); }
    void print(const std::function<void(PrintDlg&)>& choose)
    {
        PrintDlg window(grid);
        show(window);
        choose(window);
        click(window, "Command2");
    }
    static void typePages(PrintDlg& window, const char* first, const char* last)
    {
        control<QRadioButton>(window, "Option1_3").click();
        for (const auto& [field, text] : {std::pair("Text1_0", first), std::pair("Text1_1", last)}) {
            auto& edit = control<QLineEdit>(window, field);
            edit.selectAll();
            QTest::keyClicks(&edit, text);
        }
    }
};

TEST_F(PrintDialog, OpensWithEverythingOnAndPrintsAllPages)
{
    print([](PrintDlg& window) {
        for (int i = 0; i < 7; ++i)
            EXPECT_TRUE(control<QCheckBox>(window, ("Check1_" + std::to_string(i)).c_str()).isChecked()) << i;
        EXPECT_TRUE(control<QRadioButton>(window, "Option1_0").isChecked());
        for (const char* field : {"Text1_0", "Text1_1"}) {
            EXPECT_FALSE(control<QLineEdit>(window, field).isEnabled());
            EXPECT_EQ(control<QLineEdit>(window, field).text(), "1");
        }
    });
    EXPECT_EQ(grid.closed, 1);
    const spreadsheet::PrintSettings& done = grid.print();
    EXPECT_TRUE(done.columnHeadings && done.rowHeadings && done.gridLines && done.border && done.colour &&
                done.shadows && done.usedAreaOnly);
    EXPECT_EQ(grid.printRange.kind, spreadsheet::PrintRangeKind::all);
    ASSERT_EQ(service.printed.size(), 1U);
    const std::string text = textOf(service.printed[0].pdf);
    for (int row = 1; row <= 5; ++row)
        EXPECT_NE(text.find("第" + std::to_string(row) + "行"), std::string::npos) << text;
}

TEST_F(PrintDialog, EachOptionReachesItsSetting)
{
    bool spreadsheet::PrintSettings::*const settings[] = {
        &spreadsheet::PrintSettings::columnHeadings, &spreadsheet::PrintSettings::rowHeadings,
        &spreadsheet::PrintSettings::gridLines,      &spreadsheet::PrintSettings::border,
        &spreadsheet::PrintSettings::usedAreaOnly,   &spreadsheet::PrintSettings::colour,
        &spreadsheet::PrintSettings::shadows};
    for (int i = 0; i < 7; ++i) {
        if (i == 4)
            continue; // the whole sheet has many pages: below
        print([&](PrintDlg& window) {
            control<QCheckBox>(window, ("Check1_" + std::to_string(i)).c_str()).click();
        });
        for (int other = 0; other < 7; ++other)
            EXPECT_EQ(grid.print().*settings[other], other != i) << i << ' ' << other;
    }
    print([&](PrintDlg& window) {
        control<QCheckBox>(window, "Check1_4").click();
        typePages(window, "1", "1");
    });
    EXPECT_FALSE(grid.print().usedAreaOnly);
}

TEST_F(PrintDialog, RangesPrintWhatTheySay)
{
    grid.block = {1, 2, 3, 4};
    frmPreview::shared(grid).fpsp1().setCurrentPage(4);
    const struct {
        const char* what;
        std::function<void(PrintDlg&)> choose;
        int first, last; // rows printed
    } cases[] = {
        {"all", [](PrintDlg&) {}, 1, 5},
        {"selected cells", [](PrintDlg& w) { control<QRadioButton>(w, "Option1_1").click(); }, 2, 4},
        {"current page", [](PrintDlg& w) { control<QRadioButton>(w, "Option1_2").click(); }, 4, 4},
        {"pages", [](PrintDlg& w) { typePages(w, "2", "3"); }, 2, 3},
        {"pages beyond the end", [](PrintDlg& w) { typePages(w, "4", "99"); }, 4, 5},
    };
    for (const auto& [what, choose, first, last] : cases) {
        service.printed.clear();
        print(choose);
        ASSERT_EQ(service.printed.size(), 1U) << what;
        const std::string text = textOf(service.printed[0].pdf);
        for (int row = 1; row <= 5; ++row)
            EXPECT_EQ(text.find("第" + std::to_string(row) + "行") != std::string::npos,
                      row >= first && row <= last)
                << what << ' ' << row;
        frmPreview::shared(grid).fpsp1().setCurrentPage(4); // the designer's closing discarded it
    }
    EXPECT_TRUE(ledger.boxes.said.empty());
}

TEST_F(PrintDialog, ARangeWithoutPagesAndTooLargeNumbersPrintNothing)
{
    const struct {
        const char *first, *last, *said;
    } cases[] = {{"3", "2", "打印范围内没有页。"},
                 {"6", "9", "打印范围内没有页。"},
                 {"1", "32768", "页码不能大于32767!"},
                 {"99999999999999999999", "1", "页码不能大于32767!"}};
    for (const auto& [first, last, said] : cases) {
        ledger.boxes.said.clear();
        print([&](PrintDlg& window) { typePages(window, first, last); });
        EXPECT_EQ(ledger.boxes.said, (std::vector<Said>{{Icon::exclamation, gTitle, said}})) << first;
    }
    EXPECT_TRUE(service.printed.empty());
    EXPECT_EQ(grid.closed, 0);
    EXPECT_EQ(grid.printRange, spreadsheet::PrintRange()) << "the grid's range is as it was";
}

TEST_F(PrintDialog, PageFieldsHoldNumbers)
{
    PrintDlg window(grid);
    show(window);
    control<QRadioButton>(window, "Option1_3").click();
    auto& first = control<QLineEdit>(window, "Text1_0");
    EXPECT_TRUE(first.hasFocus() && first.isEnabled());
    QTest::keyClicks(&first, "42");
    EXPECT_EQ(first.text(), "42") << "what is typed takes the place of what stood there";
    first.selectAll();
    QTest::keyClicks(&first, "x");
    EXPECT_EQ(first.text(), "1");
    QTest::keyClick(&first, Qt::Key_Backspace);
    EXPECT_EQ(first.text(), "1") << "never empty";
    control<QRadioButton>(window, "Option1_2").click();
    EXPECT_FALSE(first.isEnabled());

    const struct {
        const char* text;
        std::optional<int> number;
    } cases[] = {{"3", 3},         {" 12 ", 12},  {"-2", -2},     {"+7", 7},   {"2.5", 2},
                 {"3.5", 4},       {"2.6", 3},    {"", {}},       {" ", {}},   {"1x", {}},
                 {"32767", 32767}, {"32768", {}}, {"-32769", {}}, {"inf", {}}, {"１２", 12}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(pageNumber(text), number) << text;
}

TEST_F(PrintDialog, ThePrintersPaperAndSettingsAreUsed)
{
    service.paper = "A5";
    print([](PrintDlg&) {});
    EXPECT_NE(service.printed[0].pdf.find("[0 0 420"), std::string::npos) << "points across";
    EXPECT_EQ(service.printed[0].setup.paper, "A5");

    setups.answers = {PrinterSetup{"乙", "Letter", "", 2, true, false, false, true}, std::nullopt};
    print([](PrintDlg& window) {
        click(window, "Command4");
        click(window, "Command4");
    });
    EXPECT_EQ(setups.asked[1].printer, "乙") << "a cancelled choice leaves the former one";
    EXPECT_EQ(service.printed[1].setup.printer, "乙");
    EXPECT_EQ(service.printed[1].setup.paper, "Letter");
    EXPECT_EQ(service.printed[1].setup.copies, 2);
}

TEST_F(PrintDialog, WithoutAPrinterAPdfIsOffered)
{
    service.known.clear();
    print([](PrintDlg&) {});
    ASSERT_EQ(ledger.boxes.said.size(), 1U);
    EXPECT_EQ(ledger.boxes.said[0].icon, Icon::question);
    EXPECT_EQ(grid.closed, 0) << "answered with No";

    ledger.boxes.answer = true;
    files.answers = {std::nullopt, folder.filePath("表.pdf").toStdString()};
    print([](PrintDlg&) {});
    EXPECT_EQ(grid.closed, 0) << "no file chosen";
    print([](PrintDlg&) {});
    EXPECT_EQ(grid.closed, 1);
    EXPECT_TRUE(QFileInfo::exists(folder.filePath("表.pdf")));
}

TEST_F(PrintDialog, FailuresAreToldAndCloseNothing)
{
    const spreadsheet::PrintSettings before = grid.print();
    int calls = 0;
    service.before = [&] {
        if (++calls == 3)
            throw PrintServiceError("找不到打印机“甲”。");
    };
    print([](PrintDlg&) {});
    EXPECT_EQ(ledger.boxes.said,
              (std::vector<Said>{{Icon::question, gTitle, "找不到打印机“甲”。\n是否打印到PDF文件?"}}));
    EXPECT_EQ(grid.print(), before) << "its options are not the sheet's";

    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.marginLeft = 20'000; });
    print([](PrintDlg&) {});
    EXPECT_EQ(ledger.boxes.said.size(), 2U) << "margins that leave no room";
    EXPECT_EQ(grid.closed, 0);
    EXPECT_TRUE(service.printed.empty());
}

TEST_F(PrintDialog, WhereAPrinterRefusesAPdfIsOffered)
{
    service.before = [] { throw PrintServiceError("打印机“甲”没有接受打印：没有权限。"); };
    printerSetup().printer = "甲";
    ledger.boxes.answer = true;
    files.answers = {folder.filePath("甲.pdf").toStdString()};
    print([](PrintDlg&) {});
    EXPECT_TRUE(QFileInfo::exists(folder.filePath("甲.pdf")));
    EXPECT_EQ(grid.closed, 1);
}

TEST_F(PrintDialog, APaperIsTheReportsOwn)
{
    demand(grid.book.addSheet("附表"));
    setups.answers = {PrinterSetup{"甲", "A3", "", 1, true, false, true, false}};
    PrintDlg window(grid);
    show(window);
    click(window, "Command4");
    for (const int sheet : {1, 2})
        EXPECT_EQ(std::pair(grid.print(sheet).paperWidth, grid.print(sheet).paperHeight),
                  std::pair(16838, 23811)); // 297 × 420 mm
    EXPECT_EQ(paperName(grid), "A3");

    test::TestGrid next; // another report, later
    EXPECT_EQ(paperName(next), "");
    EXPECT_EQ(previewRequest(next).paperWidth, 11906);

    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) {
        s.print.paperWidth = 10431; // 184 × 260 mm
        s.print.paperHeight = 14740;
    });
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    EXPECT_EQ(service.printed.at(0).setup.paper, "Custom.184x260mm");
    EXPECT_NE(service.printed[0].pdf.find("[0 0 522"), std::string::npos) << "points across";
}

TEST_F(PrintDialog, DirectPrintingUsesWhatTheGridHolds)
{
    grid.printRange.kind = spreadsheet::PrintRangeKind::pages;
    grid.printRange.firstPage = grid.printRange.lastPage = 2;
    const spreadsheet::PrintSettings before = grid.print();
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    EXPECT_EQ(grid.print(), before);
    const std::string text = textOf(service.printed.at(0).pdf);
    EXPECT_NE(text.find("第2行"), std::string::npos);
    EXPECT_EQ(text.find("第1行"), std::string::npos);
}

TEST_F(PrintDialog, ExportWritesAllSheets)
{
    demand(grid.book.addSheet("附表"));
    grid.book.sheet(2).setText({1, 1}, "附注");
    grid.printRange.kind = spreadsheet::PrintRangeKind::currentPage;
    EXPECT_EQ(exportPdf(grid), PrintOutcome::cancelled);
    files.answers = {folder.filePath("表.pdf").toStdString()};
    EXPECT_EQ(exportPdf(grid), PrintOutcome::printed);
    QFile file(folder.filePath("表.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string text = textOf(file.readAll().toStdString());
    EXPECT_NE(text.find("第5行"), std::string::npos);
    EXPECT_NE(text.find("附注"), std::string::npos);
}

struct FailedFigures : PrintDialog {
    FailedFigures() { grid.failed = "2 处取数失败，数字不可用"; }

    /// Every road to paper or file.
    const std::vector<std::pair<const char*, std::function<PrintOutcome()>>> roads{
        {"direct", [&] { return printSheet(grid); }},
        {"dialog",
         [&] {
             PrintDlg window(grid);
             show(window);
             return window.PrintSpread();
         }},
        {"PDF", [&] { return exportPdf(grid); }},
    };
    std::string file = folder.filePath("a.pdf").toStdString();
};

TEST_F(FailedFigures, AreNotPrintedWithoutAQuestion)
{
    for (const auto& [what, road] : roads) {
        ledger.boxes.said.clear();
        ledger.boxes.offered.clear();
        EXPECT_EQ(road(), PrintOutcome::cancelled) << what;
        ASSERT_EQ(ledger.boxes.said.size(), 1U) << what;
        EXPECT_EQ(ledger.boxes.said[0].text, "2 处取数失败，数字不可用，是否仍然打印？");
        EXPECT_EQ(ledger.boxes.offered[0], (std::vector<std::string>{"转到", "仍然打印（加注）"}));
    }
    EXPECT_TRUE(service.printed.empty());
    EXPECT_TRUE(files.asked.empty());
    EXPECT_EQ(grid.wentToFailed, 0);
}

TEST_F(FailedFigures, ArePrintedWithANoteOnEveryPage)
{
    for (const auto& [what, road] : roads) {
        service.printed.clear();
        ledger.boxes.chosen = {"仍然打印（加注）"};
        files.answers = {file};
        EXPECT_EQ(road(), PrintOutcome::printed) << what;
        const std::string pdf = service.printed.empty() ? contentOf(file) : service.printed[0].pdf;
        const std::string text = textOf(pdf);
        std::size_t notes = 0;
        for (auto at = text.find(grid.failed); at != std::string::npos; at = text.find(grid.failed, at + 1))
            ++notes;
        EXPECT_EQ(notes, 5U) << what << text;
    }
}

TEST_F(FailedFigures, CanBeGoneTo)
{
    ledger.boxes.chosen = {"转到", "转到"};
    EXPECT_EQ(printSheet(grid), PrintOutcome::left);
    EXPECT_EQ(grid.wentToFailed, 1);

    frmPreview::shared(grid);
    PrintDlg window(grid);
    show(window);
    click(window, "Command2");
    EXPECT_EQ(grid.wentToFailed, 2);
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(frmPreview::exists());
    EXPECT_EQ(grid.closed, 0); // the designer stays
    EXPECT_TRUE(service.printed.empty());
}

/// B2 asks for an account that there is not, and holds a figure all the same.
struct StrictSheets : FailedFigures {
    StrictSheets()
    {
        grid.failed.clear();
        grid.withoutData = {{1, {2, 2}, "科目“1123”不存在"}};
        grid.book.sheet(1).setNumber({2, 2}, 12345);
        grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.strict = true; });
    }
};

TEST_F(StrictSheets, ListTheirCellsAndAsk)
{
    for (const auto& [what, road] : roads) {
        ledger.boxes.said.clear();
        EXPECT_EQ(road(), PrintOutcome::cancelled) << what;
        ASSERT_EQ(ledger.boxes.said.size(), 1U) << what;
        EXPECT_EQ(ledger.boxes.said[0].text,
                  "※ 未取到数据 1 处，是否仍然打印？\nSheet1!B2  科目“1123”不存在");
    }
    EXPECT_TRUE(service.printed.empty());
    EXPECT_TRUE(files.asked.empty());
    ledger.boxes.chosen = {"转到"};
    EXPECT_EQ(printSheet(grid), PrintOutcome::left);
    EXPECT_EQ(grid.wentTo, "B2");
}

TEST_F(StrictSheets, ArePrintedWithTheirCellsNoted)
{
    for (const auto& [what, road] : roads) {
        service.printed.clear();
        ledger.boxes.chosen = {"仍然打印（加注）"};
        files.answers = {file};
        EXPECT_EQ(road(), PrintOutcome::printed) << what;
        const std::string text = textOf(service.printed.empty() ? contentOf(file) : service.printed[0].pdf);
        EXPECT_NE(text.find("※ 未取到数据 1 处"), std::string::npos) << what;
        EXPECT_NE(text.find("※12345"), std::string::npos) << what << text;
        EXPECT_EQ(grid.book.sheet(1).displayText({2, 2}), "12345");
    }
    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.strict = false; });
    service.printed.clear();
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    ASSERT_EQ(service.printed.size(), 1U);
    EXPECT_EQ(textOf(service.printed[0].pdf).find("※"), std::string::npos);
}

} // namespace
} // namespace selfreport
