#pragma once
#include "spreadsheet/workbook/Sheet.h"

#include <array>
#include <cstdint>
#include <vector>

namespace spreadsheet {

/// Finds the cells of a sheet whose texts may need more than the usual height of a row: by a large font, by
/// wrapping, by line feeds. Each look is judged once, so a pass over plain cells costs next to nothing. It
/// must not outlive a change of the sheet.
class TallCells {
public:
    explicit TallCells(const Sheet& sheet)
        : m_sheet(sheet)
        , m_usual(sheet.settings().rows.defaultSize)
    {
    }

    /// @param index  of the cell in its block
    bool mayBeTall(const CellBlock& block, int index, CellAddress cell);
    /// The first such cell among those from `index` on; `end` if there is none. Looks and texts that were
    /// found plain are passed over at once.
    /// @param cell  that at `index`
    int next(const CellBlock& block, int index, int end, CellAddress cell);

private:
    bool hasTallStyle(std::uint32_t number, CellAddress cell);
    const Text::Body*& lineAt(const Text::Body* body)
    {
        return m_lines[(reinterpret_cast<std::uintptr_t>(body) >> 5) % m_lines.size()];
    }

    const Sheet& m_sheet;
    int m_usual;                                   ///< twips
    std::vector<std::uint8_t> m_styles;            ///< what is known of them by number
    std::uint32_t m_plainStyle = 0;                ///< the last one found to be no reason; 0: none yet
    std::array<const Text::Body*, 1024> m_lines{}; ///< texts of one line, by their places in memory
};

/// Twips above and below a line of text that just fits into its row.
inline constexpr double leastLinePadding = 20;

} // namespace spreadsheet
