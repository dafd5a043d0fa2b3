#include "spreadsheet/calculation/CellOrder.h"

#include <algorithm>

namespace spreadsheet {

namespace {

constexpr std::size_t noNode = static_cast<std::size_t>(-1);

} // namespace

CellOrder::CellOrder(const DependencyGraph& graph, const Component& component)
    : m_graph(graph)
{
    std::size_t nodes = 0;
    for (const std::int32_t run : component.runs) {
        m_parts.push_back({run, nodes});
        const Run& cells = graph.runs()[static_cast<std::size_t>(run)];
        nodes += cells.isArray ? 1 : static_cast<std::size_t>(cells.cells.rows());
    }
    m_index.assign(nodes, -1);
    m_low.assign(nodes, 0);
    m_wanted.assign(nodes, false);
    m_done.assign(nodes, false);
}

CellOrder::Node CellOrder::nodeAt(std::size_t node) const
{
    const auto after = std::ranges::upper_bound(m_parts, node, {}, &Part::firstNode);
    const Part& part = *(after - 1);
    const Run& run = m_graph.runs()[static_cast<std::size_t>(part.run)];
    return {part.run, run.cells.top + static_cast<int>(node - part.firstNode)};
}

void CellOrder::run(const std::vector<RowSet>& rows, const Visit& evaluate, const VisitAll& circular)
{
    for (const Part& part : m_parts) {
        const Run& run = m_graph.runs()[static_cast<std::size_t>(part.run)];
        for (const RowInterval& interval : rows[static_cast<std::size_t>(part.run)].intervals()) {
            const int last = run.isArray ? interval.first : interval.last;
            for (int row = interval.first; row <= last; ++row)
                m_wanted[part.firstNode + static_cast<std::size_t>(run.isArray ? 0 : row - run.cells.top)] =
                    true;
        }
    }
    for (std::size_t node = 0; node < m_wanted.size(); ++node) {
        if (m_wanted[node] && m_index[node] < 0)
            visit(node, evaluate, circular);
    }
}

void CellOrder::open(std::size_t node)
{
    m_index[node] = m_low[node] = m_next++;
    m_stack.push_back(node);
    Frame frame;
    frame.node = node;
    frame.part = m_parts.size(); // opened by the first look
    m_frames.push_back(frame);
}

void CellOrder::visit(std::size_t start, const Visit& evaluate, const VisitAll& circular)
{
    open(start);
    while (!m_frames.empty()) {
        Frame& frame = m_frames.back();
        const std::size_t read = nextRead(frame);
        if (read == noNode) {
            const Frame finished = frame;
            m_frames.pop_back();
            close(finished, evaluate, circular);
        } else if (read == frame.node) {
            frame.readsItself = true;
        } else if (m_wanted[read] && m_index[read] < 0) {
            open(read);
        } else if (m_wanted[read] && !m_done[read]) {
            m_low[frame.node] = std::min(m_low[frame.node], m_index[read]);
        }
    }
}

/// The rows of one part that a reading of the frame's cell covers.
void CellOrder::openPart(Frame& frame, const Reading& reading) const
{
    frame.row = 0;
    frame.lastRow = -1;
    const Node node = nodeAt(frame.node);
    const Run& reader = m_graph.runs()[static_cast<std::size_t>(node.run)];
    const Run& read = m_graph.runs()[static_cast<std::size_t>(m_parts[frame.part].run)];
    if (read.sheet < reading.firstSheet || read.sheet > reading.lastSheet ||
        !reading.cells.intersects(read.cells))
        return;
    int top = reading.cells.top;
    int bottom = reading.cells.bottom;
    if (!reader.isArray && !reading.wholeColumns) {
        const auto [low, high] = std::minmax({reading.top.at(node.row), reading.bottom.at(node.row)});
        top = low;
        bottom = high;
    }
    top = std::max(top, read.cells.top);
    bottom = std::min(bottom, read.cells.bottom);
    if (top > bottom)
        return;
    frame.row = read.isArray ? read.cells.top : top;
    frame.lastRow = read.isArray ? read.cells.top : bottom;
}

std::size_t CellOrder::nextRead(Frame& frame) const
{
    const auto readings = m_graph.readings(nodeAt(frame.node).run);
    for (;;) {
        if (frame.row <= frame.lastRow && frame.part < m_parts.size()) {
            const Part& part = m_parts[frame.part];
            const Run& run = m_graph.runs()[static_cast<std::size_t>(part.run)];
            return part.firstNode + static_cast<std::size_t>(frame.row++ - run.cells.top);
        }
        if (frame.part == m_parts.size()) { // the first look, before any part
            frame.part = 0;
        } else if (++frame.part == m_parts.size()) {
            frame.part = 0;
            ++frame.reading;
        }
        if (frame.reading >= readings.size())
            return noNode;
        openPart(frame, readings[frame.reading]);
    }
}

void CellOrder::close(const Frame& frame, const Visit& evaluate, const VisitAll& circular)
{
    if (!m_frames.empty())
        m_low[m_frames.back().node] = std::min(m_low[m_frames.back().node], m_low[frame.node]);
    if (m_low[frame.node] != m_index[frame.node])
        return;
    const bool alone = m_stack.back() == frame.node;
    std::vector<Node> members;
    std::size_t member;
    do {
        member = m_stack.back();
        m_stack.pop_back();
        m_done[member] = true;
        members.push_back(nodeAt(member));
    } while (member != frame.node);
    if (alone && !frame.readsItself)
        evaluate(members.front());
    else
        circular(members);
}

} // namespace spreadsheet
