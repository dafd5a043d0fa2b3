#pragma once
#include "spreadsheet/engine/CellStyle.h"

#include <array>

namespace spreadsheet {

/// Border lines of workbook files by their number there: none, thin, medium, dashed, dotted, thick, double,
/// hair, medium dashed, dash-dot, medium dash-dot, dash-dot-dot, medium dash-dot-dot, slanted dash-dot.
/// Ours know two widths: thin and hair lines are the fine ones, everything stronger is not.
inline constexpr std::array lineStyleOfFile{
    LineStyle::none,       LineStyle::fineSolid,   LineStyle::solid,   LineStyle::fineDash,
    LineStyle::fineDot,    LineStyle::solid,       LineStyle::solid,   LineStyle::fineDot,
    LineStyle::dash,       LineStyle::fineDashDot, LineStyle::dashDot, LineStyle::fineDashDotDot,
    LineStyle::dashDotDot, LineStyle::dashDot,
};

constexpr LineStyle readLineStyle(unsigned number)
{
    return number < lineStyleOfFile.size() ? lineStyleOfFile[number] : LineStyle::fineSolid;
}

/// A line that takes the grid line away is none in a file, and there is no strong dotted one: medium
/// dashes stand for it.
constexpr unsigned fileLineStyle(LineStyle style)
{
    switch (style) {
    case LineStyle::none:
    case LineStyle::erase:
        return 0;
    case LineStyle::solid:
        return 2;
    case LineStyle::dash:
    case LineStyle::dot:
        return 8;
    case LineStyle::dashDot:
        return 10;
    case LineStyle::dashDotDot:
        return 12;
    case LineStyle::fineSolid:
        return 1;
    case LineStyle::fineDash:
        return 3;
    case LineStyle::fineDot:
        return 4;
    case LineStyle::fineDashDot:
        return 9;
    case LineStyle::fineDashDotDot:
        return 11;
    }
    return 0;
}

} // namespace spreadsheet
