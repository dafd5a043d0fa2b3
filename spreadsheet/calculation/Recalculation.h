#pragma once
#include "spreadsheet/calculation/BlockEvaluator.h"
#include "spreadsheet/calculation/CellOrder.h"
#include "spreadsheet/calculation/DependencyGraph.h"
#include "spreadsheet/calculation/Evaluator.h"
#include "spreadsheet/calculation/RecalculationReport.h"
#include "spreadsheet/calculation/RowSet.h"
#include "spreadsheet/cells/Book.h"

#include <functional>
#include <memory>
#include <vector>

namespace spreadsheet {

class LookupIndexes;

/// Told each cell whose formula may call a registered function before the cell is computed.
using CallerHook = std::function<void(CallPlace)>;

/// Keeps track of what changed and computes what depends on it.
class Recalculation {
public:
    explicit Recalculation(Book& book);
    ~Recalculation();

    /// Cells of a column changed their value (or gained or lost a formula).
    void noteChanged(int sheetId, int column, int firstRow, int lastRow);
    /// Formulas were set, moved or taken away: the graph has to be built anew.
    void noteFormulas() { m_graphStale = true; }
    /// A name got another meaning: formulas that mention names are computed anew.
    void noteNames() { m_graphStale = m_pending.namesChanged = true; }
    /// Cells or sheets moved: formulas that depend on their place or read several sheets are computed anew.
    void noteMoved() { m_graphStale = m_pending.moved = true; }
    void forgetChanges();

    RecalculationReport all();
    RecalculationReport changed();

    /// Whether the value of `cell` depends on that of `source`, through however many cells. A formula that
    /// may read what it does not name counts as reading everything.
    bool isComputedFrom(CallPlace cell, CallPlace source);

    /// Whether the formula of a cell may call a registered function. False without a formula.
    bool mayCall(CallPlace cell);

    void setPrepareHook(PrepareHook hook) { m_prepare = std::move(hook); }
    void setCallerHook(CallerHook hook) { m_caller = std::move(hook); }
    void setPauseHook(PauseHook hook) { m_pause = std::move(hook); }
    void takeHooks(const Recalculation& other);
    std::size_t bytes() const { return m_graph.bytes(); }

private:
    struct Change {
        int sheetId;
        int column;
        int firstRow;
        int lastRow;
    };

    /// What is to be computed with the next recalculation.
    struct Pending {
        std::vector<Change> changes;
        bool moved = false;
        bool namesChanged = false;
    };
    /// What a cell held before the recalculation under way.
    struct FormerCell {
        CallPlace place;
        Value value;
        Text shown;
    };

    void refreshGraph();
    void markChanges();
    void markRun(std::int32_t run, int firstRow, int lastRow);
    void markWholeRun(std::int32_t run);
    void unmarkAll();
    void spread();
    RecalculationReport compute();
    void evaluateMarked();
    bool reevaluateUnlisted();
    void evaluateComponent(const Component& component);
    void evaluateRows(const Component& component, int direction);
    void evaluateCells(const Component& component);
    void evaluateAsRead(std::span<const CellOrder::Node> cells);
    void evaluateAlone(const Run& run, int row);
    void evaluateRun(const Run& run, RowInterval rows);
    void evaluateStretch(const Run& run, const Formula& formula, std::size_t slot, RowInterval rows);
    void evaluateCell(const Run& run, const Formula& formula, CellBlock& block, int index, int row);
    void evaluateArray(const Run& run);
    void setCircular(const Run& run, int row);
    void dropShown(CellBlock& block, int index, int count) const;
    void prepareWave(const std::vector<std::int32_t>& components);
    void applyQueue();
    bool shouldStop();
    bool askToStop();
    void keepFormerCells(const Component& component);
    void bringBack(Pending pending);
    EvaluationPlace beginCell(const Run& run, int row);
    void tellCaller(const Run& run, int row) const;

    Book& m_book;
    DependencyGraph m_graph;
    Evaluator m_evaluator;
    Effort m_effort;
    BlockEvaluator m_blocks;
    std::unique_ptr<LookupIndexes> m_indexes;
    PrepareHook m_prepare;
    CallerHook m_caller;
    PauseHook m_pause;
    Pending m_pending;
    std::vector<FormerCell> m_former; ///< kept only where a pause hook may stop
    std::size_t m_nextPause = 0;      ///< evaluated cells at which the pause hook is asked again
    std::vector<RowSet> m_marked;     ///< by run: rows to compute
    std::vector<std::int32_t> m_volatileRuns;
    std::vector<std::int32_t> m_markedRuns; ///< runs with rows to compute
    struct Spread {
        std::int32_t run;
        RowInterval rows;
    };
    std::vector<Spread> m_spread; ///< marked rows whose readers are not marked yet
    RecalculationReport m_report;
    bool m_graphStale = true;
};

} // namespace spreadsheet
