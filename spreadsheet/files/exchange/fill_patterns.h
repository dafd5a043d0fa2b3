#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <array>
#include <cmath>

namespace spreadsheet {

/// How much of a cell the lines or dots of a fill pattern cover, by its number in workbook files: none,
/// solid, 50 %, 75 %, 25 %, six strong hatchings, six fine ones, 12.5 %, 6.25 %.
inline constexpr std::array patternShares{0.0, 1.0,  0.5,  0.75, 0.25, 0.5,  0.5,   0.5,   0.5,   0.5,
                                          0.6, 0.33, 0.33, 0.33, 0.33, 0.25, 0.375, 0.125, 0.0625};

/// One colour that looks like a pattern from afar; automatic ink is black, automatic paper white.
inline Colour patternColour(unsigned pattern, Colour ink, Colour paper)
{
    const double share = pattern < patternShares.size() ? patternShares[pattern] : 1.0;
    if (share >= 1.0 && ink == automaticColour)
        return automaticColour;
    const auto mixed = [&](int shift) {
        const double from =
            static_cast<double>((paper == automaticColour ? 0xFFFFFFu : paper) >> shift & 0xFF);
        const double to = static_cast<double>((ink == automaticColour ? 0u : ink) >> shift & 0xFF);
        return static_cast<Colour>(std::lround(from + (to - from) * share)) << shift;
    };
    return mixed(16) | mixed(8) | mixed(0);
}

} // namespace spreadsheet
