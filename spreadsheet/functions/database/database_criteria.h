#pragma once
#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/calculation/criteria.h"

#include <vector>

namespace spreadsheet {

/// A list with field names in its first row, the first argument of a database function.
class DatabaseList {
public:
    /// The call fails with #VALUE! if the argument is no range, or one that has no room for records.
    DatabaseList(Call& call, std::size_t argument);

    const Area& area() const { return m_area; }
    int fields() const { return m_area.cells.columns(); }
    /// Records that the used part of the sheet holds; the first is 0.
    int records() const { return m_records; }
    Value fieldName(int field) const { return at(-1, field); }
    Value value(int record, int field) const { return at(record, field); }
    /// The field of that name, letter case ignored, or number from 1; counted from 0. -1: there is none.
    int fieldOf(const Value& nameOrNumber) const;

private:
    Value at(int record, int field) const;

    const Book& m_book;
    Area m_area;
    int m_records = 0;
};

/// The range of criteria of a database function: a record counts if it meets all conditions of any row
/// below the field names. A text without an operator is met by texts that begin with it. A formula
/// under a name that is no field is computed for every record as if filled down beside the list.
class DatabaseCriteria {
public:
    DatabaseCriteria(Call& call, std::size_t argument, const DatabaseList& list);

    /// Numbers of the records that count, ascending.
    std::vector<int> matches() const;

private:
    struct Condition {
        int field = 0; ///< of the list; -1 for a computed one
        Criterion criterion;
        CellAddress cell; ///< of a computed condition
    };
    using Row = std::vector<Condition>;

    Row readRow(const Area& area, const std::vector<int>& fields, int row) const;
    bool holds(const Condition& condition, int record) const;

    const EvaluationPlace& m_place;
    const DatabaseList& m_list;
    int m_sheet = 1; ///< where the criteria stand
    std::vector<Row> m_rows;
};

} // namespace spreadsheet
