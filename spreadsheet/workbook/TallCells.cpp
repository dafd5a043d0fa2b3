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

int TallCells::next(const CellBlock& block, int index, int end, CellAddress cell)
{
    const SheetSettings& settings = m_sheet.settings();
    const int from = index;
    const auto at = [&] { return CellAddress{cell.column, cell.row + index - from}; };
    if (block.hasShown() || !settings.rowStyles.empty()) {
        while (index < end && !mayBeTall(block, index, at()))
            ++index;
        return index;
    }
    // A cell's look is its own or its column's.
    const auto whole = settings.columnStyles.find(cell.column);
    const std::uint32_t columnStyle = whole == settings.columnStyles.end() ? 0 : whole->second;
    for (; index < end; ++index) {
        const ValueKind kind = block.kinds()[index];
        if (kind == ValueKind::empty)
            continue;
        const std::uint32_t own = block.style(index);
        if (const std::uint32_t style = own != 0 ? own : columnStyle; style != m_plainStyle) {
            if (hasTallStyle(style, at()))
                return index;
            m_plainStyle = style;
        }
        const Text::Body* const body = kind == ValueKind::text ? block.payloads()[index].text : nullptr;
        if (!body || lineAt(body) == body)
            continue;
        if (isSeveralLines({body->bytes(), body->size}))
            return index;
        lineAt(body) = body;
    }
    return end;
}

bool TallCells::hasTallStyle(std::uint32_t number, CellAddress cell)
{
    enum : std::uint8_t { unknown, plain, tall };
    if (number >= m_styles.size())
        m_styles.resize(number + 1, unknown);
    if (m_styles[number] == unknown) {
        const CellStyle& style = m_sheet.style(cell);
        const bool isLarge = style.font.points * twipsPerPoint + leastLinePadding > m_usual;
        m_styles[number] = style.wrap || isLarge || style.carried.rotation != 0 ? tall : plain;
    }
    return m_styles[number] == tall;
}

} // namespace spreadsheet
