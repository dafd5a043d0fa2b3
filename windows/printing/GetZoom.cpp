#include "windows/printing/GetZoom.h"

#include "windows/printing/frmPreview.h"
#include "windows/printing/zoom_entries.h"

#include <algorithm>

namespace selfreport {

void showZoom(spreadsheet::PreviewWidget& pages, int index)
{
    if (index < 0 || index >= static_cast<int>(zoomEntries.size()))
        return;
    const ZoomEntry& entry = zoomEntries[static_cast<std::size_t>(index)];
    pages.setView(entry.view);
    if (entry.percentage > 0)
        pages.setZoomPercentage(entry.percentage);
    if (entry.pagesAcross > 0) {
        pages.setPagesAcross(entry.pagesAcross);
        pages.setPagesDown(entry.pagesDown);
    }
}

int zoomShown(const spreadsheet::PreviewWidget& pages)
{
    const auto shown = std::ranges::find_if(zoomEntries, [&](const ZoomEntry& entry) {
        return entry.view == pages.view() &&
               (entry.percentage == 0 || entry.percentage == pages.zoomPercentage()) &&
               (entry.pagesAcross == 0 ||
                (entry.pagesAcross == pages.pagesAcross() && entry.pagesDown == pages.pagesDown()));
    });
    return shown == zoomEntries.end() ? -1 : static_cast<int>(shown - zoomEntries.begin());
}

void GetZoom(PrintedGrid& grid, std::int16_t index)
{
    if (index >= 0 && index < static_cast<int>(zoomEntries.size()))
        showZoom(frmPreview::shared(grid).fpsp1(), index);
}

} // namespace selfreport
