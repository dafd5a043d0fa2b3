#pragma once
#include "spreadsheet/calculation/Aggregates.h"
#include "spreadsheet/calculation/criteria.h"

#include <map>
#include <optional>
#include <tuple>
#include <vector>

namespace spreadsheet {

/// The numbers of one column in their order: where conditions such as ">5" count and sum without going
/// through the cells again.
class OrderedColumn {
public:
    OrderedColumn(const Book& book, const Area& column);

    /// Places in the order: from the first that meets a condition to before the first that does not.
    struct Stretch {
        std::size_t first = 0;
        std::size_t end = 0;
        std::size_t size() const { return end - first; }
    };
    Stretch meeting(Criterion::Comparison comparison, double limit) const;

    /// Sum and count of what stands beside a stretch, in the rows moved by `shift` of another column.
    /// Nothing if that column holds an error in any of the rows: which one counts depends on the place.
    std::optional<Total> totalBeside(const Stretch& stretch, int sheet, int column, int shift);

private:
    struct Entry {
        double number;
        int row;
    };
    /// Totals of the first n entries' neighbours; empty if there is an error among them.
    using Prefixes = std::vector<Total>;

    Prefixes prefixes(int sheet, int column, int shift) const;

    const Book& m_book;
    std::vector<Entry> m_entries;
    std::map<std::tuple<int, int, int>, Prefixes> m_beside;
};

} // namespace spreadsheet
