#include "platform/printers/CupsPrintService.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/print/PreviewWidget.h"
#include "tests/windows/printing/PrintingTest.h"
#include "tests/windows/printing/TestPrintServer.h"
#include "windows/printing/PrintDlg.h"

#include <gmock/gmock.h>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>

namespace selfreport {
namespace {

using Said = RecordingDialogs::Said;

/// The report of the window tests, printed by a real print service.
struct PrintQueue : test::PrintingTest {
    PrintQueue()
    {
        grid.setPages(3);
        grid.book.sheet(1).setText({2, 2}, "科目 日月金 1,234.50");
        grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& settings) {
            settings.columns.sizes[2] = 4000;
            settings.print.header = R"(/fn"黑体"/fz"14"/fb1/fi0/fu0/fk0/c资产负债表/n)";
            settings.print.footer = R"(/fn"宋体"/fz"9"/fb0/fi0/fu0/fk0/r/p/n)";
        });
    }

    /// Pages with size and words, each word with its place to a tenth of a point, in the order of places.
    /// @param turned  each page by a quarter to the right, as a printer takes one that lies on its side
    static std::string pagesOf(const QString& pdf, bool turned = false)
    {
        const QString out = test::TestPrintServer::run("pdftotext", {"-bbox", pdf, "-"});
        static const QRegularExpression page(R"re(<page width="(.*?)" height="(.*?)">(.*?)</page>)re",
                                             QRegularExpression::DotMatchesEverythingOption);
        static const QRegularExpression word(
            R"re(<word xMin="(.*?)" yMin="(.*?)" xMax="(.*?)" yMax="(.*?)">(.*?)</word>)re");
        QStringList pages;
        for (auto found = page.globalMatch(out); found.hasNext();) {
            const QRegularExpressionMatch sheet = found.next();
            const double width = sheet.captured(1).toDouble();
            const double height = sheet.captured(2).toDouble();
            QStringList words;
            for (auto each = word.globalMatch(sheet.captured(3)); each.hasNext();) {
                const QRegularExpressionMatch w = each.next();
                double left = w.captured(1).toDouble(), top = w.captured(2).toDouble();
                if (turned)
                    std::tie(left, top) = std::pair(height - w.captured(4).toDouble(), left);
                words += QString("%1 %2 %3").arg(left, 0, 'f', 1).arg(top, 0, 'f', 1).arg(w.captured(5));
            }
            words.sort();
            pages += QString("page %1 x %2\n").arg(turned ? height : width).arg(turned ? width : height) +
                     words.join('\n');
        }
        return pages.join('\n').toStdString();
    }
    /// The same pages, written as a file.
    QString ownPdf()
    {
        spreadsheet::PrintDocument document;
        document.sheet = 1;
        document.range = grid.printRange;
        QFile file(folder.filePath("own.pdf"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(spreadsheet::pdfOf(grid.book, document).bytes);
        return file.fileName();
    }

    CupsPrintService cups;
    PrintServiceInUse cupsInUse{cups};
};

TEST_F(PrintQueue, PrintsTheSamePagesAsOurPdf)
{
    test::TestPrintServer server;
    PrintDlg window(grid);
    show(window);
    click(window, "Command2");
    EXPECT_EQ(grid.closed, 1);
    ASSERT_TRUE(ledger.boxes.said.empty()) << ledger.boxes.said[0].text;
    const std::string byDialog = pagesOf(server.takePrinted());
    EXPECT_THAT(byDialog, testing::HasSubstr("page 595 x 842"));
    EXPECT_THAT(byDialog, testing::HasSubstr("科目"));
    EXPECT_EQ(byDialog, pagesOf(ownPdf()));

    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.landscape = true; });
    grid.printRange.kind = spreadsheet::PrintRangeKind::pages;
    grid.printRange.firstPage = 2;
    grid.printRange.lastPage = 3;
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    const std::string direct = pagesOf(server.takePrinted());
    EXPECT_THAT(direct, testing::HasSubstr("page 595 x 842")) << "paper goes through a printer upright";
    EXPECT_EQ(direct, pagesOf(ownPdf(), true)) << "two pages that lie on their side";
}

