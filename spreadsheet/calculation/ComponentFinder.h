#pragma once
#include "spreadsheet/calculation/DependencyGraph.h"

#include <vector>

namespace spreadsheet {

/// Finds runs that read each other (strongly connected components) and the order of evaluation, by
/// Tarjan's algorithm without recursion (R. Tarjan, Depth-first search and linear graph algorithms,
/// SIAM J. Comput. 1, 1972). Edges are looked up when they are needed, so they take no memory.
class ComponentFinder {
public:
    explicit ComponentFinder(DependencyGraph& graph)
        : m_graph(graph)
    {
    }
    void run();

private:
    /// Goes through the runs that one run reads.
    struct Frame {
        std::int32_t run;
        std::int32_t reading; ///< position in the graph's readings
        int sheet;
        int column;
        std::size_t position; ///< in the column's list of runs
    };

    void visit(std::int32_t start);
    void open(std::int32_t run);
    std::int32_t nextRead(Frame& frame);
    bool nextColumn(Frame& frame, const Reading& reading);
    void close(const Frame& frame);

    DependencyGraph& m_graph;
    std::vector<std::int32_t> m_index; ///< order of the first visit; -1: not visited
    std::vector<std::int32_t> m_low;
    std::vector<std::int32_t> m_wave;
    std::vector<std::int32_t> m_stack;
    std::vector<Frame> m_frames;
    std::int32_t m_next = 0;
};

} // namespace spreadsheet
