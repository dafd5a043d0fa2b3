#pragma once
#include "platform/services/PrinterSetupDialog.h"
#include "spreadsheet/print/PageLayout.h"

#include <functional>
#include <optional>
#include <string>

namespace selfreport {

class PrintedGrid;

enum class PrintOutcome {
    printed,
    cancelled, ///< by the user
    failed,    ///< the user has been told why
    left,      ///< the user goes to a cell whose fetch failed
};

/// The printer and its settings as they were chosen last; at first the system's own.
PrinterSetup& printerSetup();

/// What the preview lays out: paper as chosen for the printer, A4 before that (no printer is asked), and the
/// stamp of now.
spreadsheet::PageRequest previewRequest(PrintedGrid& grid);

// Where fetches of cells stand failed, both ask first, and what is printed all the same says so on every
// page.

/// Prints the active sheet: its print settings, the grid's print range, the chosen printer. The print
/// service is asked in the background; without a printer it offers a PDF file instead.
PrintOutcome printSheet(PrintedGrid& grid);

/// Asks for a file and writes all sheets into it as one PDF.
PrintOutcome exportPdf(PrintedGrid& grid);

/// Twips of a paper by its name; nothing if it is not known.
struct PaperSize {
    int width, height;
};
std::optional<PaperSize> paperSize(const std::string& name);

} // namespace selfreport
