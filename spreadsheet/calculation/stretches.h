#pragma once
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/cells/stored_value.h"
#include "spreadsheet/formula/Operand.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>

namespace spreadsheet {

/// A stretch of cells of one column, as they lie in memory.
struct CellStretch {
    const Payload* payloads;
    const ValueKind* kinds;
    int count;
    int firstRow;
    int column;

    Value value(int index) const;
};

/// Calls `use(const CellStretch&)` for the dense cells of an area, gaps left out, column by column.
/// `use` may return false to end the walk.
template <typename Use>
void forEachStretch(const Book& book, const Area& area, Use&& use)
{
    const BookSheet& sheet = book.sheet(area.sheet);
    const int right = std::min(area.cells.right, sheet.storedColumns());
    for (int number = area.cells.left; number <= right; ++number) {
        const Column* column = sheet.column(number);
        if (!column)
            continue;
        const auto& slots = column->slots();
        for (std::size_t i = column->lowerSlot(area.cells.top); i < slots.size(); ++i) {
            const Column::Slot& slot = slots[i];
            if (slot.firstRow > area.cells.bottom)
                break;
            const int first = std::max(slot.firstRow, area.cells.top);
            const int last = std::min(slot.lastRow(), area.cells.bottom);
            const int skipped = first - slot.firstRow;
            const CellStretch stretch{slot.block->payloads() + skipped, slot.block->kinds() + skipped,
                                      last - first + 1, first, number};
            if constexpr (std::is_same_v<decltype(use(stretch)), bool>) {
                if (!use(stretch))
                    return;
            } else {
                use(stretch);
            }
        }
    }
}

/// True if every cell holds a number.
inline bool holdsOnlyNumbers(const CellStretch& stretch)
{
    static_assert(sizeof(ValueKind) == 1);
    constexpr std::uint64_t eightNumbers = 0x0101'0101'0101'0101;
    static_assert(static_cast<int>(ValueKind::number) == 1);
    int i = 0;
    for (; i + 8 <= stretch.count; i += 8) {
        std::uint64_t kinds;
        std::memcpy(&kinds, stretch.kinds + i, sizeof kinds);
        if (kinds != eightNumbers)
            return false;
    }
    for (; i < stretch.count; ++i) {
        if (stretch.kinds[i] != ValueKind::number)
            return false;
    }
    return true;
}

/// The payloads of a stretch of numbers as numbers.
inline std::span<const double> numbersOf(const CellStretch& stretch)
{
    static_assert(sizeof(Payload) == sizeof(double));
    return {&stretch.payloads->number, static_cast<std::size_t>(stretch.count)};
}

/// Calls `use(std::span<const double>)` with the numbers of a stretch that count in sums: numbers, and
/// texts that count as one. Gives the first error among the cells instead, if there is one.
template <typename Use>
std::optional<CellError> useNumbers(const CellStretch& stretch, Use&& use)
{
    if (holdsOnlyNumbers(stretch)) {
        use(numbersOf(stretch));
        return std::nullopt;
    }
    double numbers[CellBlock::maxCells];
    std::size_t count = 0;
    for (int i = 0; i < stretch.count; ++i) {
        const Payload& payload = stretch.payloads[i];
        switch (stretch.kinds[i]) {
        case ValueKind::number:
            numbers[count++] = payload.number;
            break;
        case ValueKind::text:
            if (payload.text && payload.text->countsAsNumber)
                numbers[count++] = payload.text->number;
            break;
        case ValueKind::error:
            return payload.error;
        default:
            break;
        }
    }
    use(std::span<const double>(numbers, count));
    return std::nullopt;
}

inline Value CellStretch::value(int index) const
{
    return storedValue(kinds[index], payloads[index]);
}

} // namespace spreadsheet
