#pragma once

namespace spreadsheet {

// Twips are the unit of all stored sizes on paper and screen: whole ones hold points, pixels and hundredths
// of an inch without a rest.
inline constexpr double twipsPerInch = 1440;
inline constexpr double twipsPerPoint = 20;
inline constexpr double twipsPerPixel = 15; ///< at 96 pixels an inch

} // namespace spreadsheet
