#pragma once
#include <array>

namespace spreadsheet {

/// Where the parts of a header or footer line stand.
struct HeaderPlaces {
    std::array<double, 3> left{}; ///< of each part, twips from the line's left end, before `scale`
    double scale = 1;             ///< the line is drawn this much smaller
    friend bool operator==(const HeaderPlaces&, const HeaderPlaces&) = default;
};

/// Places the left, centre and right part of a line beside each other. The centre gives way where an outer
/// part reaches into it; a line that is too long for the paper becomes smaller as a whole: no part covers
/// another, and none is cut.
///
/// @param widths  of the parts in twips; 0: the part is empty
/// @param width   of the line, greater than 0
/// @param gap     twips kept between two parts
HeaderPlaces placeHeaderParts(const std::array<double, 3>& widths, double width, double gap);

} // namespace spreadsheet
