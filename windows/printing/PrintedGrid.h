#pragma once
#include "spreadsheet/print/print_range.h"
#include "spreadsheet/values/CellAddress.h"
#include "spreadsheet/values/Refusal.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace spreadsheet {
class Workbook;
}

namespace selfreport {

class Connection;
struct ReportContext;

/// A cell whose call names what there is not, or failed.
struct CellWithoutData {
    int sheet = 1; ///< index from 1
    spreadsheet::CellAddress cell;
    std::string reason;
};

/// The grid that the printing windows set up, show and print: the designer's. Its active sheet is shown and
/// printed; margins, orientation, header and footer belong to the report and go to all of its sheets.
class PrintedGrid {
public:
    explicit PrintedGrid(ReportContext& reportContext);
    virtual ~PrintedGrid() = default;

    virtual spreadsheet::Workbook& workbook() = 0;
    /// The block that is selected, else the active cell.
    virtual spreadsheet::CellRange selectedBlock() const = 0;
    /// All ranges that are selected, in the order in which they were; else the active cell.
    virtual std::vector<spreadsheet::CellRange> selectedRanges() const { return {selectedBlock()}; }
    virtual std::string reportName() const = 0;
    /// Cells whose fetch failed or found nothing.
    virtual int diagnosticsCount() const = 0;
    /// "3 处取数失败，数字不可用" while fetches of cells stand failed; else "".
    virtual std::string failedFetches() const = 0;
    /// Makes the first of their cells the active one.
    virtual void goToFailedFetch() = 0;
    /// What sheets that are printed strictly do not hand out without a word, in the order of sheets.
    virtual std::vector<CellWithoutData> cellsWithoutData() const { return {}; }
    virtual void goTo(const CellWithoutData& /*cell*/) {}
    /// Something that is no error, for the status bar.
    virtual void tellStatus(std::string_view text) = 0;
    /// Closes the designer's window, which closes the preview.
    virtual void closeDesigner() = 0;
    /// Why page set-up, header and footer may not be changed now.
    virtual spreadsheet::Refusal pageSetupRefusal() const { return {}; }
    /// Whether the sheets show the margins and the orientation that the report's row gave them: a file that
    /// was imported brings others.
    virtual bool showsStoredMargins() const { return true; }
    /// Finds out whether the row under the report's id is not another report's now, and takes its lock in the
    /// transaction under way. It owns what it uses.
    virtual std::function<bool(Connection&)> ownershipOfRow() const
    {
        return [](Connection&) { return true; };
    }
    /// The report's row holds these now; margins left, right, top, bottom.
    virtual void pageSetupStored(const std::array<double, 4>& /*inches*/, bool /*isPortrait*/) {}
    virtual void headerStored(bool /*isFooter*/, const std::string& /*codes*/) {}

    ReportContext& context;             ///< who prints and sets up which report, on which database
    spreadsheet::PrintRange printRange; ///< what printing prints of the active sheet
};

/// Whether page set-up, header and footer may not be changed now; the user is told why.
bool isPageSetupRefused(const PrintedGrid& grid);

} // namespace selfreport
