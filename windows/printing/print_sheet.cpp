#include "windows/printing/print_sheet.h"

#include "failures/failure_text.h"
#include "platform/services/Dialogs.h"
#include "platform/services/FileDialog.h"
#include "platform/services/PrintService.h"
#include "platform/windows/background_work.h"
#include "platform/windows/WaitCursor.h"
#include "reports/ReportContext.h"
#include "spreadsheet/files/placing/PendingFile.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/print_stamp.h"
#include "windows/printing/PrintedGrid.h"

#include <QApplication>
#include <QPageSize>
#include <QProgressDialog>

#include <cmath>
#include <memory>
#include <span>

namespace selfreport {

// Printing has many ends that are no error: no printer, a dialog that is cancelled, a figure that the user
// wants to look at first. They leave the work as exceptions and become outcomes at one place, so that no way
// out forgets to close a dialog or leaves half a file. A PDF is what is printed: the two cannot differ.

namespace {

/// Cancelled by the user.
struct Cancelled {};
/// … who wants to see the cell instead whose fetch failed.
struct GoesToCell {};

PrintOutcome refused(const PrintedGrid& grid, const std::string& reason)
{
    dialogs().message(Icon::exclamation, grid.context.title, reason);
    return PrintOutcome::failed;
}

/// Figures that could not be fetched are printed only if the user says so.
void requireFigures(const PrintedGrid& grid)
{
    const std::string failed = grid.failedFetches();
    if (failed.empty())
        return;
    const auto chosen = dialogs().choose(Icon::exclamation, grid.context.title, failed + "，是否仍然打印？",
                                         {"转到", "仍然打印（加注）"});
    if (!chosen)
        throw Cancelled();
    if (*chosen == 0)
        throw GoesToCell();
}

/// Work whose cancelling or failing ends a printing.
template <class Work>
PrintOutcome outcomeOf(PrintedGrid& grid, const Work& work)
{
    try {
        requireFigures(grid);
        work();
        return PrintOutcome::printed;
    } catch (const Cancelled&) {
        return PrintOutcome::cancelled;
    } catch (const spreadsheet::PrintCancelled&) {
        return PrintOutcome::cancelled;
    } catch (const GoesToCell&) {
        grid.goToFailedFetch();
        return PrintOutcome::left;
    } catch (const std::exception& error) {
        return refused(grid, failures::sentenceOf(error));
    }
}

struct Answer {
    bool hasPrinters = false;
    std::string paper;
};

Answer askService(const PrinterSetup& setup)
{
    const auto answer = std::make_shared<Answer>();
    const bool answered = runInBackground(
        QStringLiteral("正在查找打印机"),
        [answer, setup, &service = PrintServiceInUse::current()](WorkProgress& progress) {
            answer->hasPrinters = !service.printers().empty();
            if (answer->hasPrinters && setup.paper.empty() && !progress.cancelled())
                answer->paper = service.usualPaper(setup.printer);
            if (progress.cancelled())
                throw Cancelled();
        },
        Waiting::untilCancelled);
    if (!answered)
        throw Cancelled();
    return *answer;
}

/// Many machines run no print service. Who chose no printer is then offered a file, as where there are none.
Answer askUsualService(const PrinterSetup& setup)
{
    try {
        return askService(setup);
    } catch (const PrintServiceError&) {
        if (!setup.printer.empty())
            throw;
        return {};
    }
}

spreadsheet::PageRequest requestFor(const std::string& paper, PrintedGrid& grid)
{
    spreadsheet::PageRequest request;
    if (const auto size = paperSize(paper)) {
        request.paperWidth = size->width;
        request.paperHeight = size->height;
    }
    request.notice = grid.failedFetches();
    request.stamp = stampText(stampNow(grid.context.user, grid.context.title, grid.diagnosticsCount()));
    return request;
}

spreadsheet::PrintDocument documentOf(PrintedGrid& grid, const std::string& paper)
{
    spreadsheet::PrintDocument document;
    document.title = QString::fromStdString(grid.reportName());
    document.sheet = grid.workbook().activeSheet();
    document.page = requestFor(paper, grid);
    document.range = grid.printRange;
    return document;
}

/// Runs `make`, which draws the document, under a dialog that shows how far it is. Drawing reads the workbook
/// and so stays on this thread; the dialog acts between two pages.
void drawWithProgress(const PrintedGrid& grid, spreadsheet::PrintDocument& document,
                      const std::function<void()>& make)
{
    constexpr int patience = 300; // milliseconds before the dialog opens
    QProgressDialog dialog(QStringLiteral("正在生成打印页"), QStringLiteral("取消"), 0, 0,
                           QApplication::activeWindow());
    dialog.setObjectName(QStringLiteral("drawProgress"));
    dialog.setWindowTitle(QString::fromStdString(grid.context.title));
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setMinimumDuration(patience);
    document.goesOn = [&](int done, int pages) {
        dialog.setMaximum(pages);
        dialog.setLabelText(QStringLiteral("正在生成第 %1 页,共 %2 页").arg(done + 1).arg(pages));
        dialog.setValue(done);
        return !dialog.wasCanceled();
    };
    const WaitCursor waiting;
    make();
}

std::optional<std::string> chosenPdf(const PrintedGrid& grid)
{
    FileDialogSettings settings;
    settings.title = "引出为PDF文件";
    settings.filter = "PDF文件(*.pdf)|*.pdf";
    settings.fileName = grid.reportName();
    settings.flags = FileDialogSettings::overwritePrompt;
    return FileDialogInUse::current().chooseToSave(settings);
}

void writeFile(PrintedGrid& grid, spreadsheet::PrintDocument document, const std::string& path)
{
    spreadsheet::PendingFile file(path); // first: what cannot be written is found before the long work
    drawWithProgress(grid, document, [&] {
        const spreadsheet::Pdf pdf = spreadsheet::pdfOf(grid.workbook(), document);
        file.write(std::as_bytes(std::span(pdf.bytes)));
    });
    file.putInPlace();
}

void offerPdf(PrintedGrid& grid)
{
    if (!dialogs().question(grid.context.title, "没有可用的打印机,是否打印到PDF文件?"))
        throw Cancelled();
    const auto path = chosenPdf(grid);
    if (!path)
        throw Cancelled();
    writeFile(grid, documentOf(grid, printerSetup().paper), *path);
}

void sendToPrinter(PrintedGrid& grid, const std::string& paper)
{
    PrinterSetup setup = printerSetup();
    if (!paper.empty())
        setup.paper = paper;
    setup.landscape = grid.workbook().sheet(grid.workbook().activeSheet()).settings().print.landscape;
    spreadsheet::PrintDocument document = documentOf(grid, setup.paper);
    const auto pdf = std::make_shared<QByteArray>();
    drawWithProgress(grid, document, [&] { *pdf = spreadsheet::pdfOf(grid.workbook(), document).bytes; });
    const bool sent = runInBackground(
        QStringLiteral("正在送往打印机"),
        [pdf, setup, title = grid.reportName(), &service = PrintServiceInUse::current()](WorkProgress&) {
            service.print({pdf->constData(), static_cast<std::size_t>(pdf->size())}, title, setup);
        },
        Waiting::untilCancelled);
    if (!sent)
        throw Cancelled();
}

} // namespace

PrinterSetup& printerSetup()
{
    static PrinterSetup setup;
    return setup;
}

spreadsheet::PageRequest previewRequest(PrintedGrid& grid)
{
    return requestFor(printerSetup().paper, grid);
}

PrintOutcome printSheet(PrintedGrid& grid)
{
    return outcomeOf(grid, [&] {
        if (!printerSetup().file.empty())
            return writeFile(grid, documentOf(grid, printerSetup().paper), printerSetup().file);
        const Answer answer = askUsualService(printerSetup());
        if (answer.hasPrinters)
            sendToPrinter(grid, answer.paper);
        else
            offerPdf(grid);
    });
}

PrintOutcome exportPdf(PrintedGrid& grid)
{
    return outcomeOf(grid, [&] {
        const auto path = chosenPdf(grid);
        if (!path)
            throw Cancelled();
        spreadsheet::PrintDocument document = documentOf(grid, printerSetup().paper);
        document.sheet.reset();
        document.range = {};
        writeFile(grid, document, *path);
    });
}

std::optional<PaperSize> paperSize(const std::string& name)
{
    constexpr double twipsPerMillimetre = spreadsheet::twipsPerInch / 25.4;
    for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
        const QPageSize size(static_cast<QPageSize::PageSizeId>(id));
        if (!size.isValid() || size.key().compare(QString::fromStdString(name), Qt::CaseInsensitive) != 0)
            continue;
        const QSizeF millimetres = size.size(QPageSize::Millimeter);
        return PaperSize{static_cast<int>(std::lround(millimetres.width() * twipsPerMillimetre)),
                         static_cast<int>(std::lround(millimetres.height() * twipsPerMillimetre))};
    }
    return std::nullopt;
}

} // namespace selfreport
