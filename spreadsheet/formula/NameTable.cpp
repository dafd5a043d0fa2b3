#include "spreadsheet/formula/NameTable.h"

#include "spreadsheet/values/case_fold.h"
#include "spreadsheet/values/CellAddress.h"
#include "text/ascii.h"

#include <algorithm>

namespace spreadsheet {

int NameTable::number(std::string_view name)
{
    const auto [entry, fresh] = m_byFolded.try_emplace(foldedName(name), size());
    if (fresh)
        m_entries.push_back({std::string(name), 0});
    return entry->second;
}

int NameTable::find(std::string_view name) const
{
    const auto entry = m_byFolded.find(foldedName(name));
    return entry == m_byFolded.end() ? -1 : entry->second;
}

bool NameTable::isValid(std::string_view name)
{
    if (name.empty() || name.size() > 255 || ascii::isDigit(name.front()) || name.front() == '.' ||
        parseCellName(name))
        return false;
    for (const std::string_view sign : {"（", "）", "，", "；", "\u3000"}) { // read as brackets and the like
        if (name.find(sign) != std::string_view::npos)
            return false;
    }
    const std::string folded = foldedName(name);
    if (folded == "TRUE" || folded == "FALSE")
        return false;
    return std::ranges::all_of(name, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x80 || byte == '_' || byte == '.' || byte == '\\' || byte == '?' ||
               ascii::isDigit(c) || ascii::isLetter(c);
    });
}

} // namespace spreadsheet
