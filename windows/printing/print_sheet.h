#pragma once
#include "platform/services/PrinterSetupDialog.h"
#include "spreadsheet/print/PageLayout.h"
#include "spreadsheet/print/print_range.h"

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

/// The printer and its settings as they were chosen last; at first the system's own. Its paper counts only
/// for reports that have none of their own.
PrinterSetup& printerSetup();

/// The paper of the active sheet as print services name it; "" for the printer's own.
std::string paperName(PrintedGrid& grid);
/// Gives the report a paper by name, stored with it; "" takes it away. One undo step.
void setPaper(PrintedGrid& grid, const std::string& name);

/// Why the active sheet's repeated rows or columns are not repeated, as one sentence; "" if they are.
std::string titlesLeftOut(PrintedGrid& grid);

/// What a printing prints in place of what sheet and grid hold.
struct PrintChoice {
    spreadsheet::PrintSettings settings;
    spreadsheet::PrintRange range;
};

/// What the preview lays out: the report's paper, else the one chosen for the printer, A4 before that (no
/// printer is asked), and the stamp of now.
spreadsheet::PageRequest previewRequest(PrintedGrid& grid);

/// Why one of the sheets, by index from 1, cannot be printed once all are changed so, as one sentence; "" if
/// they can. The active one is asked first, of the others those that could be printed before.
using ChangeOfSheet = std::function<void(int sheet, spreadsheet::PrintSettings& print)>;
std::string layoutProblemOfAll(PrintedGrid& grid, const ChangeOfSheet& change);

// Where fetches of cells stand failed, both ask first, and what is printed all the same says so on every
// page.

/// Prints the active sheet: its print settings, the grid's print range, the chosen printer. The print
/// service is asked in the background; without a printer, or when it refuses, a PDF file is offered instead.
PrintOutcome printSheet(PrintedGrid& grid, const std::optional<PrintChoice>& choice = std::nullopt);

/// Prints all sheets of the report, one after the other, as one job.
PrintOutcome printAllSheets(PrintedGrid& grid);

/// Asks for a file and writes all sheets into it as one PDF, whose properties name the report, the operator
/// and the closing date of the run parameters.
/// @param isArchive  the file keeps to PDF/A-1b
PrintOutcome exportPdf(PrintedGrid& grid, bool isArchive = false);

/// Twips of a paper by its name; nothing if it is not known.
struct PaperSize {
    int width, height;
};
std::optional<PaperSize> paperSize(const std::string& name);

} // namespace selfreport
