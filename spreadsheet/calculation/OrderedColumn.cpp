#include "spreadsheet/calculation/OrderedColumn.h"

#include "spreadsheet/calculation/Call.h"

#include <algorithm>

namespace spreadsheet {

OrderedColumn::OrderedColumn(const Book& book, const Area& column)
    : m_book(book)
{
    forEachStretch(book, column, [this](const CellStretch& stretch) {
        for (int i = 0; i < stretch.count; ++i) {
            if (stretch.kinds[i] == ValueKind::number)
                m_entries.push_back({stretch.payloads[i].number, stretch.firstRow + i});
            else if (const auto number = countedNumber(stretch.value(i)))
                m_entries.push_back({*number, stretch.firstRow + i});
        }
    });
    std::ranges::stable_sort(m_entries, {}, &Entry::number);
}

OrderedColumn::Stretch OrderedColumn::meeting(Criterion::Comparison comparison, double limit) const
{
    using enum Criterion::Comparison;
    const bool includesLimit = comparison == lessEqual || comparison == greater;
    const auto found = includesLimit ? std::ranges::upper_bound(m_entries, limit, {}, &Entry::number)
                                     : std::ranges::lower_bound(m_entries, limit, {}, &Entry::number);
    const auto place = static_cast<std::size_t>(found - m_entries.begin());
    const bool below = comparison == less || comparison == lessEqual;
    return below ? Stretch{0, place} : Stretch{place, m_entries.size()};
}

OrderedColumn::Prefixes OrderedColumn::prefixes(int sheet, int column, int shift) const
{
    Prefixes totals(1);
    totals.reserve(m_entries.size() + 1);
    Total total;
    const BookSheet& cells = m_book.sheet(sheet);
    const Column* const numbers = column <= cells.storedColumns() ? cells.column(column) : nullptr;
    for (const Entry& entry : m_entries) {
        const int row = entry.row + shift;
        if (const Column::Slot* slot = numbers ? numbers->find(row) : nullptr) {
            const int at = row - slot->firstRow;
            total.add(CellStretch{slot->block->payloads() + at, slot->block->kinds() + at, 1, row, column});
        }
        if (total.error)
            return {};
        totals.push_back(total);
    }
    return totals;
}

std::optional<Total> OrderedColumn::totalBeside(const Stretch& stretch, int sheet, int column, int shift)
{
    const auto [found, isNew] = m_beside.try_emplace({sheet, column, shift});
    if (isNew)
        found->second = prefixes(sheet, column, shift);
    const Prefixes& totals = found->second;
    if (totals.empty())
        return std::nullopt;
    Total total = totals[stretch.end];
    total.sum.takeOff(totals[stretch.first].sum);
    total.count -= totals[stretch.first].count;
    return total;
}

} // namespace spreadsheet
