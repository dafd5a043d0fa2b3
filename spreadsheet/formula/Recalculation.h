#pragma once
#include "spreadsheet/engine/Workbook.h"
#include "spreadsheet/formula/BlockEvaluator.h"
#include "spreadsheet/formula/DependencyGraph.h"
#include "spreadsheet/formula/Evaluator.h"
#include "spreadsheet/formula/RowSet.h"

#include <memory>
#include <vector>

namespace spreadsheet {

class LookupIndexes;

/// Keeps track of what changed and computes what depends on it.
class Recalculation {
public:
    explicit Recalculation(Workbook& workbook);
    ~Recalculation();

    /// Cells of a column changed their value (or gained or lost a formula).
    void noteChanged(int sheetId, int column, int firstRow, int lastRow);
    /// Formulas were set, moved or taken away: the graph has to be built anew.
    void noteFormulas() { m_graphStale = true; }
    /// A name got another meaning: formulas that mention names are computed anew.
    void noteNames() { m_graphStale = m_namesChanged = true; }
    /// Cells or sheets moved: formulas that depend on their place or read several sheets are computed anew.
    void noteMoved() { m_graphStale = m_moved = true; }
    void forgetChanges();

    RecalculationReport all();
    RecalculationReport changed();

    void setPrepareHook(PrepareHook hook) { m_prepare = std::move(hook); }
    const PrepareHook& prepareHook() const { return m_prepare; }
    std::size_t bytes() const { return m_graph.bytes(); }

private:
    struct Change {
        int sheetId;
        int column;
        int firstRow;
        int lastRow;
    };

    void refreshGraph();
    void markChanges();
    void markRun(std::int32_t run, int firstRow, int lastRow);
    void markWholeRun(std::int32_t run);
    void spread();
    RecalculationReport compute();
    void evaluateMarked();
    bool reevaluateUnlisted();
    void evaluateComponent(const Component& component);
    void evaluateRows(const Component& component, int direction);
    void evaluateCells(const Component& component);
    void evaluateRun(const Run& run, RowInterval rows);
    void evaluateStretch(const Run& run, const Formula& formula, std::size_t slot, RowInterval rows);
    void evaluateCell(const Run& run, const Formula& formula, CellBlock& block, int index, int row);
    void evaluateArray(const Run& run);
    void setCircular(const Run& run, int row);
    void dropShown(CellBlock& block, int index, int count) const;
    void prepareWave(const std::vector<std::int32_t>& components);
    void applyQueue();
    EvaluationPlace placeOf(const Run& run, int row);

    Workbook& m_workbook;
    DependencyGraph m_graph;
    Evaluator m_evaluator;
    BlockEvaluator m_blocks;
    std::unique_ptr<LookupIndexes> m_indexes;
    PrepareHook m_prepare;
    std::vector<Change> m_changes;
    std::vector<RowSet> m_marked; ///< by run: rows to compute
    std::vector<std::int32_t> m_volatileRuns;
    std::vector<std::int32_t> m_markedRuns; ///< runs with rows to compute
    struct Spread {
        std::int32_t run;
        RowInterval rows;
    };
    std::vector<Spread> m_spread; ///< marked rows whose readers are not marked yet
    RecalculationReport m_report;
    bool m_graphStale = true;
    bool m_moved = false;
    bool m_namesChanged = false;
};

} // namespace spreadsheet
