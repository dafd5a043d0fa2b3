#include "spreadsheet/view/commands/selection_figures.h"

#include "spreadsheet/values/decimal.h"
#include "spreadsheet/view/commands/disjoint_ranges.h"
#include "spreadsheet/workbook/Sheet.h"

#include <algorithm>
#include <cmath>

namespace spreadsheet {

namespace {

class FigureSum {
public:
    /// Neumaier's sum: the rounding error is carried along.
    void add(double number)
    {
        const double next = m_sum + number;
        m_error += std::abs(m_sum) >= std::abs(number) ? (m_sum - next) + number : (number - next) + m_sum;
        m_sum = next;
    }
    double result() const { return m_sum + m_error; }

private:
    double m_sum = 0, m_error = 0;
};

void addBlock(const CellBlock& block, int first, int last, SelectionFigures& figures, FigureSum& sum)
{
    const ValueKind* kinds = block.kinds();
    const Payload* payloads = block.payloads();
    for (int index = first; index <= last; ++index) {
        figures.filled += kinds[index] != ValueKind::empty;
        if (kinds[index] != ValueKind::number)
            continue;
        const double number = payloads[index].number;
        const bool isFirst = figures.numbers++ == 0;
        figures.smallest = isFirst ? number : std::min(figures.smallest, number);
        figures.largest = isFirst ? number : std::max(figures.largest, number);
        sum.add(number);
    }
}

} // namespace

SelectionFigures selectionFigures(const Sheet& sheet, const std::vector<CellRange>& ranges)
{
    SelectionFigures figures;
    FigureSum sum;
    for (const CellRange& range : disjoint(ranges)) {
        for (int column = range.left; column <= std::min(range.right, sheet.storedColumns()); ++column) {
            const auto& slots = sheet.column(column)->slots();
            for (std::size_t slot = sheet.column(column)->lowerSlot(range.top);
                 slot < slots.size() && slots[slot].firstRow <= range.bottom; ++slot) {
                const int first = std::max(range.top, slots[slot].firstRow) - slots[slot].firstRow;
                const int last = std::min(range.bottom, slots[slot].lastRow()) - slots[slot].firstRow;
                addBlock(*slots[slot].block, first, last, figures, sum);
            }
        }
    }
    figures.sum = roundDecimal(sum.result(), 9);
    return figures;
}

std::optional<CellRange> figuresBefore(const Sheet& sheet, CellAddress cell)
{
    int top = cell.row;
    while (top > 1 && sheet.value({cell.column, top - 1}).isNumber())
        --top;
    if (top < cell.row)
        return CellRange{cell.column, top, cell.column, cell.row - 1};
    int left = cell.column;
    while (left > 1 && sheet.value({left - 1, cell.row}).isNumber())
        --left;
    if (left < cell.column)
        return CellRange{left, cell.row, cell.column - 1, cell.row};
    return std::nullopt;
}

} // namespace spreadsheet
