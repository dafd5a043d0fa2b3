#pragma once
#include <string_view>

namespace spreadsheet {

/// Width in pixels (1/96 inch) of the digit "0" in a font, which workbook files count column widths in.
/// Chinese fonts have digits of half an em, Calibri of 0.507, others of about 0.556.
double digitPixels(std::string_view family, double points);

/// Twips of a width in digits, margins of the cell included; whole pixels, as programs show it.
int columnTwips(double digits, double pixelsOfDigit);
/// The reverse: 1,080 twips are 72 pixels.
double columnDigits(int twips, double pixelsOfDigit);

} // namespace spreadsheet
