#include "platform/printers/CupsPrintService.h"
#include "printing/PrintDlg.h"
#include "spreadsheet/print/pdf.h"
#include "tests/printing/PrintingTest.h"
#include "tests/printing/TestPrintServer.h"

#include <QElapsedTimer>
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

    /// Pages with size, and every word with its place to a tenth of a point.
    static QString pagesOf(const QString& pdf)
    {
        QString out = test::TestPrintServer::run("pdftotext", {"-bbox", pdf, "-"});
        QString pages;
        static const QRegularExpression line(R"(<(page|word) ((?:\w+="[-\d.]+" ?)+)>?(?:(.*)</word>)?)");
        static const QRegularExpression number(R"(-?\d+\.\d+)");
        for (auto found = line.globalMatch(out); found.hasNext();) {
            const QRegularExpressionMatch match = found.next();
            pages += match.captured(1);
            for (auto place = number.globalMatch(match.captured(2)); place.hasNext();)
                pages += ' ' + QString::number(place.next().captured(0).toDouble(), 'f', 1);
            pages += ' ' + match.captured(3) + '\n';
        }
        return pages;
    }
    /// The same pages, written as a file.
    QString ownPdf()
    {
        spreadsheet::PdfOptions options;
        options.path = folder.filePath("own.pdf");
        options.sheet = 1;
        options.range = grid.printRange;
        spreadsheet::writePdf(grid.book, options);
        return options.path;
    }

    CupsPrintService cups;
    PrintServiceInUse cupsInUse{cups};
};

TEST_F(PrintQueue, PrintsTheSamePagesAsOurPdf)
{
    test::TestPrintServer server;
    PrintDlg window;
    show(window);
    click(window, "Command2");
    EXPECT_EQ(grid.closed, 1);
    ASSERT_TRUE(ledger.boxes.said.empty()) << ledger.boxes.said[0].text;
    const QString byDialog = pagesOf(server.takePrinted());
    EXPECT_EQ(byDialog.count("page "), 3) << byDialog.toStdString();
    EXPECT_TRUE(byDialog.contains("page 595.0 842.0"));
    EXPECT_TRUE(byDialog.contains("科目"));
    EXPECT_EQ(byDialog.toStdString(), pagesOf(ownPdf()).toStdString());

    grid.book.sheet(1).changeSettings([](spreadsheet::SheetSettings& s) { s.print.landscape = true; });
    grid.printRange.kind = spreadsheet::PrintRangeKind::pages;
    grid.printRange.firstPage = 2;
    grid.printRange.lastPage = 3;
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    const QString direct = pagesOf(server.takePrinted());
    EXPECT_EQ(direct.count("page "), 2) << direct.toStdString();
    EXPECT_TRUE(direct.contains("page 842.0 595.0")) << "lies on its side";
    EXPECT_EQ(direct.toStdString(), pagesOf(ownPdf()).toStdString());
}

TEST_F(PrintQueue, ThePrintersOwnPaperIsUsed)
{
    test::TestPrintServer server;
    test::TestPrintServer::run("lpadmin", {"-p", "pdf", "-o", "PageSize=A5"});
    EXPECT_EQ(printSheet(grid), PrintOutcome::printed);
    EXPECT_TRUE(pagesOf(server.takePrinted()).contains("page 420.0 595.0"));
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
        EXPECT_EQ(said(), "找不到打印机“不在了”。");
        server.stop();
        EXPECT_EQ(printSheet(grid), PrintOutcome::failed);
        EXPECT_EQ(said(), "打印服务没有回答。");
    }
    const test::SilentPort silent;
    qputenv("CUPS_SERVER", "127.0.0.1:" + QByteArray::number(silent.number()));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(printSheet(grid), PrintOutcome::failed);
    EXPECT_LT(timer.elapsed(), 20'000);
    EXPECT_NE(said(), "");
    qunsetenv("CUPS_SERVER");
    EXPECT_EQ(grid.closed, 0);
}

} // namespace
} // namespace selfreport
