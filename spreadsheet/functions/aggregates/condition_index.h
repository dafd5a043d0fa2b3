#pragma once
#include "spreadsheet/calculation/LookupIndexes.h"
#include "spreadsheet/functions/aggregates/conditions.h"

#include <optional>
#include <vector>

namespace spreadsheet {

// One condition answered from the indexes of a recalculation. Each gives nothing if the column has no
// index (yet) or the condition is of a kind that needs every cell.

/// Where the cells of one column stand that meet a condition.
struct IndexedRows {
    LineIndex* index = nullptr;
    std::vector<const Places*> lists; ///< disjoint

    std::size_t size() const;
    /// Those of a list that stand down to `bottom`.
    static std::size_t downTo(const Places& list, int bottom);
};

/// Rows equal to a number, text or truth value.
std::optional<IndexedRows> equalRows(const EvaluationPlace& place, const Condition& condition);

std::optional<double> indexedCount(const EvaluationPlace& place, const Condition& condition);
/// Sum and count of the numbers that stand beside, in a range of the same shape.
std::optional<Total> indexedTotal(const EvaluationPlace& place, const Condition& condition,
                                  const Area& numbers);

} // namespace spreadsheet