TEST_F(PrintQueue, PrintsEachKindOfRangeThatTheDialogOffers)
{
    test::TestPrintServer server;
    grid.block = {1, 1, 1, 1};
    grid.others = {{1, 3, 2, 3}};
    const struct {
        const char* range;
        std::vector<std::string> pages; ///< what each page holds, and nothing of the other rows
    } cases[] = {{"Option1_0", {"第1行", "第2行", "第3行"}},
                 {"Option1_1", {"第1行", "第3行"}},
                 {"Option1_2", {"第2行"}},
                 {"Option1_3", {"第2行", "第3行"}}};
    for (const auto& [range, pages] : cases) {
        frmPreview::shared(grid).fpsp1().setCurrentPage(2);
        PrintDlg window(grid);
        show(window);
        control<QRadioButton>(window, range).click();
        if (control<QLineEdit>(window, "Text1_0").isEnabled()) {
            for (const auto& [field, page] : {std::pair("Text1_0", "2"), {"Text1_1", "3"}}) {
                control<QLineEdit>(window, field).selectAll();
                QTest::keyClicks(&control<QLineEdit>(window, field), page);
            }
        }
        click(window, "Command2");
        QFile printed(server.takePrinted());
        ASSERT_TRUE(printed.open(QIODevice::ReadOnly)) << range;
        const QStringList found = QString::fromStdString(textOf(printed.readAll().toStdString())).split('\f');
        ASSERT_EQ(found.size(), std::ssize(pages) + 1) << range;
        static const QRegularExpression row("第.行");
        for (std::size_t i = 0; i < pages.size(); ++i) {
            auto rows = row.globalMatch(found[static_cast<qsizetype>(i)]);
            EXPECT_EQ(rows.next().captured().toStdString(), pages[i]) << range;
            EXPECT_FALSE(rows.hasNext()) << range;
        }
    }
}

TEST_F(PrintQueue, ThePrintersOwnPaperIsUsed)
{
    test::TestPrintServer server;
    test::TestPrintServer::run("lpadmin", {"-p", "pdf", "-o", "PageSize=A5"});
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    EXPECT_THAT(pagesOf(server.takePrinted()), testing::HasSubstr("page 420 x 595"));
}

TEST_F(PrintQueue, WhatIsNotThereIsTold)
{
    const auto said = [&] {
        return ledger.boxes.said.empty() ? std::string() : ledger.boxes.said.back().text;
    };
    {
        test::TestPrintServer server;
        printerSetup().printer = "不在了";
        EXPECT_EQ(printSheet(grid), PrintOutcome::failed);
        EXPECT_EQ(said(), "找不到打印机“不在了”。\n是否打印到PDF文件?");
        server.stop();
        EXPECT_EQ(printSheet(grid), PrintOutcome::failed);
        EXPECT_EQ(said(), "打印服务没有回答。\n是否打印到PDF文件?");
        printerSetup().printer.clear(); // the usual one, if there is any
        EXPECT_EQ(printSheet(grid), PrintOutcome::failed);
        EXPECT_EQ(said(), "没有可用的打印机,是否打印到PDF文件?");
        printerSetup().printer = "不在了";
    }
    const test::SilentPort silent;
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(silent.number()));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(printSheet(grid), PrintOutcome::failed);
    EXPECT_LT(timer.elapsed(), 2500) << "2 seconds and a slow machine";
    EXPECT_EQ(said(), "打印服务没有回答。\n是否打印到PDF文件?");
    qunsetenv("CUPS_SERVER");
    EXPECT_EQ(grid.closed, 0);
}

} // namespace
} // namespace selfreport
