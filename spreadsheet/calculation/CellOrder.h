#pragma once
#include "spreadsheet/calculation/DependencyGraph.h"
#include "spreadsheet/calculation/RowSet.h"
#include "spreadsheet/formula/CustomFunction.h"

#include <functional>
#include <span>
#include <unordered_map>
#include <vector>

namespace spreadsheet {

/// Puts the cells of runs that cross each other in order, cell by cell, and finds those that may depend
/// on themselves: Tarjan's algorithm on cells, without recursion.
class CellOrder {
public:
    /// One cell, or the whole of an array formula.
    struct Node {
        std::int32_t run;
        int row;
    };
    using Visit = std::function<void(Node)>;
    using VisitAll = std::function<void(std::span<const Node>)>;

    CellOrder(const DependencyGraph& graph, const Component& component);

    /// Reports every cell of the given rows, each after what it reads; cells that may read each other
    /// together, to `circular`.
    void run(const std::vector<RowSet>& rows, const Visit& evaluate, const VisitAll& circular);

private:
    struct Part { ///< one run of the component
        std::int32_t run;
        std::size_t firstNode;
    };
    /// Goes through the nodes that one node reads.
    struct Frame {
        std::size_t node;
        std::size_t reading = 0;
        std::size_t part = 0;
        int row = 0;
        int lastRow = -1;
        bool readsItself = false;
    };

    Node nodeAt(std::size_t node) const;
    void visit(std::size_t start, const Visit& evaluate, const VisitAll& circular);
    std::size_t nextRead(Frame& frame) const;
    void openPart(Frame& frame, const Reading& reading) const;
    void close(const Frame& frame, const Visit& evaluate, const VisitAll& circular);
    void open(std::size_t node);

    const DependencyGraph& m_graph;
    std::vector<Part> m_parts;
    std::vector<std::int32_t> m_index; ///< by node; -1: not visited
    std::vector<std::int32_t> m_low;
    std::vector<bool> m_wanted;
    std::vector<bool> m_done;
    std::vector<std::size_t> m_stack;
    std::vector<Frame> m_frames;
    std::int32_t m_next = 0;
};

} // namespace spreadsheet
