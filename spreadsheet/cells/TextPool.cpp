#include "spreadsheet/cells/TextPool.h"

#include <algorithm>

namespace spreadsheet {

Text TextPool::intern(std::string_view text)
{
    const auto known = m_texts.find(text);
    if (known != m_texts.end())
        return *known;
    if (m_texts.size() >= m_sweepAt)
        sweep();
    return *m_texts.insert(Text(text)).first;
}

void TextPool::sweep()
{
    std::erase_if(m_texts, [](const Text& text) { return !text.isShared(); });
    m_sweepAt = std::max<std::size_t>(1024, 2 * m_texts.size());
}

std::size_t TextPool::bytes() const
{
    std::size_t sum = 0;
    for (const Text& text : m_texts)
        sum += sizeof(Text::Body) + text.view().size() + 4 * sizeof(void*);
    return sum;
}

} // namespace spreadsheet
