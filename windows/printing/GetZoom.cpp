#include "windows/printing/GetZoom.h"

#include "windows/printing/frmPreview.h"
#include "windows/printing/zoom_entries.h"

namespace selfreport {

void GetZoom(PrintedGrid& grid, std::int16_t index)
{
    if (index < 0 || index >= static_cast<int>(zoomEntries.size()))
        return;
    const ZoomEntry& entry = zoomEntries[static_cast<std::size_t>(index)];
    spreadsheet::PreviewWidget& pages = frmPreview::shared(grid).fpsp1();
    pages.setView(entry.view);
    if (entry.percentage > 0)
        pages.setZoomPercentage(entry.percentage);
    if (entry.pagesAcross > 0) {
        pages.setPagesAcross(entry.pagesAcross);
        pages.setPagesDown(entry.pagesDown);
    }
}

} // namespace selfreport
