#include "spreadsheet/files/exchange/Warnings.h"

#include <algorithm>

namespace spreadsheet {

void Warnings::count(std::string_view text, int more)
{
    const auto found = std::ranges::find(m_losses, text, &Loss::text);
    if (found != m_losses.end())
        found->count += more;
    else if (m_losses.size() < most)
        m_losses.push_back({std::string(text), more});
}

std::vector<std::string> Warnings::texts() const
{
    std::vector<std::string> texts;
    for (const Loss& loss : m_losses) {
        const std::size_t place = loss.count > 0 ? loss.text.find("{}") : std::string::npos;
        texts.push_back(loss.text);
        if (place != std::string::npos)
            texts.back().replace(place, 2, std::to_string(loss.count));
    }
    return texts;
}

} // namespace spreadsheet
