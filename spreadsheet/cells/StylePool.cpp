#include "spreadsheet/cells/StylePool.h"

namespace spreadsheet {

std::uint32_t StylePool::intern(const CellStyle& style)
{
    const std::size_t hash = hashOf(style);
    const auto [first, last] = m_byHash.equal_range(hash);
    for (auto entry = first; entry != last; ++entry) {
        if (m_styles[entry->second] == style)
            return entry->second;
    }
    const auto number = static_cast<std::uint32_t>(m_styles.size());
    m_styles.push_back(style);
    m_byHash.emplace(hash, number);
    return number;
}

} // namespace spreadsheet
