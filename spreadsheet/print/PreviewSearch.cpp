#include "spreadsheet/print/PreviewSearch.h"

#include "spreadsheet/print/page_words.h"
#include "spreadsheet/print/PreviewPages.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace spreadsheet {

void PreviewSearch::setText(const QString& text)
{
    if (std::exchange(m_text, text) == text)
        return;
    m_current = {};
    m_hits.clear();
}

/// Other pages: nothing is known of them, and the current hit may be gone.
void PreviewSearch::followPages()
{
    const std::uint64_t version = m_pages.version();
    const auto pages = static_cast<std::size_t>(m_pages.count());
    if (std::exchange(m_version, version) == version && m_hits.size() == pages)
        return;
    m_hits.assign(pages, std::nullopt);
    m_counted = 0;
    if (m_current.page != 0 && m_current.index >= std::ssize(on(m_current.page)))
        m_current = {};
}

const std::vector<QRect>& PreviewSearch::on(int page)
{
    static const std::vector<QRect> none;
    followPages();
    if (page < 1 || page > std::ssize(m_hits))
        return none;
    auto& hits = m_hits[static_cast<std::size_t>(page - 1)];
    if (!hits) {
        const PageLayout* const layout = m_pages.layout();
        hits = layout && !m_text.isEmpty() ? pageHits(m_pages.sheet(), *layout, page, m_text) : none;
    }
    return *hits;
}

const PreviewSearch::Hit& PreviewSearch::current()
{
    followPages();
    return m_current;
}

bool PreviewSearch::go(bool isForward, int page)
{
    followPages();
    const Hit from = m_current.page != 0 ? m_current : Hit{page, -1};
    const int pages = m_pages.count();
    for (int step = 0; step <= pages; ++step) {
        const int number = (from.page - 1 + (isForward ? step : pages - step)) % pages + 1;
        const int count = static_cast<int>(on(number).size());
        const bool isBegun = step == 0 && from.index >= 0;
        const int index = isForward ? (isBegun ? from.index + 1 : 0) : (isBegun ? from.index : count) - 1;
        if (index < 0 || index >= count)
            continue;
        m_current = {number, index};
        return true;
    }
    return false;
}

bool PreviewSearch::countOn()
{
    constexpr int atATime = 10; // milliseconds
    followPages();
    QElapsedTimer time;
    time.start();
    while (m_counted < m_hits.size() && time.elapsed() < atATime)
        on(static_cast<int>(++m_counted));
    return m_counted < m_hits.size();
}

std::optional<int> PreviewSearch::before(int page) const
{
    int sum = 0;
    for (int number = 1; number < page; ++number) {
        const auto& hits = m_hits[static_cast<std::size_t>(number - 1)];
        if (!hits)
            return std::nullopt;
        sum += static_cast<int>(hits->size());
    }
    return sum;
}

std::optional<int> PreviewSearch::total()
{
    followPages();
    return before(static_cast<int>(m_hits.size()) + 1);
}

std::optional<int> PreviewSearch::ordinal()
{
    const Hit hit = current();
    const auto inFront = hit.page == 0 ? std::nullopt : before(hit.page);
    return inFront ? std::optional(*inFront + hit.index + 1) : std::nullopt;
}

} // namespace spreadsheet
