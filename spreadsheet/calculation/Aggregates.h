#pragma once
#include "spreadsheet/calculation/stretches.h"
#include "spreadsheet/values/CompensatedSum.h"

#include <limits>

namespace spreadsheet {

// What functions gather while they go down a range. Each can be taken further when the range grows.

/// Sum and count of the numbers; ends at the first error.
struct Total {
    CompensatedSum sum;
    std::size_t count = 0;
    std::optional<CellError> error;

    void add(std::span<const double> numbers)
    {
        sum.add(numbers);
        count += numbers.size();
    }
    void add(const CellStretch& stretch)
    {
        if (!error)
            error = useNumbers(stretch, [this](std::span<const double> numbers) { add(numbers); });
    }
};

/// Smallest and largest number; ends at the first error.
struct Extremes {
    double smallest = std::numeric_limits<double>::infinity();
    double largest = -std::numeric_limits<double>::infinity();
    std::optional<CellError> error;

    bool any() const { return smallest <= largest; }
    void add(std::span<const double> numbers)
    {
        for (const double number : numbers) {
            smallest = number < smallest ? number : smallest;
            largest = number > largest ? number : largest;
        }
    }
    void add(const CellStretch& stretch)
    {
        if (!error)
            error = useNumbers(stretch, [this](std::span<const double> numbers) { add(numbers); });
    }
};

/// How many cells hold numbers, errors notwithstanding, and how many hold anything.
struct Counts {
    std::size_t numbers = 0;
    std::size_t filled = 0;

    void add(const CellStretch& stretch)
    {
        for (int i = 0; i < stretch.count; ++i) {
            const ValueKind kind = stretch.kinds[i];
            filled += kind != ValueKind::empty;
            numbers += kind == ValueKind::number;
            if (kind == ValueKind::text && stretch.payloads[i].text)
                numbers += stretch.payloads[i].text->countsAsNumber;
        }
    }
};

} // namespace spreadsheet
