#include "spreadsheet/calculation/ReadOrder.h"

#include <algorithm>

namespace spreadsheet {

ReadOrder::ReadOrder(const DependencyGraph& graph, std::span<const Node> nodes)
    : m_nodes(nodes.begin(), nodes.end())
    , m_index(nodes.size(), -1)
    , m_low(nodes.size(), 0)
    , m_done(nodes.size(), false)
{
    const auto runOf = [&](const Node& node) -> const Run& {
        return graph.runs()[static_cast<std::size_t>(node.run)];
    };
    std::ranges::sort(m_nodes, {}, [&](const Node& node) {
        const Run& run = runOf(node);
        return std::tuple(run.sheet, run.column(), node.row);
    });
    for (std::size_t node = 0; node < m_nodes.size(); ++node) {
        const Run& run = runOf(m_nodes[node]);
        const int first = m_nodes[node].row;
        for (int column = run.cells.left; column <= run.cells.right; ++column)
            m_columns[{run.sheet, column}].push_back({first, run.isArray ? run.cells.bottom : first, node});
    }
    for (auto& [column, rows] : m_columns)
        std::ranges::sort(rows, {}, &Rows::first);
}

void ReadOrder::run(const Visit& evaluate, const Visit& circular)
{
    for (std::size_t node = 0; node < m_nodes.size(); ++node) {
        if (m_index[node] < 0)
            visit(node, evaluate, circular);
    }
}

void ReadOrder::open(std::size_t node)
{
    m_index[node] = m_low[node] = m_nextIndex++;
    m_stack.push_back(node);
    m_frames.push_back({node});
}

void ReadOrder::visit(std::size_t start, const Visit& evaluate, const Visit& circular)
{
    open(start);
    while (!m_frames.empty()) {
        Frame& frame = m_frames.back();
        if (frame.next < frame.wanted.size()) {
            const std::size_t wanted = frame.wanted[frame.next++];
            if (m_index[wanted] < 0)
                open(wanted);
            continue;
        }
        m_waits = false;
        evaluate(m_nodes[frame.node]);
        if (!m_waits)
            close(circular);
    }
}

ReadGuard::Answer ReadOrder::beforeReading(const Area& area)
{
    Frame& frame = m_frames.back();
    bool waits = false;
    bool inCircle = false;
    const CellRange& cells = area.cells;
    for (auto column = m_columns.lower_bound({area.sheet, cells.left});
         column != m_columns.end() && column->first <= std::pair(area.sheet, cells.right); ++column) {
        const std::vector<Rows>& rows = column->second;
        for (auto at = std::ranges::lower_bound(rows, cells.top, {}, &Rows::last);
             at != rows.end() && at->first <= cells.bottom; ++at) {
            if (m_index[at->node] < 0) {
                frame.wanted.push_back(at->node);
                waits = true;
            } else if (!m_done[at->node]) {
                m_low[frame.node] = std::min(m_low[frame.node], m_index[at->node]);
                frame.readsItself = frame.readsItself || at->node == frame.node;
                inCircle = true;
            }
        }
    }
    m_waits = m_waits || waits;
    return waits ? Answer::wait : inCircle ? Answer::circle : Answer::read;
}

void ReadOrder::close(const Visit& circular)
{
    const Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    if (!m_frames.empty())
        m_low[m_frames.back().node] = std::min(m_low[m_frames.back().node], m_low[frame.node]);
    if (m_low[frame.node] != m_index[frame.node])
        return;
    const bool alone = m_stack.back() == frame.node;
    std::size_t member;
    do {
        member = m_stack.back();
        m_stack.pop_back();
        m_done[member] = true;
        if (!alone || frame.readsItself)
            circular(m_nodes[member]);
    } while (member != frame.node);
}

} // namespace spreadsheet
