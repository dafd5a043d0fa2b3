#pragma once
#include "spreadsheet/display/CellStyle.h"
#include "spreadsheet/files/exchange/Warnings.h"

#include <array>
#include <string_view>

namespace spreadsheet {

/// Border lines of workbook files by their number there, as .xlsx files name them.
inline constexpr std::array<std::string_view, 14> lineNames{"none",
                                                            "thin",
                                                            "medium",
                                                            "dashed",
                                                            "dotted",
                                                            "thick",
                                                            "double",
                                                            "hair",
                                                            "mediumDashed",
                                                            "dashDot",
                                                            "mediumDashDot",
                                                            "dashDotDot",
                                                            "mediumDashDotDot",
                                                            "slantDashDot"};

/// A plain line of ours is as wide as a thin one of a file, so the hair line alone is the fine one; of broken
/// lines the thin ones are.
inline constexpr std::array lineStyleOfFile{
    LineStyle::none,       LineStyle::solid,          LineStyle::medium,  LineStyle::fineDash,
    LineStyle::fineDot,    LineStyle::thick,          LineStyle::doubled, LineStyle::fineSolid,
    LineStyle::dash,       LineStyle::fineDashDot,    LineStyle::dashDot, LineStyle::fineDashDotDot,
    LineStyle::dashDotDot, LineStyle::slantedDashDot,
};

constexpr LineStyle readLineStyle(unsigned number)
{
    return number < lineStyleOfFile.size() ? lineStyleOfFile[number] : LineStyle::solid;
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
        return 1;
    case LineStyle::dash:
    case LineStyle::dot:
        return 8;
    case LineStyle::dashDot:
        return 10;
    case LineStyle::dashDotDot:
        return 12;
    case LineStyle::fineSolid:
        return 7;
    case LineStyle::fineDash:
        return 3;
    case LineStyle::fineDot:
        return 4;
    case LineStyle::fineDashDot:
        return 9;
    case LineStyle::fineDashDotDot:
        return 11;
    case LineStyle::thick:
        return 5;
    case LineStyle::doubled:
        return 6;
    case LineStyle::medium:
        return 2;
    case LineStyle::slantedDashDot:
        return 13;
    }
    return 0;
}

/// Counts what a written look has of lines that no file knows.
inline void countLostLines(const CellStyle& style, Warnings& warnings)
{
    for (const BorderLine* line : {&style.left, &style.right, &style.top, &style.bottom}) {
        if (line->style == LineStyle::dot)
            warnings.count("{} 处格式的点线写为虚线");
        else if (line->style == LineStyle::erase)
            warnings.count("{} 处格式的抹除线没有写出");
    }
}

} // namespace spreadsheet
