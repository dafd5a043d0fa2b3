#pragma once
#include "spreadsheet/calculation/Aggregates.h"
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/criteria.h"

#include <vector>

namespace spreadsheet {

/// A range with the criterion that its cells must meet.
struct Condition {
    Area area;
    Criterion criterion;
};

/// The places where several ranges of one shape meet their criteria at once.
class ConditionalCells {
public:
    /// Reads pairs of range and criterion from `first` on, at most `pairs` of them. The call fails with
    /// #VALUE! if a range is none or has another shape.
    ConditionalCells(Call& call, std::size_t first, std::size_t pairs);

    /// How many places there are.
    double count() const;
    /// Sum and count of the numbers at the same places of a range of the same shape.
    Total total(const Area& numbers) const;
    /// Their smallest and largest.
    Extremes extremes(const Area& numbers) const;
    /// A range of the conditions' shape whose first cell is given, cut off at the sheet's edge.
    Area shaped(const Area& start) const;
    bool fits(const Area& area) const;

private:
    template <typename Use>
    void eachBlock(const Area* numbers, Use&& use) const;
    template <typename Use>
    bool eachIndexedRow(Use&& use) const;
    template <typename State>
    State gathered(const Area& numbers) const;
    std::pair<int, int> extents(const Area* numbers) const;

    const EvaluationPlace& m_place;
    std::vector<Condition> m_conditions;
};

} // namespace spreadsheet
