#include "spreadsheet/print/header_places.h"

#include <algorithm>

namespace spreadsheet {

HeaderPlaces placeHeaderParts(const std::array<double, 3>& widths, double width, double gap)
{
    const auto [left, centre, right] = widths;
    const int parts = static_cast<int>(std::ranges::count_if(widths, [](double w) { return w > 0; }));
    const double needed = left + centre + right + gap * std::max(parts - 1, 0);
    HeaderPlaces places;
    if (needed > width) {
        places.scale = width / needed;
        width = needed;
    }
    const double from = left > 0 ? left + gap : 0;
    const double to = width - centre - (right > 0 ? right + gap : 0);
    const double middle = (width - centre) / 2;
    places.left = {0, centre > 0 ? std::max(from, std::min(middle, to)) : middle, width - right};
    return places;
}

} // namespace spreadsheet
