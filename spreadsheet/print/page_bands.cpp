#include "spreadsheet/print/page_bands.h"

#include <algorithm>

namespace spreadsheet {

namespace {

class BandDealer {
public:
    BandDealer(int capacity, RepeatedRows repeated)
        : m_capacity(capacity)
        , m_repeated(repeated)
    {
        if (repeated.length > capacity / 2)
            m_repeated.length = 0;
    }

    void add(int index, int size)
    {
        if (m_bands.empty() || room() < size)
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

    void open(int index, int skipped)
    {
        const bool repeats = m_repeated.length > 0 && index > m_repeated.last;
        m_bands.push_back({index, index, skipped, 0, repeats});
    }

    int m_capacity;
    RepeatedRows m_repeated;
    std::vector<PageBand> m_bands;
};

} // namespace

std::vector<PageBand> pageBands(std::span<const int> sizes, int first, int capacity, RepeatedRows repeated)
{
    BandDealer dealer(std::max(capacity, 1), repeated);
    int index = first;
    for (const int size : sizes) {
        if (size > 0)
            dealer.add(index, size);
        ++index;
    }
    return dealer.take();
}

} // namespace spreadsheet
