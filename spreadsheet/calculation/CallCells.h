#pragma once
#include "spreadsheet/formula/CustomFunction.h"
#include "spreadsheet/formula/Operand.h"

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

struct Book;

/// Which cells have a value that is made of calls. What is not known yet is asked for: it counts as made of
/// calls, and the cell is noted.
class CallCells {
public:
    enum class State : std::uint8_t {
        plain,   ///< made of no call
        pending, ///< a formula that nobody has looked at
        open,    ///< being looked at: whoever asks is part of a circle, where it counts as plain
        made,    ///< of calls
    };

    explicit CallCells(const Book& book)
        : m_book(book)
    {
    }

    State state(const CallPlace& cell);
    void setOpen(const CallPlace& cell) { set(cell, State::open, -1); }
    /// @param number  of the cell among those that are made of calls; less than 0: it is not
    void settle(const CallPlace& cell, int number)
    {
        set(cell, number < 0 ? State::plain : State::made, number);
    }

    /// Whether some of the cells are made of calls.
    bool anyIn(const Area& area);
    /// The cells that are, with their numbers.
    void eachIn(const Area& area, const std::function<void(CellAddress, int)>& use);
    /// The sum of what counts in sums among the others.
    double plainSum(const Area& area);

    /// Cells that were asked for and not known since the last call, in the order of rows.
    std::vector<CallPlace> takeNeeded();

private:
    struct Line {
        std::vector<State> states; ///< by row, from row 1; beyond it all is plain
        std::vector<std::int32_t> numbers;
    };
    Line& line(int sheet, int column);
    void set(const CallPlace& cell, State state, int number);

    const Book& m_book;
    std::unordered_map<std::int64_t, Line> m_lines; ///< by sheet and column
    std::int64_t m_lastKey = -1;
    Line* m_lastLine = nullptr; ///< of that key; lines stay where they are
    std::vector<CallPlace> m_needed;
};

} // namespace spreadsheet
