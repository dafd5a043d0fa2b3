#pragma once
#include "spreadsheet/display/CellStyle.h"

#include <deque>
#include <unordered_map>

namespace spreadsheet {

/// All looks of a workbook's cells, each once. Number 0 is that of a cell without a style of its own,
/// which takes its row's or column's, else the fresh look.
class StylePool {
public:
    StylePool() { m_styles.emplace_back(); }

    /// The number of a style, at least 1, which it keeps for the workbook's life.
    std::uint32_t intern(const CellStyle& style);
    const CellStyle& operator[](std::uint32_t number) const { return m_styles[number]; }
    std::size_t size() const { return m_styles.size(); }

private:
    std::deque<CellStyle> m_styles; ///< a deque: references stay good
    std::unordered_multimap<std::size_t, std::uint32_t> m_byHash;
};

} // namespace spreadsheet
