#pragma once
#include <cstdint>

namespace selfreport {

class PrintedGrid;

/// Shows the preview's pages as an entry of the page set-up's zoom list says. Makes the preview, hidden, if
/// there is none.
/// @param index  into `zoomEntries`; others do nothing
void GetZoom(PrintedGrid& grid, std::int16_t index);

} // namespace selfreport
