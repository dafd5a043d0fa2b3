#include "windows/explain/DrillPages.h"

#include "explain/drill_sheet.h"
#include "windows/printing/frmPreview.h"

namespace selfreport {

DrillPages::DrillPages(ReportContext& reportContext, const DrillHead& head, const DrillNode& root)
    : PrintedGrid(reportContext)
    , m_name(head.report + " 联查")
{
    writeDrillSheet(m_workbook, head, root);
}

void DrillPages::closeDesigner()
{
    frmPreview::discard(); // there is no designer behind it that would end
}

/// It would be stored with the report that is open.
spreadsheet::Refusal DrillPages::pageSetupRefusal() const
{
    return spreadsheet::Refusal("联查的打印页由程序排好，不能另行设置。");
}

} // namespace selfreport
