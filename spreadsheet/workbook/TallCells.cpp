#include "spreadsheet/workbook/TallCells.h"

namespace spreadsheet {

static bool isSeveralLines(std::string_view text)
{
    return text.find('\n') != text.npos;
}

bool TallCells::mayBeTall(const CellBlock& block, int index, CellAddress cell)
{
    const bool showsOther = block.hasShown() && !block.shown(index).empty();
    if (block.kinds()[index] == ValueKind::empty && !showsOther)
        return false;
    const std::uint32_t own = block.hasStyles() ? block.style(index) : 0;
    if (hasTallStyle(own != 0 ? own : m_sheet.styleNumber(cell), cell))
        return true;
    return showsOther
               ? isSeveralLines(block.shown(index).view())
               : block.kinds()[index] == ValueKind::text && isSeveralLines(block.value(index).textView());
}

bool TallCells::hasTallStyle(std::uint32_t number, CellAddress cell)
{
    enum : std::uint8_t { unknown, plain, tall };
    if (number >= m_styles.size())
        m_styles.resize(number + 1, unknown);
    if (m_styles[number] == unknown) {
        const CellStyle& style = m_sheet.style(cell);
        const bool isLarge = style.font.points * twipsPerPoint + leastLinePadding > m_usual;
        m_styles[number] = style.wrap || isLarge ? tall : plain;
    }
    return m_styles[number] == tall;
}

} // namespace spreadsheet
