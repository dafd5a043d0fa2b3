#include "windows/printing/PrintedGrid.h"

#include "reports/ReportContext.h"

namespace selfreport {

PrintedGrid::PrintedGrid(ReportContext& reportContext)
    : context(reportContext)
{
}

bool isPageSetupRefused(const PrintedGrid& grid)
{
    const spreadsheet::Refusal refusal = grid.pageSetupRefusal();
    if (refusal)
        grid.context.database.tell(Icon::exclamation, refusal.reason());
    return static_cast<bool>(refusal);
}

} // namespace selfreport
