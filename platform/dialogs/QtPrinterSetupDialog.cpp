#include "platform/dialogs/QtPrinterSetupDialog.h"

#include <QApplication>
#include <QPageSize>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

namespace selfreport {

namespace {

std::optional<QPageSize> pageSizeOf(const std::string& name)
{
    for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
        const QPageSize size(static_cast<QPageSize::PageSizeId>(id));
        if (size.isValid() && size.key() == QString::fromStdString(name))
            return size;
    }
    return {};
}

} // namespace

void applyPrinterSetup(QPrinter& printer, const PrinterSetup& setup)
{
    const QString name = QString::fromStdString(setup.printer);
    if (!name.isEmpty() && QPrinterInfo::availablePrinterNames().contains(name))
        printer.setPrinterName(name);
    if (const auto size = pageSizeOf(setup.paper))
        printer.setPageSize(*size);
    if (!setup.file.empty()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(QString::fromStdString(setup.file));
    }
    printer.setPageOrientation(setup.landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    printer.setCopyCount(std::max(setup.copies, 1));
    printer.setCollateCopies(setup.collated);
    printer.setColorMode(setup.inColour ? QPrinter::Color : QPrinter::GrayScale);
    printer.setDuplex(setup.bothSides ? QPrinter::DuplexAuto : QPrinter::DuplexNone);
}

PrinterSetup printerSetupOf(const QPrinter& printer)
{
    PrinterSetup setup;
    setup.printer = printer.printerName().toStdString();
    setup.paper = printer.pageLayout().pageSize().key().toStdString();
    setup.file = printer.outputFileName().toStdString();
    setup.copies = printer.copyCount();
    setup.collated = printer.collateCopies();
    setup.landscape = printer.pageLayout().orientation() == QPageLayout::Landscape;
    setup.inColour = printer.colorMode() == QPrinter::Color;
    setup.bothSides = printer.duplex() != QPrinter::DuplexNone;
    return setup;
}

std::optional<PrinterSetup> QtPrinterSetupDialog::choose(const PrinterSetup& first)
{
    QPrinter printer(QPrinter::HighResolution);
    applyPrinterSetup(printer, first);
    QPrintDialog dialog(&printer, QApplication::activeWindow());
    dialog.setObjectName("printerSetupDialog");
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false); // the print window has its own pages
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return printerSetupOf(printer);
}

} // namespace selfreport
