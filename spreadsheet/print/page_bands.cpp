#include "spreadsheet/print/page_bands.h"

#include <algorithm>

namespace spreadsheet {

namespace {

class BandDealer {
public:
    BandDealer(int capacity, RepeatedRows repeated, const PageBreaks& breaks)
        : m_capacity(capacity)
        , m_repeated(repeated)
        , m_breaks(breaks)
    {
        if (isLeftOut(repeated, capacity))
            m_repeated.length = 0;
    }

    void add(int index, int size)
    {
        if (m_bands.empty() || room() < size || breaksBetween(m_bands.back().last, index))
            open(index, 0);
        int skipped = 0;
        while (size - skipped > room()) {
            m_bands.back().length = room();
            skipped += m_bands.back().length;
            open(index, skipped);
        }
        m_bands.back().last = index;
        m_bands.back().length += size - skipped;
    }

    std::vector<PageBand> take() { return std::move(m_bands); }

private:
    int room() const
    {
        const PageBand& band = m_bands.back();
        return m_capacity - band.length - (band.repeats ? m_repeated.length : 0);
    }

    bool breaksBetween(int before, int index) const
    {
        const auto next = m_breaks.upper_bound(before);
        return next != m_breaks.end() && next->first <= index;
    }

    void open(int index, int skipped)
    {
        const bool repeats = m_repeated.length > 0 && index > m_repeated.last;
        m_bands.push_back({index, index, skipped, 0, repeats});
    }

    int m_capacity;
    RepeatedRows m_repeated;
    const PageBreaks& m_breaks;
    std::vector<PageBand> m_bands;
};

} // namespace

bool isLeftOut(const RepeatedRows& repeated, int capacity)
{
    return repeated.length > capacity / 2;
}

std::vector<PageBand> pageBands(std::span<const int> sizes, int first, int capacity, RepeatedRows repeated,
                                const PageBreaks& breaks)
{
    BandDealer dealer(std::max(capacity, 1), repeated, breaks);
    int index = first;
    for (const int size : sizes) {
        if (size > 0)
            dealer.add(index, size);
        ++index;
    }
    return dealer.take();
}

} // namespace spreadsheet
