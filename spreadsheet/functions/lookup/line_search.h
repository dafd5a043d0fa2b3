#pragma once
#include "spreadsheet/calculation/Call.h"

#include <optional>

namespace spreadsheet {

/// One row or column of a range or array, counted from 0: where lookup functions search.
class Line {
public:
    /// The first column (or row) of an argument.
    static Line firstColumn(Call& call, std::size_t argument);
    static Line firstRow(Call& call, std::size_t argument);
    /// The only column or row of an argument; its longer side's first one if it has several.
    static Line longerSide(Call& call, std::size_t argument);

    int size() const { return m_size; }
    Value at(int place) const;

    // Places where the value stands; nothing if there is none, or if the call fails because it may not pay
    // for every value that it looks at.
    // Numbers find numbers, texts texts (letter case ignored), truth values truth values.

    /// The first equal one; a text may hold wildcards.
    std::optional<int> equal(const Value& wanted) const;
    /// In ascending order: the last one that is not greater. Values of other kinds are passed over. The line
    /// is halved again and again; where an equal one is met on the way, it is the last one of those that
    /// follow it, so that lines out of order answer as elsewhere.
    std::optional<int> lastNotGreater(const Value& wanted) const;
    /// In descending order: the last one that is not less.
    std::optional<int> lastNotLess(const Value& wanted) const;

private:
    Line(Call& call, std::size_t argument, bool down, int size)
        : m_call(call)
        , m_argument(argument)
        , m_down(down)
        , m_size(size)
    {
    }
    std::optional<int> indexed(const Value& wanted) const;
    int lastEqual(int from, const Value& wanted) const;
    int lastEqualNumber(int from, double wanted) const;

    Call& m_call;
    std::size_t m_argument;
    bool m_down;
    int m_size; ///< what lies beyond the sheet's used part is left out
};

} // namespace spreadsheet
