#pragma once
#include "spreadsheet/calculation/CellOrder.h"
#include "spreadsheet/calculation/Evaluator.h"

#include <map>
#include <span>
#include <utility>
#include <vector>

namespace spreadsheet {

/// Puts cells that may read each other in the order in which they do, and finds those that really depend on
/// themselves: an IF whose branch is not taken, or ISFORMULA of the own cell, names cells without reading
/// them. A cell is run until it wants another one that is not computed; then that one is run first, and the
/// cell once more. What waits for each other is found by Tarjan's algorithm on the way.
class ReadOrder final : public ReadGuard {
public:
    using Node = CellOrder::Node;
    using Visit = CellOrder::Visit;

    ReadOrder(const DependencyGraph& graph, std::span<const Node> nodes);

    /// `evaluate` runs the formula of a cell under this guard and keeps what it comes to; cells in a circle
    /// go to `circular`.
    void run(const Visit& evaluate, const Visit& circular);
    /// Whether the cell that is being run has to be run once more.
    bool waits() const { return m_waits; }

    Answer beforeReading(const Area& area) override;
    std::vector<MadeCall>& calls() override { return m_frames.back().calls; }

private:
    /// Cells of one node in one column.
    struct Rows {
        int first;
        int last;
        std::size_t node;
    };
    struct Frame {
        std::size_t node;
        std::vector<std::size_t> wanted = {}; ///< not computed when they were asked for
        std::size_t next = 0;                 ///< of them
        bool readsItself = false;
        std::vector<MadeCall> calls = {};
    };

    void open(std::size_t node);
    void visit(std::size_t start, const Visit& evaluate, const Visit& circular);
    void close(const Visit& circular);

    std::vector<Node> m_nodes;
    std::map<std::pair<int, int>, std::vector<Rows>> m_columns; ///< by sheet and column; ascending rows
    std::vector<std::int32_t> m_index;                          ///< by node; -1: not begun
    std::vector<std::int32_t> m_low;
    std::vector<bool> m_done;
    std::vector<std::size_t> m_stack;
    std::vector<Frame> m_frames;
    std::int32_t m_nextIndex = 0;
    bool m_waits = false;
};

} // namespace spreadsheet
