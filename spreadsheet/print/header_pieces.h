#pragma once
#include "spreadsheet/display/header_fields.h"
#include "spreadsheet/display/header_footer.h"
#include "spreadsheet/print/header_places.h"
#include "spreadsheet/print/PageText.h"

#include <QString>

#include <array>
#include <vector>

namespace spreadsheet {

/// What a run of a header shows on a page.
QString shownRun(const HeaderRun& run, const HeaderFieldValues& fields);

/// A line of a header or footer as it stands on a page.
struct HeaderPieces {
    std::array<std::vector<TextLine>, 3> runs; ///< by HeaderPart, as the line's
    std::array<double, 3> widths{};            ///< of the parts, twips before the scale
    HeaderPlaces places;
};

/// @param width  of the line, twips
HeaderPieces headerPieces(const HeaderLine& line, const HeaderFieldValues& fields, double width,
                          PageText& text);

} // namespace spreadsheet
