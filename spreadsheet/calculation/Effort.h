#pragma once
#include "spreadsheet/values/Array.h"

#include <cstddef>
#include <functional>
#include <utility>

namespace spreadsheet {

/// Keeps the evaluation of a cell within bounds: counts the elements of the arrays that it makes, and asks
/// during long work whether the recalculation is to stop. A cell that is given up becomes #VALUE!.
class Effort {
public:
    /// Elements for one cell in all: enough for sums under a dozen conditions over all rows of a sheet. A
    /// text counts as one more for every eight bytes.
    static constexpr std::size_t maxElements = 16 * maxArrayElements;

    /// @param stops  whether the recalculation is to stop
    explicit Effort(std::function<bool()> stops)
        : m_stops(std::move(stops))
    {
    }

    void beginCell() { m_left = maxElements; }
    /// Before or while elements are made. False: the cell is given up.
    bool spend(std::size_t elements)
    {
        m_left = elements > m_left ? 0 : m_left - elements;
        m_unasked += elements;
        return m_left > 0 && (m_unasked < elementsBetweenQuestions || goesOn());
    }
    /// Asks at once. False: the cell is given up.
    bool goesOn()
    {
        m_unasked = 0;
        return !m_stops();
    }

private:
    static constexpr std::size_t elementsBetweenQuestions = 65'536;

    std::function<bool()> m_stops;
    std::size_t m_left = maxElements;
    std::size_t m_unasked = 0; ///< elements since the last question
};

} // namespace spreadsheet
