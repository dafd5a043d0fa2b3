#pragma once
#include "spreadsheet/values/CellAddress.h"

#include <optional>
#include <vector>

namespace spreadsheet {

class Sheet;

/// What the status bar tells about selected cells.
struct SelectionFigures {
    long long filled = 0;  ///< cells that are not empty
    long long numbers = 0; ///< cells that hold a number
    double sum = 0;        ///< of the numbers; amounts that cancel end in 0
    double smallest = 0;   ///< 0 without numbers
    double largest = 0;
    std::optional<double> average() const
    {
        return numbers > 0 ? std::optional(sum / static_cast<double>(numbers)) : std::nullopt;
    }
};

/// Ranges that overlap count their common cells once.
SelectionFigures selectionFigures(const Sheet& sheet, const std::vector<CellRange>& ranges);

/// The figures that a sum in a cell is expected to take: those that stand above it without a gap, else those
/// on its left.
std::optional<CellRange> figuresBefore(const Sheet& sheet, CellAddress cell);

} // namespace spreadsheet
