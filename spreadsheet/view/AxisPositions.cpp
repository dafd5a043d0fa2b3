#include "spreadsheet/view/AxisPositions.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace spreadsheet {

AxisPositions::AxisPositions(const AxisSizes& sizes, int count, double pixelsPerTwip,
                             const std::map<int, int>& grown)
    : m_count(count)
{
    const auto pixels = [pixelsPerTwip](int twips) {
        return twips <= 0 ? 0 : std::max(static_cast<int>(std::lround(twips * pixelsPerTwip)), 1);
    };
    m_size = pixels(sizes.defaultSize);
    m_own.reserve(sizes.sizes.size() + sizes.hidden.size() + grown.size());
    for (const auto& [index, twips] : sizes.sizes)
        if (!sizes.hidden.contains(index))
            m_own.push_back({index, pixels(twips), 0});
    for (const auto& [index, isHidden] : sizes.hidden)
        m_own.push_back({index, 0, 0});
    for (const auto& [index, twips] : grown)
        if (!sizes.sizes.contains(index) && !sizes.hidden.contains(index))
            m_own.push_back({index, pixels(twips), 0});
    std::ranges::sort(m_own, {}, &OwnSize::index);
    std::int64_t end = 0;
    int next = 1;
    for (OwnSize& own : m_own) {
        own.start = end + std::int64_t(own.index - next) * m_size;
        end = own.end();
        next = own.index + 1;
    }
}

const AxisPositions::OwnSize* AxisPositions::lastBefore(int index) const
{
    const auto found = std::ranges::lower_bound(m_own, index, {}, &OwnSize::index);
    return found == m_own.begin() ? nullptr : &*std::prev(found);
}

int AxisPositions::size(int index) const
{
    const auto found = std::ranges::lower_bound(m_own, index, {}, &OwnSize::index);
    return found != m_own.end() && found->index == index ? found->size : m_size;
}

std::int64_t AxisPositions::start(int index) const
{
    const OwnSize* own = lastBefore(index);
    if (!own)
        return std::int64_t(index - 1) * m_size;
    return own->end() + std::int64_t(index - own->index - 1) * m_size;
}

int AxisPositions::indexAt(std::int64_t position) const
{
    if (position < 0)
        return std::max(shown(1, 1), 1);
    const auto behind = std::ranges::upper_bound(m_own, position, {}, &OwnSize::start);
    std::int64_t index = 1;
    if (behind == m_own.begin()) {
        index += m_size > 0 ? position / m_size : m_count;
    } else {
        const OwnSize& own = *std::prev(behind);
        index = own.index;
        if (position >= own.end())
            index += 1 + (m_size > 0 ? (position - own.end()) / m_size : m_count);
    }
    return index > m_count ? std::max(shown(m_count, -1), 1) : static_cast<int>(index);
}

int AxisPositions::shown(int index, int step) const
{
    if (index < 1 || index > m_count)
        return 0;
    if (size(index) > 0)
        return index;
    const std::int64_t place = step > 0 ? start(index) : start(index) - 1;
    if (place < 0 || place >= end(m_count))
        return 0;
    return indexAt(place);
}

int AxisPositions::moved(int index, int steps) const
{
    const int step = steps < 0 ? -1 : 1;
    int at = std::clamp(index, 1, std::max(m_count, 1));
    if (size(at) == 0)
        at = shown(at, step) != 0 ? shown(at, step) : shown(at, -step);
    for (int left = std::abs(steps); left > 0 && at != 0; --left) {
        const int next = shown(at + step, step);
        if (next == 0)
            break;
        at = next;
    }
    return at;
}

} // namespace spreadsheet
