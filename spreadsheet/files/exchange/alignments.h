#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <array>
#include <string_view>

namespace spreadsheet {

/// Alignments by their number in workbook files, as .xlsx files name them.
inline constexpr std::array<std::string_view, 8> horizontalNames{
    "general", "left", "center", "right", "fill", "justify", "centerContinuous", "distributed"};
inline constexpr std::array<std::string_view, 5> verticalNames{"top", "center", "bottom", "justify",
                                                               "distributed"};

/// Takes alignments by their numbers in a file. What is not shown here is carried along, and what is nearest
/// stands in its place; a number that no file should have means the usual.
void readAlignment(unsigned horizontal, unsigned vertical, CellStyle& style);

/// Takes an indent in steps of three blanks and a turn, as files count them.
void readIndentAndTurn(unsigned indent, unsigned rotation, CellStyle& style);

/// The numbers for a file: what is carried along, unless the cell was aligned in another way since.
unsigned horizontalNumber(const CellStyle& style);
unsigned verticalNumber(const CellStyle& style);
/// In steps of three blanks; 0 where the alignment knows none.
unsigned indentSteps(const CellStyle& style);

} // namespace spreadsheet
