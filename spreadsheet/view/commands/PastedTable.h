#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace spreadsheet {

/// Cells that one paste takes from another program at most.
inline constexpr std::size_t maxPastedCells = 5'000'000;
/// Bytes of text that a clipboard may hand over; what is larger is refused whole.
inline constexpr std::size_t maxPastedBytes = std::size_t(64) << 20;

/// What another program said about a cell's look; nothing where it said nothing.
struct PastedLook {
    std::optional<bool> bold, italic, underline;
    std::optional<Colour> foreground, background;
    std::optional<HorizontalAlignment> horizontal;
    friend bool operator==(const PastedLook&, const PastedLook&) = default;
};

/// A table that another program put on the clipboard.
struct PastedTable {
    struct Cell {
        int column = 1; ///< within the table, from 1
        int row = 1;
        int columns = 1; ///< more than 1 in a merged cell
        int rows = 1;
        std::string text = {};             ///< as it is shown there, UTF-8
        std::optional<double> number = {}; ///< the exact number behind the text, if it was told
        bool literal = false;              ///< a text even if it reads as a number
        PastedLook look = {};
    };
    int columns = 0;
    int rows = 0;
    std::vector<Cell> cells;
};

} // namespace spreadsheet
