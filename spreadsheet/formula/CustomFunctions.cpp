#include "spreadsheet/formula/CustomFunctions.h"

#include "spreadsheet/values/case_fold.h"

namespace spreadsheet {

int CustomFunctions::number(std::string_view name)
{
    const auto [entry, fresh] = m_byFolded.try_emplace(foldedName(name), static_cast<int>(m_entries.size()));
    if (fresh)
        m_entries.push_back({std::string(name), 0, {}});
    return entry->second;
}

void CustomFunctions::add(std::string_view name, int parameterCount, FunctionHandler handler)
{
    const auto index = static_cast<std::size_t>(number(name));
    m_entries[index] = {std::string(name), parameterCount, std::move(handler)};
}

void CustomFunctions::takeHandlers(const CustomFunctions& other)
{
    for (const Entry& entry : other.m_entries) {
        if (entry.handler)
            add(entry.name, entry.parameterCount, entry.handler);
    }
}

bool CustomFunctions::isRegistered(std::string_view name) const
{
    const auto entry = m_byFolded.find(foldedName(name));
    return entry != m_byFolded.end() && m_entries[static_cast<std::size_t>(entry->second)].handler;
}

} // namespace spreadsheet
