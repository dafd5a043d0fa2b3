#include "spreadsheet/calculation/Recalculation.h"

#include "spreadsheet/calculation/LookupIndexes.h"
#include "spreadsheet/formula/FormulaPool.h"

#include <algorithm>
#include <utility>

namespace spreadsheet {

// What changed is marked, the marks spread to all readers, and only then is anything computed, each component
// once, in the order of the graph. Values are written straight into blocks that undo steps may share, since
// they belong to formulas that both states hold. A pause hook may stop between cells: where there is one,
// former values are kept until the end, so that a report is never half new and half old.

namespace {

/// Rounds of recomputing formulas whose precedents are only found while they run (OFFSET, INDIRECT). Such a
/// cell may come before what it reads; computed once more after the rest it is right, and a chain of them is
/// right after as many rounds as it has links. Cells that lead back to themselves through a text never
/// settle, and since a round costs all such formulas again, there must be an end: chains beyond it keep what
/// the last round gave.
constexpr int maxUnlistedRounds = 64;

/// Cells computed between two questions to the pause hook.
constexpr std::size_t cellsBetweenPauses = 64;

bool readsSeveralSheets(const Formula& formula)
{
    return std::ranges::any_of(formula.slots,
                               [](const ReferenceSlot& slot) { return slot.firstSheet != slot.lastSheet; });
}

} // namespace

Recalculation::Recalculation(Book& book)
    : m_book(book)
    , m_evaluator(book)
    , m_effort([this] { return askToStop(); })
    , m_blocks(book)
{
}

Recalculation::~Recalculation() = default;

void Recalculation::noteChanged(int sheetId, int column, int firstRow, int lastRow)
{
    std::vector<Change>& changes = m_pending.changes;
    if (!changes.empty()) { // cells typed one below the other
        Change& last = changes.back();
        if (last.sheetId == sheetId && last.column == column && firstRow >= last.firstRow &&
            firstRow <= last.lastRow + 1) {
            last.lastRow = std::max(last.lastRow, lastRow);
            return;
        }
    }
    changes.push_back({sheetId, column, firstRow, lastRow});
}

void Recalculation::forgetChanges()
{
    m_pending = {};
}

void Recalculation::takeHooks(const Recalculation& other)
{
    m_prepare = other.m_prepare;
    m_caller = other.m_caller;
    m_pause = other.m_pause;
}

void Recalculation::refreshGraph()
{
    if (!m_graphStale)
        return;
    m_graph.build(m_book);
    m_graphStale = false;
    m_marked.assign(m_graph.runs().size(), {});
    m_volatileRuns.clear();
    for (std::size_t run = 0; run < m_graph.runs().size(); ++run) {
        if (m_graph.runs()[run].isVolatile)
            m_volatileRuns.push_back(static_cast<std::int32_t>(run));
    }
}

RecalculationReport Recalculation::all()
{
    refreshGraph();
    for (std::size_t run = 0; run < m_graph.runs().size(); ++run)
        markWholeRun(static_cast<std::int32_t>(run));
    m_spread.clear(); // everything is marked
    return compute();
}

RecalculationReport Recalculation::changed()
{
    refreshGraph();
    markChanges();
    spread();
    return compute();
}

bool Recalculation::isComputedFrom(CallPlace cell, CallPlace source)
{
    refreshGraph();
    m_graph.eachRun(source.sheet, source.column, source.row, source.row,
                    [&](std::int32_t run) { markRun(run, source.row, source.row); });
    for (std::size_t run = 0; run < m_graph.runs().size(); ++run)
        if (m_graph.runs()[run].readsUnlisted)
            markWholeRun(static_cast<std::int32_t>(run));
    spread();
    bool found = false;
    m_graph.eachRun(cell.sheet, cell.column, cell.row, cell.row, [&](std::int32_t run) {
        found = found || m_marked[static_cast<std::size_t>(run)].contains(cell.row);
    });
    unmarkAll();
    return found;
}

bool Recalculation::mayCall(CallPlace cell)
{
    refreshGraph();
    bool calls = false;
    m_graph.eachRun(cell.sheet, cell.column, cell.row, cell.row, [&](std::int32_t run) {
        calls = calls || m_graph.runs()[static_cast<std::size_t>(run)].isCustom;
    });
    return calls;
}

// Marking.

void Recalculation::markRun(std::int32_t run, int firstRow, int lastRow)
{
    const auto at = static_cast<std::size_t>(run);
    const Run& cells = m_graph.runs()[at];
    if (cells.isArray) {
        firstRow = cells.cells.top;
        lastRow = cells.cells.bottom;
    }
    RowSet& marked = m_marked[at];
    if (marked.empty())
        m_markedRuns.push_back(run);
    const RowInterval fresh = marked.add(firstRow, lastRow);
    if (fresh.first <= fresh.last)
        m_spread.push_back({run, fresh});
}

void Recalculation::unmarkAll()
{
    for (const std::int32_t run : m_markedRuns)
        m_marked[static_cast<std::size_t>(run)] = {};
    m_markedRuns.clear();
}

void Recalculation::markWholeRun(std::int32_t run)
{
    const Run& cells = m_graph.runs()[static_cast<std::size_t>(run)];
    markRun(run, cells.cells.top, cells.cells.bottom);
}

void Recalculation::markChanges()
{
    for (const Change& change : m_pending.changes) {
        const int sheet = m_book.sheetIndexOfId(change.sheetId);
        if (sheet == 0)
            continue;
        m_graph.eachRun(sheet, change.column, change.firstRow, change.lastRow, [&](std::int32_t run) {
            const Run& cells = m_graph.runs()[static_cast<std::size_t>(run)];
            markRun(run, std::max(change.firstRow, cells.cells.top),
                    std::min(change.lastRow, cells.cells.bottom));
        });
        m_graph.eachReader(sheet, change.column, change.firstRow, change.lastRow,
                           [this](const DependencyGraph::Readers& readers) {
                               markRun(readers.run, readers.firstRow, readers.lastRow);
                           });
    }
    for (const std::int32_t run : m_volatileRuns)
        markWholeRun(run);
    if (!m_pending.moved && !m_pending.namesChanged)
        return;
    const auto runs = m_graph.runs();
    for (std::size_t run = 0; run < runs.size(); ++run) {
        const Formula& formula = m_book.formulas[runs[run].formula];
        if ((m_pending.moved && (formula.dependsOnPlace || readsSeveralSheets(formula))) ||
            (m_pending.namesChanged && !formula.names.empty()))
            markWholeRun(static_cast<std::int32_t>(run));
    }
}

void Recalculation::spread()
{
    while (!m_spread.empty()) {
        const Spread source = m_spread.back();
        m_spread.pop_back();
        const Run& run = m_graph.runs()[static_cast<std::size_t>(source.run)];
        const Component::Order order = m_graph.components()[static_cast<std::size_t>(run.component)].order;
        for (int column = run.cells.left; column <= run.cells.right; ++column) {
            m_graph.eachReader(run.sheet, column, source.rows.first, source.rows.last,
                               [&](DependencyGraph::Readers readers) {
                                   const Run& reader = m_graph.runs()[static_cast<std::size_t>(readers.run)];
                                   if (reader.component == run.component) {
                                       // Going round the component row by row would take as many steps as
                                       // rows.
                                       if (order != Component::Order::descending)
                                           readers.lastRow = reader.cells.bottom;
                                       if (order != Component::Order::ascending)
                                           readers.firstRow = reader.cells.top;
                                   }
                                   markRun(readers.run, readers.firstRow, readers.lastRow);
                               });
        }
    }
}

// Computing.

RecalculationReport Recalculation::compute()
{
    m_report = {};
    m_nextPause = 0;
    m_former.clear();
    Pending pending = std::exchange(m_pending, {});
    evaluateMarked();
    for (int round = 0; round < maxUnlistedRounds && !m_report.stopped && reevaluateUnlisted(); ++round) {
    }
    m_indexes.reset();
    if (m_report.stopped) {
        bringBack(std::move(pending));
        m_report = {};
        m_report.stopped = true;
        return m_report;
    }
    applyQueue();
    std::ranges::sort(m_report.circular);
    return std::move(m_report);
}

void Recalculation::evaluateMarked()
{
    m_indexes = std::make_unique<LookupIndexes>(m_book);
    std::vector<std::int32_t> order;
    for (const std::int32_t run : m_markedRuns)
        order.push_back(m_graph.runs()[static_cast<std::size_t>(run)].component);
    std::ranges::sort(order);
    order.erase(std::ranges::unique(order).begin(), order.end());

    const auto components = m_graph.components();
    int preparedWave = -1;
    for (std::size_t i = 0; i < order.size(); ++i) {
        const Component& component = components[static_cast<std::size_t>(order[i])];
        if (component.isCustom && component.wave != preparedWave && m_prepare && !m_book.formulasShown) {
            preparedWave = component.wave;
            std::size_t end = i;
            while (end < order.size() &&
                   components[static_cast<std::size_t>(order[end])].wave == preparedWave)
                ++end;
            std::vector<std::int32_t> wave(order.begin() + static_cast<std::ptrdiff_t>(i),
                                           order.begin() + static_cast<std::ptrdiff_t>(end));
            prepareWave(wave);
            m_nextPause = 0; // fetching may have taken long
        }
        if (shouldStop())
            break;
        keepFormerCells(component);
        evaluateComponent(component);
    }
    unmarkAll();
}

/// Computes formulas that may read what their references do not name once more; true if one of them
/// changed, and then what depends on it was computed again.
bool Recalculation::reevaluateUnlisted()
{
    const auto runs = m_graph.runs();
    for (std::size_t at = 0; at < runs.size(); ++at) {
        // A custom call is made once a recalculation (and so comes last), and what changes by itself
        // would never settle.
        if (!runs[at].readsUnlisted || runs[at].isArray || runs[at].isCustom || runs[at].changesByItself)
            continue;
        const Run& run = runs[at];
        const Formula& formula = m_book.formulas[run.formula];
        const BookSheet& sheet = m_book.sheet(run.sheet);
        for (int row = run.cells.top; row <= run.cells.bottom; ++row) {
            const Value known = sheet.value({run.column(), row});
            // A cell in a circle has no value of its own that it could settle at.
            if (known == Value(CellError::ref) &&
                std::ranges::find(m_report.circular, CallPlace{run.sheet, run.column(), row}) !=
                    m_report.circular.end())
                continue;
            const auto value = m_evaluator.cellValueOf(formula, beginCell(run, row));
            if (value && !(*value == known))
                markRun(static_cast<std::int32_t>(at), row, row);
        }
    }
    if (m_markedRuns.empty())
        return false;
    spread();
    evaluateMarked();
    return true;
}

void Recalculation::evaluateComponent(const Component& component)
{
    switch (component.order) {
    case Component::Order::block:
        for (const RowInterval& rows : m_marked[static_cast<std::size_t>(component.runs[0])].intervals())
            evaluateRun(m_graph.runs()[static_cast<std::size_t>(component.runs[0])], rows);
        break;
    case Component::Order::ascending:
        evaluateRows(component, 1);
        break;
    case Component::Order::descending:
        evaluateRows(component, -1);
        break;
    case Component::Order::cells:
        evaluateCells(component);
        break;
    }
}

EvaluationPlace Recalculation::beginCell(const Run& run, int row)
{
    m_effort.beginCell();
    // What a formula finds by text may not be computed yet, and must not be kept for others.
    LookupIndexes* const indexes = run.readsUnlisted ? nullptr : m_indexes.get();
    EvaluationPlace place{m_book, run.sheet, {run.column(), row}, indexes, &m_effort};
    if (run.isArray) {
        place.rows = run.cells.rows();
        place.columns = run.cells.columns();
    }
    return place;
}

void Recalculation::tellCaller(const Run& run, int row) const
{
    if (run.isCustom && m_caller)
        m_caller({run.sheet, run.column(), row});
}

void Recalculation::evaluateRun(const Run& run, RowInterval rows)
{
    if (run.isArray)
        return evaluateArray(run);
    const Formula& formula = m_book.formulas[run.formula];
    if (formula.blockwise)
        m_blocks.begin(formula, run.sheet, run.column());
    const Column& column = *m_book.sheet(run.sheet).column(run.column());
    for (std::size_t slot = column.lowerSlot(rows.first);
         slot < column.slots().size() && column.slots()[slot].firstRow <= rows.last && !m_report.stopped;
         ++slot) {
        const Column::Slot& stretch = column.slots()[slot];
        evaluateStretch(run, formula, slot,
                        {std::max(rows.first, stretch.firstRow), std::min(rows.last, stretch.lastRow())});
    }
}

void Recalculation::evaluateStretch(const Run& run, const Formula& formula, std::size_t slot,
                                    RowInterval rows)
{
    Column& column = m_book.sheet(run.sheet).writableColumn(run.column());
    CellBlock& block = column.computedBlock(slot);
    const int offset = column.slots()[slot].firstRow;
    for (int first = rows.first; first <= rows.last && !shouldStop();) {
        const int count = std::min(rows.last - first + 1, BlockEvaluator::blockRows);
        const double* numbers = formula.blockwise ? m_blocks.rows(first, count) : nullptr;
        if (numbers) {
            block.setNumbers(first - offset, numbers, count);
            m_report.evaluatedCells += static_cast<std::size_t>(count);
        } else {
            for (int row = first; row < first + count && !shouldStop(); ++row, ++m_report.evaluatedCells)
                evaluateCell(run, formula, block, row - offset, row);
        }
        first += count;
    }
    dropShown(block, rows.first - offset, rows.last - rows.first + 1);
}

void Recalculation::evaluateCell(const Run& run, const Formula& formula, CellBlock& block, int index, int row)
{
    tellCaller(run, row);
    if (auto value = m_evaluator.cellValueOf(formula, beginCell(run, row)))
        block.setValue(index, std::move(*value));
}

void Recalculation::dropShown(CellBlock& block, int index, int count) const
{
    if (!block.hasShown() || m_book.formulasShown)
        return;
    for (int i = index; i < index + count; ++i)
        block.setShown(i, {});
}

void Recalculation::evaluateArray(const Run& run)
{
    tellCaller(run, run.cells.top);
    const auto values = m_evaluator.arrayOf(m_book.formulas[run.formula], beginCell(run, run.cells.top));
    if (!values)
        return;
    for (int column = run.cells.left; column <= run.cells.right; ++column) {
        for (int row = run.cells.top; row <= run.cells.bottom; ++row) {
            Column& cells = m_book.sheet(run.sheet).writableColumn(column);
            const std::size_t slot = cells.lowerSlot(row);
            CellBlock& block = cells.computedBlock(slot);
            const int index = row - cells.slots()[slot].firstRow;
            Value value = values->spread(row - run.cells.top, column - run.cells.left);
            block.setValue(index, value.isEmpty() ? Value(0.0) : std::move(value));
            dropShown(block, index, 1);
        }
    }
    m_report.evaluatedCells +=
        static_cast<std::size_t>(run.cells.rows()) * static_cast<std::size_t>(run.cells.columns());
}

/// One row after the other; within a row in the order of the component's runs.
void Recalculation::evaluateRows(const Component& component, int direction)
{
    struct Member {
        const Run* run;
        const Formula* formula;
        const RowSet* rows;
        Column* column;
        BlockEvaluator blocks;
        std::size_t slot = 0;
    };
    std::vector<Member> members;
    std::vector<RowInterval> wanted;
    for (const std::int32_t number : component.runs) {
        const Run& run = m_graph.runs()[static_cast<std::size_t>(number)];
        const RowSet& rows = m_marked[static_cast<std::size_t>(number)];
        if (rows.empty())
            continue;
        const Formula& formula = m_book.formulas[run.formula];
        members.push_back({&run, &formula, &rows, &m_book.sheet(run.sheet).writableColumn(run.column()),
                           BlockEvaluator(m_book)});
        if (formula.blockwise)
            members.back().blocks.begin(formula, run.sheet, run.column());
        wanted.insert(wanted.end(), rows.intervals().begin(), rows.intervals().end());
    }
    if (wanted.empty())
        return;
    const int first = std::ranges::min(wanted, {}, &RowInterval::first).first;
    const int last = std::ranges::max(wanted, {}, &RowInterval::last).last;
    const int start = direction > 0 ? first : last;
    const int stop = direction > 0 ? last + 1 : first - 1;
    for (int row = start; row != stop && !shouldStop(); row += direction) {
        for (Member& member : members) {
            if (!member.rows->contains(row))
                continue;
            const auto& slots = member.column->slots();
            if (member.slot >= slots.size() || slots[member.slot].firstRow > row ||
                slots[member.slot].lastRow() < row)
                member.slot = member.column->lowerSlot(row);
            CellBlock& block = member.column->computedBlock(member.slot);
            const int index = row - slots[member.slot].firstRow;
            double number;
            if (member.formula->blockwise && member.blocks.single(row, number))
                block.setNumber(index, number);
            else
                evaluateCell(*member.run, *member.formula, block, index, row);
            dropShown(block, index, 1);
            ++m_report.evaluatedCells;
        }
    }
}

// Custom calls.

void Recalculation::prepareWave(const std::vector<std::int32_t>& components)
{
    struct Cell {
        const Formula* formula;
        EvaluationPlace place;
        std::vector<PreparedCall> calls;
    };
    std::vector<Cell> cells;
    for (const std::int32_t number : components) {
        const Component& component = m_graph.components()[static_cast<std::size_t>(number)];
        if (component.order != Component::Order::block)
            continue; // what its calls take is not computed yet
        const Run& run = m_graph.runs()[static_cast<std::size_t>(component.runs[0])];
        for (const RowInterval& rows : m_marked[static_cast<std::size_t>(component.runs[0])].intervals()) {
            const int last = run.isArray ? rows.first : rows.last;
            for (int row = rows.first; row <= last; ++row)
                cells.push_back({&m_book.formulas[run.formula], beginCell(run, row), {}});
        }
    }
    for (;;) { // calls that take the value of others are found round by round
        std::vector<PreparedCall> round;
        std::vector<std::pair<std::size_t, std::size_t>> origins;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            Cell& cell = cells[i];
            const std::size_t known = cell.calls.size();
            m_effort.beginCell();
            m_evaluator.gatherCalls(*cell.formula, cell.place, cell.calls);
            for (std::size_t call = known; call < cell.calls.size(); ++call) {
                round.push_back(cell.calls[call]);
                origins.emplace_back(i, call);
            }
        }
        if (round.empty() || m_report.stopped)
            return;
        m_prepare(round);
        for (std::size_t i = 0; i < round.size(); ++i)
            cells[origins[i].first].calls[origins[i].second].expected = round[i].expected;
    }
}

