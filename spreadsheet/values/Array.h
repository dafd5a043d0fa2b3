#pragma once
#include "spreadsheet/values/Value.h"

#include <cstddef>
#include <vector>

namespace spreadsheet {

/// A rectangle of values: an array constant or what an array operation yields. Counted from 0.
class Array {
public:
    Array(int rows, int columns)
        : m_rows(rows)
        , m_columns(columns)
        , m_values(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns))
    {
    }

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    const Value& at(int row, int column) const { return m_values[position(row, column)]; }
    Value& at(int row, int column) { return m_values[position(row, column)]; }

    /// The element that an operation over several arrays meets at a place: a single row or column
    /// repeats, anything else beyond the edge is #N/A.
    const Value& spread(int row, int column) const
    {
        if (m_rows == 1)
            row = 0;
        if (m_columns == 1)
            column = 0;
        static const Value beyond(CellError::na);
        return row < m_rows && column < m_columns ? at(row, column) : beyond;
    }

private:
    std::size_t position(int row, int column) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
               static_cast<std::size_t>(column);
    }
    int m_rows;
    int m_columns;
    std::vector<Value> m_values; ///< row by row
};

/// Elements that an array may have while formulas are evaluated; larger ones yield #VALUE!.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
inline constexpr std::size_t maxArrayElements = 65'536; // sanitizers take some fifty times as long
#else
inline constexpr std::size_t maxArrayElements = 4'194'304;
#endif

inline std::size_t elementsOf(int rows, int columns)
{
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
}

inline bool isArraySize(int rows, int columns)
{
    return elementsOf(rows, columns) <= maxArrayElements;
}

} // namespace spreadsheet
