#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace spreadsheet {

/// What the cells of a type hold: whatever is put in, or numbers, so that a text that reads as one becomes
/// one.
enum class CellHolds : std::uint8_t { anything, numbers, days, times };

/// A cell type: a row of the table in cell_types.cpp. What its cells do is a CellBehaviour.
struct CellTypeRow {
    CellType type;
    std::string_view name; ///< as users choose it
    CellHolds holds = CellHolds::anything;
    bool takesDecimals = false; ///< CellStyle::decimals says how many
    bool isControl = false;     ///< the cell is a control and nothing else: it is pressed
    /// How it shows a number (null: as generalNumberText); of what else it shows the text.
    std::string (*shows)(double number, const CellStyle& style, bool from1904) = nullptr;
    /// What would be typed into such a cell to have this number; null: its digits.
    std::string (*edited)(double number, const CellStyle& style) = nullptr;
    /// The number format code that shows numbers in the same way; null: "General".
    std::string (*formatCode)(const CellStyle& style) = nullptr;
};

/// All types, in the order in which users choose among them.
std::span<const CellTypeRow> cellTypes();

/// The row of a type.
const CellTypeRow& cellTypeRow(CellType type);

/// The code of a style's type with its decimals, without regard to a number format code of its own; "" for a
/// type that shows numbers as they are.
std::string formatCodeOfType(const CellStyle& style);

} // namespace spreadsheet
