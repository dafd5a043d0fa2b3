#include "windows/printing/print_sheet.h"

#include "failures/failure_text.h"
#include "platform/services/Dialogs.h"
#include "platform/services/FileDialog.h"
#include "platform/services/PrintService.h"
#include "platform/services/SettingsStore.h"
#include "platform/windows/background_work.h"
#include "platform/windows/WaitCursor.h"
#include "reports/ReportContext.h"
#include "spreadsheet/cells/papers.h"
#include "spreadsheet/files/placing/PendingFile.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/workbook/Workbook.h"
#include "windows/printing/print_settings.h"
#include "windows/printing/print_stamp.h"
#include "windows/printing/PrintedGrid.h"
#include "windows/printing/strict_printing.h"

#include <QApplication>
#include <QPageSize>
#include <QProgressDialog>

#include <cmath>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace selfreport {

// Printing has many ends that are no error: no printer, a dialog that is cancelled, a figure that the user
// wants to look at first. They leave the work as exceptions and become outcomes at one place, so that no way
// out forgets to close a dialog or leaves half a file. A PDF is what is printed: the two cannot differ.

namespace {

/// Cancelled by the user.
struct Cancelled {};
/// … who wants to see the cell instead whose fetch failed.
struct GoesToCell {};
/// … who has been told why nothing is printed, and does not want a file instead.
struct Told {};
/// … or that a strict sheet does not hand out.
struct GoesTo {
    CellWithoutData cell;
};

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

/// What there is no data for is printed by a strict sheet only if the user says so.
void requireData(const PrintedGrid& grid, spreadsheet::Workbook& workbook,
                 const std::vector<CellWithoutData>& cells)
{
    if (cells.empty() || !grid.failedFetches().empty()) // those have been asked about
        return;
    switch (askAboutWithheld(grid, workbook, cells)) {
    case WithheldAnswer::cancel:
        throw Cancelled();
    case WithheldAnswer::goThere:
        throw GoesTo{cells.front()};
    case WithheldAnswer::print:
        break;
    }
}

/// Work whose cancelling or failing ends a printing.
template <class Work>
PrintOutcome outcomeOf(PrintedGrid& grid, bool ofAllSheets, const Work& work)
{
    try {
        requireFigures(grid);
        const std::vector<CellWithoutData> withheld = withheldCells(grid, ofAllSheets);
        requireData(grid, grid.workbook(), withheld);
        const NotedCells noted(grid.workbook(), withheld);
        work();
        return PrintOutcome::printed;
    } catch (const Cancelled&) {
        return PrintOutcome::cancelled;
    } catch (const spreadsheet::PrintCancelled&) {
        return PrintOutcome::cancelled;
    } catch (const Told&) {
        return PrintOutcome::failed;
    } catch (const GoesToCell&) {
        grid.goToFailedFetch();
        return PrintOutcome::left;
    } catch (const GoesTo& left) {
        grid.goTo(left.cell);
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
        Waiting::untilCancelled, printServicePatience);
    if (!answered)
        throw Cancelled();
    return *answer;
}

/// Many machines run no print service. Who chose no printer is then offered a file, as where there are none.
Answer askUsualService(const PrinterSetup& setup)
{
    try {
        return askService(setup);
    } catch (const OutOfTime&) {
        throw PrintServiceError("打印服务没有回答。");
    } catch (const PrintServiceError&) {
        if (!setup.printer.empty())
            throw;
        return {};
    }
}

/// The notice that every page begins with.
std::string noticeOf(PrintedGrid& grid, bool ofAllSheets)
{
    const std::string failed = grid.failedFetches();
    const std::string withheld = withheldText(withheldCells(grid, ofAllSheets));
    return failed + (failed.empty() || withheld.empty() ? "" : "  ") + withheld;
}

spreadsheet::PageRequest requestFor(const std::string& paper, PrintedGrid& grid, bool ofAllSheets)
{
    spreadsheet::PageRequest request;
    if (const auto size = paperSize(paper)) { // counts where the sheets have none
        request.paperWidth = size->width;
        request.paperHeight = size->height;
    }
    request.notice = noticeOf(grid, ofAllSheets);
    request.report = grid.reportName();
    request.stamp = stampText(stampNow(grid.context.user, grid.context.title, grid.diagnosticsCount()));
    return request;
}

/// The active sheet, or all of them.
spreadsheet::PrintDocument documentOf(PrintedGrid& grid, const std::string& paper,
                                      const std::optional<PrintChoice>& choice, bool allSheets)
{
    spreadsheet::PrintDocument document;
    document.title = QString::fromStdString(grid.reportName());
    document.author = QString::fromStdString(operatorName(grid.context.user));
    if (const std::string date = settingsStore().value("ParamValue", "Value1"); !date.empty())
        document.subject = QStringLiteral("截止日期 ") + QString::fromStdString(date);
    document.page = requestFor(paper, grid, allSheets);
    if (allSheets)
        return document;
    document.sheet = grid.workbook().activeSheet();
    document.range = choice ? choice->range : grid.printRange;
    if (choice)
        document.page.print = choice->settings;
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
    settings.title = "另存为PDF";
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

/// A paper as print services take it.
std::string serviceName(int width, int height)
{
    const spreadsheet::Paper* const paper = spreadsheet::paperOfSize(width, height);
    if (paper && *paper->name)
        return paper->name;
    constexpr double millimetres = 25.4 / spreadsheet::twipsPerInch;
    const auto rounded = [](int twips) { return QString::number(std::round(twips * millimetres * 10) / 10); };
    return ("Custom." + rounded(width) + 'x' + rounded(height) + "mm").toStdString();
}

/// Asks whether to write a file instead, and writes it.
void offerPdf(PrintedGrid& grid, const spreadsheet::PrintDocument& document, const std::string& question)
{
    if (!dialogs().question(grid.context.title, question))
        throw Told();
    const auto path = chosenPdf(grid);
    if (!path)
        throw Cancelled();
    writeFile(grid, document, *path);
}

void sendToPrinter(PrintedGrid& grid, const std::string& paper, const std::optional<PrintChoice>& choice,
                   bool allSheets)
{
    PrinterSetup setup = printerSetup();
    if (!paper.empty())
        setup.paper = paper;
    spreadsheet::PrintDocument document = documentOf(grid, setup.paper, choice, allSheets);
    const spreadsheet::PrintSettings& print = choice ? choice->settings : activeSheetsPrint(grid.workbook());
    setup.landscape = print.landscape;
    if (print.paperWidth > 0 && print.paperHeight > 0)
        setup.paper = serviceName(print.paperWidth, print.paperHeight);
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

PrintOutcome print(PrintedGrid& grid, const std::optional<PrintChoice>& choice, bool allSheets)
{
    return outcomeOf(grid, allSheets, [&] {
        const spreadsheet::PrintDocument document = documentOf(grid, printerSetup().paper, choice, allSheets);
        if (!printerSetup().file.empty())
            return writeFile(grid, document, printerSetup().file);
        std::string question = "没有可用的打印机,是否打印到PDF文件?";
        try {
            const Answer answer = askUsualService(printerSetup());
            if (answer.hasPrinters)
                return sendToPrinter(grid, answer.paper, choice, allSheets);
        } catch (const PrintServiceError& error) {
            question = error.what() + std::string("\n是否打印到PDF文件?");
        }
        offerPdf(grid, document, question);
    });
}

} // namespace

PrinterSetup& printerSetup()
{
    static PrinterSetup setup;
    return setup;
}

std::string paperName(PrintedGrid& grid)
{
    const spreadsheet::PrintSettings& print = activeSheetsPrint(grid.workbook());
    const spreadsheet::Paper* const paper = spreadsheet::paperOfSize(print.paperWidth, print.paperHeight);
    return paper ? paper->name : std::string();
}

void setPaper(PrintedGrid& grid, const std::string& name)
{
    const PaperSize size = paperSize(name).value_or(PaperSize{0, 0});
    changeReportsPrint(grid.workbook(), [&](spreadsheet::PrintSettings& print) {
        print.paperWidth = size.width;
        print.paperHeight = size.height;
    });
}

spreadsheet::PageRequest previewRequest(PrintedGrid& grid)
{
    return requestFor(printerSetup().paper, grid, false);
}

/// A sheet's problem with other settings.
static std::string layoutProblemOf(PrintedGrid& grid, const spreadsheet::Sheet& sheet,
                                   const spreadsheet::PrintSettings& print)
{
    spreadsheet::PageRequest request = previewRequest(grid);
    request.ranges = {{1, 1, 1, 1}};
    request.print = print;
    try {
        const spreadsheet::PageLayout layout(sheet, request);
        return {};
    } catch (const spreadsheet::PageLayoutError& error) {
        return error.what();
    }
}

std::string layoutProblemOfAll(PrintedGrid& grid, const ChangeOfSheet& change)
{
    const spreadsheet::Workbook& workbook = grid.workbook();
    const auto problemOf = [&](int index, bool isChanged) {
        spreadsheet::PrintSettings print = workbook.sheet(index).settings().print;
        if (isChanged)
            change(index, print);
        return layoutProblemOf(grid, workbook.sheet(index), print);
    };
    if (std::string problem = problemOf(workbook.activeSheet(), true); !problem.empty())
        return problem;
    for (int index = 1; index <= workbook.sheetCount(); ++index)
        if (const std::string problem = problemOf(index, true);
            !problem.empty() && problemOf(index, false).empty())
            return "表“" + workbook.sheet(index).name() + "”: " + problem;
    return {};
}

std::string titlesLeftOut(PrintedGrid& grid)
{
    try {
        const spreadsheet::Sheet& sheet = grid.workbook().sheet(grid.workbook().activeSheet());
        return spreadsheet::PageLayout(sheet, previewRequest(grid)).titlesLeftOut();
    } catch (const spreadsheet::PageLayoutError&) {
        return {}; // which is told where pages are wanted
    }
}

PrintOutcome printSheet(PrintedGrid& grid, const std::optional<PrintChoice>& choice)
{
    return print(grid, choice, false);
}

PrintOutcome printAllSheets(PrintedGrid& grid)
{
    return print(grid, std::nullopt, true);
}

PrintOutcome exportPdf(PrintedGrid& grid, bool isArchive)
{
    return outcomeOf(grid, true, [&] {
        const auto path = chosenPdf(grid);
        if (!path)
            throw Cancelled();
        spreadsheet::PrintDocument document = documentOf(grid, printerSetup().paper, std::nullopt, true);
        document.isArchive = isArchive;
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
