#include "spreadsheet/calculation/ComponentFinder.h"

#include <algorithm>

namespace spreadsheet {

namespace {

/// Custom calls that take what only shows while they run (INDIRECT) wait for everything else.
constexpr std::int32_t lastWave = 1 << 20;

} // namespace

void ComponentFinder::run()
{
    const std::size_t count = m_graph.m_runs.size();
    m_index.assign(count, -1);
    m_low.assign(count, 0);
    m_wave.assign(count, 0);
    for (std::size_t run = 0; run < count; ++run) {
        if (m_graph.m_runs[run].isCustom && m_graph.m_runs[run].readsUnlisted)
            m_wave[run] = lastWave;
    }
    for (std::size_t start = 0; start < count; ++start) {
        if (m_index[start] < 0)
            visit(static_cast<std::int32_t>(start));
    }
}

void ComponentFinder::open(std::int32_t run)
{
    const auto at = static_cast<std::size_t>(run);
    m_index[at] = m_low[at] = m_next++;
    m_stack.push_back(run);
    m_frames.push_back({run, m_graph.m_firstReading[at], 0, 0, 0});
}

void ComponentFinder::visit(std::int32_t start)
{
    open(start);
    while (!m_frames.empty()) {
        Frame& frame = m_frames.back();
        const std::int32_t read = nextRead(frame);
        if (read < 0) {
            const Frame finished = frame;
            m_frames.pop_back();
            close(finished);
            continue;
        }
        const auto from = static_cast<std::size_t>(frame.run);
        const auto to = static_cast<std::size_t>(read);
        if (m_index[to] < 0)
            open(read);
        else if (m_graph.m_runs[to].component < 0)
            m_low[from] = std::min(m_low[from], m_index[to]);
        else
            m_wave[from] = std::max(
                m_wave[from],
                m_wave[to] +
                    m_graph.m_components[static_cast<std::size_t>(m_graph.m_runs[to].component)].isCustom);
    }
}

/// The next run that the frame's run reads; -1 when there are no more.
std::int32_t ComponentFinder::nextRead(Frame& frame)
{
    const auto run = static_cast<std::size_t>(frame.run);
    for (; frame.reading < m_graph.m_firstReading[run + 1]; ++frame.reading, frame.sheet = 0) {
        const Reading& reading = m_graph.m_readings[static_cast<std::size_t>(frame.reading)];
        if (frame.sheet == 0) {
            frame.sheet = reading.firstSheet;
            frame.column = reading.cells.left - 1;
            if (!nextColumn(frame, reading))
                continue;
        }
        do {
            const auto& sheet = m_graph.m_sheets[static_cast<std::size_t>(frame.sheet)];
            const auto& runs = sheet.columns[static_cast<std::size_t>(frame.column)].runs;
            if (frame.position < runs.size()) {
                const std::int32_t read = runs[frame.position];
                if (m_graph.m_runs[static_cast<std::size_t>(read)].cells.top <= reading.cells.bottom) {
                    ++frame.position;
                    return read;
                }
            }
        } while (nextColumn(frame, reading));
    }
    return -1;
}

/// Moves to the next column that holds runs in the reading's rows; false behind the last one.
bool ComponentFinder::nextColumn(Frame& frame, const Reading& reading)
{
    for (; frame.sheet <= reading.lastSheet; ++frame.sheet, frame.column = reading.cells.left - 1) {
        const auto& columns = m_graph.m_sheets[static_cast<std::size_t>(frame.sheet)].columns;
        const int last = std::min(reading.cells.right, static_cast<int>(columns.size()) - 1);
        while (++frame.column <= last) {
            const auto& runs = columns[static_cast<std::size_t>(frame.column)].runs;
            const auto found = std::ranges::lower_bound(runs, reading.cells.top, {}, [this](std::int32_t r) {
                return m_graph.m_runs[static_cast<std::size_t>(r)].cells.bottom;
            });
            if (found != runs.end()) {
                frame.position = static_cast<std::size_t>(found - runs.begin());
                return true;
            }
        }
    }
    return false;
}

void ComponentFinder::close(const Frame& frame)
{
    const auto at = static_cast<std::size_t>(frame.run);
    if (!m_frames.empty()) {
        const auto parent = static_cast<std::size_t>(m_frames.back().run);
        m_low[parent] = std::min(m_low[parent], m_low[at]);
    }
    if (m_low[at] == m_index[at]) {
        Component component;
        const auto number = static_cast<std::int32_t>(m_graph.m_components.size());
        std::int32_t member;
        do {
            member = m_stack.back();
            m_stack.pop_back();
            Run& run = m_graph.m_runs[static_cast<std::size_t>(member)];
            run.component = number;
            component.runs.push_back(member);
            component.isCustom = component.isCustom || run.isCustom;
            component.wave = std::max(component.wave, m_wave[static_cast<std::size_t>(member)]);
        } while (member != frame.run);
        std::ranges::reverse(component.runs);
        for (const std::int32_t run : component.runs)
            m_wave[static_cast<std::size_t>(run)] = component.wave;
        m_graph.m_components.push_back(std::move(component));
    }
    if (!m_frames.empty()) { // the parent reads this run: if it is finished, its wave counts
        const auto parent = static_cast<std::size_t>(m_frames.back().run);
        const std::int32_t component = m_graph.m_runs[at].component;
        if (component >= 0)
            m_wave[parent] =
                std::max(m_wave[parent],
                         m_wave[at] + m_graph.m_components[static_cast<std::size_t>(component)].isCustom);
    }
}

} // namespace spreadsheet
