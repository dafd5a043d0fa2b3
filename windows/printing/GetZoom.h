#pragma once
#include <cstdint>

namespace spreadsheet {
class PreviewWidget;
}

namespace selfreport {

class PrintedGrid;

/// Shows pages as an entry of the zoom list says.
/// @param index  into `zoomEntries`; others do nothing
void showZoom(spreadsheet::PreviewWidget& pages, int index);

/// The entry that says how pages are shown; -1: none does.
int zoomShown(const spreadsheet::PreviewWidget& pages);

/// Shows the preview's pages as an entry of the page set-up's zoom list says. Makes the preview, hidden, if
/// there is none.
/// @param index  into `zoomEntries`; others do nothing
void GetZoom(PrintedGrid& grid, std::int16_t index);

} // namespace selfreport
