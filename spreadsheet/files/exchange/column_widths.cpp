#include "spreadsheet/files/exchange/column_widths.h"

#include "spreadsheet/values/twips.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

constexpr double mostDigits = 256;

} // namespace

double digitPixels(std::string_view family, double points)
{
    const double em = std::round(points * twipsPerPoint / twipsPerPixel);
    bool chinese = false;
    for (const char c : family)
        chinese |= static_cast<unsigned char>(c) >= 0x80;
    chinese |= family == "SimSun" || family == "SimHei" || family == "NSimSun" || family == "FangSong";
    if (chinese)
        return std::clamp(std::ceil(em * 0.5), 1.0, 200.0);
    const double width = family == "Calibri" ? std::floor(em * 0.507) : std::round(em * 0.556);
    return std::clamp(width, 1.0, 200.0);
}

int columnTwips(double digits, double pixelsOfDigit)
{
    return static_cast<int>(std::round(std::clamp(digits, 0.0, mostDigits) * pixelsOfDigit) * twipsPerPixel);
}

double columnDigits(int twips, double pixelsOfDigit)
{
    return std::clamp(twips / twipsPerPixel / pixelsOfDigit, 0.0, mostDigits - 1);
}

} // namespace spreadsheet
