#include "spreadsheet/calculation/DependencyGraph.h"

#include "spreadsheet/calculation/ComponentFinder.h"
#include "spreadsheet/cells/Book.h"
#include "spreadsheet/formula/FormulaPool.h"
#include "spreadsheet/formula/NameTable.h"

#include <algorithm>

namespace spreadsheet {

// A graph of cells would take more memory than the cells and as long to build as to compute them. Formulas
// that are filled down read in one pattern, so a run of them is one node, what it reads is a rectangle that
// moves with the row, and who reads a cell is found in the sorted rectangles of its column. The graph is
// never mended but built anew after formulas changed: that takes a scan of the formula numbers.

namespace {

/// Readings over more columns than this stand once in their sheet's list, not in every column's.
constexpr int wideReading = 16;

/// The place behind the cells from `first` on that have its formula.
int endOfStretch(const std::uint32_t* formulas, int first, int count)
{
    constexpr int atOnce = 16; // compared without a branch for each: most stretches are long
    const std::uint32_t formula = formulas[first];
    int end = first + 1;
    const auto sixteenAlike = [&] {
        std::uint32_t difference = 0;
        for (int i = 0; i < atOnce; ++i)
            difference |= formulas[end + i] ^ formula;
        return difference == 0;
    };
    while (end + atOnce <= count && sixteenAlike())
        end += atOnce;
    while (end < count && formulas[end] == formula)
        ++end;
    return end;
}

} // namespace

void DependencyGraph::build(const Book& book)
{
    m_runs.clear();
    m_components.clear();
    m_readings.clear();
    m_firstReading.clear();
    m_sheets.clear();
    collectRuns(book);
    collectReadings(book);
    buildIndexes();
    ComponentFinder(*this).run();
    chooseOrders();
}

/// What the names of a formula stand for works as if it stood in the formula itself.
void DependencyGraph::addNameTraits(const Book& book, const Formula& formula, Run& run, int depth)
{
    for (const int name : formula.names) {
        const std::uint32_t meaning = book.names()[name].formula;
        if (meaning == 0 || depth == maxNameDepth)
            continue;
        const Formula& meant = book.formulas[meaning];
        run.isCustom = run.isCustom || meant.callsCustom();
        run.isVolatile = run.isVolatile || meant.isVolatile;
        run.readsUnlisted = run.readsUnlisted || meant.readsUnlisted;
        run.changesByItself = run.changesByItself || meant.changesByItself;
        addNameTraits(book, meant, run, depth + 1);
    }
}

void DependencyGraph::addRun(const Book& book, Run run)
{
    const Formula& formula = book.formulas[run.formula];
    run.isCustom = formula.callsCustom();
    run.isVolatile = formula.isVolatile;
    run.readsUnlisted = formula.readsUnlisted;
    run.changesByItself = formula.changesByItself;
    addNameTraits(book, formula, run, 0);
    auto& columns = m_sheets[static_cast<std::size_t>(run.sheet)].columns;
    for (int column = run.cells.left; column <= run.cells.right; ++column) {
        if (static_cast<int>(columns.size()) <= column)
            columns.resize(static_cast<std::size_t>(column) + 1);
        columns[static_cast<std::size_t>(column)].runs.push_back(static_cast<std::int32_t>(m_runs.size()));
    }
    m_runs.push_back(run);
}

void DependencyGraph::collectRuns(const Book& book)
{
    m_sheets.resize(static_cast<std::size_t>(book.sheetCount()) + 1);
    const FormulaPool& pool = book.formulas;
    for (int index = 1; index <= book.sheetCount(); ++index) {
        const BookSheet& sheet = book.sheet(index);
        for (int column = 1; column <= sheet.storedColumns(); ++column) {
            Run run;
            run.sheet = index;
            run.cells = {column, 0, column, -1};
            const auto finish = [&] {
                if (run.formula != 0 && !pool[run.formula].isArrayFormula)
                    addRun(book, run);
            };
            for (const Column::Slot& slot : sheet.column(column)->slots()) {
                const std::uint32_t* formulas = slot.block->formulas();
                for (int i = 0; formulas && i < slot.block->count();) {
                    const int row = slot.firstRow + i;
                    if (formulas[i] != run.formula || row != run.cells.bottom + 1) {
                        finish();
                        run.formula = formulas[i];
                        run.cells.top = row;
                    }
                    i = endOfStretch(formulas, i, slot.block->count());
                    run.cells.bottom = slot.firstRow + i - 1;
                }
            }
            finish();
        }
        for (const CellRange& array : sheet.settings.arrays) {
            Run run;
            run.sheet = index;
            run.cells = array;
            run.formula = sheet.column(array.left)->formula(array.top);
            run.isArray = true;
            addRun(book, run);
        }
    }
    const auto byRow = [this](std::int32_t run) { return m_runs[static_cast<std::size_t>(run)].cells.top; };
    for (SheetIndex& sheet : m_sheets) {
        for (ColumnIndex& column : sheet.columns)
            std::ranges::sort(column.runs, {}, byRow);
    }
}

void DependencyGraph::collectReadings(const Book& book)
{
    m_firstReading.reserve(m_runs.size() + 1);
    for (const Run& run : m_runs) {
        m_firstReading.push_back(static_cast<std::int32_t>(m_readings.size()));
        addReadings(book, run, book.formulas[run.formula], 0);
    }
    m_firstReading.push_back(static_cast<std::int32_t>(m_readings.size()));
}

/// Takes a reading as far right and down as another reference reaches, for a formula in the given cells.
void DependencyGraph::widen(Reading& reading, const ReferenceSlot& like, CellAddress first, CellAddress last)
{
    int rows = 1;
    int columns = 1;
    for (const CellAddress base : {first, last}) {
        if (const auto range = like.range(base)) {
            rows = std::max(rows, range->rows());
            columns = std::max(columns, range->columns());
        }
    }
    const bool steady = like.isSingleCell() || like.top.absolute == like.bottom.absolute;
    reading.cells.right =
        std::min(maxColumns, std::max(reading.cells.right, reading.cells.left + columns - 1));
    if (steady && reading.top.absolute == reading.bottom.absolute) {
        const int reach = std::max(reading.bottom.value, reading.top.value + rows - 1);
        reading.cells.bottom = std::min(maxRows, reading.cells.bottom + reach - reading.bottom.value);
        reading.bottom.value = reach;
    } else {
        reading.cells.bottom = std::min(maxRows, reading.cells.bottom + rows - 1);
        reading.bottom = {reading.cells.bottom, true};
    }
}

void DependencyGraph::addReadings(const Book& book, const Run& run, const Formula& formula, int depth)
{
    for (std::size_t number = 0; number < formula.slots.size(); ++number) {
        if (std::ranges::find(formula.placesOnly, static_cast<int>(number)) != formula.placesOnly.end())
            continue;
        const ReferenceSlot& slot = formula.slots[number];
        const CellAddress first{run.cells.left, run.cells.top};
        const CellAddress last{run.cells.left, run.isArray ? run.cells.top : run.cells.bottom};
        const auto atFirst = slot.range(first);
        const auto atLast = slot.range(last);
        Reading reading;
        if (slot.firstSheet != 0) {
            const auto [low, high] =
                std::minmax({book.sheetIndexOfId(slot.firstSheet), book.sheetIndexOfId(slot.lastSheet)});
            reading.firstSheet = low;
            reading.lastSheet = high;
        } else {
            reading.firstSheet = reading.lastSheet = run.sheet;
        }
        if ((!atFirst && !atLast) || reading.firstSheet == 0)
            continue;
        reading.cells = united(atFirst ? *atFirst : *atLast, atLast ? *atLast : *atFirst);
        if (!atFirst)
            reading.cells.top = 1; // part of the run points above the sheet
        if (!atLast)
            reading.cells.bottom = maxRows;
        reading.top = slot.top;
        reading.bottom = slot.isSingleCell() ? slot.top : slot.bottom;
        reading.wholeColumns = slot.shape == ReferenceSlot::Shape::columns;
        for (const Formula::Widened& widened : formula.widened) {
            if (widened.slot == static_cast<int>(number))
                widen(reading, formula.slots[static_cast<std::size_t>(widened.like)], first, last);
        }
        m_readings.push_back(reading);
    }
    for (const int name : formula.names) {
        const std::uint32_t meaning = book.names()[name].formula;
        if (meaning != 0 && depth < maxNameDepth)
            addReadings(book, run, book.formulas[meaning], depth + 1);
    }
}

void DependencyGraph::buildIndexes()
{
    for (std::size_t run = 0; run < m_runs.size(); ++run) {
        for (std::int32_t at = m_firstReading[run]; at < m_firstReading[run + 1]; ++at) {
            const Reading& reading = m_readings[static_cast<std::size_t>(at)];
            const Entry entry{reading.cells.top, reading.cells.bottom, 0, static_cast<std::int32_t>(run), at};
            const bool wide = reading.cells.columns() > wideReading;
            for (int sheet = reading.firstSheet; sheet <= reading.lastSheet; ++sheet) {
                auto& columns = m_sheets[static_cast<std::size_t>(sheet)].columns;
                const int first = wide ? 0 : reading.cells.left;
                const int last = wide ? 0 : reading.cells.right;
                if (static_cast<int>(columns.size()) <= last)
                    columns.resize(static_cast<std::size_t>(last) + 1);
                for (int column = first; column <= last; ++column)
                    columns[static_cast<std::size_t>(column)].entries.push_back(entry);
            }
        }
    }
    for (SheetIndex& sheet : m_sheets) {
        for (ColumnIndex& column : sheet.columns) {
            auto& entries = column.entries;
            std::ranges::sort(entries, {}, &Entry::firstRow);
            // The sorted array is a balanced tree: the middle of each part is its root.
            const std::function<std::int32_t(std::size_t, std::size_t)> fill = [&](std::size_t from,
                                                                                   std::size_t to) {
                if (from >= to)
                    return std::int32_t(0);
                const std::size_t middle = from + (to - from) / 2;
                Entry& entry = entries[middle];
                entry.maxLastRow = std::max({entry.lastRow, fill(from, middle), fill(middle + 1, to)});
                return entry.maxLastRow;
            };
            fill(0, entries.size()); // as deep as the logarithm of the entries
        }
    }
}

void DependencyGraph::query(const std::vector<Entry>& entries, int firstRow, int lastRow,
                            const std::function<void(const Entry&)>& report) const
{
    struct Part {
        std::size_t from, to;
    };
    Part open[128];
    std::size_t count = 0;
    open[count++] = {0, entries.size()};
    while (count > 0) {
        const Part part = open[--count];
        if (part.from >= part.to)
            continue;
        const std::size_t middle = part.from + (part.to - part.from) / 2;
        const Entry& entry = entries[middle];
        if (entry.maxLastRow < firstRow)
            continue;
        if (entry.firstRow <= lastRow) {
            if (entry.lastRow >= firstRow)
                report(entry);
            open[count++] = {middle + 1, part.to};
        }
        open[count++] = {part.from, middle};
    }
}

DependencyGraph::Readers DependencyGraph::readersOf(const Run& run, std::int32_t number,
                                                    const Reading& reading, int firstRow, int lastRow)
{
    Readers readers{number, run.cells.top, run.cells.bottom};
    if (run.isArray || reading.wholeColumns)
        return readers;
    const AxisPoint& top = reading.top;
    const AxisPoint& bottom = reading.bottom;
    // A corner that crosses the other within the run turns the range around: then every row counts.
    const bool turns = (top.at(run.cells.top) > bottom.at(run.cells.top)) ||
                       (top.at(run.cells.bottom) > bottom.at(run.cells.bottom));
    if (turns)
        return readers;
    if (!bottom.absolute)
        readers.firstRow = std::max(readers.firstRow, firstRow - bottom.value);
    if (!top.absolute)
        readers.lastRow = std::min(readers.lastRow, lastRow - top.value);
    return readers;
}

void DependencyGraph::eachReader(int sheet, int column, int firstRow, int lastRow,
                                 const std::function<void(const Readers&)>& report) const
{
    if (static_cast<std::size_t>(sheet) >= m_sheets.size())
        return;
    const auto& columns = m_sheets[static_cast<std::size_t>(sheet)].columns;
    const auto found = [&](const Entry& entry) {
        const Reading& reading = m_readings[static_cast<std::size_t>(entry.reading)];
        if (column < reading.cells.left || column > reading.cells.right)
            return; // a wide reading elsewhere
        const Readers readers =
            readersOf(m_runs[static_cast<std::size_t>(entry.run)], entry.run, reading, firstRow, lastRow);
        if (readers.firstRow <= readers.lastRow)
            report(readers);
    };
    if (!columns.empty())
        query(columns[0].entries, firstRow, lastRow, found);
    if (static_cast<std::size_t>(column) < columns.size())
        query(columns[static_cast<std::size_t>(column)].entries, firstRow, lastRow, found);
}

void DependencyGraph::eachRun(int sheet, int column, int firstRow, int lastRow,
                              const std::function<void(std::int32_t)>& report) const
{
    if (static_cast<std::size_t>(sheet) >= m_sheets.size())
        return;
    const auto& columns = m_sheets[static_cast<std::size_t>(sheet)].columns;
    if (static_cast<std::size_t>(column) >= columns.size())
        return;
    const auto& runs = columns[static_cast<std::size_t>(column)].runs;
    auto run = std::ranges::lower_bound(runs, firstRow, {}, [this](std::int32_t r) {
        return m_runs[static_cast<std::size_t>(r)].cells.bottom;
    });
    for (; run != runs.end() && m_runs[static_cast<std::size_t>(*run)].cells.top <= lastRow; ++run)
        report(*run);
}

std::span<const Reading> DependencyGraph::readings(std::int32_t run) const
{
    const auto first = static_cast<std::size_t>(m_firstReading[static_cast<std::size_t>(run)]);
    const auto last = static_cast<std::size_t>(m_firstReading[static_cast<std::size_t>(run) + 1]);
    return std::span(m_readings).subspan(first, last - first);
}

void DependencyGraph::chooseOrders()
{
    for (Component& component : m_components)
        component.order = orderOf(component);
    for (Component& component : m_components) {
        if (component.runs.size() > 1 && component.order != Component::Order::cells &&
            !sortRows(component, component.order == Component::Order::ascending ? 1 : -1))
            component.order = Component::Order::cells;
    }
    std::ranges::stable_sort(m_components, {}, [](const Component& c) {
        return std::pair(c.wave, c.isCustom); // custom calls of a wave come after what feeds them
    });
    for (std::size_t number = 0; number < m_components.size(); ++number) {
        for (const std::int32_t run : m_components[number].runs)
            m_runs[static_cast<std::size_t>(run)].component = static_cast<std::int32_t>(number);
    }
}

/// The direction in which all references inside a component point.
Component::Order DependencyGraph::orderOf(const Component& component) const
{
    bool upward = true;   // every reference points to rows above or the same row
    bool downward = true; // … below or the same row
    bool inside = false;
    for (const std::int32_t number : component.runs) {
        const Run& run = m_runs[static_cast<std::size_t>(number)];
        for (const Reading& reading : readings(number)) {
            for (const std::int32_t other : component.runs) {
                const Run& read = m_runs[static_cast<std::size_t>(other)];
                if (read.sheet < reading.firstSheet || read.sheet > reading.lastSheet ||
                    !reading.cells.intersects(read.cells))
                    continue;
                inside = true;
                const bool plain = !run.isArray && !read.isArray && !reading.wholeColumns;
                const bool self = number == other;
                upward = upward && plain && !reading.bottom.absolute &&
                         reading.bottom.value <= (self ? -1 : 0) &&
                         (reading.top.absolute ? reading.top.value <= reading.bottom.at(run.cells.top)
                                               : reading.top.value <= reading.bottom.value);
                downward = downward && plain && !reading.top.absolute &&
                           reading.top.value >= (self ? 1 : 0) &&
                           (reading.bottom.absolute ? reading.bottom.value >= reading.top.at(run.cells.bottom)
                                                    : reading.bottom.value >= reading.top.value);
                if (!upward && !downward)
                    return Component::Order::cells;
            }
        }
    }
    if (!inside)
        return Component::Order::block;
    if (upward)
        return Component::Order::ascending;
    return downward ? Component::Order::descending : Component::Order::cells;
}

/// Sorts the runs of a component so that within a row each comes after what it reads in that row.
/// False if they read each other within a row.
bool DependencyGraph::sortRows(Component& component, int direction) const
{
    std::vector<std::int32_t> sorted;
    std::vector<std::int32_t> rest = component.runs;
    const auto readsInRow = [&](std::int32_t reader, std::int32_t read) {
        const Run& other = m_runs[static_cast<std::size_t>(read)];
        return std::ranges::any_of(readings(reader), [&](const Reading& reading) {
            const AxisPoint& edge = direction > 0 ? reading.bottom : reading.top;
            return reading.firstSheet <= other.sheet && other.sheet <= reading.lastSheet && !edge.absolute &&
                   edge.value == 0 && reading.cells.intersects(other.cells);
        });
    };
    if (rest.size() > 256)
        return false;
    while (!rest.empty()) {
        const auto ready = std::ranges::find_if(rest, [&](std::int32_t run) {
            return std::ranges::none_of(rest, [&](std::int32_t other) { return readsInRow(run, other); });
        });
        if (ready == rest.end())
            return false;
        sorted.push_back(*ready);
        rest.erase(ready);
    }
    component.runs = std::move(sorted);
    return true;
}

std::size_t DependencyGraph::bytes() const
{
    std::size_t sum = m_runs.capacity() * sizeof(Run) + m_components.capacity() * sizeof(Component) +
                      m_readings.capacity() * sizeof(Reading) +
                      m_firstReading.capacity() * sizeof(std::int32_t);
    for (const Component& component : m_components)
        sum += component.runs.capacity() * sizeof(std::int32_t);
    for (const SheetIndex& sheet : m_sheets) {
        for (const ColumnIndex& column : sheet.columns)
            sum += sizeof(ColumnIndex) + column.runs.capacity() * sizeof(std::int32_t) +
                   column.entries.capacity() * sizeof(Entry);
    }
    return sum;
}

} // namespace spreadsheet
