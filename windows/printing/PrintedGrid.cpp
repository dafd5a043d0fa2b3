#include "windows/printing/PrintedGrid.h"

#include "spreadsheet/workbook/Workbook.h"
#include "state/mdlMain.h"

namespace selfreport {

PrintedGrid*& PrintedGrid::usual()
{
    struct NoDesigner : PrintedGrid {
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

bool isPageSetupRefused()
{
    const spreadsheet::Refusal refusal = printedGrid().pageSetupRefusal();
    if (refusal)
        tellUser(Icon::exclamation, refusal.reason());
    return static_cast<bool>(refusal);
}

} // namespace selfreport
