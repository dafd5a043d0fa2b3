#include "windows/printing/PrintedGrid.h"

#include "reports/ReportContext.h"
#include "spreadsheet/workbook/Workbook.h"

namespace selfreport {

PrintedGrid::PrintedGrid(ReportContext& reportContext)
    : context(reportContext)
{
}

PrintedGrid*& PrintedGrid::usual()
{
    static ReportContext noReport;
    struct NoDesigner : PrintedGrid {
        NoDesigner()
            : PrintedGrid(noReport)
        {
        }
        spreadsheet::Workbook& workbook() override { return empty; }
        spreadsheet::CellRange selectedBlock() const override { return {1, 1, 1, 1}; }
        std::string reportName() const override { return {}; }
        int diagnosticsCount() const override { return 0; }
        std::string failedFetches() const override { return {}; }
        void goToFailedFetch() override {}
        void tellStatus(std::string_view) override {}
        void closeDesigner() override {}
        spreadsheet::Workbook empty;
    };
    static NoDesigner none;
    static PrintedGrid* usual = &none;
    return usual;
}

PrintedGrid& printedGrid()
{
    return PrintedGridInUse::current();
}

ReportContext& printedContext()
{
    return printedGrid().context;
}

bool isPageSetupRefused()
{
    const spreadsheet::Refusal refusal = printedGrid().pageSetupRefusal();
    if (refusal)
        printedContext().database.tell(Icon::exclamation, refusal.reason());
    return static_cast<bool>(refusal);
}

} // namespace selfreport
