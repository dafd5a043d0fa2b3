#include "spreadsheet/calculation/CallCells.h"

#include "spreadsheet/calculation/Call.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/values/CompensatedSum.h"

#include <cstring>
#include <utility>

namespace spreadsheet {

namespace {

using State = CallCells::State;

/// The first row from `row` to `last` with a state; 0 if there is none. Rows lie densely, so a long range is
/// gone through at the speed of memory.
int firstWith(const std::vector<State>& states, State wanted, int row, int last)
{
    last = std::min(last, static_cast<int>(states.size()));
    if (row > last)
        return 0;
    const State* const start = states.data() + (row - 1);
    const void* const found =
        std::memchr(start, static_cast<int>(wanted), static_cast<std::size_t>(last - row + 1));
    return found ? row + static_cast<int>(static_cast<const State*>(found) - start) : 0;
}

CellRange used(const Book& book, const Area& area)
{
    return area.cells.isOneCell() ? area.cells : usedPart(book, area);
}

} // namespace

CallCells::Line& CallCells::line(int sheet, int column)
{
    const std::int64_t key = static_cast<std::int64_t>(sheet) * (maxColumns + 1) + column;
    if (key == m_lastKey) // mostly cells of a column are asked for together
        return *m_lastLine;
    const auto [found, isNew] = m_lines.try_emplace(key);
    Line& line = found->second;
    m_lastKey = key;
    m_lastLine = &line;
    const Column* const cells = isNew ? m_book.sheet(sheet).column(column) : nullptr;
    if (!cells || cells->empty())
        return line;
    line.states.resize(static_cast<std::size_t>(cells->slots().back().lastRow()), State::plain);
    for (const Column::Slot& slot : cells->slots()) {
        const std::uint32_t* const formulas = slot.block->formulas();
        for (int i = 0; formulas && i < slot.block->count(); ++i)
            if (formulas[i] != 0)
                line.states[static_cast<std::size_t>(slot.firstRow + i) - 1] = State::pending;
    }
    return line;
}

void CallCells::set(const CallPlace& cell, State state, int number)
{
    Line& cells = line(cell.sheet, cell.column);
    const auto row = static_cast<std::size_t>(cell.row) - 1;
    if (row >= cells.states.size())
        cells.states.resize(row + 1, State::plain);
    cells.states[row] = state;
    if (number < 0)
        return;
    cells.numbers.resize(cells.states.size(), -1);
    cells.numbers[row] = number;
}

State CallCells::state(const CallPlace& cell)
{
    const std::vector<State>& states = line(cell.sheet, cell.column).states;
    const auto row = static_cast<std::size_t>(cell.row) - 1;
    return row < states.size() ? states[row] : State::plain;
}

bool CallCells::anyIn(const Area& area)
{
    bool any = false;
    const CellRange cells = used(m_book, area);
    for (int column = cells.left; column <= cells.right; ++column) {
        const std::vector<State>& states = line(area.sheet, column).states;
        any = any || firstWith(states, State::made, cells.top, cells.bottom) != 0;
        for (int row = cells.top; (row = firstWith(states, State::pending, row, cells.bottom)) != 0; ++row) {
            m_needed.push_back({area.sheet, column, row});
            any = true;
        }
    }
    return any;
}

void CallCells::eachIn(const Area& area, const std::function<void(CellAddress, int)>& use)
{
    const CellRange cells = used(m_book, area);
    for (int column = cells.left; column <= cells.right; ++column) {
        const Line& known = line(area.sheet, column);
        for (int row = cells.top; (row = firstWith(known.states, State::made, row, cells.bottom)) != 0; ++row)
            use({column, row}, known.numbers[static_cast<std::size_t>(row) - 1]);
    }
}

double CallCells::plainSum(const Area& area)
{
    CompensatedSum sum;
    forEachStretch(m_book, area, [&](const CellStretch& stretch) {
        const std::vector<State>& states = line(area.sheet, stretch.column).states;
        for (int i = 0; i < stretch.count; ++i) {
            const auto row = static_cast<std::size_t>(stretch.firstRow + i) - 1;
            if (row < states.size() && states[row] == State::made)
                continue;
            if (const auto number = countedNumber(stretch.value(i)))
                sum.add(std::span(&*number, 1));
        }
    });
    return sum.total();
}

std::vector<CallPlace> CallCells::takeNeeded()
{
    return std::exchange(m_needed, {});
}

} // namespace spreadsheet
