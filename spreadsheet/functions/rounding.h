#pragma once

namespace spreadsheet {

// Rounding on the 15 decimal digits that a number shows, so that 1.1 * 3 is 3.3 and not a bit more.
// `places` counts digits after the point; negative: before it.

double roundAway(double number, int places);   ///< away from zero
double roundToward(double number, int places); ///< toward zero

/// Multiples of `step` (not 0) next to a number.
double multipleAbove(double number, double step); ///< toward plus infinity for a positive step
double multipleBelow(double number, double step);
double nearestMultiple(double number, double step); ///< half away from zero

} // namespace spreadsheet