/// Whether the recalculation is to end before all is computed.
bool Recalculation::shouldStop()
{
    if (m_report.evaluatedCells < m_nextPause)
        return m_report.stopped;
    m_nextPause = m_report.evaluatedCells + cellsBetweenPauses;
    return askToStop();
}

bool Recalculation::askToStop()
{
    if (m_pause && !m_report.stopped)
        m_report.stopped = m_pause();
    return m_report.stopped;
}

void Recalculation::keepFormerCells(const Component& component)
{
    if (!m_pause)
        return;
    for (const std::int32_t number : component.runs) {
        const Run& run = m_graph.runs()[static_cast<std::size_t>(number)];
        const BookSheet& sheet = m_book.sheet(run.sheet);
        for (const RowInterval& rows : m_marked[static_cast<std::size_t>(number)].intervals())
            for (int column = run.cells.left; column <= run.cells.right; ++column)
                for (int row = rows.first; row <= rows.last; ++row)
                    m_former.push_back({{run.sheet, column, row},
                                        sheet.value({column, row}),
                                        sheet.shownText({column, row})});
    }
}

/// A cell that was computed more than once ends with what it held first.
void Recalculation::bringBack(Pending pending)
{
    for (auto former = m_former.rbegin(); former != m_former.rend(); ++former) {
        Column& column = m_book.sheet(former->place.sheet).writableColumn(former->place.column);
        const std::size_t slot = column.lowerSlot(former->place.row);
        CellBlock& block = column.computedBlock(slot);
        const int index = former->place.row - column.slots()[slot].firstRow;
        block.setValue(index, std::move(former->value));
        if (block.hasShown())
            block.setShown(index, std::move(former->shown));
    }
    m_evaluator.queue().clear();
    m_pending = std::move(pending);
}

void Recalculation::applyQueue()
{
    for (const QueuedCellChange& change : m_evaluator.queue()) {
        BookSheet& sheet = m_book.sheet(change.place.sheet);
        const CellAddress cell{change.place.column, change.place.row};
        CellStyle style = m_book.style(sheet, cell);
        if (style.type == CellType::number && style.decimals == change.decimals)
            continue;
        style.type = CellType::number;
        style.decimals = static_cast<std::uint8_t>(change.decimals);
        const Column::Place place = sheet.writableColumn(cell.column).writable(cell.row);
        place.block.setStyle(place.index, m_book.styles.intern(style));
    }
    m_evaluator.queue().clear();
}

} // namespace spreadsheet
